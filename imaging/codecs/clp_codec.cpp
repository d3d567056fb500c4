// Clipboard files: a directory of formats, of which the bitmaps are read.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/dib.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include <algorithm>
#include <cstring>
#include <optional>

namespace quillane::codecs {

namespace {

constexpr char kClpName[] = "clipboard file";
constexpr int kClpShortMark = 0xc350; ///< 16-bit numbers, names of 79 bytes
constexpr int kClpWideMark = 0xc351;  ///< 32-bit numbers, names of 79 characters of two bytes
constexpr int kClpBitmapBytes = 14;   ///< header of a device's bitmap

enum ClpFormat : quint32 { kClpBitmap = 2, kClpDib = 8, kClpDib5 = 17 };

struct ClpEntry {
    quint32 format = 0;
    qint64 at = 0;
    qint64 size = 0;
};

/// The best bitmap of the directory: one that knows its colours before one of a device.
ClpEntry ClpFind(ByteSource& source)
{
    uchar head[4];
    if (source.ReadAt(0, head, sizeof(head)) != sizeof(head)) {
        Damaged(kClpName, QStringLiteral("its directory is cut short"));
    }
    const bool wide = Little16(head) == kClpWideMark;
    const int count = std::min<int>(Little16(head + 2), 256);
    const int entryBytes = wide ? 12 + 160 : 10 + 79;
    std::optional<ClpEntry> best;
    for (int i = 0; i < count; ++i) {
        uchar p[12];
        if (source.ReadAt(4 + qint64(i) * entryBytes, p, sizeof(p)) != sizeof(p)) {
            break;
        }
        ClpEntry entry;
        entry.format = wide ? Little32(p) : Little16(p);
        entry.size = Little32(p + (wide ? 4 : 2));
        entry.at = Little32(p + (wide ? 8 : 6));
        const bool dib = entry.format == kClpDib || entry.format == kClpDib5;
        if (dib || (entry.format == kClpBitmap && !best)) {
            best = entry;
        }
        if (entry.format == kClpDib) {
            break;
        }
    }
    if (!best) {
        Unsupported(kClpName, QStringLiteral("holds no bitmap"));
    }
    return *best;
}

/// A device's bitmap: rows of whole 16 bits, its colours those of the display.
struct ClpDeviceBitmap {
    int width = 0, height = 0, rowBytes = 0, planes = 0, bits = 0;
    int Depth() const { return planes * bits; }
};

ClpDeviceBitmap ClpReadDeviceBitmap(ByteSource& part)
{
    uchar p[kClpBitmapBytes];
    if (part.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kClpName, QStringLiteral("its bitmap is cut short"));
    }
    ClpDeviceBitmap bitmap{Little16(p + 2), Little16(p + 4), Little16(p + 6), p[8], p[9]};
    CheckSides(kClpName, bitmap.width, bitmap.height);
    const int depth = bitmap.Depth();
    const bool known = depth == 1 || (depth == 4 && (bitmap.planes == 4 || bitmap.planes == 1))
        || (bitmap.planes == 1 && (depth == 8 || depth == 24 || depth == 32));
    if (!known) {
        Unsupported(kClpName,
                    QStringLiteral("holds a bitmap of %1 planes of %2 bits")
                        .arg(bitmap.planes)
                        .arg(bitmap.bits));
    }
    if (bitmap.rowBytes * 8 < bitmap.width * bitmap.bits) {
        Damaged(kClpName, QStringLiteral("its rows are shorter than its width"));
    }
    return bitmap;
}

Bitmap ClpDecodeDevice(ByteSource& part, const DecodeRequest& request)
{
    const ClpDeviceBitmap bitmap = ClpReadDeviceBitmap(part);
    const int depth = bitmap.Depth();
    QImage image;
    if (depth > 8) {
        image = NewImage(kClpName, bitmap.width, bitmap.height, QImage::Format_RGB32);
    } else {
        image = NewIndexedImage(kClpName, bitmap.width, bitmap.height, depth,
                                depth == 4 ? SixteenColours() : GreySteps(1 << depth));
    }
    ByteStream stream(part, kClpBitmapBytes, part.Size());
    std::vector<uchar> row(size_t(bitmap.rowBytes * bitmap.planes));
    std::vector<uchar> indexes(size_t(bitmap.width));
    int rows = 0;
    for (; rows < bitmap.height; ++rows) {
        CheckCancelled(request);
        if (stream.Read(row.data(), qint64(row.size())) != qint64(row.size())) {
            break;
        }
        if (depth > 8) {
            QRgb* to = reinterpret_cast<QRgb*>(image.scanLine(rows));
            for (int x = 0; x < bitmap.width; ++x) {
                const uchar* p = &row[size_t(x * depth / 8)];
                to[x] = qRgb(p[2], p[1], p[0]);
            }
            continue;
        }
        if (bitmap.bits == 1) {
            MergePlanes(row.data(), bitmap.planes, bitmap.rowBytes, bitmap.width, indexes.data());
        } else {
            SpreadPixels(row.data(), bitmap.bits, bitmap.width, indexes.data());
        }
        PutIndexes(image, rows, indexes.data());
    }
    return FinishPicture(kClpName, std::move(image), depth, rows);
}

Bitmap ClpDecodeDib(ByteSource& part, const DecodeRequest& request)
{
    const DibHeader header = ReadDibHeader(part, 0, kClpName);
    const bool indexed = header.bits <= 8;
    const bool alpha = !indexed && header.masks[3] != 0;
    QImage image;
    if (indexed) {
        const QList<QRgb> colours = ReadDibColours(part, header);
        image = NewImage(kClpName, header.width, header.height, QImage::Format_Indexed8);
        image.setColorTable(colours);
        image.fill(0u);
    } else {
        image = NewImage(kClpName, header.width, header.height,
                         alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        image.fill(alpha ? 0u : 0xff000000u);
    }
    ByteStream stream(part, header.end, part.Size());
    int rows = 0;
    if (header.packing != DibPacking::None) {
        rows = DecodeDibRuns(stream, header, image, request);
    } else {
        const DibRows unpack(header);
        std::vector<uchar> stored(size_t(header.RowBytes()));
        for (; rows < image.height(); ++rows) {
            CheckCancelled(request);
            if (stream.Read(stored.data(), qint64(stored.size())) != qint64(stored.size())) {
                break;
            }
            unpack.Unpack(stored.data(),
                          image.scanLine(header.topDown ? rows : image.height() - 1 - rows));
        }
    }
    return FinishPicture(kClpName, std::move(image), header.bits, rows,
                         header.topDown ? RowOrder::TopFirst : RowOrder::BottomFirst);
}

} // namespace

bool ClpMatches(QByteArrayView head, QStringView)
{
    if (head.size() < 16) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    const int mark = Little16(p);
    const int count = Little16(p + 2);
    return (mark == kClpShortMark || mark == kClpWideMark) && count >= 1 && count <= 256;
}

ImageFacts ClpProbe(ByteSource& source)
{
    const ClpEntry entry = ClpFind(source);
    PartSource part(source, entry.at, entry.size);
    ImageFacts facts;
    facts.format = 114;
    facts.compression = QStringLiteral("Uncompressed");
    if (entry.format == kClpBitmap) {
        const ClpDeviceBitmap bitmap = ClpReadDeviceBitmap(part);
        facts.width = bitmap.width;
        facts.height = bitmap.height;
        facts.bits = qint16(bitmap.Depth());
        return facts;
    }
    const DibHeader header = ReadDibHeader(part, 0, kClpName);
    facts.width = qint32(header.width);
    facts.height = qint32(header.height);
    facts.bits = qint16(header.bits);
    facts.xResolution = header.xResolution;
    facts.yResolution = header.yResolution;
    if (header.packing != DibPacking::None) {
        facts.compression = QStringLiteral("RLE");
    }
    return facts;
}

Bitmap ClpDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const ClpEntry entry = ClpFind(source);
    PartSource part(source, entry.at, entry.size);
    return entry.format == kClpBitmap ? ClpDecodeDevice(part, request)
                                      : ClpDecodeDib(part, request);
}

} // namespace quillane::codecs
