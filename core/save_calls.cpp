#include "core/save_calls.h"
#include <QRandomGenerator>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr qint64 kCopyStep = 256 * 1024;
constexpr char kSaveNameStart[] = "/.quillane-";
constexpr char kSaveNameEnd[] = ".tmp";
constexpr qsizetype kSaveNameDigits = 16;

int ErrnoUnless(bool done)
{
    return done ? 0 : errno;
}

} // namespace

int SaveCalls::Ask(SaveStep step) const
{
    qint64 none = 0;
    return mProbe ? mProbe(step, none) : 0;
}

FileHandle SaveCalls::OpenUnnamed(const QByteArray& folder, mode_t mode) const
{
    if (Ask(SaveStep::OpenUnnamed) != 0)
        return {};
    FileHandle file(open(folder.constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode));
    if (file.IsOpen() && PathOfOpenFile(file.Fd()).isEmpty())
        return {}; // it could neither be verified nor get a name
    return file;
}

int SaveCalls::OpenNamed(const QByteArray& path, mode_t mode, FileHandle& file) const
{
    if (const int error = Ask(SaveStep::OpenNamed))
        return error;
    file = FileHandle(
        open(path.constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW, mode));
    return ErrnoUnless(file.IsOpen());
}

int SaveCalls::Write(int fd, QByteArrayView bytes) const
{
    for (qint64 at = 0; at < bytes.size();) {
        qint64 count = bytes.size() - at;
        if (const int error = mProbe ? mProbe(SaveStep::Write, count) : 0)
            return error;
        count = write(fd, bytes.data() + at, size_t(count));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return errno;
        if (count == 0)
            return ENOSPC; // a device that takes nothing and says nothing
        at += count;
    }
    return 0;
}

int SaveCalls::CopyContent(int from, int to) const
{
    QByteArray bytes(kCopyStep, Qt::Uninitialized);
    if (lseek(to, 0, SEEK_SET) != 0)
        return errno;
    for (qint64 at = 0;;) {
        const qint64 count = ReadAt(from, bytes.data(), bytes.size(), at);
        if (count < 0)
            return int(-count);
        if (count == 0)
            return Resize(to, at);
        if (const int error = Write(to, QByteArrayView(bytes).first(count)))
            return error;
        at += count;
    }
}

int SaveCalls::Sync(int fd) const
{
    if (const int error = Ask(SaveStep::Sync))
        return error;
    return ErrnoUnless(fsync(fd) == 0);
}

void SaveCalls::SyncFolder(const QByteArray& folder) const
{
    const FileHandle opened(open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.IsOpen() && Ask(SaveStep::Sync) == 0)
        fsync(opened.Fd());
}

int SaveCalls::LinkOpen(int fd, const QByteArray& path) const
{
    if (const int error = Ask(SaveStep::Link))
        return error;
    return ErrnoUnless(linkat(AT_FDCWD, PathOfOpenFile(fd).constData(), AT_FDCWD, path.constData(),
                              AT_SYMLINK_FOLLOW)
                       == 0);
}

int SaveCalls::Link(const QByteArray& from, const QByteArray& to) const
{
    if (const int error = Ask(SaveStep::Link))
        return error;
    return ErrnoUnless(link(from.constData(), to.constData()) == 0);
}

int SaveCalls::Rename(const QByteArray& from, const QByteArray& to) const
{
    if (const int error = Ask(SaveStep::Rename))
        return error;
    return ErrnoUnless(rename(from.constData(), to.constData()) == 0);
}

int SaveCalls::RenameToFree(const QByteArray& from, const QByteArray& to) const
{
    if (const int error = Ask(SaveStep::Rename))
        return error;
    if (renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // A volume that cannot be asked so. A second name must be free as well.
    if (link(from.constData(), to.constData()) == 0) {
        unlink(from.constData());
        return 0;
    }
    if (errno == EEXIST)
        return EEXIST;
    if (faccessat(AT_FDCWD, to.constData(), F_OK, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    return ErrnoUnless(rename(from.constData(), to.constData()) == 0);
}

int SaveCalls::Resize(int fd, qint64 size) const
{
    if (const int error = Ask(SaveStep::Resize))
        return error;
    return ErrnoUnless(ftruncate(fd, size) == 0);
}

int SaveCalls::Reserve(int fd, qint64 size) const
{
    if (const int error = Ask(SaveStep::Resize))
        return error;
    if (size == 0 || fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, size) == 0)
        return 0;
    return errno == ENOSPC || errno == EDQUOT || errno == EFBIG || errno == EIO ? errno : 0;
}

int SaveCalls::Remove(const QByteArray& path) const
{
    if (const int error = Ask(SaveStep::Remove))
        return error;
    return unlink(path.constData()) == 0 || errno == ENOENT ? 0 : errno;
}

QByteArray PathOfOpenFile(int fd)
{
    std::array<char, 64> path{};
    std::snprintf(path.data(), path.size(), "/proc/self/fd/%d", fd);
    struct stat named { };
    struct stat opened { };
    if (stat(path.data(), &named) != 0 || fstat(fd, &opened) != 0 || named.st_ino != opened.st_ino
        || named.st_dev != opened.st_dev)
        return {};
    return path.data();
}

qint64 ReadAt(int fd, char* bytes, qint64 size, qint64 at)
{
    qint64 done = 0;
    while (done < size) {
        const ssize_t count = pread(fd, bytes + done, size_t(size - done), at + done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return -errno;
        if (count == 0)
            break;
        done += count;
    }
    return done;
}

QByteArray FolderOfBytes(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray("./") : path.first(slash + 1);
}

QByteArray FreshSaveName(const QByteArray& folder)
{
    const quint64 random = QRandomGenerator::system()->generate64();
    return folder + (kSaveNameStart + 1)
        + QByteArray::number(random, 16).rightJustified(kSaveNameDigits, '0') + kSaveNameEnd;
}

bool IsSaveName(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    if (slash < 0)
        return false;
    QByteArrayView leaf = QByteArrayView(path).sliced(slash);
    if (!leaf.startsWith(kSaveNameStart) || !leaf.endsWith(kSaveNameEnd))
        return false;
    leaf = leaf.sliced(qstrlen(kSaveNameStart));
    leaf = leaf.first(leaf.size() - qsizetype(qstrlen(kSaveNameEnd)));
    if (leaf.size() != kSaveNameDigits)
        return false;
    for (const char digit : leaf) {
        if (!(digit >= '0' && digit <= '9') && !(digit >= 'a' && digit <= 'f'))
            return false;
    }
    return true;
}

} // namespace quillane
