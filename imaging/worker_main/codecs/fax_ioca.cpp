// IOCA images, bare or in the structured fields of MO:DCA: the image's parameters and its data lie
// in segments, the data of one image in any number of them.
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/fax_wrap.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <algorithm>
#include <cmath>

namespace quillane::worker {

namespace {

constexpr char kIocaName[] = "IOCA image";
constexpr qint64 kIocaMaxBytes = 64ll << 20;
constexpr uchar kIocaFieldMark = 0x5a;
constexpr quint32 kIocaPictureData = 0xd3eefb; ///< identifiers of structured fields
constexpr quint32 kIocaEndImage = 0xd3a9fb;

enum IocaSegment : uchar {
    kIocaEnd = 0x71,
    kIocaEndContent = 0x93,
    kIocaSize = 0x94,
    kIocaEncoding = 0x95,
    kIocaElementSize = 0x96,
};

int IocaBig(const uchar* p)
{
    return p[0] << 8 | p[1];
}

struct IocaImage {
    bool wrapped = false;
    qint64 width = 0, height = 0;
    double xDots = 0, yDots = 0; ///< per inch
    int coding = 3;
    bool lowBitFirst = false;
    int bits = 1;
    QByteArray data;
};

/// The data of an image that was put together.
class IocaData : public ByteSource {
public:
    explicit IocaData(const QByteArray& bytes) : mBytes(bytes) { }
    qint64 Size() const override { return mBytes.size(); }
    qint64 ReadAt(qint64 position, void* to, qint64 count) override
    {
        if (position < 0 || position >= mBytes.size()) {
            return 0;
        }
        const qint64 got = std::min(count, mBytes.size() - position);
        std::copy_n(mBytes.constData() + position, got, static_cast<char*>(to));
        return got;
    }

private:
    const QByteArray& mBytes;
};

/// The fields that hold image segments, put together; everything else of a document is left out.
QByteArray IocaUnwrap(const QByteArray& file)
{
    QByteArray segments;
    const uchar* p = reinterpret_cast<const uchar*>(file.constData());
    constexpr qsizetype kHead = 9; // mark, length, identifier, flags
    for (qsizetype at = 0; at + kHead <= file.size() && p[at] == kIocaFieldMark;) {
        const qsizetype length = IocaBig(p + at + 1); // without the mark
        const quint32 kind = quint32(p[at + 3]) << 16 | quint32(IocaBig(p + at + 4));
        if (length < kHead - 1) {
            break;
        }
        if (kind == kIocaPictureData) {
            segments += file.mid(at + kHead, length - (kHead - 1));
        } else if (kind == kIocaEndImage && !segments.isEmpty()) {
            break; // the first image of the document
        }
        at += length + 1;
    }
    return segments;
}

void IocaTakeSize(const uchar* p, int length, IocaImage& image)
{
    if (length < 9) {
        return;
    }
    // Dots in ten units: inches, or with 1 centimetres of ten.
    const double unit = p[0] == 1 ? 10 / 2.54 : 10;
    image.xDots = IocaBig(p + 1) / unit;
    image.yDots = IocaBig(p + 3) / unit;
    image.width = IocaBig(p + 5);
    image.height = IocaBig(p + 7);
}

/// Data of a length that is not told: all but the ends of content and segment.
QByteArray IocaRest(const QByteArray& segments, qsizetype at)
{
    QByteArray rest = segments.mid(at);
    for (const uchar code : {kIocaEnd, kIocaEndContent}) {
        if (rest.endsWith('\0') && rest.size() >= 2 && uchar(rest[rest.size() - 2]) == code) {
            rest.chop(2);
        }
    }
    return rest;
}

void IocaTakeSegments(const QByteArray& segments, IocaImage& image)
{
    const uchar* p = reinterpret_cast<const uchar*>(segments.constData());
    const qsizetype size = segments.size();
    for (qsizetype at = 0; at + 2 <= size;) {
        const uchar code = p[at];
        if (code == 0xfe) { // a long one: two bytes of code, two of length
            if (at + 4 > size) {
                return;
            }
            const qsizetype length = IocaBig(p + at + 2);
            if (p[at + 1] == 0x92) {
                image.data +=
                    length > 0 ? segments.mid(at + 4, length) : IocaRest(segments, at + 4);
                if (length == 0) {
                    return;
                }
            }
            at += 4 + length;
            continue;
        }
        const int length = p[at + 1];
        if (at + 2 + length > size) {
            return;
        }
        const uchar* body = p + at + 2;
        if (code == kIocaSize) {
            IocaTakeSize(body, length, image);
        } else if (code == kIocaEncoding && length >= 2) {
            image.coding = body[0];
            image.lowBitFirst = length >= 3 && body[2] == 1;
        } else if (code == kIocaElementSize && length >= 1) {
            image.bits = body[0];
        } else if (code == kIocaEndContent && !image.data.isEmpty()) {
            return;
        }
        at += 2 + length;
    }
}

IocaImage IocaRead(ByteSource& source)
{
    const QByteArray file = ReadFaxBytes(source, kIocaMaxBytes, kIocaName, true);
    IocaImage image;
    image.wrapped = file.startsWith(char(kIocaFieldMark));
    IocaTakeSegments(image.wrapped ? IocaUnwrap(file) : file, image);
    if (image.width == 0 && image.height == 0) {
        ThrowFaxDamaged(kIocaName, QStringLiteral("it does not tell its size"));
    }
    CheckFaxSize(kIocaName, image.width, image.height);
    const bool known = image.coding == 0x03 || image.coding == 0x80 || image.coding == 0x81
        || image.coding == 0x82;
    if (!known) {
        ThrowFaxUnsupported(kIocaName, QStringLiteral("is compressed in way %1").arg(image.coding));
    }
    if (image.bits != 1 && !(image.bits == 8 && image.coding == 0x03)) {
        ThrowFaxUnsupported(kIocaName, QStringLiteral("has %1 bits per pixel").arg(image.bits));
    }
    return image;
}

qint16 IocaFormat(const IocaImage& image)
{
    // What is not compressed has no code of its own; the best of the three is the nearest.
    const int way = image.coding == 0x80 ? 0 : image.coding == 0x81 ? 1 : 2;
    return qint16((image.wrapped ? 71 : 77) + way);
}

QString IocaCompression(const IocaImage& image)
{
    switch (image.coding) {
    case 0x03:
        return QStringLiteral("Uncompressed");
    case 0x82:
        return QStringLiteral("CCITT Group 4");
    default:
        return QStringLiteral("CCITT Group 3");
    }
}

} // namespace

ImageFacts ProbeIoca(ByteSource& source)
{
    const IocaImage image = IocaRead(source);
    ImageFacts facts;
    facts.width = qint32(image.width);
    facts.height = qint32(image.height);
    facts.bits = qint16(image.bits);
    facts.format = IocaFormat(image);
    facts.xResolution = qint32(std::lround(image.xDots));
    facts.yResolution = qint32(std::lround(image.yDots));
    facts.compression = IocaCompression(image);
    return facts;
}

bool DecodeIoca(ByteSource& source, const PictureWish&, PictureSink& sink)
{
    const IocaImage image = IocaRead(source);
    BarePixels pixels;
    pixels.bytes = image.data.size();
    pixels.width = qint32(image.width);
    pixels.height = qint32(image.height);
    pixels.coding = image.coding == 0x03 ? BareCoding::None
        : image.coding == 0x82           ? BareCoding::Group4
                                         : BareCoding::Group3;
    pixels.twoDimensional = image.coding == 0x81;
    pixels.lowBitFirst = image.lowBitFirst;
    pixels.bits = image.bits;
    IocaData data(image.data);
    return DecodeBarePixels(data, pixels, kIocaName, sink);
}

} // namespace quillane::worker
