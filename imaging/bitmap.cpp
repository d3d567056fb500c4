#include "imaging/bitmap.h"
#include "imaging/colour_profile.h"
#include <algorithm>
#include <cstring>
#include <utility>

namespace quillane {

namespace {

/// Where the pixels of an upright picture are found in the stored one: going along an upright row
/// goes along a stored row or, when swapped, down a stored column, from one end or the other.
struct BitmapWalk {
    bool swapped; ///< width and height change places
    bool fromRight;
    bool fromBottom;
};

/// Exif orientation 2..8.
constexpr BitmapWalk kBitmapWalks[] = {
    {false, true, false}, // 2 mirrored
    {false, true, true},  // 3 upside down
    {false, false, true}, // 4 flipped
    {true, false, false}, // 5 transposed
    {true, false, true},  // 6 lies on its left side
    {true, true, true},   // 7 transposed on the other diagonal
    {true, true, false},  // 8 lies on its right side
};

/// Square of pixels turned at once, so that both pictures stay in the processor's cache.
constexpr int kBitmapTile = 32;

template <typename Pixel> void BitmapTurn(const QImage& from, QImage& to, const BitmapWalk& walk)
{
    const qsizetype step = qsizetype(sizeof(Pixel));
    const qsizetype line = from.bytesPerLine();
    const uchar* origin = from.constBits() + (walk.fromRight ? (from.width() - 1) * step : 0)
        + (walk.fromBottom ? (from.height() - 1) * line : 0);
    const qsizetype alongRow = walk.fromRight ? -step : step;
    const qsizetype alongColumn = walk.fromBottom ? -line : line;
    const qsizetype stepX = walk.swapped ? alongColumn : alongRow;
    const qsizetype stepY = walk.swapped ? alongRow : alongColumn;
    const int tile = walk.swapped ? kBitmapTile : to.width();
    for (int top = 0; top < to.height(); top += kBitmapTile) {
        const int bottom = std::min(top + kBitmapTile, to.height());
        for (int left = 0; left < to.width(); left += tile) {
            const int right = std::min(left + tile, to.width());
            for (int y = top; y < bottom; ++y) {
                Pixel* out = reinterpret_cast<Pixel*>(to.scanLine(y)) + left;
                const uchar* in = origin + y * stepY + left * stepX;
                for (int x = left; x < right; ++x, in += stepX) {
                    *out++ = *reinterpret_cast<const Pixel*>(in);
                }
            }
        }
    }
}

void BitmapTurnBits(const QImage& from, QImage& to, const BitmapWalk& walk)
{
    for (int y = 0; y < to.height(); ++y) {
        uchar* out = to.scanLine(y);
        std::memset(out, 0, size_t(to.bytesPerLine()));
        for (int x = 0; x < to.width(); ++x) {
            const int across = walk.swapped ? y : x;
            const int down = walk.swapped ? x : y;
            const int column = walk.fromRight ? from.width() - 1 - across : across;
            const int row = walk.fromBottom ? from.height() - 1 - down : down;
            if (from.constScanLine(row)[column >> 3] & (0x80 >> (column & 7))) {
                out[x >> 3] = uchar(out[x >> 3] | (0x80 >> (x & 7)));
            }
        }
    }
}

} // namespace

qint32 Bitmap::Bits() const
{
    switch (mPixels.format()) {
    case QImage::Format_Invalid:
        return 0;
    case QImage::Format_RGB32:
        return 24;
    case QImage::Format_RGBX64:
        return 48;
    default:
        return mPixels.depth();
    }
}

QImage Bitmap::ToDisplay() const
{
    if (IsNull()) {
        return {};
    }
    QImage shown;
    if (!mIcc.isEmpty()) {
        shown = ProfileToSrgb(mPixels, mIcc, mModel == ColourModel::Cmyk);
    }
    if (shown.isNull()) {
        shown = mModel == ColourModel::Cmyk ? PlainCmykToSrgb(mPixels) : mPixels;
    }
    if (shown.hasAlphaChannel()) {
        return shown.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    return shown.convertToFormat(QImage::Format_RGB32);
}

Bitmap Bitmap::Upright(int orientation) const
{
    if (orientation < 2 || orientation > 8 || IsNull()) {
        return *this;
    }
    const BitmapWalk& walk = kBitmapWalks[orientation - 2];
    QSize size = mPixels.size();
    if (walk.swapped) {
        size.transpose();
    }
    QImage turned(size, mPixels.format());
    if (turned.isNull()) {
        return *this;
    }
    turned.setColorTable(mPixels.colorTable());
    int across = mPixels.dotsPerMeterX();
    int down = mPixels.dotsPerMeterY();
    if (walk.swapped) {
        std::swap(across, down);
    }
    turned.setDotsPerMeterX(across);
    turned.setDotsPerMeterY(down);
    switch (mPixels.depth()) {
    case 1:
        BitmapTurnBits(mPixels, turned, walk);
        break;
    case 8:
        BitmapTurn<quint8>(mPixels, turned, walk);
        break;
    case 16:
        BitmapTurn<quint16>(mPixels, turned, walk);
        break;
    case 32:
        BitmapTurn<quint32>(mPixels, turned, walk);
        break;
    case 64:
        BitmapTurn<quint64>(mPixels, turned, walk);
        break;
    default:
        return *this;
    }
    Bitmap result = *this;
    result.mPixels = std::move(turned);
    return result;
}

} // namespace quillane
