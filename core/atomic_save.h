#pragma once
// Every file the program writes is written here: the new content appears at once and whole, or
// what was there stays as it was.
#include "core/native_path.h"

namespace quillane {

enum class SaveMode : quint8 {
    Replace = 0,    ///< makes the file, or takes the place of the one that is there
    CreateOnly = 2, ///< fails where anything has that name already, a link too
};

/// The places where a save changes something on the disk.
enum class SaveStep : quint8 {
    OpenUnnamed, ///< the temporary file, without a name
    OpenNamed,   ///< the temporary file, where files without a name are not to be had
    Write,
    Attributes, ///< owner, permissions, extended attributes
    Sync,
    Link, ///< a file without a name gets one, or a file gets a second name
    Rename,
    Resize,
    Remove,
    Journal, ///< what is needed to tidy up after a crash is noted
};
/// Asked before each step; 0 lets it happen, an error number of the system makes it fail so.
/// bytes: of Write, how many; may be made less. Lets tests play a disk that fails or a crash.
using SaveProbe = std::function<int(SaveStep step, qint64& bytes)>;

struct SaveOptions {
    SaveMode mode = SaveMode::Replace;
    quint32 newFileMode = 0666; ///< permission bits of a file that was not there, less the umask
    bool sync = true;           ///< wait for the disk; off for what can be made again, like a cache
    /// What stood at the path when the caller read it. If it is not that any more (changed,
    /// replaced, gone, or come), nothing is touched.
    std::optional<FileStat> expected;
    /// The file that is replaced stays under this name, on the same volume; what has that name is
    /// replaced. Empty: it does not stay.
    QString keepPreviousAs;
    /// Called with a path at which the finished temporary file can be read; throws a Failure when
    /// it is not what it should be, and the save ends there with it. The path serves for the
    /// duration of the call and says nothing of the file's name.
    std::function<void(const QString& draft)> verify;
    SaveProbe probe; ///< for tests
};

/// Takes the content of a file that is being written.
class SaveSink {
public:
    virtual ~SaveSink() = default;
    /// Appends. Failure as of SaveAtomically; let it pass.
    virtual void Write(QByteArrayView bytes) = 0;
};
using SaveWriter = std::function<void(SaveSink& sink)>;

/// Writes content to a temporary file beside path, has it verified, syncs it and puts it into the
/// place of path. Permissions, owner and group as far as allowed, access lists and extended
/// attributes of a file that was there stay. Behind a symbolic link the target is replaced (or
/// made, where the link leads to nothing). A file with several hard links keeps them: its content
/// is exchanged while a backup of the old one stands.
/// Failure kFailureNoFile, kFailureDenied, kFailureIo, kFailureGeneral (not what was expected, or
/// there already) and what writer and verify throw: the old file is as it was. Refused are a file
/// without write permission and what is no regular file. Any thread.
/// Returns what the system says of the file now.
FileStat SaveAtomically(const QString& path, QByteArrayView content,
                        const SaveOptions& options = {});
/// The same for content that comes in pieces.
FileStat SaveAtomically(const QString& path, const SaveWriter& writer,
                        const SaveOptions& options = {});

/// Whether two looks at a path saw the same file with the same content, as far as type, place on
/// the disk, size and time of change tell.
bool SameFileState(const FileStat& one, const FileStat& other);

/// While it lives, saves of this thread that have no probe of their own ask this one; the innermost
/// counts. For tests of what saves by way of other layers.
class SaveProbeScope {
public:
    explicit SaveProbeScope(SaveProbe probe);
    ~SaveProbeScope();
    SaveProbeScope(const SaveProbeScope&) = delete;
    SaveProbeScope& operator=(const SaveProbeScope&) = delete;

private:
    SaveProbe mProbe;
    const SaveProbe* mOuter;
};

/// What CleanUpAfterCrash did.
struct CrashCleanUp {
    int removed = 0;  ///< temporary files
    int restored = 0; ///< files whose old content was put back
    int finished = 0; ///< files whose new content was there already
    int waiting = 0;  ///< saves that cannot be tidied up now, their folder not being there
    /// Old contents that were kept under a name of their own, because somebody else has changed
    /// the file meanwhile.
    QStringList kept;
};
/// Tidies up after saves of programs that were killed: removes the temporary files that they had
/// noted, and those alone, and puts back contents that were exchanged halfway. Leaves alone what
/// is being saved by a program that runs. Never fails. For the start of the program.
CrashCleanUp CleanUpAfterCrash(const SaveProbe& probe = {});

} // namespace quillane
