#include "core/posix_stat.h"

namespace quillane {

FileType TypeOfMode(mode_t mode)
{
    if (S_ISREG(mode))
        return FileType::Regular;
    return S_ISDIR(mode) ? FileType::Folder : FileType::Other;
}

FileStat FileStatFromSystem(const struct stat& found)
{
    FileStat result;
    result.type = TypeOfMode(found.st_mode);
    result.size = found.st_size;
    result.modifiedSeconds = found.st_mtim.tv_sec;
    result.modifiedNanos = qint32(found.st_mtim.tv_nsec);
    result.device = found.st_dev;
    result.inode = found.st_ino;
    result.mode = found.st_mode & 07777;
    return result;
}

} // namespace quillane
