#pragma once
#include "core/native_path.h"
#include <QList>

namespace quillane {

/// The album files of this run that hold more than was read of them: who saves over one keeps the
/// old file. A file is known by its path and by its place on the disk, so that it makes no
/// difference by which name it is met again.
class PartlyReadAlbums {
public:
    /// Notes how a reading ended; `file` is what the system says of the album.
    void Note(const QString& path, const FileStat& file, bool holdsMore);
    bool Has(const QString& path, const FileStat& file) const;

private:
    struct Place {
        QString path;
        quint64 device = 0, inode = 0;
        bool Is(const QString& otherPath, const FileStat& file) const;
    };
    QList<Place> mPlaces;
};

} // namespace quillane
