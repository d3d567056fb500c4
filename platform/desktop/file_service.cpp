#include "platform/desktop/file_service.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/posix_error.h"
#include "platform/desktop/copy_file.h"
#include "platform/desktop/trash.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

namespace {

struct stat LinkStat(const QString& path, const char* verb)
{
    struct stat found { };
    const QByteArray bytes = BytesFromPath(path);
    if (bytes.isEmpty() || bytes.contains('\0')) {
        throw FailureFromErrno(ENOENT, QLatin1String(verb), path);
    }
    if (lstat(bytes.constData(), &found) != 0) {
        throw FailureFromErrno(errno, QLatin1String(verb), path);
    }
    return found;
}

} // namespace

DesktopFileService::DesktopFileService(QString homeTrash)
    : mHomeTrash(homeTrash.isEmpty() ? UsualHomeTrash() : std::move(homeTrash))
{ }

FileId DesktopFileService::Copy(const QString& from, const QString& to, const FileIds& keep)
{
    CopyWish wish;
    wish.keep = keep;
    return CopyFileTo(from, to, wish);
}

MoveResult DesktopFileService::Move(const QString& from, const QString& to, const FileIds& keep)
{
    const struct stat source = LinkStat(from, "move");
    const FileId id(source.st_dev, source.st_ino);
    if (S_ISREG(source.st_mode)) {
        const bool replaces = CheckCopyTarget(id, from, to, keep);
        const QByteArray old = BytesFromPath(from);
        const QByteArray fresh = BytesFromPath(to);
        const unsigned flags = replaces ? 0 : RENAME_NOREPLACE;
        if (renameat2(AT_FDCWD, old.constData(), AT_FDCWD, fresh.constData(), flags) == 0) {
            return {id, {}};
        }
        // Another volume, or one that cannot be asked so: copied, then removed.
    }
    // A link is not moved itself: where it stood it may have led by another way.
    CopyWish wish;
    wish.keep = keep;
    wish.sync = true; // before its source goes
    const FileId made = CopyFileTo(from, to, wish);
    try {
        Delete(from);
    } catch (const Failure& failure) {
        return {made, failure.Description()};
    }
    return {made, {}};
}

void DesktopFileService::Delete(const QString& path)
{
    const struct stat found = LinkStat(path, "delete");
    if (S_ISDIR(found.st_mode)) {
        throw Failure(kFailureIo,
                      QStringLiteral("%1 is a folder and is not deleted.").arg(ShownName(path)));
    }
    if (unlink(BytesFromPath(path).constData()) != 0) {
        throw FailureFromErrno(errno, QStringLiteral("delete"), path);
    }
}

TrashedFile DesktopFileService::Trash(const QString& path)
{
    return MoveToTrash(path, mHomeTrash);
}

void DesktopFileService::BringBack(const TrashedFile& file)
{
    BringBackFromTrash(file);
}

bool DesktopFileService::WouldReplace(const QString& from, const QString& to)
{
    struct stat there { };
    if (lstat(BytesFromPath(to).constData(), &there) != 0) {
        return false;
    }
    struct stat source { };
    const bool same = lstat(BytesFromPath(from).constData(), &source) == 0
        && source.st_ino == there.st_ino && source.st_dev == there.st_dev;
    // Where case does not count, a name may be its own other spelling.
    return !same || source.st_nlink > 1;
}

void DesktopFileService::Rename(const QString& from, const QString& to, bool replace)
{
    const struct stat source = LinkStat(from, "rename");
    if (S_ISDIR(source.st_mode)) {
        throw Failure(kFailureIo,
                      QStringLiteral("%1 is a folder and keeps its name.").arg(ShownName(from)));
    }
    if (from == to) {
        return;
    }
    if (!replace && WouldReplace(from, to)) {
        throw Failure(
            kFailureIo,
            QStringLiteral("There is a file or folder named %1 already.").arg(ShownName(to)));
    }
    struct stat there { };
    const bool taken = lstat(BytesFromPath(to).constData(), &there) == 0;
    if (!taken) {
        RenamePath(from, to);
        return;
    }
    if (S_ISDIR(there.st_mode)) {
        throw Failure(kFailureIo,
                      QStringLiteral("There is a folder named %1, which is not replaced.")
                          .arg(ShownName(to)));
    }
    const bool same = there.st_ino == source.st_ino && there.st_dev == source.st_dev;
    if (same && source.st_nlink > 1 && from.compare(to, Qt::CaseInsensitive) != 0) {
        // Two names of one file: the system would leave both.
        Delete(from);
        return;
    }
    if (rename(BytesFromPath(from).constData(), BytesFromPath(to).constData()) != 0) {
        throw FailureFromErrno(errno, QStringLiteral("rename"), from);
    }
}

} // namespace quillane
