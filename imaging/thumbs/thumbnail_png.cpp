#include "imaging/thumbs/thumbnail_png.h"

#include <QSysInfo>
#include <QtEndian>
#include <array>
#include <cstring>
#include <png.h>

namespace quillane {

namespace {

constexpr qsizetype kThumbnailPngHead = 33;  // mark and header chunk
constexpr qsizetype kThumbnailPngFrame = 12; // length, name and check sum of a chunk
/// Where a pixel of 32 bits holds its colours, byte by byte.
constexpr png_uint_32 kThumbnailPngLayout =
    QSysInfo::ByteOrder == QSysInfo::LittleEndian ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;

/// CRC-32 as PNG uses it (polynomial 0xedb88320, reflected).
quint32 ThumbnailPngCheckSum(const QByteArray& bytes)
{
    static const std::array<quint32, 256> table = [] {
        std::array<quint32, 256> made{};
        for (quint32 i = 0; i < 256; ++i) {
            quint32 value = i;
            for (int bit = 0; bit < 8; ++bit) {
                value = value & 1 ? 0xedb88320u ^ value >> 1 : value >> 1;
            }
            made[i] = value;
        }
        return made;
    }();
    quint32 sum = 0xffffffffu;
    for (const char byte : bytes) {
        sum = table[(sum ^ quint8(byte)) & 0xff] ^ sum >> 8;
    }
    return ~sum;
}

QByteArray ThumbnailTextChunk(const ThumbnailText& text)
{
    const auto big = [](quint32 value) {
        const quint32 swapped = qToBigEndian(value);
        return QByteArray(reinterpret_cast<const char*>(&swapped), 4);
    };
    const QByteArray content = text.first + '\0' + text.second;
    const QByteArray named = "tEXt" + content;
    return big(quint32(content.size())) + named + big(ThumbnailPngCheckSum(named));
}

} // namespace

QByteArray EncodeThumbnailPng(const QImage& image, const std::vector<ThumbnailText>& texts)
{
    const bool alpha = image.hasAlphaChannel();
    const QImage pixels =
        image.convertToFormat(alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    if (pixels.isNull()) {
        return {};
    }
    png_image shape;
    std::memset(&shape, 0, sizeof shape);
    shape.version = PNG_IMAGE_VERSION;
    shape.width = png_uint_32(pixels.width());
    shape.height = png_uint_32(pixels.height());
    shape.format = alpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    QByteArray png(qsizetype(PNG_IMAGE_PNG_SIZE_MAX(shape)), Qt::Uninitialized);
    png_alloc_size_t size = png_alloc_size_t(png.size());
    const int written = png_image_write_to_memory(&shape, png.data(), &size, 0, pixels.constBits(),
                                                  png_int_32(pixels.bytesPerLine()), nullptr);
    png_image_free(&shape);
    if (!written || size <= size_t(kThumbnailPngHead)) {
        return {};
    }
    QByteArray result = png.first(kThumbnailPngHead);
    for (const ThumbnailText& text : texts) {
        result += ThumbnailTextChunk(text);
    }
    result.append(png.constData() + kThumbnailPngHead, qsizetype(size) - kThumbnailPngHead);
    return result;
}

QByteArray ThumbnailPngText(const QByteArray& png, const QByteArray& keyword)
{
    for (qsizetype at = 8; at + kThumbnailPngFrame <= png.size();) {
        const quint32 length = qFromBigEndian<quint32>(png.constData() + at);
        const QByteArrayView type(png.constData() + at + 4, 4);
        if (length > quint32(png.size() - at - kThumbnailPngFrame) || type == "IDAT") {
            return {};
        }
        const QByteArrayView content(png.constData() + at + 8, qsizetype(length));
        if (type == "tEXt" && content.startsWith(keyword) && content.size() > keyword.size()
            && content[keyword.size()] == '\0') {
            return content.sliced(keyword.size() + 1).toByteArray();
        }
        at += kThumbnailPngFrame + qsizetype(length);
    }
    return {};
}

QImage DecodeThumbnailPng(const QByteArray& png, int maxSide)
{
    png_image shape;
    std::memset(&shape, 0, sizeof shape);
    shape.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&shape, png.constData(), size_t(png.size()))) {
        return {};
    }
    QImage image;
    if (shape.width <= png_uint_32(maxSide) && shape.height <= png_uint_32(maxSide)) {
        const bool alpha = (shape.format & PNG_FORMAT_FLAG_ALPHA) != 0;
        shape.format = kThumbnailPngLayout;
        image = QImage(int(shape.width), int(shape.height),
                       alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        if (!image.isNull()
            && !png_image_finish_read(&shape, nullptr, image.bits(),
                                      png_int_32(image.bytesPerLine()), nullptr)) {
            image = {};
        } else if (alpha) {
            image.convertTo(QImage::Format_ARGB32_Premultiplied);
        }
    }
    png_image_free(&shape);
    return image;
}

} // namespace quillane
