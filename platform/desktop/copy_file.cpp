#include "platform/desktop/copy_file.h"

#include "core/atomic_save.h"
#include "core/failure.h"
#include "core/file_attributes.h"
#include "core/paths.h"
#include "core/posix_error.h"
#include "core/save_journal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr qint64 kCopyPiece = qint64(256) << 20; // bytes asked for at once
constexpr qsizetype kHandful = 256 * 1024;       // bytes, where they go through our hands
constexpr int kCopyNameTries = 16;
constexpr mode_t kPermissions = 0777;

QString CopyAdvice(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return QStringLiteral("Make room there, or choose another folder.");
    case ENAMETOOLONG:
        return QStringLiteral("Give it a shorter name.");
    case EMFILE:
    case ENFILE:
        return WriteAdvice(error);
    default:
        return QStringLiteral("Choose another folder.");
    }
}

[[noreturn]] void CopyFailed(int error, const QString& to)
{
    if (error == ENOENT || error == ENOTDIR) {
        const bool folder = StatPath(FolderOf(to)).type == FileType::Folder;
        const QString words = folder
            ? QStringLiteral("Cannot copy %1: nothing can be put into %2. Choose another folder.")
            : QStringLiteral("Cannot copy %1: there is no folder %2 any more.");
        throw Failure(kFailureNoFile, words.arg(ShownName(to), ShownName(FolderOf(to))));
    }
    const Failure reason = FailureFromErrno(error, QStringLiteral("copy"), to);
    throw Failure(reason.Number(), reason.Description() + u' ' + CopyAdvice(error));
}

void CopyFailedIf(int error, const QString& to)
{
    if (error != 0) {
        CopyFailed(error, to);
    }
}

QByteArray AbsoluteTarget(const QString& path)
{
    const QByteArray bytes = BytesFromPath(path);
    if (bytes.isEmpty() || bytes.contains('\0') || bytes.endsWith('/')) {
        CopyFailed(ENOENT, path);
    }
    std::array<char, PATH_MAX> here{};
    if (bytes.startsWith('/') || !getcwd(here.data(), here.size())) {
        return bytes;
    }
    return here.data() + ('/' + bytes);
}

/// Whether the system had no way of its own for this pair of files.
bool HasNoShortWay(int error)
{
    return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP
        || error == EBADF || error == ETXTBSY || error == EPERM;
}

/// One copy on its way to its place.
class FileCopy {
public:
    FileCopy(const QString& from, const QString& to, const CopyWish& wish)
        : mFrom(from),
          mTo(to),
          mWish(wish),
          mTarget(AbsoluteTarget(to)),
          mFolder(FolderOfBytes(mTarget))
    { }
    ~FileCopy()
    {
        if (!mDraftName.isEmpty() && mCalls.Remove(mDraftName) != 0) {
            mJournal.Keep();
        }
    }
    FileCopy(const FileCopy&) = delete;
    FileCopy& operator=(const FileCopy&) = delete;

    FileId Run()
    {
        FileStat opened;
        mSource = OpenForReading(mFrom, opened);
        struct stat source { };
        if (fstat(mSource.Fd(), &source) != 0) {
            throw FailureFromErrno(errno, QStringLiteral("read"), mFrom);
        }
        const bool replaces =
            CheckCopyTarget({source.st_dev, source.st_ino}, mFrom, mTo, mWish.keep);
        OpenDraft();
        CopyContent(source);
        KeepFacts(source);
        if (replaces || mWish.sync) {
            CopyFailedIf(mCalls.Sync(mDraft.Fd()), mTo);
        }
        struct stat made { };
        if (fstat(mDraft.Fd(), &made) != 0) {
            CopyFailed(errno, mTo);
        }
        Place(replaces, {source.st_dev, source.st_ino});
        if (mWish.sync) {
            mCalls.SyncFolder(mFolder);
        }
        return {made.st_dev, made.st_ino};
    }

private:
    void OpenDraft()
    {
        // Private until it has the permissions of the file it is made of.
        constexpr mode_t kPrivateCopy = 0600;
        mDraft = mCalls.OpenUnnamed(mFolder, kPrivateCopy);
        int error = mDraft.IsOpen() ? 0 : EEXIST;
        for (int tries = 0; tries < kCopyNameTries && error == EEXIST; ++tries) {
            const QByteArray fresh = FreshSaveName(mFolder);
            mJournal.NoteTemporary(fresh);
            error = mCalls.OpenNamed(fresh, kPrivateCopy, mDraft);
            if (error == 0) {
                mDraftName = fresh;
            }
        }
        CopyFailedIf(error, mTo);
    }

    void CopyContent(const struct stat& source)
    {
        constexpr qint64 kBlock = 512; // st_blocks counts these, whatever the volume's own are
        const qint64 size = source.st_size;
        if (size == 0) {
            // Some special file systems tell no size.
            CopyFailedIf(mCalls.CopyContent(mSource.Fd(), mDraft.Fd()), mTo);
            return;
        }
        if (!mProbe && ioctl(mDraft.Fd(), FICLONE, mSource.Fd()) == 0) {
            return; // the volume lets both share their content
        }
        if (source.st_blocks < size / kBlock && CopyAroundHoles(size)) {
            return;
        }
        // The room is asked for first, so that a volume that is full says so before the work.
        CopyFailedIf(mCalls.Reserve(mDraft.Fd(), size), mTo);
        CopyPiece(0, LLONG_MAX); // to its end, should it have grown
    }

