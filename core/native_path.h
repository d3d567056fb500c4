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
    int Release();

private:
    int mFd = -1;
};

/// Opens a regular file for reading, close-on-exec. A FIFO, a device or a folder is refused
/// without being waited for. Failure: kFailureNoFile, kFailureDenied, kFailureIo.
FileHandle OpenForReading(const QString& path);
/// The whole content; Failure as OpenForReading, and kFailureLimit above maxBytes.
QByteArray ReadWholeFile(const QString& path, qint64 maxBytes);
/// Writes content to a temporary file beside path, syncs it and renames it over path, keeping
/// the permissions of a file that was there. A Failure leaves the old file as it was.
void WriteWholeFile(const QString& path, const QByteArray& content);

struct DirEntry {
    QString name;  ///< leaf name
    FileType type; ///< links followed
    bool hidden;   ///< name begins with a dot
};
/// Entries of a folder without "." and "..", in the system's order. The system is asked for
/// an entry's type only when the directory does not tell it. Failure when the folder cannot
/// be read. visit may return false to stop.
void ListFolder(const QString& folder, const std::function<bool(DirEntry&&)>& visit);
/// Makes a folder and those above it; false when that is impossible.
bool MakeFolder(const QString& folder, quint32 mode = 0777);
/// The file's modification time in local time; invalid for a missing file.
QDateTime ModifiedTime(const FileStat& stat);
/// False when the file cannot be removed.
bool RemoveFile(const QString& path);

} // namespace quillane
