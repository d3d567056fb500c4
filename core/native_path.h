#pragma once
// File names are bytes to the system and text to the program. This is the one place where
// the two meet, and the one place that opens, lists, stats and renames.
#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <functional>
#include <optional>

namespace quillane {

/// Text of a file name given as the system's bytes. Valid UTF-8 reads as such; every byte
/// that is no part of it becomes U+DC80..U+DCFF, so that nothing is lost.
QString PathFromBytes(QByteArrayView bytes);
/// The bytes of a path text: the exact reverse of PathFromBytes.
QByteArray BytesFromPath(QStringView path);

enum class FileType : quint8 { Missing, Regular, Folder, Other };

/// What the system says of a path, links followed.
struct FileStat {
    FileType type = FileType::Missing;
    qint64 size = 0;            ///< bytes
    qint64 modifiedSeconds = 0; ///< since 1970, UTC
    qint32 modifiedNanos = 0;
    quint64 device = 0, inode = 0;
    quint32 mode = 0; ///< permission bits
};
/// Never fails: a path that cannot be looked at is Missing.
FileStat StatPath(const QString& path);

/// An owned file descriptor; closed at the end of its life. -1 holds nothing.
class FileHandle {
public:
    FileHandle() = default;
    explicit FileHandle(int fd) : mFd(fd) { }
    FileHandle(FileHandle&& other) noexcept : mFd(other.Release()) { }
    FileHandle& operator=(FileHandle&& other) noexcept;
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle();
    int Fd() const { return mFd; }
    bool IsOpen() const { return mFd >= 0; }
    /// Gives the descriptor away: it is the caller's to close.
    int Release();

private:
    int mFd = -1;
};

/// Opens a regular file for reading, close-on-exec. A FIFO, a device or a folder is refused
/// without being waited for. Failure: kFailureNoFile, kFailureDenied, kFailureIo.
FileHandle OpenForReading(const QString& path);
/// The same, and what the system says of the file that is open now.
FileHandle OpenForReading(const QString& path, FileStat& opened);
/// The whole content; Failure as OpenForReading, and kFailureLimit above maxBytes (0 or more).
QByteArray ReadWholeFile(const QString& path, qint64 maxBytes);

struct WriteOptions {
    quint32 newFileMode = 0666; ///< permission bits of a file that was not there, less the umask
    bool sync = true;           ///< wait for the disk; off for what can be made again, like a cache
};
/// SaveAtomically (core/atomic_save.h) for content that needs nothing but to be written.
void WriteWholeFile(const QString& path, const QByteArray& content,
                    const WriteOptions& options = {});

struct DirEntry {
    QString name;  ///< leaf name
    FileType type; ///< links followed
    bool hidden;   ///< name begins with a dot
};
/// Entries of a folder without "." and "..", in the system's order. The system is asked for
/// an entry's type only when the directory does not tell it. Failure when the folder cannot
/// be read. visit may return false to stop.
void ListFolder(const QString& folder, const std::function<bool(DirEntry&&)>& visit);
/// Makes a folder and those above it, less the umask; true when it is there already, false when
/// that is impossible. mode is that of the last folder.
bool MakeFolder(const QString& folder, quint32 mode = 0777);
/// The file's modification time in local time; invalid for a missing file.
QDateTime ModifiedTime(const FileStat& stat);
/// False when the file cannot be removed; a link goes, not its target; a folder stays.
bool RemoveFile(const QString& path);
/// Gives a file or folder another name on the same volume and never replaces what is there.
/// Failure kFailureNoFile, kFailureDenied, kFailureIo; kFailureIo too when `to` exists.
void RenamePath(const QString& from, const QString& to);

/// How often the system was asked.
struct PathCalls {
    qint64 stats = 0; ///< paths and entries looked at
    qint64 opens = 0; ///< files opened for reading
    qint64 lists = 0; ///< folders read
};
/// Counts since the program began, over all threads.
PathCalls PathCallCount();

} // namespace quillane