    /// What holds nothing stays a hole and takes no room. False when the volume does not tell.
    bool CopyAroundHoles(qint64 size)
    {
        for (off_t at = 0; at < size;) {
            const off_t start = lseek(mSource.Fd(), at, SEEK_DATA);
            if (start < 0 && errno == ENXIO) {
                break; // a hole up to the end
            }
            const off_t end = start < 0 ? -1 : lseek(mSource.Fd(), start, SEEK_HOLE);
            if (end < 0) {
                return false;
            }
            CopyPiece(start, end);
            at = end;
        }
        CopyFailedIf(mCalls.Resize(mDraft.Fd(), size), mTo);
        return true;
    }

    /// The bytes from `start` up to `end`, or to where the source ends.
    void CopyPiece(off_t start, off_t end)
    {
        off_t in = start;
        off_t out = start;
        while (in < end) {
            qint64 count = std::min<qint64>(kCopyPiece, end - in);
            CopyFailedIf(mProbe ? mProbe(SaveStep::Write, count) : 0, mTo);
            const ssize_t done =
                copy_file_range(mSource.Fd(), &in, mDraft.Fd(), &out, size_t(count), 0);
            if (done > 0 || (done < 0 && errno == EINTR)) {
                continue;
            }
            // Some special file systems say at once that there is nothing.
            if (done == 0 && in > start) {
                return;
            }
            if (done < 0 && !HasNoShortWay(errno)) {
                CopyFailed(errno, mTo);
            }
            CopyByHand(in, end);
            return;
        }
    }

    void CopyByHand(off_t at, off_t end)
    {
        QByteArray bytes(kHandful, Qt::Uninitialized);
        if (lseek(mDraft.Fd(), at, SEEK_SET) != at) {
            CopyFailed(errno, mTo);
        }
        while (at < end) {
            const qint64 count =
                ReadAt(mSource.Fd(), bytes.data(), std::min<qint64>(bytes.size(), end - at), at);
            if (count < 0) {
                throw FailureFromErrno(int(-count), QStringLiteral("read"), mFrom);
            }
            if (count == 0) {
                return;
            }
            CopyFailedIf(mCalls.Write(mDraft.Fd(), QByteArrayView(bytes).first(count)), mTo);
            at += count;
        }
    }

    /// Attributes, permissions and times, as far as the target's volume takes them.
    void KeepFacts(const struct stat& source)
    {
        const QByteArray from = PathOfOpenFile(mSource.Fd());
        if (from.isEmpty() || KeepAttributes(mCalls, from, source, mDraft.Fd()) != 0) {
            fchmod(mDraft.Fd(), source.st_mode & kPermissions);
        }
        const std::array<struct timespec, 2> times{source.st_atim, source.st_mtim};
        futimens(mDraft.Fd(), times.data());
    }

    void Place(bool replaces, const FileId& source)
    {
        if (!replaces && mDraftName.isEmpty() && mCalls.LinkOpen(mDraft.Fd(), mTarget) == 0) {
            return;
        }
        if (mDraftName.isEmpty()) {
            NameDraft();
        }
        if (!replaces) {
            const int error = mCalls.RenameToFree(mDraftName, mTarget);
            if (error == 0) {
                mDraftName.clear();
                return;
            }
            if (error != EEXIST) {
                CopyFailed(error, mTo);
            }
            // Somebody has put something there meanwhile: is that to be replaced as well?
            CheckCopyTarget(source, mFrom, mTo, mWish.keep);
            CopyFailedIf(mCalls.Sync(mDraft.Fd()), mTo);
        }
        CopyFailedIf(mCalls.Rename(mDraftName, mTarget), mTo);
        mDraftName.clear();
    }

    void NameDraft()
    {
        const QByteArray fresh = FreshSaveName(mFolder);
        mJournal.NoteTemporary(fresh);
        CopyFailedIf(mCalls.LinkOpen(mDraft.Fd(), fresh), mTo);
        mDraftName = fresh;
    }

    const QString mFrom, mTo;
    const CopyWish& mWish;
    const SaveProbe& mProbe = ScopeProbe();
    const SaveCalls mCalls{mProbe};
    SaveJournal mJournal{mCalls}; // goes after the temporary file
    QByteArray mTarget, mFolder;
    FileHandle mSource, mDraft;
    QByteArray mDraftName; // while it has one
};

} // namespace

bool CheckCopyTarget(const FileId& source, const QString& from, const QString& to,
                     const FileIds& keep)
{
    const QByteArray target = AbsoluteTarget(to);
    struct stat link { };
    if (lstat(target.constData(), &link) != 0) {
        if (errno != ENOENT) {
            CopyFailed(errno, to);
        }
        return false;
    }
    struct stat found { };
    if (stat(target.constData(), &found) != 0) {
        found = link; // it leads nowhere
    }
    const FileId there(found.st_dev, found.st_ino);
    if (there == source) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("%1 is there already: it is the same file. Choose another "
                                     "folder.")
                          .arg(ShownName(from)));
    }
    if (S_ISDIR(found.st_mode)) {
        throw Failure(kFailureIo,
                      QStringLiteral("There is a folder named %1, which is not replaced by a file.")
                          .arg(ShownName(to)));
    }
    if (keep.contains(there)) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("%1 has the same name as another of these files. Give it "
                                     "another name first.")
                          .arg(ShownName(from)));
    }
    if (S_ISLNK(link.st_mode)) {
        return true; // the link is replaced; what it leads to stays as it is
    }
    if (!S_ISREG(found.st_mode)) {
        throw Failure(
            kFailureIo,
            QStringLiteral("%1 is no ordinary file and is not replaced.").arg(ShownName(to)));
    }
    if (faccessat(AT_FDCWD, target.constData(), W_OK, AT_EACCESS) != 0) {
        CopyFailed(errno, to);
    }
    return true;
}

FileId CopyFileTo(const QString& from, const QString& to, const CopyWish& wish)
{
    return FileCopy(from, to, wish).Run();
}

} // namespace quillane
