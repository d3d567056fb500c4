#pragma once
#include "imaging/worker_main/service/worker_codec.h"
#include <vector>

namespace quillane::worker {

/// Samples as encoders want them, packed behind one another; those of 16 bits in the machine's
/// order.
enum class SampleKind : quint8 {
    Bilevel, ///< 1 bit, highest bit first, 1 white
    Index,   ///< a byte into the picture's colours; of a grey picture its value
    Grey8,
    Grey16,
    Rgb8,
    Rgba8, ///< not premultiplied
    Rgb16,
    Rgba16,
    Cmyk8, ///< 255 full ink
};

/// Samples of a pixel.
constexpr int SamplesOf(SampleKind kind)
{
    switch (kind) {
    case SampleKind::Rgb8:
    case SampleKind::Rgb16:
        return 3;
    case SampleKind::Rgba8:
    case SampleKind::Rgba16:
    case SampleKind::Cmyk8:
        return 4;
    default:
        return 1;
    }
}
/// Bits of a sample.
constexpr int SampleBitsOf(SampleKind kind)
{
    switch (kind) {
    case SampleKind::Bilevel:
        return 1;
    case SampleKind::Grey16:
    case SampleKind::Rgb16:
    case SampleKind::Rgba16:
        return 16;
    default:
        return 8;
    }
}

/// The rows of a picture as samples of one kind. Where the kind has no alpha, transparent pixels
/// lie on white; inks without a profile are R = 255 (1 - C)(1 - K) and the reverse of it with as
/// much black as goes.
class SampleRows {
public:
    /// Failure kFailureGeneral when indexes are wanted of a picture of many colours.
    SampleRows(PictureRows& picture, SampleKind kind);
    /// The next row from the top; valid until the next call.
    const uchar* Next();
    qint64 RowBytes() const { return mRowBytes; }

private:
    void Widen(const uchar* from);
    void Narrow();
    bool Convert(const uchar* from);

    PictureRows& mPicture;
    SampleKind mKind;
    qint32 mWidth;
    qint64 mRowBytes;
    std::vector<quint32> mColours;
    std::vector<quint16> mWide; ///< R, G, B, A of a row
    std::vector<uchar> mRow;
};

/// Whether an ICC profile describes colours of that many channels: 1, 3 or 4.
bool ProfileFits(const QByteArray& profile, int channels);

} // namespace quillane::worker
