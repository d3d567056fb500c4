#include "imaging/codecs/byte_stream.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

bool ByteStream::Fill()
{
    mAt = 0;
    mHeld = mSource.ReadAt(mPosition, mBuffer, std::min<qint64>(mLeft, sizeof(mBuffer)));
    mPosition += mHeld;
    mLeft -= mHeld;
    mEnded = mEnded || mHeld == 0;
    return mHeld > 0;
}

qint64 ByteStream::Read(uchar* to, qint64 count)
{
    qint64 done = 0;
    while (done < count && (mAt < mHeld || Fill())) {
        const qint64 part = std::min(count - done, mHeld - mAt);
        std::memcpy(to + done, mBuffer + mAt, size_t(part));
        mAt += part;
        done += part;
    }
    return done;
}

} // namespace quillane::codecs
