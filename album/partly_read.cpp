#include "album/partly_read.h"

#include <algorithm>

namespace quillane {

bool PartlyReadAlbums::Place::Is(const QString& otherPath, const FileStat& file) const
{
    return path == otherPath
        || (file.type != FileType::Missing && device == file.device && inode == file.inode);
}

void PartlyReadAlbums::Note(const QString& path, const FileStat& file, bool holdsMore)
{
    mPlaces.removeIf([&](const Place& place) { return place.Is(path, file); });
    if (holdsMore) {
        mPlaces.append({path, file.device, file.inode});
    }
}

bool PartlyReadAlbums::Has(const QString& path, const FileStat& file) const
{
    return std::any_of(mPlaces.begin(), mPlaces.end(),
                       [&](const Place& place) { return place.Is(path, file); });
}

} // namespace quillane
