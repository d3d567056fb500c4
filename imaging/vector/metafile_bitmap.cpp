#include "imaging/vector/metafile_bitmap.h"
#include "imaging/codecs/codecs.h"
#include "imaging/codecs/dib.h"

namespace quillane::drawing {

namespace {

using codecs::Little16;
using codecs::Little32;

constexpr char kMetafileBitmapName[] = "metafile";
constexpr int kMetafileFieldsEnd = 40; ///< of a header with a field for packing

QImage MetafileRows(codecs::ByteStream& stream, const codecs::DibHeader& header, QImage image)
{
    const codecs::DibRows rows(header);
    std::vector<uchar> stored(size_t(header.RowBytes()));
    for (int i = 0; i < image.height(); ++i) {
        const qint64 got = stream.Read(stored.data(), qint64(stored.size()));
        if (got < (header.width * header.bits + 7) / 8) {
            break;
        }
        rows.Unpack(stored.data(), image.scanLine(header.topDown ? i : image.height() - 1 - i));
    }
    return image;
}

} // namespace

bool MetafileBitmaps::Spend(qint64 width, qint64 height)
{
    const qint64 pixels = width * height;
    if (pixels > kMostPixels || pixels > mLeft) {
        mCutShort = true;
        return false;
    }
    mLeft -= pixels;
    return true;
}

QImage MetafileBitmaps::Wrapped(const QByteArray& bytes)
{
    MemorySource source(bytes);
    const bool jpeg = codecs::JpegMatches(bytes.first(qMin<qsizetype>(bytes.size(), 512)), {});
    if (!jpeg && !codecs::PngMatches(bytes.first(qMin<qsizetype>(bytes.size(), 512)), {})) {
        return {};
    }
    const ImageFacts facts = jpeg ? codecs::JpegProbe(source) : codecs::PngProbe(source);
    if (!Spend(facts.width, facts.height)) {
        return {};
    }
    return (jpeg ? codecs::JpegDecode(source, {}) : codecs::PngDecode(source, {})).ToDisplay();
}

QImage MetafileBitmaps::Unpacked(const QByteArray& header, const QByteArray& pixels,
                                 bool premultiplied)
{
    MemorySource source(header);
    codecs::DibHeader dib = codecs::ReadDibHeader(source, 0, kMetafileBitmapName);
    // Half of the pixels must be there, or the size is a mere claim.
    const qint64 stored = pixels.isEmpty() ? header.size() - dib.end : pixels.size();
    const bool packed = dib.packing != codecs::DibPacking::None;
    if (stored <= 0 || (!packed && dib.RowBytes() * dib.height / 2 > stored)
        || (packed && dib.width * dib.height / 4096 > stored) || !Spend(dib.width, dib.height)) {
        return {};
    }
    premultiplied = premultiplied && dib.bits == 32 && !packed;
    if (premultiplied) {
        dib.masks[3] = 0xff000000;
    }
    const bool alpha = dib.bits > 8 && dib.masks[3] != 0;
    QImage image = codecs::NewImage(kMetafileBitmapName, dib.width, dib.height,
                                    dib.bits <= 8 ? QImage::Format_Indexed8
                                        : alpha   ? QImage::Format_ARGB32
                                                  : QImage::Format_RGB32);
    if (dib.bits <= 8) {
        image.setColorTable(codecs::ReadDibColours(source, dib));
    }
    image.fill(dib.bits <= 8 ? 0u : 0xffffffffu);
    MemorySource pixelSource(pixels.isEmpty() ? header : pixels);
    codecs::ByteStream stream(pixelSource, pixels.isEmpty() ? dib.end : 0, pixelSource.Size());
    if (packed) {
        codecs::DecodeDibRuns(stream, dib, image, {});
        return image;
    }
    image = MetafileRows(stream, dib, std::move(image));
    if (premultiplied) {
        image.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
    }
    return image;
}

QImage MetafileBitmaps::Independent(QByteArrayView header, QByteArrayView pixels)
{
    const auto bytes = [](QByteArrayView view) {
        return QByteArray::fromRawData(view.data(), view.size());
    };
    QImage image;
    ResumeNext([&] {
        if (header.size() >= kMetafileFieldsEnd) {
            const uchar* p = reinterpret_cast<const uchar*>(header.data());
            const quint32 packing = Little32(p + 16);
            if (Little32(p) >= kMetafileFieldsEnd && (packing == 4 || packing == 5)) {
                image = Wrapped(bytes(pixels.isEmpty() && Little32(p) <= header.size()
                                          ? header.sliced(Little32(p))
                                          : pixels));
                return;
            }
        }
        image = Unpacked(bytes(header), bytes(pixels), false);
    });
    return image;
}

QImage MetafileBitmaps::Premultiplied(QByteArrayView header, QByteArrayView pixels)
{
    QImage image;
    ResumeNext([&] { image = Unpacked(header.toByteArray(), pixels.toByteArray(), true); });
    return image;
}

QImage MetafileBitmaps::Device(QByteArrayView bytes, QRgb zero, QRgb one)
{
    constexpr int kHeader = 10;
    if (bytes.size() < kHeader) {
        return {};
    }
    const uchar* p = reinterpret_cast<const uchar*>(bytes.data());
    const int width = Little16(p + 2);
    const int height = Little16(p + 4);
    const int line = Little16(p + 6);
    const int bits = p[8] * p[9];
    const bool known = bits == 1 || bits == 24 || bits == 32;
    if (!known || width < 1 || height < 1 || qint64(width) * bits > qint64(line) * 8
        || qint64(line) * height > bytes.size() - kHeader || !Spend(width, height)) {
        return {};
    }
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        const uchar* from = p + kHeader + qint64(y) * line;
        QRgb* to = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const uchar* pixel = from + qint64(x) * bits / 8;
            to[x] = bits == 1 ? (from[x / 8] >> (7 - x % 8) & 1 ? one : zero)
                              : qRgb(pixel[2], pixel[1], pixel[0]);
        }
    }
    return image;
}

} // namespace quillane::drawing
