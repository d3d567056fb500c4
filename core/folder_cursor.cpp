#include "core/folder_cursor.h"
#include "core/failure.h"
#include "core/posix_error.h"
#include "core/posix_stat.h"
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>

namespace quillane {

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
    FileHandle handle(open(bytes.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
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
