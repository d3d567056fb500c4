#include "imaging/codecs/fpx_tiles.h"
#include "imaging/codecs/jpeg_session.h"
#include <algorithm>
#include <cmath>

namespace quillane::codecs {

namespace {

constexpr int kFpxDataHead = 28; ///< before the tiles in their stream
constexpr qint64 kFpxMostTileBytes = 8ll << 20;
constexpr int kFpxMostChannels = 4;

/// A marker by which the decoder leaves the channels alone (0) or takes them for YCbCr (1, of
/// four channels 2).
QByteArray FpxAdobeMark(int transform)
{
    QByteArray mark("\xff\xee\0\x0e"
                    "Adobe\0\x64\0\0\0\0\0",
                    16);
    mark[15] = char(transform);
    return mark;
}

/// Tables and a tile as one picture.
QByteArray FpxWholeJpeg(const QByteArray& tables, const QByteArray& tile, int transform)
{
    QByteArray whole("\xff\xd8", 2);
    whole += FpxAdobeMark(transform);
    if (tables.startsWith("\xff\xd8")) {
        whole += tables.mid(2, tables.size() - (tables.endsWith("\xff\xd9") ? 4 : 2));
    }
    return whole + tile.mid(2);
}

uchar FpxByte(double value)
{
    return uchar(std::clamp(value + 0.5, 0.0, 255.0));
}

/// PhotoYCC to RGB, with the factors of the colour space's definition.
void FpxToRgb(const uchar* p, int& red, int& green, int& blue)
{
    const double light = 1.3584 * p[0];
    const double first = 2.2179 * (p[1] - 156);
    const double second = 1.8215 * (p[2] - 137);
    red = FpxByte(light + second);
    green = FpxByte(light - 0.194 * first - 0.509 * second);
    blue = FpxByte(light + first);
}

} // namespace

FpxTiles::FpxTiles(const FpxPicture& picture, const FpxResolution& resolution)
    : mPicture(picture),
      mResolution(resolution),
      mData(picture.Data(resolution)),
      mDataLeft(2 * mData.Size() + (qint64(1) << 20))
{ }

QImage::Format FpxTiles::Layout() const
{
    if (mPicture.Space() == FpxSpace::Grey && !mPicture.HasAlpha()) {
        return QImage::Format_Grayscale8;
    }
    return mPicture.HasAlpha() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
}

int FpxTiles::DecodeAll(QImage& image, const DecodeRequest& request)
{
    const int across =
        (mResolution.size.width() + mResolution.tile.width() - 1) / mResolution.tile.width();
    const int down =
        (mResolution.size.height() + mResolution.tile.height() - 1) / mResolution.tile.height();
    std::vector<uchar> channels(size_t(mResolution.tile.width()) * size_t(mResolution.tile.height())
                                * size_t(mResolution.channels));
    int missing = across * down - int(mResolution.tiles.size());
    for (size_t i = 0; i < mResolution.tiles.size(); ++i) {
        CheckCancelled(request);
        if (!Read(mResolution.tiles[i], channels)) {
            ++missing;
            continue;
        }
        Put(channels, image,
            QPoint(int(i) % across * mResolution.tile.width(),
                   int(i) / across * mResolution.tile.height()));
    }
    return missing;
}

bool FpxTiles::Read(const FpxTile& tile, std::vector<uchar>& channels)
{
    const size_t count = size_t(mResolution.channels);
    if (tile.packing == 1) {
        for (size_t i = 0; i < channels.size(); ++i) {
            channels[i] = tile.detail[i % count];
        }
        return true;
    }
    if (tile.size > kFpxMostTileBytes || qint64(tile.size) > mDataLeft) {
        return false;
    }
    mDataLeft -= tile.size;
    const qint64 at = kFpxDataHead + qint64(tile.at);
    if (tile.packing == 0) {
        return tile.size >= channels.size()
            && mData.ReadAt(at, channels.data(), qint64(channels.size()))
            == qint64(channels.size());
    }
    if (tile.packing != 2 || tile.size < 4) {
        return false;
    }
    QByteArray bytes(qsizetype(tile.size), Qt::Uninitialized);
    bytes.resize(mData.ReadAt(at, bytes.data(), bytes.size()));
    return bytes.startsWith("\xff\xd8") && ReadJpeg(tile, bytes, channels);
}

bool FpxTiles::ReadJpeg(const FpxTile& tile, const QByteArray& bytes, std::vector<uchar>& channels)
{
    const int count = mResolution.channels;
    const bool converted = tile.detail[2] != 0; // the tile has its colours as YCbCr
    const int transform = !converted ? 0 : count == 4 ? 2 : 1;
    MemorySource source(FpxWholeJpeg(mPicture.Tables(tile.detail[3]), bytes, transform));
    JpegSession session;
    JpegStart start;
    start.bytes = &source;
    if (!session.Start(start) || session.Width() > mResolution.tile.width()
        || session.Height() > mResolution.tile.height()) {
        return false;
    }
    const int step = session.Pixels() == JpegPixels::Grey ? 1 : 4;
    const int stored = session.Pixels() == JpegPixels::Grey ? 1
        : session.Pixels() == JpegPixels::Cmyk              ? 4
                                                            : 3;
    if (stored != count) {
        return false;
    }
    const int width = session.Width();
    std::vector<uchar> pixels(size_t(width) * size_t(session.Height()) * size_t(step));
    session.DecodeRows(pixels.data(), qint64(width) * step);
    if (session.Rows() < session.Height()) {
        return false;
    }
    std::fill(channels.begin(), channels.end(), uchar(0));
    for (int y = 0; y < session.Height(); ++y) {
        const uchar* from = pixels.data() + qint64(y) * width * step;
        uchar* to = channels.data() + qint64(y) * mResolution.tile.width() * count;
        for (int x = 0; x < width; ++x, from += step, to += count) {
            if (stored == 1) {
                to[0] = from[0];
            } else if (stored == 3) {
                to[0] = from[2], to[1] = from[1], to[2] = from[0];
            } else {
                // Of four channels the decoder gives the complement of what it converts.
                for (int c = 0; c < 3; ++c) {
                    to[c] = converted ? uchar(255 - from[c]) : from[c];
                }
                to[3] = from[3];
            }
        }
    }
    return true;
}

void FpxTiles::Put(const std::vector<uchar>& channels, QImage& image, QPoint at) const
{
    const int count = mResolution.channels;
    const int width = std::min(mResolution.tile.width(), image.width() - at.x());
    const int height = std::min(mResolution.tile.height(), image.height() - at.y());
    const bool alpha = mPicture.HasAlpha();
    for (int y = 0; y < height; ++y) {
        const uchar* from = channels.data() + qint64(y) * mResolution.tile.width() * count;
        uchar* row = image.scanLine(at.y() + y);
        if (image.format() == QImage::Format_Grayscale8) {
            std::copy_n(from, width, row + at.x());
            continue;
        }
        QRgb* to = reinterpret_cast<QRgb*>(row) + at.x();
        for (int x = 0; x < width; ++x, from += count) {
            int red = from[0], green = from[0], blue = from[0];
            if (mPicture.Space() == FpxSpace::PhotoYcc) {
                FpxToRgb(from, red, green, blue);
            } else if (mPicture.Space() == FpxSpace::Rgb) {
                green = from[1];
                blue = from[2];
            }
            const int opacity = alpha ? from[count - 1] : 255;
            const QRgb colour = qRgba(red, green, blue, opacity);
            to[x] = alpha && mPicture.IsPremultiplied() ? qUnpremultiply(colour) : colour;
        }
    }
}

static_assert(kFpxMostChannels == sizeof(FpxTile::detail));

} // namespace quillane::codecs
