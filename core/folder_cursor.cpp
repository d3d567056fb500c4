#include "core/folder_cursor.h"
#include "core/failure.h"
#include "core/posix_error.h"
#include "core/posix_stat.h"
#include <cerrno>
#include <climits>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>

namespace quillane {

namespace {

constexpr qsizetype kLongestFolderPath = 16384; // bytes

// Opens a folder, one whose path is longer than the system takes at once in several steps. Not
// open, with errno set, when that fails.
FileHandle OpenFolder(const QByteArray& path)
{
    if (path.size() > kLongestFolderPath) {
        errno = ENAMETOOLONG;
        return {};
    }
    FileHandle folder;
    for (qsizetype from = 0; from < path.size();) {
        qsizetype end = path.size();
        if (end - from >= PATH_MAX) {
            end = path.lastIndexOf('/', from + PATH_MAX - 2);
            if (end <= from) {
                errno = ENAMETOOLONG;
                return {};
            }
        }
        const QByteArray piece = path.sliced(from, end - from);
        while (end < path.size() && path[end] == '/')
            ++end;
        const int flags = O_DIRECTORY | O_CLOEXEC | (end < path.size() ? O_PATH : O_RDONLY);
        const int fd = folder.IsOpen() ? openat(folder.Fd(), piece.constData(), flags)
                                       : open(piece.constData(), flags);
        if (fd < 0)
            return {};
        folder = FileHandle(fd);
        from = end;
    }
    return folder;
}

} // namespace

struct FolderCursor::Stream {
    DIR* folder = nullptr;
    const dirent* entry = nullptr;
    unsigned char type = DT_UNKNOWN;

    Stream() = default;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream()
    {
        if (folder != nullptr)
            closedir(folder);
    }
};

FolderCursor::FolderCursor(const QString& folder)
    : mFolder(folder),
      mStream(std::make_unique<Stream>())
{
    const QByteArray bytes = BytesFromPath(folder);
    if (bytes.isEmpty() || bytes.contains('\0'))
        throw FailureFromErrno(ENOENT, QStringLiteral("read"), folder);
    FileHandle handle = OpenFolder(bytes);
    if (!handle.IsOpen())
        throw FailureFromErrno(errno, QStringLiteral("read"), folder);
    mStream->folder = fdopendir(handle.Fd());
    if (mStream->folder == nullptr)
        throw FailureFromErrno(errno, QStringLiteral("read"), folder);
    handle.Release(); // the stream closes it
}

FolderCursor::~FolderCursor() = default;

bool FolderCursor::Next()
{
    for (;;) {
        errno = 0;
        mStream->entry = readdir(mStream->folder);
        if (mStream->entry == nullptr) {
            if (errno != 0)
                throw FailureFromErrno(errno, QStringLiteral("read"), mFolder);
            return false;
        }
        const char* name = mStream->entry->d_name;
        if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0)
            break;
    }
    mStream->type = mStream->entry->d_type;
    if (mStream->type == DT_UNKNOWN) {
        struct stat found;
        if (fstatat(dirfd(mStream->folder), mStream->entry->d_name, &found, AT_SYMLINK_NOFOLLOW)
            == 0)
            mStream->type = static_cast<unsigned char>(IFTODT(found.st_mode));
    }
    mLink = mStream->type == DT_LNK;
    return true;
}

QString FolderCursor::Name() const
{
    return PathFromBytes(mStream->entry->d_name);
}

FileType FolderCursor::Type() const
{
    switch (mStream->type) {
    case DT_REG:
        return FileType::Regular;
    case DT_DIR:
        return FileType::Folder;
    case DT_LNK:
    case DT_UNKNOWN:
        return Stat().type;
    default:
        return FileType::Other;
    }
}

FileStat FolderCursor::Stat() const
{
    struct stat found;
    if (fstatat(dirfd(mStream->folder), mStream->entry->d_name, &found, 0) != 0)
        return {};
    return FileStatFromSystem(found);
}

} // namespace quillane
