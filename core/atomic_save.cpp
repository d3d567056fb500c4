#include "core/atomic_save.h"
#include "core/failure.h"
#include "core/file_attributes.h"
#include "core/posix_error.h"
#include "core/save_in_place.h"
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quillane {

namespace {

constexpr int kMostLinks = 40; // as many as the system itself follows
constexpr int kNameTries = 16;
constexpr mode_t kPrivate = 0600;

/// The probe of the innermost SaveProbeScope of this thread.
thread_local const SaveProbe* tScopeProbe = nullptr;

const SaveProbe& ProbeOf(const SaveOptions& options)
{
    return options.probe ? options.probe : ScopeProbe();
}

QByteArray AbsoluteBytes(const QByteArray& path)
{
    if (path.startsWith('/'))
        return path;
    std::array<char, PATH_MAX> here{};
    return getcwd(here.data(), here.size()) == nullptr ? path : here.data() + ('/' + path);
}

// Where a chain of symbolic links ends; the file itself need not be there.
QByteArray LinkTarget(QByteArray path, const QString& shown)
{
    for (int links = 0; links < kMostLinks; ++links) {
        std::array<char, PATH_MAX> target{};
        const ssize_t length = readlink(path.constData(), target.data(), target.size());
        if (length < 0)
            return path;
        const QByteArray next(target.data(), length);
        path = next.startsWith('/') ? next : FolderOfBytes(path) + next;
    }
    const Failure reason = FailureFromErrno(ELOOP, QStringLiteral("write"), shown);
    throw Failure(reason.Number(), reason.Description() + u' ' + WriteAdvice(ELOOP));
}

class AtomicSave final : public SaveSink {
public:
    AtomicSave(const QString& path, const SaveOptions& options)
        : mShown(path),
          mOptions(options),
          mCalls(ProbeOf(mOptions)),
          mJournal(mCalls)
    {
        const QByteArray bytes = BytesFromPath(path);
        if (bytes.isEmpty() || bytes.contains('\0'))
            Fail(ENOENT);
        mTarget = AbsoluteBytes(bytes);
        if (mOptions.mode == SaveMode::Replace)
            mTarget = LinkTarget(mTarget, mShown);
        mFolder = FolderOfBytes(mTarget);
        const QByteArray leaf = mTarget.sliced(mFolder.size());
        if (leaf.isEmpty() || leaf == "." || leaf == "..")
            Fail(EISDIR);
    }
    ~AtomicSave() override
    {
        // While a backup stands, what it is compared with stands too.
        if (Discard(mBackupName))
            Discard(mDraftName);
    }
    AtomicSave(const AtomicSave&) = delete;
    AtomicSave& operator=(const AtomicSave&) = delete;

    FileStat Run(const SaveWriter& writer)
    {
        Inspect();
        OpenDraft();
        writer(*this);
        if (mOptions.verify) {
            const QByteArray draft =
                mDraftName.isEmpty() ? PathOfOpenFile(mDraft.Fd()) : mDraftName;
            mOptions.verify(PathFromBytes(draft));
        }
        Inspect(); // it may have changed while the content was made
        if (!KeepsLinks())
            KeepItsAttributes();
        if (mOptions.sync)
            FailIf(mCalls.Sync(mDraft.Fd()));
        if (KeepsLinks())
            PlaceIntoFile();
        else
            PlaceAsFile();
        if (mOptions.sync)
            mCalls.SyncFolder(mFolder);
        return StatPath(PathFromBytes(mTarget));
    }

    void Write(QByteArrayView bytes) override { FailIf(mCalls.Write(mDraft.Fd(), bytes)); }

private:
    [[noreturn]] void Fail(int error) const
    {
        const Failure reason = FailureFromErrno(error, QStringLiteral("write"), mShown);
        throw Failure(reason.Number(), reason.Description() + u' ' + WriteAdvice(error));
    }
    void FailIf(int error) const
    {
        if (error != 0)
            Fail(error);
    }
    [[noreturn]] void Refuse(const QString& words, qint32 number = kFailureGeneral) const
    {
        throw Failure(number, words.arg(ShownName(mShown)));
    }
    [[noreturn]] void RefuseAsThere() const
    {
        Refuse(QStringLiteral("There is a file or folder named %1 already. Choose another name."));
    }

    // What stands at the target now, and whether it may be replaced.
    void Inspect()
    {
        const FileStat now = StatPath(PathFromBytes(mTarget));
        struct stat found { };
        mExists = stat(mTarget.constData(), &found) == 0;
        if (mExists)
            mOld = found;
        struct stat link { };
        if (mOptions.mode == SaveMode::CreateOnly && lstat(mTarget.constData(), &link) == 0)
            RefuseAsThere();
        if (mOptions.expected && !SameFileState(*mOptions.expected, now))
            RefuseAsUnexpected(now);
        if (!mExists)
            return;
        if (S_ISDIR(mOld.st_mode))
            Refuse(QStringLiteral("%1 is a folder and is not replaced. Choose another name."),
                   kFailureIo);
        if (!S_ISREG(mOld.st_mode))
            Refuse(QStringLiteral("%1 is no ordinary file and is not replaced. Choose "
                                  "another name."),
                   kFailureIo);
        if (faccessat(AT_FDCWD, mTarget.constData(), W_OK, AT_EACCESS) != 0)
            Fail(errno);
    }

    [[noreturn]] void RefuseAsUnexpected(const FileStat& now) const
    {
        if (now.type == FileType::Missing) {
            Refuse(QStringLiteral("%1 is no longer where it was opened. Nothing was written; save "
                                  "it under a name of its own."),
                   kFailureNoFile);
        }
        if (mOptions.expected->type == FileType::Missing)
            RefuseAsThere();
        Refuse(QStringLiteral("%1 has been changed by another program since it was opened. Nothing "
                              "was written; open it again, or save under another name."));
    }

    // The name under which the previous file stays does not count: it is given up by the save.
    bool KeepsLinks() const
    {
        if (!mExists || mOld.st_nlink < 2)
            return false;
        struct stat previous { };
        const bool counted = !mOptions.keepPreviousAs.isEmpty()
            && lstat(Previous().constData(), &previous) == 0 && previous.st_ino == mOld.st_ino
            && previous.st_dev == mOld.st_dev;
        return mOld.st_nlink > (counted ? 2u : 1u);
    }

    QByteArray Previous() const { return AbsoluteBytes(BytesFromPath(mOptions.keepPreviousAs)); }

    // A file that replaces another stays private until it has the other's permissions.
    mode_t FirstMode() const { return mExists ? kPrivate : mode_t(mOptions.newFileMode); }

    void OpenDraft()
    {
        mDraft = mCalls.OpenUnnamed(mFolder, FirstMode());
        if (!mDraft.IsOpen())
            OpenTemporary(mFolder, FirstMode(), mDraft, mDraftName);
    }

    // A home that takes no journal must not keep a person from saving elsewhere.
    void OpenTemporary(const QByteArray& folder, mode_t mode, FileHandle& file, QByteArray& name)
    {
        int error = EEXIST;
        for (int tries = 0; tries < kNameTries && error == EEXIST; ++tries) {
            const QByteArray fresh = FreshSaveName(folder);
            mJournal.NoteTemporary(fresh);
            error = mCalls.OpenNamed(fresh, mode, file);
            if (error == 0)
                name = fresh;
        }
        FailIf(error);
    }

    bool Discard(const QByteArray& name)
    {
        const bool gone = name.isEmpty() || mCalls.Remove(name) == 0;
        if (!gone)
            mJournal.Keep();
        return gone;
    }

    void KeepItsAttributes()
    {
        if (mExists)
            FailIf(KeepAttributes(mCalls, mTarget, mOld, mDraft.Fd()));
        else if (mOld.st_mode != 0 && fchmod(mDraft.Fd(), mOld.st_mode & 0777) != 0)
            Fail(errno); // the file has vanished since, its permissions need not
    }

    // Gives the finished draft a name beside the target.
    void NameDraft()
    {
        if (!mDraftName.isEmpty())
            return;
        const QByteArray fresh = FreshSaveName(mFolder);
        mJournal.NoteTemporary(fresh);
        const int error = mCalls.LinkOpen(mDraft.Fd(), fresh);
        if (error == 0) {
            mDraftName = fresh;
            return;
        }
        // Files without a name that cannot get one: a copy that has one from the beginning.
        const FileHandle unnamed = std::move(mDraft);
        OpenTemporary(mFolder, FirstMode(), mDraft, mDraftName);
        FailIf(mCalls.CopyContent(unnamed.Fd(), mDraft.Fd()));
        if (!SameContent(unnamed.Fd(), mDraft.Fd()))
            Fail(EIO);
        KeepItsAttributes();
        if (mOptions.sync)
            FailIf(mCalls.Sync(mDraft.Fd()));
    }

    void PlaceAsFile()
    {
        if (!mExists && mDraftName.isEmpty()) {
            const int error = mCalls.LinkOpen(mDraft.Fd(), mTarget);
            if (error == 0)
                return;
            if (error == EEXIST) {
                Inspect();
                KeepItsAttributes();
            }
        }
        NameDraft();
        const bool mustBeFree = mOptions.mode == SaveMode::CreateOnly
            || (mOptions.expected && mOptions.expected->type == FileType::Missing);
        if (!mustBeFree && mExists && !mOptions.keepPreviousAs.isEmpty())
            KeepPrevious();
        const int error = mustBeFree ? mCalls.RenameToFree(mDraftName, mTarget)
                                     : mCalls.Rename(mDraftName, mTarget);
        if (error == EEXIST && mustBeFree)
            RefuseAsThere();
        FailIf(error);
        mDraftName.clear();
    }

    // Gives the old file its other name first, so that at every moment it has one.
    void KeepPrevious()
    {
        const QByteArray previous = Previous();
        struct stat there { };
        if (lstat(previous.constData(), &there) == 0 && there.st_ino == mOld.st_ino
            && there.st_dev == mOld.st_dev)
            return;
        if (S_ISDIR(there.st_mode)) {
            Refuse(QStringLiteral("%1 is not replaced: the old file cannot stay, its name is that "
                                  "of a folder."),
                   kFailureIo);
        }
        const QByteArray fresh = FreshSaveName(FolderOfBytes(previous));
        mJournal.NoteTemporary(fresh);
        if (mCalls.Link(mTarget, fresh) == 0)
            mBackupName = fresh;
        else
            CopyToBackup(FolderOfBytes(previous));
        FailIf(mCalls.Rename(mBackupName, previous));
        mBackupName.clear();
    }

    // A copy of the target that stands on the disk.
    FileHandle CopyToBackup(const QByteArray& folder)
    {
        const FileHandle target(open(mTarget.constData(), O_RDONLY | O_CLOEXEC));
        if (!target.IsOpen())
            Fail(errno);
        FileHandle backup;
        OpenTemporary(folder, kPrivate, backup, mBackupName);
        FailIf(mCalls.CopyContent(target.Fd(), backup.Fd()));
        FailIf(KeepAttributes(mCalls, mTarget, mOld, backup.Fd()));
        FailIf(mCalls.Sync(backup.Fd()));
        return backup;
    }

    void PlaceIntoFile()
    {
        NameDraft();
        FailIf(mCalls.Sync(mDraft.Fd()));
        const FileHandle backup = CopyToBackup(mFolder);
        mCalls.SyncFolder(mFolder);
        const FileHandle target(open(mTarget.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
        struct stat opened { };
        if (!target.IsOpen() || fstat(target.Fd(), &opened) != 0)
            Fail(errno);
        if (opened.st_ino != mOld.st_ino || opened.st_dev != mOld.st_dev
            || opened.st_size != mOld.st_size || opened.st_mtim.tv_sec != mOld.st_mtim.tv_sec
            || opened.st_mtim.tv_nsec != mOld.st_mtim.tv_nsec)
            Refuse(
                QStringLiteral("%1 is being changed by another program. Nothing was written; try "
                               "again."));
        const QByteArray previous = mOptions.keepPreviousAs.isEmpty() ? QByteArray() : Previous();
        if (!mJournal.NoteInPlace(
                {mTarget, mBackupName, mDraftName, previous, mOld.st_dev, mOld.st_ino})) {
            Refuse(QStringLiteral("Cannot write %1: it has several names, and there is no room in "
                                  "the home folder to note how to undo a save that is cut short. "
                                  "Make room there."),
                   kFailureIo);
        }
        const InPlaceResult result = ExchangeContent(mCalls, target.Fd(), mDraft.Fd(), backup.Fd());
        if (result.error != 0 && !result.restored)
            LeaveToNextStart(result.error);
        FailIf(result.error);
        if (!previous.isEmpty() && mCalls.Rename(mBackupName, previous) == 0)
            mBackupName.clear();
    }

    [[noreturn]] void LeaveToNextStart(int error)
    {
        mJournal.Keep();
        mDraftName.clear();
        const QString backup = PathFromBytes(std::exchange(mBackupName, {}));
        const QString reason =
            FailureFromErrno(error, QStringLiteral("write"), mShown).Description();
        throw Failure(
            kFailureIo,
            QStringLiteral("%1 What was in it is safe in \"%2\"; when the program starts the "
                           "next time, it completes or undoes this save.")
                .arg(reason, backup));
    }

    const QString mShown;
    const SaveOptions& mOptions;
    const SaveCalls mCalls;
    QByteArray mTarget, mFolder;
    bool mExists = false;
    struct stat mOld { }; // of the file that is there or was
    SaveJournal mJournal; // goes after the temporaries
    FileHandle mDraft;
    QByteArray mDraftName;  // while it has one
    QByteArray mBackupName; // of the old content, while that is ours
};

} // namespace

const SaveProbe& ScopeProbe()
{
    static const SaveProbe none;
    return tScopeProbe == nullptr ? none : *tScopeProbe;
}

SaveProbeScope::SaveProbeScope(SaveProbe probe)
    : mProbe(std::move(probe)),
      mOuter(std::exchange(tScopeProbe, &mProbe))
{ }

SaveProbeScope::~SaveProbeScope()
{
    tScopeProbe = mOuter;
}

bool SameFileState(const FileStat& one, const FileStat& other)
{
    if (one.type == FileType::Missing || other.type == FileType::Missing)
        return one.type == other.type;
    return one.type == other.type && one.device == other.device && one.inode == other.inode
        && one.size == other.size && one.modifiedSeconds == other.modifiedSeconds
        && one.modifiedNanos == other.modifiedNanos;
}

FileStat SaveAtomically(const QString& path, const SaveWriter& writer, const SaveOptions& options)
{
    return AtomicSave(path, options).Run(writer);
}

FileStat SaveAtomically(const QString& path, QByteArrayView content, const SaveOptions& options)
{
    return SaveAtomically(
        path, [&](SaveSink& sink) { sink.Write(content); }, options);
}

void WriteWholeFile(const QString& path, const QByteArray& content, const WriteOptions& options)
{
    SaveOptions wanted;
    wanted.newFileMode = options.newFileMode;
    wanted.sync = options.sync;
    SaveAtomically(path, QByteArrayView(content), wanted);
}

} // namespace quillane
