// Dr. Halo: packed rows of indexes; the colours lie in a file of their own beside it.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

namespace {

constexpr char kCutName[] = "Dr. Halo picture";
constexpr int kCutHeaderBytes = 6;
constexpr int kCutPaletteHeader = 40;
constexpr int kCutPaletteBlock = 512; ///< no colour lies across the end of a block
constexpr qint64 kCutPaletteMost = 64 * 1024;

struct CutHeader {
    int width = 0;
    int height = 0;
};

CutHeader CutReadHeader(ByteSource& source)
{
    uchar p[kCutHeaderBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kCutName, QStringLiteral("its header is cut short"));
    }
    const CutHeader header{Little16(p), Little16(p + 2)};
    CheckSides(kCutName, header.width, header.height);
    return header;
}

/// The colours of the file beside the picture; empty when there is none or it is of another kind.
QList<QRgb> CutColours(ByteSource& source)
{
    const QByteArray file = source.Companion("PAL", kCutPaletteMost);
    if (file.size() < kCutPaletteHeader || !file.startsWith("AH")) {
        return {};
    }
    const uchar* p = reinterpret_cast<const uchar*>(file.constData());
    constexpr int kGeneric = 10;
    if (p[6] != kGeneric) {
        return {};
    }
    const int count = std::min<int>(Little16(p + 12), 255) + 1;
    const int most[] = {Little16(p + 14), Little16(p + 16), Little16(p + 18)};
    QList<QRgb> colours;
    colours.reserve(256);
    qsizetype at = kCutPaletteHeader;
    for (int i = 0; i < count; ++i) {
        if (at % kCutPaletteBlock > kCutPaletteBlock - 6) {
            at = (at / kCutPaletteBlock + 1) * kCutPaletteBlock;
        }
        if (at + 6 > file.size()) {
            break;
        }
        const auto level = [&](int channel) {
            const int full = std::max(most[channel], 1);
            return std::min<int>(Little16(p + at + 2 * channel), full) * 255 / full;
        };
        colours.append(qRgb(level(0), level(1), level(2)));
        at += 6;
    }
    return colours;
}

/// The codes of one row: counts of literals, or with the high bit of repeats; 0 ends the row.
void CutUnpackRow(ByteStream& stream, uchar* to, int width)
{
    int done = 0;
    while (done < width) {
        const int code = stream.Next();
        if (code <= 0) {
            break;
        }
        const int count = std::min(code & 0x7f, width - done);
        if (code & 0x80) {
            const int value = stream.Next();
            std::memset(to + done, std::max(value, 0), size_t(count));
        } else {
            stream.Read(to + done, count);
        }
        done += count;
    }
}

} // namespace

bool CutMatches(QByteArrayView head, QStringView extension)
{
    if (extension.compare(u"CUT", Qt::CaseInsensitive) != 0 || head.size() < kCutHeaderBytes + 3) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    const int rowBytes = Little16(p + 6);
    return Little16(p) > 0 && Little16(p + 2) > 0 && Little16(p + 4) == 0 && rowBytes >= 1
        && rowBytes <= 2 * Little16(p) + 2;
}

ImageFacts CutProbe(ByteSource& source)
{
    const CutHeader header = CutReadHeader(source);
    ImageFacts facts;
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = 8;
    facts.format = 108;
    facts.compression = QStringLiteral("RLE");
    return facts;
}

Bitmap CutDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const CutHeader header = CutReadHeader(source);
    const QList<QRgb> colours = CutColours(source);
    QImage image = colours.isEmpty()
        ? NewImage(kCutName, header.width, header.height, QImage::Format_Grayscale8)
        : NewIndexedImage(kCutName, header.width, header.height, 8, colours);
    qint64 at = kCutHeaderBytes;
    int rows = 0;
    for (; rows < header.height; ++rows) {
        CheckCancelled(request);
        uchar length[2];
        if (source.ReadAt(at, length, 2) != 2) {
            break;
        }
        const qint64 bytes = Little16(length);
        uchar* to = image.scanLine(rows);
        std::memset(to, 0, size_t(header.width));
        ByteStream stream(source, at + 2, bytes);
        CutUnpackRow(stream, to, header.width);
        at += 2 + bytes;
        if (at > source.Size()) {
            break;
        }
    }
    return FinishPicture(kCutName, std::move(image), 8, rows);
}

} // namespace quillane::codecs
