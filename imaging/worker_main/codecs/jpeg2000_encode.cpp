#include "core/failure.h"
#include "imaging/worker_main/codecs/jpeg2000_codestream.h"
#include "imaging/worker_main/codecs/jpeg2000_header.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include "imaging/worker_main/service/sample_rows.h"
#include <QtEndian>
#include <algorithm>

namespace quillane::worker {

namespace {

constexpr qint16 kJpeg2000File = 163, kJpeg2000Stream = 164;

/// What the samples of a JPEG 2000 picture are.
struct Jpeg2000Variant {
    SampleKind kind = SampleKind::Rgb8;
    int samples = 3;
    int bits = 8; ///< of a sample
    bool alpha = false;
};

[[noreturn]] void RefuseJpeg2000(const QString& words)
{
    throw Failure(kFailureGeneral, words);
}

bool IsGreyPalette(const PictureShape& shape)
{
    return std::all_of(shape.colours.begin(), shape.colours.end(), [](quint32 colour) {
        return (colour >> 16 & 0xff) == (colour & 0xff) && (colour >> 8 & 0xff) == (colour & 0xff);
    });
}

Jpeg2000Variant ChooseJpeg2000(const PictureShape& shape, qint32 wanted, bool boxed)
{
    qint32 bits = wanted;
    if (bits <= 0) {
        switch (shape.layout) {
        case PixelLayout::Indexed8:
            bits = IsGreyPalette(shape) ? 8 : 24;
            break;
        case PixelLayout::Mono:
        case PixelLayout::Grey8:
            bits = 8;
            break;
        case PixelLayout::Grey16:
            bits = 16;
            break;
        case PixelLayout::Rgb32:
            bits = 24;
            break;
        case PixelLayout::Argb32:
        case PixelLayout::Cmyk32:
            bits = 32;
            break;
        case PixelLayout::Rgbx64:
            bits = 48;
            break;
        case PixelLayout::Rgba64:
            bits = 64;
            break;
        }
    }
    const bool grey = shape.layout == PixelLayout::Mono || shape.layout == PixelLayout::Grey8
        || shape.layout == PixelLayout::Grey16
        || (shape.layout == PixelLayout::Indexed8 && IsGreyPalette(shape));
    switch (bits) {
    case 8:
        if (!grey) {
            RefuseJpeg2000(QStringLiteral("A JPEG 2000 file of 8 bits a pixel holds grey only, and "
                                          "this picture has colours."));
        }
        return {SampleKind::Grey8, 1, 8, false};
    case 16:
        return {SampleKind::Grey16, 1, 16, false};
    case 24:
        return {SampleKind::Rgb8, 3, 8, false};
    case 32:
        // A bare codestream does not tell inks from colours.
        if (shape.layout == PixelLayout::Cmyk32 && boxed) {
            return {SampleKind::Cmyk8, 4, 8, false};
        }
        return {SampleKind::Rgba8, 4, 8, true};
    case 48:
        return {SampleKind::Rgb16, 3, 16, false};
    case 64:
        return {SampleKind::Rgba16, 4, 16, true};
    default:
        RefuseJpeg2000(QStringLiteral("A JPEG 2000 file does not hold %1 bits a pixel.").arg(bits));
    }
}

/// Boxes under construction.
class BoxWriter {
public:
    QByteArray& Bytes() { return mBytes; }
    void Number(quint32 value, int bytes)
    {
        for (int i = bytes - 1; i >= 0; --i) {
            mBytes.append(char(value >> 8 * i));
        }
    }
    void Box(quint32 type, const QByteArray& content)
    {
        Number(quint32(content.size()) + 8, 4);
        Number(type, 4);
        mBytes += content;
    }

private:
    QByteArray mBytes;
};

QByteArray ColourBox(const QByteArray& profile, const Jpeg2000Variant& variant)
{
    constexpr quint32 kSrgb = 16, kGrey = 17, kInk = 12;
    BoxWriter colour;
    const int colours = variant.alpha ? variant.samples - 1 : variant.samples;
    if (ProfileFits(profile, colours)) {
        colour.Number(2, 1);
        colour.Number(0, 2);
        colour.Bytes() += profile;
    } else {
        colour.Number(1, 1);
        colour.Number(0, 2);
        colour.Number(colours == 1 ? kGrey : colours == 4 ? kInk : kSrgb, 4);
    }
    return colour.Bytes();
}

/// Everything that stands before the codestream (ISO 15444-1, annex I).
QByteArray FileHead(const PictureShape& shape, const EncodeWish& wish,
                    const Jpeg2000Variant& variant)
{
    BoxWriter header, head, channels, file;
    head.Number(quint32(shape.height), 4);
    head.Number(quint32(shape.width), 4);
    head.Number(quint32(variant.samples), 2);
    head.Number(quint32(variant.bits - 1), 1);
    head.Number(7, 1);                                         // the compression there is
    head.Number(0, 2);                                         // colours known, nobody's property
    header.Box(0x69686472, head.Bytes());                      // "ihdr"
    header.Box(0x636f6c72, ColourBox(shape.profile, variant)); // "colr"
    if (variant.alpha) {
        channels.Number(quint32(variant.samples), 2);
        for (int i = 0; i < variant.samples; ++i) {
            const bool alpha = i + 1 == variant.samples;
            channels.Number(quint32(i), 2);
            channels.Number(alpha ? 1 : 0, 2);
            channels.Number(alpha ? 0 : quint32(i + 1), 2);
        }
        header.Box(0x63646566, channels.Bytes()); // "cdef"
    }
    constexpr qint32 kMostDots = 65535;
    if (wish.xResolution > 0 && wish.yResolution > 0 && wish.xResolution <= kMostDots
        && wish.yResolution <= kMostDots) {
        // Dots per inch are 10000 / 254 times as many to the metre.
        BoxWriter capture, resolution;
        for (const qint32 dots : {wish.yResolution, wish.xResolution}) {
            capture.Number(quint32(dots), 2);
            capture.Number(254, 2);
        }
        capture.Number(4, 1);
        capture.Number(4, 1);
        resolution.Box(0x72657363, capture.Bytes()); // "resc"
        header.Box(0x72657320, resolution.Bytes());  // "res "
    }
    file.Box(kBoxSignature, QByteArray("\r\n\x87\n", 4));
    file.Box(kBoxFileType, QByteArray("jp2 \0\0\0\0jp2 ", 12));
    file.Box(kBoxHeader, header.Bytes());
    return file.Bytes();
}

/// Boxes of the original that say nothing of the picture's shape go over: text, Exif, rights.
void CarryBoxes(ByteSource& original, FileSink& file)
{
    const Jpeg2000Header header = ReadJpeg2000Header(original);
    for (const Jpeg2000Box& box : header.boxes) {
        if (box.type == kBoxSignature || box.type == kBoxFileType || box.type == kBoxHeader
            || box.type == kBoxCodestream) {
            continue;
        }
        QByteArray bytes(box.end - box.content, Qt::Uninitialized);
        if (original.ReadAt(box.content, bytes.data(), bytes.size()) != bytes.size()) {
            ThrowJpeg2000Damaged();
        }
        BoxWriter copy;
        copy.Box(box.type, bytes);
        file.Append(copy.Bytes().constData(), copy.Bytes().size());
    }
}

} // namespace

void EncodeJpeg2000(PictureRows& picture, const EncodeWish& wish, FileSink& file)
{
    const PictureShape& shape = picture.Shape();
    if (shape.width == 0) {
        RefuseJpeg2000(QStringLiteral("There is no picture to write."));
    }
    if (wish.format != kJpeg2000File && wish.format != kJpeg2000Stream) {
        RefuseJpeg2000(
            QStringLiteral("JPEG 2000 files of format %1 cannot be written.").arg(wish.format));
    }
    const bool boxed = wish.format == kJpeg2000File;
    const Jpeg2000Variant variant = ChooseJpeg2000(shape, wish.bits, boxed);
    qint64 box = 0;
    if (boxed) {
        const QByteArray head = FileHead(shape, wish, variant);
        file.Append(head.constData(), head.size());
        box = file.Size();
        const uchar open[8] = {0, 0, 0, 0, 'j', 'p', '2', 'c'};
        file.Append(open, sizeof(open));
    }
    WriteJpeg2000Codestream(picture, variant.kind, wish.quality, file);
    if (boxed) {
        uchar length[4];
        qToBigEndian(quint32(file.Size() - box), length);
        file.WriteAt(box, length, sizeof(length));
        if (wish.original) {
            CarryBoxes(*wish.original, file);
        }
    }
}

} // namespace quillane::worker
