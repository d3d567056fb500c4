#include "imaging/codecs/codecs.h"
#include "imaging/codecs/dib.h"
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kBmpName[] = "BMP";
constexpr int kBmpFileHeader = 14;

bool BmpIsMark(const uchar* p)
{
    return p[0] == 'B' && p[1] == 'M';
}

/// Where the picture's file header stands: an OS/2 bitmap array has one of its own before it.
qint64 BmpStart(ByteSource& source)
{
    uchar p[2 * kBmpFileHeader] = {};
    source.ReadAt(0, p, sizeof(p));
    return p[0] == 'B' && p[1] == 'A' && BmpIsMark(p + kBmpFileHeader) ? kBmpFileHeader : 0;
}

/// Position of the pixels: what the file header says, where that makes sense.
qint64 BmpPixelsAt(ByteSource& source, qint64 start, const DibHeader& header)
{
    uchar p[kBmpFileHeader] = {};
    source.ReadAt(start, p, sizeof(p));
    const qint64 told = Little32(p + 10);
    const qint64 least = header.coloursAt;
    return told >= least && told < source.Size() ? told : header.end;
}

/// An OS/2 1.x file tells the number of its colours only by where its pixels begin.
DibHeader BmpReadHeader(ByteSource& source, qint64& pixelsAt)
{
    const qint64 start = BmpStart(source);
    DibHeader header = ReadDibHeader(source, start + kBmpFileHeader, kBmpName);
    pixelsAt = BmpPixelsAt(source, start, header);
    const qint64 room = (pixelsAt - header.coloursAt) / header.colourBytes;
    if (header.colourCount > room) {
        header.colourCount = int(room);
    }
    return header;
}

bool BmpIsBlackWhite(const QList<QRgb>& colours)
{
    const QRgb black = qRgb(0, 0, 0);
    const QRgb white = qRgb(255, 255, 255);
    return colours.size() == 2
        && ((colours[0] == black && colours[1] == white)
            || (colours[0] == white && colours[1] == black));
}

/// Rows as they lie in the file; returns how many were there.
int BmpReadRows(ByteStream& stream, const DibHeader& header, QImage& image,
                const DecodeRequest& request)
{
    const DibRows rows(header);
    std::vector<uchar> stored(size_t(header.RowBytes()));
    const bool asBits = image.format() == QImage::Format_Mono;
    for (int i = 0; i < image.height(); ++i) {
        CheckCancelled(request);
        // The last row may lack its padding.
        const qint64 needed = (header.width * header.bits + 7) / 8;
        if (stream.Read(stored.data(), qint64(stored.size())) < needed) {
            return i;
        }
        uchar* to = image.scanLine(header.topDown ? i : image.height() - 1 - i);
        if (asBits) {
            std::copy_n(stored.data(), needed, to);
        } else {
            rows.Unpack(stored.data(), to);
        }
    }
    return image.height();
}

} // namespace

bool BmpMatches(QByteArrayView head, QStringView)
{
    if (head.size() < kBmpFileHeader + 4) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    if (p[0] == 'B' && p[1] == 'A') {
        return head.size() >= 2 * kBmpFileHeader && BmpIsMark(p + kBmpFileHeader);
    }
    const quint32 size = Little32(p + kBmpFileHeader);
    return BmpIsMark(p) && size >= 12 && size <= 124;
}

ImageFacts BmpProbe(ByteSource& source)
{
    qint64 pixelsAt = 0;
    const DibHeader header = BmpReadHeader(source, pixelsAt);
    ImageFacts facts;
    facts.width = qint32(header.width);
    facts.height = qint32(header.height);
    facts.bits = qint16(header.bits);
    facts.xResolution = header.xResolution;
    facts.yResolution = header.yResolution;
    const bool packed = header.packing != DibPacking::None;
    facts.format = header.kind == DibKind::Os21 ? 14
        : header.kind == DibKind::Os22          ? 74
        : packed                                ? 84
                                                : 6;
    facts.compression = packed ? QStringLiteral("RLE") : QStringLiteral("Uncompressed");
    return facts;
}

Bitmap BmpDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    qint64 pixelsAt = 0;
    const DibHeader header = BmpReadHeader(source, pixelsAt);
    QList<QRgb> colours;
    if (header.bits <= 8) {
        colours = ReadDibColours(source, header);
    }
    const bool bilevel = header.bits == 1 && BmpIsBlackWhite(colours);
    const bool alpha = header.bits > 8 && header.masks[3] != 0;
    QImage image = NewImage(kBmpName, header.width, header.height,
                            bilevel                ? QImage::Format_Mono
                                : header.bits <= 8 ? QImage::Format_Indexed8
                                : alpha            ? QImage::Format_ARGB32
                                                   : QImage::Format_RGB32);
    if (!colours.isEmpty()) {
        image.setColorTable(colours);
    }
    image.fill(header.bits <= 8 ? 0u : alpha ? 0u : 0xff000000u);
    ByteStream stream(source, pixelsAt, source.Size());
    const int rows = header.packing == DibPacking::None
        ? BmpReadRows(stream, header, image, request)
        : DecodeDibRuns(stream, header, image, request);
    if (rows == 0) {
        Damaged(kBmpName, QStringLiteral("it ends before its first row"));
    }
    Bitmap bitmap(std::move(image),
                  bilevel                ? ColourModel::BlackWhite
                      : header.bits <= 8 ? ColourModel::Palette
                                         : ColourModel::Rgb,
                  header.bits);
    bitmap.SetPartial(rows < bitmap.Height());
    return bitmap;
}

} // namespace quillane::codecs
