#include "imaging/saving/loaded_file.h"
#include <sys/stat.h>

namespace quillane {

bool LoadedFile::IsUnchanged() const
{
    struct stat now { };
    const FileStat& then = source->Stat();
    return ::fstat(source->Fd(), &now) == 0 && now.st_size == then.size
        && now.st_mtim.tv_sec == then.modifiedSeconds && now.st_mtim.tv_nsec == then.modifiedNanos;
}

bool LoadedFile::IsAt(const QString& where) const
{
    const FileStat there = StatPath(where);
    return there.type == FileType::Regular && there.device == source->Stat().device
        && there.inode == source->Stat().inode;
}

} // namespace quillane
