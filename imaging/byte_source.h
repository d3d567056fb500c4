#pragma once
#include "core/native_path.h"
#include <QByteArray>

namespace quillane {

/// Bytes that are read by position. Reading past the end gives fewer bytes, never a failure
/// of its own; a file that shrinks meanwhile just ends.
class ByteSource {
public:
    virtual ~ByteSource() = default;
    virtual qint64 Size() const = 0; ///< bytes
    /// Copies up to `count` bytes from `position`; returns how many there were.
    virtual qint64 ReadAt(qint64 position, void* to, qint64 count) = 0;
    /// Name of the file without its folder; empty for bytes that come from elsewhere.
    virtual QString FileName() const { return {}; }
    /// Content of the file beside this one that has the same name but for its extension, which is
    /// tried as given (in capitals) and in small letters; empty when there is none, when it cannot
    /// be read, or above maxBytes.
    virtual QByteArray Companion(const char* /*extension*/, qint64 /*maxBytes*/) { return {}; }
    /// The first bytes, at most `count`.
    QByteArray Head(qint64 count);
    /// All bytes; Failure kFailureLimit above maxBytes.
    QByteArray All(qint64 maxBytes);
};

/// An open regular file, read through pread; the first bytes are read once and kept.
class FileSource : public ByteSource {
public:
    /// Opens the file (OpenForReading).
    explicit FileSource(const QString& path);
    FileSource(FileHandle file, qint64 size);
    qint64 Size() const override { return mSize; }
    qint64 ReadAt(qint64 position, void* to, qint64 count) override;
    QString FileName() const override;
    QByteArray Companion(const char* extension, qint64 maxBytes) override;
    int Fd() const { return mFile.Fd(); }
    const FileStat& Stat() const { return mStat; }

private:
    QString mPath;  ///< empty when it was handed over open
    FileStat mStat; ///< filled while mFile is opened
    FileHandle mFile;
    qint64 mSize = 0;
    QByteArray mHead;
};

class MemorySource : public ByteSource {
public:
    explicit MemorySource(QByteArray bytes) : mBytes(std::move(bytes)) { }
    qint64 Size() const override { return mBytes.size(); }
    qint64 ReadAt(qint64 position, void* to, qint64 count) override;

private:
    QByteArray mBytes;
};

} // namespace quillane
