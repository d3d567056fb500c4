#pragma once
// What a save has to leave behind for the next start of the program in case it is killed: the
// names of its temporary files, noted before the files are made. One file a save, locked as long
// as the save lasts, so that what is locked belongs to a program that lives.
#include "core/save_calls.h"

namespace quillane {

/// An exchange of a file's content in its place. All paths are absolute.
struct InPlaceNote {
    QByteArray target;             ///< whose content is exchanged
    QByteArray backup;             ///< the old content, whole
    QByteArray fresh;              ///< the new content, whole
    QByteArray previous;           ///< name under which the old content is to stay, or empty
    quint64 device = 0, inode = 0; ///< of target
};

class SaveJournal {
public:
    explicit SaveJournal(const SaveCalls& calls) : mCalls(calls) { }
    /// Nothing is left to tidy up, unless Keep was called.
    ~SaveJournal();
    SaveJournal(const SaveJournal&) = delete;
    SaveJournal& operator=(const SaveJournal&) = delete;

    /// Notes a temporary file that is to be made. False when nowhere can be written to.
    bool NoteTemporary(const QByteArray& path);
    /// Notes, and waits for the disk, that from now on target is being written into. False when
    /// that cannot be.
    bool NoteInPlace(const InPlaceNote& note);
    /// Leaves the journal for the next start.
    void Keep() { mKeep = true; }

private:
    bool Open();
    bool Append(const QByteArray& record);

    const SaveCalls& mCalls;
    FileHandle mFile;
    QByteArray mPath;
    bool mKeep = false;
};

/// What a journal says.
struct SaveNotes {
    QList<QByteArray> temporaries;
    std::optional<InPlaceNote> inPlace;
};
/// The notes of a journal's content, up to the first that is damaged.
SaveNotes ParseSaveNotes(const QByteArray& content);

/// Folders of journals, the preferred one first: of the user's state, else of the user's session.
/// Each with its separator; they need not be there.
QList<QByteArray> SaveJournalFolders();
/// Opens and locks a journal; not open when it is locked by another, or gone.
FileHandle LockSaveJournal(const QByteArray& path);

} // namespace quillane
