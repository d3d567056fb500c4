#include "core/native_path.h"
#include "core/failure.h"
#include "core/paths.h"
#include "core/posix_error.h"
#include "core/posix_stat.h"
#include <atomic>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <unistd.h>
#include <utility>

namespace quillane {

namespace {

std::atomic<qint64> pathStats{0}, pathOpens{0}, pathLists{0};

void RefuseUnlessRegular(FileType type, const QString& path)
{
    if (type == FileType::Folder)
        throw Failure(kFailureIo, QStringLiteral("%1 is a folder.").arg(ShownName(path)));
    if (type != FileType::Regular) {
        throw Failure(
            kFailureIo,
            QStringLiteral("%1 is no ordinary file and is not opened.").arg(ShownName(path)));
    }
}

// Asked for links and for file systems whose folders do not tell the type.
FileType LinkedType(DIR* folder, const char* name)
{
    struct stat found;
    pathStats.fetch_add(1, std::memory_order_relaxed);
    if (fstatat(dirfd(folder), name, &found, 0) != 0)
        return FileType::Missing;
    return TypeOfMode(found.st_mode);
}

FileType EntryType(DIR* folder, const dirent& entry)
{
    switch (entry.d_type) {
    case DT_REG:
        return FileType::Regular;
    case DT_DIR:
        return FileType::Folder;
    case DT_LNK:
    case DT_UNKNOWN:
        return LinkedType(folder, entry.d_name);
    default:
        return FileType::Other;
    }
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

} // namespace

PathCalls PathCallCount()
{
    return {pathStats.load(std::memory_order_relaxed), pathOpens.load(std::memory_order_relaxed),
            pathLists.load(std::memory_order_relaxed)};
}

FileStat StatPath(const QString& path)
{
    const QByteArray bytes = BytesFromPath(path);
    struct stat found;
    pathStats.fetch_add(1, std::memory_order_relaxed);
    if (bytes.contains('\0') || stat(bytes.constData(), &found) != 0)
        return {};
    return FileStatFromSystem(found);
}

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept
{
    if (this != &other) {
        if (mFd >= 0)
            close(mFd);
        mFd = other.Release();
    }
    return *this;
}

FileHandle::~FileHandle()
{
    if (mFd >= 0)
        close(mFd);
}

int FileHandle::Release()
{
    return std::exchange(mFd, -1);
}

FileHandle OpenForReading(const QString& path)
{
    FileStat opened;
    return OpenForReading(path, opened);
}

FileHandle OpenForReading(const QString& path, FileStat& opened)
{
    const QByteArray bytes = BytesFromPath(path);
    struct stat found;
    pathStats.fetch_add(1, std::memory_order_relaxed);
    if (bytes.isEmpty() || bytes.contains('\0'))
        throw FailureFromErrno(ENOENT, QStringLiteral("open"), path);
    if (stat(bytes.constData(), &found) != 0)
        throw FailureFromErrno(errno, QStringLiteral("open"), path);
    RefuseUnlessRegular(TypeOfMode(found.st_mode), path);

    // Something else may lie there by now: O_NONBLOCK keeps a FIFO from being waited for.
    pathOpens.fetch_add(1, std::memory_order_relaxed);
    FileHandle file(open(bytes.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.IsOpen())
        throw FailureFromErrno(errno, QStringLiteral("open"), path);
    if (fstat(file.Fd(), &found) != 0)
        throw FailureFromErrno(errno, QStringLiteral("open"), path);
    RefuseUnlessRegular(TypeOfMode(found.st_mode), path);
    opened = FileStatFromSystem(found);
    return file;
}

QByteArray ReadWholeFile(const QString& path, qint64 maxBytes)
{
    const FileHandle file = OpenForReading(path);
    const auto tooLarge = [&] {
        return Failure(kFailureLimit, QStringLiteral("%1 is too large.").arg(ShownName(path)));
    };
    struct stat found;
    if (fstat(file.Fd(), &found) != 0)
        throw FailureFromErrno(errno, QStringLiteral("read"), path);
    if (found.st_size > maxBytes)
        throw tooLarge();

    const qint64 mostRead = qMin(maxBytes, std::numeric_limits<qint64>::max() - 1) + 1;
    // The size is a hint alone: the file may grow or shrink meanwhile, or not know its size.
    QByteArray content(found.st_size + 1, Qt::Uninitialized);
    qsizetype length = 0;
    for (;;) {
        if (length == content.size())
            content.resize(qMin<qint64>(mostRead, length + qMax<qsizetype>(length, 4096)));
        const ssize_t count =
            read(file.Fd(), content.data() + length, size_t(content.size() - length));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw FailureFromErrno(errno, QStringLiteral("read"), path);
        if (count == 0)
            break;
        length += count;
        if (length > maxBytes)
            throw tooLarge();
    }
    content.truncate(length);
    return content;
}

void ListFolder(const QString& folder, const std::function<bool(DirEntry&&)>& visit)
{
    const QByteArray bytes = BytesFromPath(folder);
    if (bytes.isEmpty() || bytes.contains('\0'))
        throw FailureFromErrno(ENOENT, QStringLiteral("read"), folder);
    pathLists.fetch_add(1, std::memory_order_relaxed);
    const std::unique_ptr<DIR, CloseFolder> stream(opendir(bytes.constData()));
    if (!stream)
        throw FailureFromErrno(errno, QStringLiteral("read"), folder);
    for (;;) {
        errno = 0;
        const dirent* entry = readdir(stream.get());
        if (entry == nullptr) {
            if (errno != 0)
                throw FailureFromErrno(errno, QStringLiteral("read"), folder);
            return;
        }
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        if (!visit({PathFromBytes(name), EntryType(stream.get(), *entry), name[0] == '.'}))
            return;
    }
}

bool MakeFolder(const QString& folder, quint32 mode)
{
    const QByteArray bytes = BytesFromPath(folder);
    if (bytes.isEmpty() || bytes.contains('\0'))
        return false;
    // Folders above are made as any folder is; the mode is meant for the last one.
    for (qsizetype at = bytes.indexOf('/', 1); at >= 0; at = bytes.indexOf('/', at + 1)) {
        const QByteArray above = bytes.first(at);
        if (mkdir(above.constData(), at + 1 == bytes.size() ? mode_t(mode) : 0777) != 0
            && errno != EEXIST && errno != EACCES && errno != EROFS && errno != EPERM)
            return false;
    }
    if (mkdir(bytes.constData(), mode_t(mode)) == 0)
        return true;
    return StatPath(folder).type == FileType::Folder;
}

QDateTime ModifiedTime(const FileStat& stat)
{
    constexpr qint64 kFarthest = std::numeric_limits<qint64>::max() / 1000 - 1;
    if (stat.type == FileType::Missing || stat.modifiedSeconds > kFarthest
        || stat.modifiedSeconds < -kFarthest)
        return {};
    return QDateTime::fromMSecsSinceEpoch(stat.modifiedSeconds * 1000
                                          + stat.modifiedNanos / 1'000'000);
}

bool RemoveFile(const QString& path)
{
    const QByteArray bytes = BytesFromPath(path);
    return !bytes.contains('\0') && unlink(bytes.constData()) == 0;
}

} // namespace quillane
