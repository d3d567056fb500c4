#include "core/save_journal.h"
#include <QRandomGenerator>
#include <cerrno>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr quint32 kJournalFolderMode = 0700;
constexpr mode_t kJournalMode = 0600;
constexpr int kJournalTries = 8;
constexpr char kJournalEnd = '\n'; // a record's last field: no path is that

// Fields end with a zero byte, which no path holds.
QByteArray JournalRecord(const QList<QByteArray>& fields)
{
    QByteArray record;
    for (const QByteArray& field : fields)
        record += field + '\0';
    return record + kJournalEnd + '\0';
}

QByteArray JournalBase(const char* variable, const char* belowHome)
{
    const QByteArray set = qgetenv(variable);
    if (set.startsWith('/'))
        return set + '/';
    if (belowHome == nullptr)
        return {};
    QByteArray home = qgetenv("HOME");
    if (!home.startsWith('/')) {
        const passwd* account = getpwuid(getuid());
        home = account != nullptr && account->pw_dir != nullptr ? account->pw_dir : "";
    }
    return home.startsWith('/') ? home + belowHome : QByteArray();
}

} // namespace

QList<QByteArray> SaveJournalFolders()
{
    QList<QByteArray> folders;
    for (const QByteArray& base : {JournalBase("XDG_STATE_HOME", "/.local/state/"),
                                   JournalBase("XDG_RUNTIME_DIR", nullptr)}) {
        if (!base.isEmpty())
            folders.append(base + "quillane/saving/");
    }
    return folders;
}

SaveJournal::~SaveJournal()
{
    // The lock goes with the descriptor, behind the name.
    if (mFile.IsOpen() && !mKeep)
        mCalls.Remove(mPath);
}

bool SaveJournal::Open()
{
    if (mFile.IsOpen())
        return true;
    for (const QByteArray& folder : SaveJournalFolders()) {
        if (!MakeFolder(PathFromBytes(folder), kJournalFolderMode))
            continue;
        for (int tries = 0; tries < kJournalTries; ++tries) {
            const QByteArray path =
                folder + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
            if (mCalls.Ask(SaveStep::Journal) != 0)
                break;
            FileHandle file(open(path.constData(),
                                 O_CREAT | O_EXCL | O_WRONLY | O_APPEND | O_CLOEXEC | O_NOFOLLOW,
                                 kJournalMode));
            if (!file.IsOpen() && errno == EEXIST)
                continue;
            if (!file.IsOpen())
                break;
            // A program that starts now may have found the journal before it was locked.
            struct stat now { };
            if (flock(file.Fd(), LOCK_EX) == 0 && fstat(file.Fd(), &now) == 0 && now.st_nlink == 0)
                continue;
            mFile = std::move(file);
            mPath = path;
            return true;
        }
    }
    return false;
}

bool SaveJournal::Append(const QByteArray& record)
{
    if (!Open() || mCalls.Ask(SaveStep::Journal) != 0)
        return false;
    return write(mFile.Fd(), record.constData(), size_t(record.size())) == record.size();
}

bool SaveJournal::NoteTemporary(const QByteArray& path)
{
    return Append(JournalRecord({"T", path}));
}

bool SaveJournal::NoteInPlace(const InPlaceNote& note)
{
    if (!Append(JournalRecord({"I", note.target, note.backup, note.fresh, note.previous,
                               QByteArray::number(note.device), QByteArray::number(note.inode)})))
        return false;
    if (mCalls.Sync(mFile.Fd()) != 0)
        return false;
    mCalls.SyncFolder(FolderOfBytes(mPath));
    return true;
}

SaveNotes ParseSaveNotes(const QByteArray& content)
{
    SaveNotes notes;
    const QList<QByteArray> fields = content.split('\0');
    // What follows the last zero byte is no whole field.
    const qsizetype count = fields.size() - 1;
    const auto ends = [&](qsizetype at) {
        return at < count && fields[at].size() == 1 && fields[at][0] == kJournalEnd;
    };
    for (qsizetype at = 0; at < count;) {
        if (fields[at] == "T" && ends(at + 2)) {
            notes.temporaries.append(fields[at + 1]);
            at += 3;
        } else if (fields[at] == "I" && ends(at + 7)) {
            InPlaceNote note{fields[at + 1],
                             fields[at + 2],
                             fields[at + 3],
                             fields[at + 4],
                             fields[at + 5].toULongLong(),
                             fields[at + 6].toULongLong()};
            notes.inPlace = std::move(note);
            at += 8;
        } else {
            break;
        }
    }
    return notes;
}

FileHandle LockSaveJournal(const QByteArray& path)
{
    FileHandle file(open(path.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat now { };
    if (!file.IsOpen() || flock(file.Fd(), LOCK_EX | LOCK_NB) != 0 || fstat(file.Fd(), &now) != 0
        || now.st_nlink == 0 || !S_ISREG(now.st_mode))
        return {};
    return file;
}

} // namespace quillane
