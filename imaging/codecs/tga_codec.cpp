// TARGA: no mark at its beginning, so that its name has to say what it is; colours by map or in 15
// to 32 bits, packed or not, from any corner.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include <algorithm>
#include <initializer_list>

namespace quillane::codecs {

namespace {

constexpr char kTgaName[] = "TARGA";
constexpr int kTgaHeaderBytes = 18;

enum TgaKind : int { kTgaMapped = 1, kTgaColour = 2, kTgaGrey = 3, kTgaPackedBit = 8 };

struct TgaHeader {
    int kind = 0;
    bool packed = false;
    int depth = 0;
    int alphaBits = 0;
    int width = 0;
    int height = 0;
    bool topDown = false;
    bool rightToLeft = false;
    qint64 mapAt = 0;
    int mapFirst = 0;
    int mapCount = 0;
    int mapDepth = 0;
    qint64 pixelsAt = 0;

    int PixelBytes() const { return (depth + 7) / 8; }
};

bool TgaDepthIsKnown(int kind, int depth)
{
    switch (kind) {
    case kTgaMapped:
        return depth == 8 || depth == 16;
    case kTgaColour:
        return depth == 15 || depth == 16 || depth == 24 || depth == 32;
    case kTgaGrey:
        return depth == 8 || depth == 16;
    default:
        return false;
    }
}

/// Whether these bytes can be a header at all.
bool TgaMakesSense(const uchar* p)
{
    const int kind = p[2] & ~kTgaPackedBit;
    const int mapDepth = p[7];
    const bool mapFits = p[1] == 0
        || (p[1] == 1 && (mapDepth == 15 || mapDepth == 16 || mapDepth == 24 || mapDepth == 32));
    return p[1] <= 1 && mapFits && p[2] <= 11 && TgaDepthIsKnown(kind, p[16])
        && (kind != kTgaMapped || p[1] == 1) && Little16(p + 12) > 0 && Little16(p + 14) > 0
        && (p[17] & 0xc0) == 0;
}

TgaHeader TgaReadHeader(ByteSource& source)
{
    uchar p[kTgaHeaderBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kTgaName, QStringLiteral("its header is cut short"));
    }
    if (!TgaMakesSense(p)) {
        Damaged(kTgaName, QStringLiteral("its header makes no sense"));
    }
    TgaHeader header;
    header.kind = p[2] & ~kTgaPackedBit;
    header.packed = (p[2] & kTgaPackedBit) != 0;
    header.depth = p[16];
    header.alphaBits = p[17] & 15;
    header.width = Little16(p + 12);
    header.height = Little16(p + 14);
    header.topDown = (p[17] & 0x20) != 0;
    header.rightToLeft = (p[17] & 0x10) != 0;
    header.mapAt = kTgaHeaderBytes + p[0];
    if (p[1] == 1) {
        header.mapFirst = Little16(p + 3);
        header.mapCount = Little16(p + 5);
        header.mapDepth = p[7];
    }
    header.pixelsAt = header.mapAt + qint64(header.mapCount) * ((header.mapDepth + 7) / 8);
    CheckSides(kTgaName, header.width, header.height);
    return header;
}

/// One pixel or map entry of 15 to 32 bits.
QRgb TgaColour(const uchar* p, int depth, bool alpha)
{
    if (depth <= 16) {
        const int value = Little16(p);
        const auto level = [](int five) { return ((five & 31) * 255 + 15) / 31; };
        return qRgb(level(value >> 10), level(value >> 5), level(value));
    }
    return qRgba(p[2], p[1], p[0], alpha && depth == 32 ? p[3] : 255);
}

QList<QRgb> TgaColours(ByteSource& source, const TgaHeader& header)
{
    const int bytes = (header.mapDepth + 7) / 8;
    std::vector<uchar> map(size_t(header.mapCount * bytes));
    const qint64 got = source.ReadAt(header.mapAt, map.data(), qint64(map.size())) / bytes;
    QList<QRgb> colours;
    colours.reserve(256);
    for (int i = 0; i < 256; ++i) {
        const int entry = i - header.mapFirst;
        colours.append(entry >= 0 && entry < got
                           ? TgaColour(map.data() + qint64(entry) * bytes, header.mapDepth, false)
                           : qRgb(0, 0, 0));
    }
    return colours;
}

/// Pixels of whole bytes, out of packets that may go on from one row to the next.
class TgaPixels {
public:
    TgaPixels(ByteStream& stream, const TgaHeader& header)
        : mStream(stream),
          mPacked(header.packed),
          mBytes(header.PixelBytes())
    { }
    /// Pixels that were there.
    qint64 Read(uchar* to, qint64 count)
    {
        if (!mPacked) {
            return mStream.Read(to, count * mBytes) / mBytes;
        }
        for (qint64 i = 0; i < count; ++i, to += mBytes) {
            if (mLeft == 0) {
                const int code = mStream.Next();
                mRun = (code & 0x80) != 0;
                mLeft = (code & 0x7f) + 1;
                if (code < 0 || (mRun && mStream.Read(mValue, mBytes) != mBytes)) {
                    mLeft = 0;
                    return i;
                }
            }
            if (mRun) {
                std::copy_n(mValue, mBytes, to);
            } else if (mStream.Read(to, mBytes) != mBytes) {
                return i;
            }
            --mLeft;
        }
        return count;
    }

private:
    ByteStream& mStream;
    bool mPacked;
    int mBytes;
    int mLeft = 0;
    bool mRun = false;
    uchar mValue[4] = {};
};

void TgaPutRow(const uchar* from, const TgaHeader& header, QImage& image, int y)
{
    const int step = header.PixelBytes();
    if (image.format() == QImage::Format_Indexed8 || image.format() == QImage::Format_Grayscale8) {
        uchar* to = image.scanLine(y);
        for (int x = 0; x < header.width; ++x) {
            to[x] = from[x * step]; // of two bytes the second is high or alpha
        }
        return;
    }
    QRgb* to = reinterpret_cast<QRgb*>(image.scanLine(y));
    const bool alpha = image.format() == QImage::Format_ARGB32;
    for (int x = 0; x < header.width; ++x) {
        to[x] = TgaColour(from + x * step, header.depth, alpha);
    }
}

QImage TgaNewImage(ByteSource& source, const TgaHeader& header)
{
    const auto make = [&](QImage::Format layout) {
        return NewImage(kTgaName, header.width, header.height, layout);
    };
    if (header.kind == kTgaMapped) {
        if (header.depth != 8) {
            Unsupported(kTgaName, QStringLiteral("has a map of more than 256 colours"));
        }
        return NewIndexedImage(kTgaName, header.width, header.height, 8,
                               TgaColours(source, header));
    }
    if (header.kind == kTgaGrey) {
        return make(QImage::Format_Grayscale8);
    }
    return make(header.depth == 32 && header.alphaBits > 0 ? QImage::Format_ARGB32
                                                           : QImage::Format_RGB32);
}

/// Old writers leave the alpha of all pixels at zero and mean none.
void TgaMendAlpha(QImage& image)
{
    if (image.format() != QImage::Format_ARGB32) {
        return;
    }
    for (int y = 0; y < image.height(); ++y) {
        const QRgb* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::any_of(row, row + image.width(), [](QRgb p) { return qAlpha(p) != 0; })) {
            return;
        }
    }
    image.reinterpretAsFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        QRgb* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::for_each(row, row + image.width(), [](QRgb& p) { p |= 0xff000000u; });
    }
}

} // namespace

