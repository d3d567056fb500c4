#include "imaging/codecs/codecs.h"
#include "imaging/codecs/dib.h"
#include <algorithm>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kIcoName[] = "icon";
constexpr int kIcoHeadBytes = 6;
constexpr int kIcoEntryBytes = 16;

/// The first picture of the directory.
struct IcoEntry {
    bool cursor = false;
    int pages = 0;
    int height = 0; ///< 256 is written as 0
    qint64 at = 0;
    qint64 size = 0;
};

IcoEntry IcoReadEntry(ByteSource& source)
{
    uchar p[kIcoHeadBytes + kIcoEntryBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kIcoName, QStringLiteral("its directory is cut short"));
    }
    IcoEntry entry;
    entry.cursor = Little16(p + 2) == 2;
    entry.pages = Little16(p + 4);
    const uchar* first = p + kIcoHeadBytes;
    entry.height = first[1] == 0 ? 256 : first[1];
    entry.size = Little32(first + 8);
    entry.at = Little32(first + 12);
    return entry;
}

bool IcoIsPng(ByteSource& picture)
{
    char head[8];
    const qint64 got = picture.ReadAt(0, head, sizeof(head));
    return PngMatches(QByteArrayView(head, got), {});
}

/// Header of a picture without file header, its height that of the picture; `masked` tells
/// whether a mask of one bit per pixel follows the pixels.
DibHeader IcoReadHeader(ByteSource& picture, const IcoEntry& entry, bool& masked)
{
    DibHeader header = ReadDibHeader(picture, 0, kIcoName);
    if (header.packing != DibPacking::None) {
        Unsupported(kIcoName, QStringLiteral("is packed"));
    }
    masked = header.height != entry.height;
    if (masked) {
        header.height = std::max<qint64>(header.height / 2, 1);
    }
    return header;
}

/// Pixels without transparency, then the mask; returns how many rows were there.
int IcoReadPixels(ByteStream& stream, const DibHeader& header, const QList<QRgb>& colours,
                  QImage& image, const DecodeRequest& request)
{
    const DibRows rows(header);
    std::vector<uchar> stored(size_t(header.RowBytes()));
    std::vector<uchar> indexes(size_t(header.width));
    for (int i = 0; i < image.height(); ++i) {
        CheckCancelled(request);
        if (stream.Read(stored.data(), qint64(stored.size())) != qint64(stored.size())) {
            return i;
        }
        QRgb* to =
            reinterpret_cast<QRgb*>(image.scanLine(header.topDown ? i : image.height() - 1 - i));
        if (header.bits > 8) {
            rows.Unpack(stored.data(), reinterpret_cast<uchar*>(to));
            continue;
        }
        rows.Unpack(stored.data(), indexes.data());
        std::transform(indexes.begin(), indexes.end(), to,
                       [&](uchar index) { return colours[index]; });
    }
    return image.height();
}

void IcoApplyMask(ByteStream& stream, const DibHeader& header, QImage& image)
{
    std::vector<uchar> stored(size_t((header.width + 31) / 32 * 4));
    for (int i = 0; i < image.height(); ++i) {
        if (stream.Read(stored.data(), qint64(stored.size())) != qint64(stored.size())) {
            return;
        }
        QRgb* to =
            reinterpret_cast<QRgb*>(image.scanLine(header.topDown ? i : image.height() - 1 - i));
        for (int x = 0; x < image.width(); ++x) {
            if (stored[size_t(x >> 3)] & (0x80 >> (x & 7))) {
                to[x] &= 0xffffffu;
            }
        }
    }
}

/// Whether a picture of 32 bits has transparency of its own; old ones leave these bits empty.
bool IcoHasAlpha(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        const QRgb* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::any_of(row, row + image.width(), [](QRgb p) { return qAlpha(p) != 0; })) {
            return true;
        }
    }
    return false;
}

void IcoMakeOpaque(QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        QRgb* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::for_each(row, row + image.width(), [](QRgb& p) { p |= 0xff000000u; });
    }
}

} // namespace

bool IcoMatches(QByteArrayView head, QStringView)
{
    if (head.size() < kIcoHeadBytes + kIcoEntryBytes) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    const int type = Little16(p + 2);
    const int count = Little16(p + 4);
    const quint32 at = Little32(p + kIcoHeadBytes + 12);
    return Little16(p) == 0 && (type == 1 || type == 2) && count > 0
        && at >= quint32(kIcoHeadBytes + kIcoEntryBytes * count);
}

ImageFacts IcoProbe(ByteSource& source)
{
    const IcoEntry entry = IcoReadEntry(source);
    PartSource picture(source, entry.at, entry.size);
    ImageFacts facts;
    if (IcoIsPng(picture)) {
        facts = PngProbe(picture);
    } else {
        bool masked = false;
        const DibHeader header = IcoReadHeader(picture, entry, masked);
        facts.width = qint32(header.width);
        facts.height = qint32(header.height);
        facts.bits = qint16(header.bits);
        facts.compression = QStringLiteral("Uncompressed");
    }
    facts.orientation = 1;
    facts.format = entry.cursor ? 92 : 91;
    facts.pages = entry.pages;
    return facts;
}

Bitmap IcoDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const IcoEntry entry = IcoReadEntry(source);
    PartSource picture(source, entry.at, entry.size);
    if (IcoIsPng(picture)) {
        return PngDecode(picture, request);
    }
    bool masked = false;
    DibHeader header = IcoReadHeader(picture, entry, masked);
    if (header.bits == 32) {
        header.masks[3] = 0xff000000u;
    }
    const QList<QRgb> colours = header.bits <= 8 ? ReadDibColours(picture, header) : QList<QRgb>();
    QImage image = NewImage(kIcoName, header.width, header.height, QImage::Format_ARGB32);
    image.fill(0u);
    ByteStream stream(picture, header.end, picture.Size());
    const int rows = IcoReadPixels(stream, header, colours, image, request);
    if (rows == 0) {
        Damaged(kIcoName, QStringLiteral("it ends before its first row"));
    }
    if (header.bits != 32 || !IcoHasAlpha(image)) {
        if (rows == image.height()) {
            IcoMakeOpaque(image);
        }
        if (masked) {
            IcoApplyMask(stream, header, image);
        }
    }
    Bitmap bitmap(std::move(image), ColourModel::Rgb, header.bits);
    bitmap.SetPartial(rows < bitmap.Height());
    return bitmap;
}

} // namespace quillane::codecs
