#pragma once
// What the codecs share: refusals in the same words, checked sizes, reading through a window.
#include "core/failure.h"
#include "imaging/codec.h"
#include <QImage>

namespace quillane::codecs {

/// Failure kFailureUnreadable: "This PNG is damaged: <why>." `why` is a clause without full stop.
[[noreturn]] void Damaged(const char* format, const QString& why);
/// Failure kFailureUnreadable: "This PNG <what>, which is not supported.", what beginning with a
/// verb ("has 12 bits per sample").
[[noreturn]] void Unsupported(const char* format, const QString& what);
/// Failure kFailureLimit: "This PNG <what>, which is more than can be read."
[[noreturn]] void TooMuch(const char* format, const QString& what);
/// Failure kFailureCancelled.
[[noreturn]] void Cancelled();

/// Refuses sizes that no picture of the program may have (limits.h): sides below 1 or above
/// kMaxSide. To be asked by every probe.
void CheckSides(const char* format, qint64 width, qint64 height);
/// An uninitialised image; refuses what CheckSides refuses, more than kMaxPixels pixels, more
/// than kMaxPictureBytes bytes (in memory or on the screen), and what the system has no memory for.
QImage NewImage(const char* format, qint64 width, qint64 height, QImage::Format layout);

/// Failure kFailureCancelled when the request was called off.
inline void CheckCancelled(const DecodeRequest& request)
{
    if (request.cancelled && request.cancelled->load(std::memory_order_relaxed)) {
        Cancelled();
    }
}

/// Whole dots per inch of a density in dots per metre; 0 for what makes no sense.
qint32 DotsPerInch(double dotsPerMetre);

/// Bytes of a source, seen through a buffer that follows the reader. A header walk costs one read
/// for what lies together and skips what it does not need.
class ByteWindow {
public:
    explicit ByteWindow(ByteSource& source) : mSource(source) { }
    /// Pointer to `count` bytes (at most kWidth) from `position`, or nullptr when the source ends
    /// before; valid until the next call.
    const uchar* At(qint64 position, qint64 count)
    {
        if (position >= mFrom && position + count <= mFrom + mHeld) {
            return mBytes + (position - mFrom);
        }
        return Fill(position, count);
    }
    qint64 Size() const { return mSource.Size(); }
    /// Bytes fetched so far; a walk ends when it grows beyond limits::kMaxHeaderBytes.
    qint64 Fetched() const { return mFetched; }

    static constexpr qint64 kWidth = 4096;

private:
    const uchar* Fill(qint64 position, qint64 count);
    ByteSource& mSource;
    qint64 mFrom = 0;
    qint64 mHeld = 0;
    qint64 mFetched = 0;
    uchar mBytes[kWidth];
};

/// A part of another source, seen as one of its own.
class PartSource : public ByteSource {
public:
    PartSource(ByteSource& whole, qint64 from, qint64 size);
    qint64 Size() const override { return mSize; }
    qint64 ReadAt(qint64 position, void* to, qint64 count) override;

private:
    ByteSource& mWhole;
    qint64 mFrom;
    qint64 mSize;
};

/// Two bytes as a number, lowest first.
inline quint16 Little16(const uchar* p)
{
    return quint16(p[0] | p[1] << 8);
}
/// Four bytes as a number, lowest first.
inline quint32 Little32(const uchar* p)
{
    return quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24;
}
/// Two bytes as a number, highest first.
inline quint16 Big16(const uchar* p)
{
    return quint16(p[0] << 8 | p[1]);
}
/// Four bytes as a number, highest first.
inline quint32 Big32(const uchar* p)
{
    return quint32(p[0]) << 24 | quint32(p[1]) << 16 | quint32(p[2]) << 8 | quint32(p[3]);
}

} // namespace quillane::codecs