bool TgaMatches(QByteArrayView head, QStringView extension)
{
    const std::initializer_list<const char*> names{"TGA", "ICB", "VDA", "VST", "TARGA"};
    return head.size() >= kTgaHeaderBytes
        && std::any_of(names.begin(), names.end(),
                       [&](const char* name) {
                           return extension.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
                       })
        && TgaMakesSense(reinterpret_cast<const uchar*>(head.data()));
}

ImageFacts TgaProbe(ByteSource& source)
{
    const TgaHeader header = TgaReadHeader(source);
    ImageFacts facts;
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = qint16(header.depth == 15 ? 16 : header.depth);
    facts.format = 4;
    facts.compression = header.packed ? QStringLiteral("RLE") : QStringLiteral("Uncompressed");
    return facts;
}

Bitmap TgaDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const TgaHeader header = TgaReadHeader(source);
    QImage image = TgaNewImage(source, header);
    ByteStream stream(source, header.pixelsAt, source.Size());
    TgaPixels pixels(stream, header);
    std::vector<uchar> row(size_t(header.width * header.PixelBytes()));
    int rows = 0;
    for (; rows < header.height; ++rows) {
        CheckCancelled(request);
        const qint64 got = pixels.Read(row.data(), header.width);
        if (got == 0) {
            break;
        }
        std::fill(row.begin() + got * header.PixelBytes(), row.end(), uchar(0));
        TgaPutRow(row.data(), header, image, header.topDown ? rows : header.height - 1 - rows);
        if (got < header.width) {
            break;
        }
    }
    Bitmap bitmap =
        FinishPicture(kTgaName, std::move(image), header.depth == 15 ? 16 : header.depth, rows,
                      header.topDown ? RowOrder::TopFirst : RowOrder::BottomFirst);
    TgaMendAlpha(bitmap.Pixels());
    if (header.rightToLeft) {
        bitmap.Pixels() = bitmap.Pixels().mirrored(true, false);
    }
    return bitmap;
}

} // namespace quillane::codecs
