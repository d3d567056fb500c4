#include "imaging/codecs/raster_support.h"
#include "imaging/codecs/codec_support.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

UnpackEnd UnpackPackBits(ByteStream& stream, uchar* to, qint64 count)
{
    qint64 done = 0;
    while (done < count) {
        const int code = stream.Next();
        if (code < 0) {
            break;
        }
        if (code < 128) {
            const qint64 literal = std::min<qint64>(code + 1, count - done);
            const qint64 got = stream.Read(to + done, literal);
            done += got;
            if (got < literal) {
                break;
            }
        } else if (code > 128) {
            const int value = stream.Next();
            if (value < 0) {
                break;
            }
            const qint64 run = std::min<qint64>(257 - code, count - done);
            std::memset(to + done, value, size_t(run));
            done += run;
        }
    }
    std::memset(to + done, 0, size_t(count - done));
    return done == count ? UnpackEnd::Whole : UnpackEnd::Short;
}

void MergePlanes(const uchar* from, int planes, qint64 planeBytes, qint64 width, uchar* to)
{
    std::memset(to, 0, size_t(width));
    for (int plane = 0; plane < planes; ++plane) {
        const uchar* bits = from + plane * planeBytes;
        for (qint64 x = 0; x < width; ++x) {
            to[x] = uchar(to[x] | (bits[x >> 3] >> (7 - (x & 7)) & 1) << plane);
        }
    }
}

void SpreadPixels(const uchar* from, int bits, qint64 width, uchar* to)
{
    if (bits == 8) {
        std::memcpy(to, from, size_t(width));
        return;
    }
    const int perByte = 8 / bits;
    const int mask = (1 << bits) - 1;
    for (qint64 x = 0; x < width; ++x) {
        const int shift = 8 - bits * (1 + int(x % perByte));
        to[x] = uchar(from[x / perByte] >> shift & mask);
    }
}

const QList<QRgb>& SixteenColours()
{
    static const QList<QRgb> colours = [] {
        QList<QRgb> list;
        list.reserve(16);
        for (int i = 0; i < 16; ++i) {
            const int bright = i & 8 ? 85 : 0;
            const auto level = [&](int bit) { return (i & bit ? 170 : 0) + bright; };
            // The dim yellow is a brown.
            list.append(i == 6 ? qRgb(170, 85, 0) : qRgb(level(4), level(2), level(1)));
        }
        return list;
    }();
    return colours;
}

QList<QRgb> GreySteps(int count)
{
    QList<QRgb> colours;
    colours.reserve(count);
    for (int i = 0; i < count; ++i) {
        const int level = count > 1 ? i * 255 / (count - 1) : 0;
        colours.append(qRgb(level, level, level));
    }
    return colours;
}

void FitColours(QList<QRgb>& colours, int count)
{
    while (colours.size() < count) {
        colours.append(qRgb(0, 0, 0));
    }
    colours.resize(count);
}

bool AreBlackAndWhite(const QList<QRgb>& colours)
{
    const QRgb black = qRgb(0, 0, 0);
    const QRgb white = qRgb(255, 255, 255);
    return colours.size() == 2
        && ((colours[0] == black && colours[1] == white)
            || (colours[0] == white && colours[1] == black));
}

bool AreGreySteps(const QList<QRgb>& colours)
{
    return colours.size() > 1 && colours == GreySteps(int(colours.size()));
}

QImage NewIndexedImage(const char* format, qint64 width, qint64 height, int bits,
                       QList<QRgb> colours)
{
    FitColours(colours, 1 << bits);
    const bool bilevel = bits == 1 && AreBlackAndWhite(colours);
    QImage image =
        NewImage(format, width, height, bilevel ? QImage::Format_Mono : QImage::Format_Indexed8);
    image.setColorTable(colours);
    return image;
}

void PutIndexes(QImage& image, int y, const uchar* indexes)
{
    uchar* to = image.scanLine(y);
    const int width = image.width();
    if (image.format() != QImage::Format_Mono) {
        std::memcpy(to, indexes, size_t(width));
        return;
    }
    std::memset(to, 0, size_t(width + 7) / 8);
    for (int x = 0; x < width; ++x) {
        to[x >> 3] = uchar(to[x >> 3] | (indexes[x] & 1) << (7 - (x & 7)));
    }
}

ColourModel ModelOfImage(const QImage& image)
{
    switch (image.format()) {
    case QImage::Format_Mono:
        return ColourModel::BlackWhite;
    case QImage::Format_Indexed8:
        return ColourModel::Palette;
    case QImage::Format_Grayscale8:
    case QImage::Format_Grayscale16:
        return ColourModel::Grey;
    case QImage::Format_RGBA8888:
        return ColourModel::Cmyk;
    default:
        return ColourModel::Rgb;
    }
}

Bitmap FinishPicture(const char* format, QImage image, int fileDepth, int rows, RowOrder order)
{
    if (rows <= 0) {
        Damaged(format, QStringLiteral("it ends before its first row"));
    }
    const int height = image.height();
    const ColourModel model = ModelOfImage(image);
    int blank = 0xff;
    if (model == ColourModel::Palette || model == ColourModel::Cmyk
        || (model == ColourModel::BlackWhite && image.color(0) == qRgb(255, 255, 255))) {
        blank = 0;
    }
    for (int i = rows; i < height; ++i) {
        std::memset(image.scanLine(order == RowOrder::TopFirst ? i : height - 1 - i), blank,
                    size_t(image.bytesPerLine()));
    }
    Bitmap bitmap(std::move(image), model, fileDepth);
    bitmap.SetPartial(rows < height);
    return bitmap;
}

} // namespace quillane::codecs
