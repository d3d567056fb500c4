#include "imaging/codecs/dib.h"
#include <algorithm>
#include <bit>
#include <cstring>

namespace quillane::codecs {

namespace {

/// Pixels put for each one shown, and for all together, before the data count as senseless.
constexpr qint64 kDibWaste = 4;
constexpr qint64 kDibFreeWaste = 64 * 1024;

/// Where run-length packed pixels go: rows in stored order, what lies outside is dropped.
class DibTarget {
public:
    DibTarget(QImage& image, bool topDown)
        : mImage(image),
          mTopDown(topDown),
          mBudget(qint64(image.width()) * image.height() * kDibWaste + kDibFreeWaste)
    {
        Aim();
    }
    void Put(quint32 value)
    {
        --mBudget;
        if (mX < mImage.width()) {
            if (mDeep) {
                reinterpret_cast<QRgb*>(mRow)[mX] = value;
            } else {
                mRow[mX] = uchar(value);
            }
            ++mX;
        }
    }
    void EndRow() { Move(-mX, 1); }
    void Move(int across, int down)
    {
        --mBudget;
        mX = std::min(mX + across, mImage.width());
        mY += down;
        if (down > 0) {
            Aim();
        }
    }
    /// Whether nothing that follows can change the picture, or the data go on beyond reason.
    bool IsFull() const { return mY >= mImage.height() || mBudget < 0; }
    int Row() const { return mY; }

private:
    void Aim()
    {
        mDeep = mImage.depth() == 32;
        const int y = std::min(mY, mImage.height() - 1);
        mRow = mImage.scanLine(mTopDown ? y : mImage.height() - 1 - y);
    }
    QImage& mImage;
    bool mTopDown;
    qint64 mBudget; ///< pixels and moves that are still believed
    bool mDeep = false;
    uchar* mRow = nullptr;
    int mX = 0;
    int mY = 0;
};

/// The colour that a run of 24-bit pixels repeats.
quint32 DibNextColour(ByteStream& stream)
{
    const int blue = stream.Next();
    const int green = stream.Next();
    const int red = stream.Next();
    return qRgb(red, green, blue);
}

void DibPutRun(ByteStream& stream, DibPacking packing, int count, DibTarget& target)
{
    if (packing == DibPacking::Rle24) {
        const quint32 colour = DibNextColour(stream);
        for (int i = 0; i < count; ++i) {
            target.Put(colour);
        }
        return;
    }
    const int value = stream.Next();
    for (int i = 0; i < count && value >= 0; ++i) {
        target.Put(packing == DibPacking::Rle8 ? quint32(value)
                       : i % 2 == 0            ? quint32(value >> 4)
                                               : quint32(value & 15));
    }
}

/// `count` pixels as they are; the bytes are filled up to an even number.
void DibPutLiteral(ByteStream& stream, DibPacking packing, int count, DibTarget& target)
{
    int bytes = 0;
    int value = 0;
    for (int i = 0; i < count && !stream.HasEnded(); ++i) {
        if (packing == DibPacking::Rle24) {
            target.Put(DibNextColour(stream));
            bytes += 3;
        } else if (packing == DibPacking::Rle8) {
            target.Put(quint32(std::max(stream.Next(), 0)));
            ++bytes;
        } else if (i % 2 == 0) {
            value = std::max(stream.Next(), 0);
            target.Put(quint32(value >> 4));
            ++bytes;
        } else {
            target.Put(quint32(value & 15));
        }
    }
    if (bytes % 2 != 0) {
        stream.Next();
    }
}

} // namespace

DibRows::DibRows(const DibHeader& header) : mWidth(header.width), mBits(header.bits)
{
    mPlain = mBits == 32 && header.masks[0] == 0xff0000 && header.masks[1] == 0xff00
        && header.masks[2] == 0xff;
    for (size_t i = 0; i < mChannels.size(); ++i) {
        Channel& channel = mChannels[i];
        const quint32 mask = header.masks[i];
        if (mask == 0) {
            channel.values.fill(i == 3 ? 255 : 0);
            continue;
        }
        // Of a wide channel the highest eight bits count.
        const int top = std::bit_width(mask);
        channel.shift = std::max(std::countr_zero(mask), top - 8);
        channel.mask = mask >> channel.shift << channel.shift;
        const int most = int(channel.mask >> channel.shift);
        for (int value = 0; value < 256; ++value) {
            channel.values[size_t(value)] = uchar((std::min(value, most) * 255 + most / 2) / most);
        }
    }
}

void DibRows::UnpackIndexes(const uchar* from, uchar* to) const
{
    const int perByte = 8 / mBits;
    const int most = (1 << mBits) - 1;
    for (qint64 x = 0; x < mWidth; ++x) {
        const int shift = 8 - mBits * (int(x % perByte) + 1);
        to[x] = uchar(from[x / perByte] >> shift & most);
    }
}

void DibRows::UnpackMasked(const uchar* from, QRgb* to) const
{
    const int step = mBits / 8;
    for (qint64 x = 0; x < mWidth; ++x, from += step) {
        const quint32 pixel = step == 2 ? Little16(from) : Little32(from);
        to[x] = qRgba(mChannels[0].Of(pixel), mChannels[1].Of(pixel), mChannels[2].Of(pixel),
                      mChannels[3].Of(pixel));
    }
}

void DibRows::Unpack(const uchar* from, uchar* to) const
{
    QRgb* const pixels = reinterpret_cast<QRgb*>(to);
    if (mBits == 8) {
        std::memcpy(to, from, size_t(mWidth));
    } else if (mBits < 8) {
        UnpackIndexes(from, to);
    } else if (mBits == 24) {
        for (qint64 x = 0; x < mWidth; ++x, from += 3) {
            pixels[x] = qRgb(from[2], from[1], from[0]);
        }
    } else if (mPlain && mChannels[3].mask == 0) {
        for (qint64 x = 0; x < mWidth; ++x, from += 4) {
            pixels[x] = 0xff000000u | Little32(from);
        }
    } else {
        UnpackMasked(from, pixels);
    }
}

int DecodeDibRuns(ByteStream& stream, const DibHeader& header, QImage& image,
                  const DecodeRequest& request)
{
    DibTarget target(image, header.topDown);
    for (quint32 runs = 0; !target.IsFull(); ++runs) {
        if (runs % 1024 == 0) {
            CheckCancelled(request);
        }
        const int count = stream.Next();
        if (count > 0) {
            DibPutRun(stream, header.packing, count, target);
        } else if (count == 0) {
            const int code = stream.Next();
            if (code == 0) {
                target.EndRow();
            } else if (code == 1) {
                return image.height(); // the rest is meant to be background
            } else if (code == 2) {
                const int across = std::max(stream.Next(), 0);
                target.Move(across, std::max(stream.Next(), 0));
            } else {
                DibPutLiteral(stream, header.packing, code, target);
            }
        }
        if (stream.HasEnded()) {
            break;
        }
    }
    return std::min(target.Row(), image.height());
}

} // namespace quillane::codecs
