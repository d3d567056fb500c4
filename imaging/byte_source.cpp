#include "imaging/byte_source.h"
#include "core/failure.h"
#include "core/posix_stat.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace quillane {

namespace {

/// One page: what almost every header fits in, and what a disk gives at once anyway.
constexpr qint64 kByteSourceHead = 4096;

qint64 ByteSourceRead(int fd, qint64 position, char* to, qint64 count)
{
    qint64 got = 0;
    while (got < count) {
        const ssize_t n = ::pread(fd, to + got, size_t(count - got), off_t(position + got));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            break;
        }
        got += n;
    }
    return got;
}

} // namespace

QByteArray ByteSource::Head(qint64 count)
{
    QByteArray head(std::clamp<qint64>(count, 0, Size()), Qt::Uninitialized);
    head.resize(ReadAt(0, head.data(), head.size()));
    return head;
}

QByteArray ByteSource::All(qint64 maxBytes)
{
    if (Size() > maxBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This file is too large: it has %1 MB, and at most %2 MB can "
                                     "be read.")
                          .arg(Size() >> 20)
                          .arg(maxBytes >> 20));
    }
    return Head(Size());
}

FileSource::FileSource(const QString& path)
    : mPath(path),
      mFile(OpenForReading(path, mStat)),
      mSize(mStat.size)
{ }

QString FileSource::FileName() const
{
    return mPath.mid(mPath.lastIndexOf(u'/') + 1);
}

QByteArray FileSource::Companion(const char* extension, qint64 maxBytes)
{
    const qsizetype dot = mPath.lastIndexOf(u'.');
    if (dot <= mPath.lastIndexOf(u'/')) {
        return {};
    }
    const QString stem = mPath.left(dot + 1);
    const QString given = QString::fromLatin1(extension);
    QByteArray content;
    for (const QString& name : {given, given.toLower()}) {
        if (ResumeNext([&] { content = ReadWholeFile(stem + name, maxBytes); })) {
            break;
        }
    }
    return content;
}

FileSource::FileSource(FileHandle file, qint64 size) : mFile(std::move(file)), mSize(size)
{
    struct ::stat status;
    if (::fstat(mFile.Fd(), &status) == 0) {
        mStat = FileStatFromSystem(status);
    }
    if (mSize < 0) {
        mSize = mStat.size;
    }
}

qint64 FileSource::ReadAt(qint64 position, void* to, qint64 count)
{
    if (position < 0 || count <= 0 || position >= mSize) {
        return 0;
    }
    count = std::min(count, mSize - position);
    char* out = static_cast<char*>(to);
    if (position >= kByteSourceHead) {
        return ByteSourceRead(mFile.Fd(), position, out, count);
    }
    if (mHead.isNull()) {
        mHead = QByteArray(std::min(kByteSourceHead, mSize), Qt::Uninitialized);
        mHead.resize(ByteSourceRead(mFile.Fd(), 0, mHead.data(), mHead.size()));
    }
    if (position >= mHead.size()) {
        return 0; // the file shrank
    }
    const qint64 kept = std::min<qint64>(count, mHead.size() - position);
    std::memcpy(out, mHead.constData() + position, size_t(kept));
    if (kept == count || mHead.size() < kByteSourceHead) {
        return kept;
    }
    return kept + ByteSourceRead(mFile.Fd(), position + kept, out + kept, count - kept);
}

qint64 MemorySource::ReadAt(qint64 position, void* to, qint64 count)
{
    if (position < 0 || count <= 0 || position >= mBytes.size()) {
        return 0;
    }
    count = std::min<qint64>(count, mBytes.size() - position);
    std::memcpy(to, mBytes.constData() + position, size_t(count));
    return count;
}

} // namespace quillane
