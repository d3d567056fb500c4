#include "widgets/picture_rows.h"
#include <algorithm>
#include <cstring>

namespace quillane {

namespace {

constexpr int kRowsConverted = 16; ///< at once, so that finding the profile does not count

/// Eight bits as eight bytes, 0 or 255, the first pixel in the first byte.
const std::array<std::array<uchar, 8>, 256>& RowsBitTable()
{
    static const auto table = [] {
        std::array<std::array<uchar, 8>, 256> made{};
        for (size_t bits = 0; bits < 256; ++bits) {
            for (size_t i = 0; i < 8; ++i) {
                made[bits][i] = bits & (0x80u >> i) ? 255 : 0;
            }
        }
        return made;
    }();
    return table;
}

bool RowsAreReady(const Bitmap& bitmap)
{
    const QImage::Format format = bitmap.Pixels().format();
    return bitmap.Icc().isEmpty()
        && (format == QImage::Format_RGB32 || format == QImage::Format_ARGB32_Premultiplied);
}

} // namespace

PictureRows::PictureRows(const PictureSource& source, int left, int right)
    : mSource(source),
      mPixels(source.bitmap.Pixels()),
      mLeft(left),
      mRight(right),
      mKind(Kind::Converted),
      mChannels(4),
      mAlpha(source.HasAlpha())
{
    const QImage::Format format = mPixels.format();
    if (format == QImage::Format_Mono) {
        mKind = Kind::Bits;
        mChannels = 1;
        mBytes.resize(size_t((right + 7) / 8 - left / 8) * 8);
        MixColours();
    } else if (source.mixes
               || (format == QImage::Format_Grayscale8 && source.bitmap.Icc().isEmpty())) {
        mKind = Kind::Bytes;
        mChannels = 1;
        if (source.mixes) {
            for (int i = 0; i < 256; ++i) {
                mColours[size_t(i)] = mPixels.color(i);
            }
        } else {
            for (int i = 0; i < 256; ++i) {
                mColours[size_t(i)] = qRgb(i, i, i);
            }
        }
    } else if (RowsAreReady(source.bitmap)) {
        mKind = Kind::Ready;
    }
}

void PictureRows::MixColours()
{
    const QRgb none = qPremultiply(mPixels.colorCount() > 0 ? mPixels.color(0) : qRgb(0, 0, 0));
    const QRgb all =
        qPremultiply(mPixels.colorCount() > 1 ? mPixels.color(1) : qRgb(255, 255, 255));
    for (int i = 0; i < 256; ++i) {
        const auto mix = [i](int a, int b) { return (a * (255 - i) + b * i + 127) / 255; };
        mColours[size_t(i)] = qRgba(mix(qRed(none), qRed(all)), mix(qGreen(none), qGreen(all)),
                                    mix(qBlue(none), qBlue(all)), mix(qAlpha(none), qAlpha(all)));
    }
}

bool PictureRows::ConvertBand(int y)
{
    mBandTop = y;
    const int rows = std::min(kRowsConverted, mPixels.height() - y);
    const uchar* const first = mPixels.constScanLine(y) + qsizetype(mLeft) * (mPixels.depth() / 8);
    QImage part(first, mRight - mLeft, rows, mPixels.bytesPerLine(), mPixels.format());
    part.setColorTable(mPixels.colorTable());
    Bitmap piece(part, mSource.bitmap.Model(), mSource.bitmap.FileDepth());
    piece.SetIcc(mSource.bitmap.Icc());
    mBand = piece.ToDisplay();
    return !mBand.isNull();
}

const uchar* PictureRows::Row(int y)
{
    switch (mKind) {
    case Kind::Bits: {
        const auto& table = RowsBitTable();
        const uchar* in = mPixels.constScanLine(y) + mLeft / 8;
        const uchar* const end = mPixels.constScanLine(y) + (mRight + 7) / 8;
        for (uchar* out = mBytes.data(); in < end; ++in, out += 8) {
            std::memcpy(out, table[*in].data(), 8);
        }
        return mBytes.data() + mLeft % 8;
    }
    case Kind::Bytes:
        return mPixels.constScanLine(y) + mLeft;
    case Kind::Ready:
        return mPixels.constScanLine(y) + qsizetype(mLeft) * 4;
    case Kind::Converted:
        break;
    }
    if (mBand.isNull() || y < mBandTop || y >= mBandTop + mBand.height()) {
        if (!ConvertBand(y)) {
            return nullptr;
        }
    }
    return mBand.constScanLine(y - mBandTop);
}

} // namespace quillane
