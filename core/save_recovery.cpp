// CleanUpAfterCrash: what killed programs have left in their journals.
#include "core/failure.h"
#include "core/save_in_place.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr qint64 kLongestJournal = 1 << 20;
constexpr int kKeptNames = 100;

class SaveRecovery {
public:
    SaveRecovery(const SaveCalls& calls, CrashCleanUp& done) : mCalls(calls), mDone(done) { }

    /// False when something has to wait for the next start.
    bool Recover(const SaveNotes& notes)
    {
        if (notes.inPlace && !RecoverInPlace(*notes.inPlace)) {
            ++mDone.waiting;
            return false;
        }
        // While a backup stands, what it is compared with stands too.
        QList<QByteArray> temporaries;
        if (notes.inPlace)
            temporaries << notes.inPlace->backup << notes.inPlace->fresh;
        temporaries << notes.temporaries;
        const bool all =
            std::all_of(temporaries.cbegin(), temporaries.cend(),
                        [this](const QByteArray& path) { return RemoveTemporary(path); });
        if (!all)
            ++mDone.waiting;
        return all;
    }

private:
    bool RemoveTemporary(const QByteArray& path)
    {
        struct stat found { };
        if (!IsSaveName(path))
            return true;
        if (lstat(path.constData(), &found) != 0)
            return FolderIsThere(path);
        if (!S_ISREG(found.st_mode))
            return true;
        if (mCalls.Remove(path) != 0)
            return false;
        ++mDone.removed;
        return true;
    }

    // A volume may be away for now.
    static bool FolderIsThere(const QByteArray& path)
    {
        struct stat found { };
        return stat(FolderOfBytes(path).constData(), &found) == 0;
    }

    bool RecoverInPlace(const InPlaceNote& note)
    {
        if (!IsSaveName(note.backup) || !IsSaveName(note.fresh))
            return true;
        const FileHandle backup(open(note.backup.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
        if (!backup.IsOpen()) // the exchange had come to its end, or the volume is away
            return errno == ENOENT && FolderIsThere(note.backup);

        const FileHandle target(
            open(note.target.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        const FileHandle fresh(open(note.fresh.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
        if (!target.IsOpen() && errno != ENOENT && errno != ELOOP && errno != EISDIR)
            return false;
        struct stat found { };
        const bool ours = target.IsOpen() && fstat(target.Fd(), &found) == 0
            && S_ISREG(found.st_mode) && found.st_ino == note.inode;
        if (ours && fresh.IsOpen() && SameContent(target.Fd(), fresh.Fd())) {
            ++mDone.finished;
            return note.previous.isEmpty() || mCalls.Rename(note.backup, note.previous) == 0;
        }
        if (ours && SameContent(target.Fd(), backup.Fd()))
            return true;
        if (ours && fresh.IsOpen() && IsHalfExchanged(target.Fd(), backup.Fd(), fresh.Fd())) {
            if (mCalls.CopyContent(backup.Fd(), target.Fd()) != 0 || mCalls.Sync(target.Fd()) != 0)
                return false;
            ++mDone.restored;
            return true;
        }
        return KeepBackup(note);
    }

    // Somebody else has written to the file since, or put another one there.
    bool KeepBackup(const InPlaceNote& note)
    {
        for (int number = 1; number <= kKeptNames; ++number) {
            const QByteArray name =
                note.target + '~' + (number == 1 ? QByteArray() : QByteArray::number(number));
            const int error = mCalls.RenameToFree(note.backup, name);
            if (error == 0) {
                mDone.kept.append(PathFromBytes(name));
                return true;
            }
            if (error != EEXIST)
                return false;
        }
        return false;
    }

    const SaveCalls& mCalls;
    CrashCleanUp& mDone;
};

// A folder that was away for so long has most likely been removed, temporary file and all.
bool IsOlderThanMonths(const QString& path)
{
    constexpr qint64 kLongAgo = 180LL * 24 * 60 * 60;
    return QDateTime::currentSecsSinceEpoch() - StatPath(path).modifiedSeconds > kLongAgo;
}

void RecoverJournal(const QString& path, const SaveCalls& calls, CrashCleanUp& done)
{
    const QByteArray bytes = BytesFromPath(path);
    // Held until the journal is gone, so that no two programs tidy up the same.
    const FileHandle lock = LockSaveJournal(bytes);
    if (!lock.IsOpen())
        return;
    const SaveNotes notes = ParseSaveNotes(ReadWholeFile(path, kLongestJournal));
    const bool recovered = SaveRecovery(calls, done).Recover(notes);
    if (recovered || (!notes.inPlace && IsOlderThanMonths(path)))
        calls.Remove(bytes);
}

} // namespace

CrashCleanUp CleanUpAfterCrash(const SaveProbe& probe)
{
    CrashCleanUp done;
    const SaveCalls calls(probe);
    for (const QByteArray& folder : SaveJournalFolders()) {
        QStringList journals;
        ResumeNext([&] {
            ListFolder(PathFromBytes(folder), [&](DirEntry&& entry) {
                if (entry.type == FileType::Regular)
                    journals.append(PathFromBytes(folder) + entry.name);
                return true;
            });
        });
        for (const QString& journal : journals)
            ResumeNext([&] { RecoverJournal(journal, calls, done); });
    }
    return done;
}

} // namespace quillane
