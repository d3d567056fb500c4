#include "imaging/thumbs/thumbnail_png.h"

#include "core/failure.h"
#include "imaging/codec.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <cstring>
#include <png.h>

namespace quillane {

namespace {

constexpr qsizetype kThumbnailPngHead = 33;  // mark and header chunk
constexpr qsizetype kThumbnailPngFrame = 12; // length, name and check sum of a chunk

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
    const Codec* codec =
        FindCodec(QByteArrayView(png).first(std::min<qsizetype>(512, png.size())), u"PNG");
    if (!codec || codec->inWorker || png.size() < kThumbnailPngHead) {
        return {};
    }
    QImage image;
    ResumeNext([&] {
        MemorySource source(png);
        const ImageFacts facts = codec->probe(source);
        if (facts.width <= maxSide && facts.height <= maxSide) {
            const Bitmap bitmap = codec->decode(source, {});
            image = bitmap.IsPartial() ? QImage() : bitmap.ToDisplay();
        }
    });
    return image;
}

} // namespace quillane
