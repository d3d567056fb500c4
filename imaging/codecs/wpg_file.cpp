#include "imaging/codecs/wpg_file.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/raster_support.h"
#include "imaging/limits.h"
#include <algorithm>

namespace quillane::codecs {

namespace {

constexpr int kWpgHeaderBytes = 16;
constexpr int kWpgMostRecords = 200'000;

enum WpgRead : int {
    kWpgReadBitmap = 0x0b,
    kWpgReadColours = 0x0e,
    kWpgReadPlaced = 0x14,
    kWpg2Colours = 0x0c,
    kWpg2Pixels = 0x0e,
};

/// A length of one byte, or behind 255 of two, or behind a high bit in those of four.
qint64 WpgLength(ByteWindow& window, qint64& at, int byte)
{
    if (byte != 255) {
        return byte;
    }
    const uchar* p = window.At(at, 2);
    if (!p) {
        return -1;
    }
    const int first = Little16(p);
    at += 2;
    if ((first & 0x8000) == 0) {
        return first;
    }
    p = window.At(at, 2);
    if (!p) {
        return -1;
    }
    at += 2;
    return qint64(first & 0x7fff) << 16 | Little16(p);
}

QList<QRgb> WpgFirstColours()
{
    QList<QRgb> colours = SixteenColours();
    colours += GreySteps(16);
    FitColours(colours, 256);
    return colours;
}

/// Sixteen bits of first index, sixteen of count, then the colours.
void WpgTakeColours(ByteWindow& window, qint64 at, qint64 end, int colourBytes,
                    QList<QRgb>& colours)
{
    const uchar* p = window.At(at, 4);
    if (!p || at + 4 > end) {
        return;
    }
    const int first = Little16(p);
    const int count = Little16(p + 2);
    at += 4;
    for (int i = first; i < std::min(first + count, 256) && at + colourBytes <= end; ++i) {
        p = window.At(at, colourBytes);
        if (!p) {
            return;
        }
        colours[i] = qRgb(p[0], p[1], p[2]);
        at += colourBytes;
    }
}

void WpgAdd(WpgBitmap bitmap, const QList<QRgb>& colours, qint64 at, qint64 end,
            QList<WpgBitmap>& found)
{
    const int depth = bitmap.depth;
    const bool known = depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 24;
    if (!known || bitmap.width < 1 || bitmap.height < 1) {
        return;
    }
    if (depth == 1 && colours == WpgFirstColours()) {
        bitmap.colours = {qRgb(0, 0, 0), qRgb(255, 255, 255)};
    } else if (depth <= 8) {
        bitmap.colours = colours.first(1 << depth);
    }
    bitmap.at = at;
    bitmap.bytes = std::max<qint64>(end - at, 0);
    found.append(bitmap);
}

void WpgWalkFirst(ByteSource& source, qint64 at, QList<WpgBitmap>& found)
{
    ByteWindow window(source);
    QList<QRgb> colours = WpgFirstColours();
    for (int i = 0; i < kWpgMostRecords && found.size() < limits::kMaxPages; ++i) {
        const uchar* p = window.At(at, 2);
        if (!p) {
            return;
        }
        const int kind = p[0];
        const int lengthByte = p[1];
        at += 2;
        const qint64 length = WpgLength(window, at, lengthByte);
        const qint64 end = at + length;
        if (length < 0) {
            return;
        }
        if (kind == kWpgReadColours) {
            WpgTakeColours(window, at, end, 3, colours);
        } else if (kind == kWpgReadBitmap || kind == kWpgReadPlaced) {
            const int placing = kind == kWpgReadPlaced ? 10 : 0; // an angle and a box
            if (const uchar* b = window.At(at + placing, 10)) {
                WpgBitmap bitmap;
                bitmap.width = Little16(b);
                bitmap.height = Little16(b + 2);
                bitmap.depth = Little16(b + 4);
                bitmap.xResolution = Little16(b + 6);
                bitmap.yResolution = Little16(b + 8);
                bitmap.packing = WpgPacking::First;
                WpgAdd(bitmap, colours, at + placing + 10, end, found);
            }
        }
        at = end;
    }
}

void WpgWalkSecond(ByteSource& source, qint64 at, QList<WpgBitmap>& found)
{
    ByteWindow window(source);
    QList<QRgb> colours = WpgFirstColours();
    for (int i = 0; i < kWpgMostRecords && found.size() < limits::kMaxPages; ++i) {
        const uchar* p = window.At(at, 3);
        if (!p) {
            return;
        }
        const int kind = p[1];
        const int extensionByte = p[2];
        at += 3;
        const qint64 extension = WpgLength(window, at, extensionByte);
        p = window.At(at, 1);
        if (extension < 0 || !p) {
            return;
        }
        const int lengthByte = p[0];
        ++at;
        const qint64 length = WpgLength(window, at, lengthByte);
        const qint64 end = at + length;
        if (length < 0) {
            return;
        }
        if (kind == kWpg2Colours) {
            WpgTakeColours(window, at, end, 4, colours);
        } else if (kind == kWpg2Pixels) {
            if (const uchar* b = window.At(at, 7)) {
                constexpr int kDepths[] = {0, 1, 2, 4, 8, 0, 0, 0, 24};
                WpgBitmap bitmap;
                bitmap.width = Little16(b);
                bitmap.height = Little16(b + 2);
                bitmap.depth = b[4] < 9 ? kDepths[b[4]] : 0;
                bitmap.packing = b[5] == 1 ? WpgPacking::Second : WpgPacking::None;
                // What is not packed may begin with the code for the size of a sample all the same.
                constexpr int kSampleSize = 0x7d;
                const bool coded = bitmap.packing == WpgPacking::None && b[6] == kSampleSize
                    && end - at >= 8 + bitmap.RowBytes() * bitmap.height;
                WpgAdd(bitmap, colours, at + (coded ? 8 : 6), end, found);
            }
        }
        at = end;
    }
}

} // namespace

QList<WpgBitmap> FindWpgBitmaps(ByteSource& source)
{
    uchar p[kWpgHeaderBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kWpgName, QStringLiteral("its header is cut short"));
    }
    const qint64 first = Little32(p + 4);
    const int version = p[10];
    if (Little16(p + 12) != 0) {
        Unsupported(kWpgName, QStringLiteral("is locked with a password"));
    }
    QList<WpgBitmap> found;
    if (version == 1) {
        WpgWalkFirst(source, first, found);
    } else if (version == 2) {
        WpgWalkSecond(source, first, found);
    } else {
        Unsupported(kWpgName, QStringLiteral("is of version %1").arg(version));
    }
    if (found.isEmpty()) {
        Unsupported(kWpgName, QStringLiteral("holds no bitmap but only lines and text"));
    }
    return found;
}

} // namespace quillane::codecs
