#pragma once
#include "imaging/byte_source.h"

namespace quillane::codecs {

/// Bytes of a source one after the other, through a buffer.
class ByteStream {
public:
    /// Gives the bytes from `position` on, at most `limit` of them.
    ByteStream(ByteSource& source, qint64 position, qint64 limit)
        : mSource(source),
          mPosition(position),
          mLeft(limit)
    { }

    /// The next byte, or -1 at the end.
    int Next() { return mAt < mHeld || Fill() ? mBuffer[mAt++] : -1; }
    /// Copies up to `count` bytes; returns how many there were.
    qint64 Read(uchar* to, qint64 count);
    /// Whether more was asked for than there is.
    bool HasEnded() const { return mEnded; }

private:
    bool Fill();
    ByteSource& mSource;
    qint64 mPosition;
    qint64 mLeft;
    qint64 mAt = 0;
    qint64 mHeld = 0;
    bool mEnded = false;
    uchar mBuffer[16 * 1024];
};

} // namespace quillane::codecs
