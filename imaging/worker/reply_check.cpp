#include "imaging/worker/reply_check.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/picture_memory.h"
#include <QStringDecoder>
#include <algorithm>

namespace quillane::worker {

namespace {

void CheckSize(qint64 width, qint64 height, qint64 bytes, const QString& format)
{
    if (width > limits::kMaxSide || height > limits::kMaxSide || width * height > limits::kMaxPixels
        || bytes > limits::kMaxPictureBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This %1 picture is too large: %2 by %3 pixels.")
                          .arg(format)
                          .arg(width)
                          .arg(height),
                      format);
    }
}

QImage::Format ImageFormatOf(PixelLayout layout)
{
    switch (layout) {
    case PixelLayout::Mono:
        return QImage::Format_Mono;
    case PixelLayout::Indexed8:
        return QImage::Format_Indexed8;
    case PixelLayout::Grey8:
        return QImage::Format_Grayscale8;
    case PixelLayout::Grey16:
        return QImage::Format_Grayscale16;
    case PixelLayout::Rgb32:
        return QImage::Format_RGB32;
    case PixelLayout::Argb32:
        return QImage::Format_ARGB32;
    case PixelLayout::Rgbx64:
        return QImage::Format_RGBX64;
    case PixelLayout::Rgba64:
        return QImage::Format_RGBA64;
    case PixelLayout::Cmyk32:
        return QImage::Format_RGBA8888;
    }
    return QImage::Format_Invalid;
}

} // namespace

std::optional<CheckedPicture> CheckAnnouncement(const AnnounceMessage& said, const QString& format)
{
    const int bits = BitsOf(said.layout);
    if (bits == 0 || said.width < 1 || said.height < 1 || said.fileDepth < 1
        || said.fileDepth > 4096 || said.exact > 1 || said.colourCount < 0
        || said.colourCount > kMaxColours) {
        return {};
    }
    // The sides first: beyond their limits the bytes could overflow.
    CheckSize(said.width, said.height, 0, format);
    CheckedPicture picture{said, RowBytes(said.width, bits), 0};
    picture.pixelBytes = picture.rowBytes * said.height;
    CheckSize(said.width, said.height, picture.pixelBytes, format);
    return picture;
}

std::optional<ImageFacts> CheckFacts(const FactsMessage& said, qint64 fileBytes,
                                     const QString& format)
{
    const std::optional<QString> compression =
        CheckText(said.compression, sizeof(said.compression));
    constexpr qint32 kMaxDotsPerInch = 1'000'000;
    const auto between = [](qint32 value, qint32 low, qint32 high) {
        return value >= low && value <= high;
    };
    if (!compression || said.width < 1 || said.height < 1 || !between(said.bits, 1, 4096)
        || !between(said.format, 0, 300) || !between(said.pages, 1, limits::kMaxPages)
        || !between(said.xResolution, 0, kMaxDotsPerInch)
        || !between(said.yResolution, 0, kMaxDotsPerInch) || !between(said.orientation, 1, 8)
        || said.horizontal > 8 || said.vertical > 8 || said.compressionTag > 0xffff
        || said.progressive > 1) {
        return {};
    }
    CheckSize(said.width, said.height, 0, format);
    ImageFacts facts;
    facts.width = said.width;
    facts.height = said.height;
    facts.bits = qint16(said.bits);
    facts.format = qint16(said.format);
    facts.pages = said.pages;
    facts.xResolution = said.xResolution;
    facts.yResolution = said.yResolution;
    facts.sizeDisk = fileBytes;
    facts.sizeMemory = RowBytes(said.width, said.bits) * said.height;
    facts.orientation = quint8(said.orientation);
    facts.layout = {quint8(said.horizontal), quint8(said.vertical), quint16(said.compressionTag),
                    said.progressive != 0};
    facts.compression = *compression;
    return facts;
}

std::optional<QString> CheckText(const char* text, qint64 room)
{
    const char* end = std::find(text, text + room, '\0');
    if (end == text + room) {
        return {};
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString result = decoder(QByteArrayView(text, end - text));
    if (decoder.hasError()) {
        return {};
    }
    return result;
}

QImage MakeImage(const CheckedPicture& picture)
{
    QImage image =
        NewPicture(picture.said.width, picture.said.height, ImageFormatOf(picture.said.layout));
    if (image.isNull() || image.bytesPerLine() != picture.rowBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("There is not enough memory for this picture."));
    }
    if (picture.said.layout == PixelLayout::Mono) {
        image.setColorTable({0xff000000u, 0xffffffffu});
    } else if (picture.said.layout == PixelLayout::Indexed8) {
        // Always a whole table, so that no pixel points behind it.
        QList<QRgb> colours(kMaxColours, 0xff000000u);
        std::copy_n(picture.said.colours, picture.said.colourCount, colours.begin());
        image.setColorTable(colours);
    }
    return image;
}

ColourModel ModelOf(PixelLayout layout)
{
    switch (layout) {
    case PixelLayout::Mono:
        return ColourModel::BlackWhite;
    case PixelLayout::Indexed8:
        return ColourModel::Palette;
    case PixelLayout::Grey8:
    case PixelLayout::Grey16:
        return ColourModel::Grey;
    case PixelLayout::Cmyk32:
        return ColourModel::Cmyk;
    default:
        return ColourModel::Rgb;
    }
}

} // namespace quillane::worker
