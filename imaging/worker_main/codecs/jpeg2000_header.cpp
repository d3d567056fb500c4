#include "imaging/worker_main/codecs/jpeg2000_header.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/protocol.h"
#include <algorithm>
#include <cmath>
#include <numeric>

namespace quillane::worker {

namespace {

constexpr quint32 kBoxPalette = 0x70636c72;           // "pclr"
constexpr quint32 kBoxResolution = 0x72657320;        // "res "
constexpr quint32 kBoxCaptureResolution = 0x72657363; // "resc"
constexpr quint32 kBoxDisplayResolution = 0x72657364; // "resd"
constexpr int kMaxBoxes = 4096;
constexpr int kMostComponents = 64, kMostBits = 38;

quint32 BigNumber(const uchar* bytes, int count)
{
    return std::accumulate(bytes, bytes + count, 0u,
                           [](quint32 value, uchar byte) { return value << 8 | byte; });
}

/// The boxes between two places.
std::vector<Jpeg2000Box> BoxesBetween(ByteSource& source, qint64 at, qint64 end)
{
    std::vector<Jpeg2000Box> boxes;
    uchar head[16];
    while (at + 8 <= end && boxes.size() < size_t(kMaxBoxes) && source.ReadAt(at, head, 8) == 8) {
        Jpeg2000Box box{BigNumber(head + 4, 4), at, at + 8, end};
        const quint32 length = BigNumber(head, 4);
        if (length == 1) {
            if (source.ReadAt(at + 8, head + 8, 8) != 8) {
                break;
            }
            const quint64 large = quint64(BigNumber(head + 8, 4)) << 32 | BigNumber(head + 12, 4);
            box.content = at + 16;
            box.end = large > quint64(end - at) ? end : at + qint64(large);
        } else if (length != 0) {
            box.end = std::min(end, at + qint64(length));
        }
        if (box.end < box.content) {
            break;
        }
        boxes.push_back(box);
        at = box.end;
    }
    return boxes;
}

const Jpeg2000Box* FindBox(const std::vector<Jpeg2000Box>& boxes, quint32 type)
{
    const auto box = std::find_if(boxes.begin(), boxes.end(),
                                  [type](const Jpeg2000Box& one) { return one.type == type; });
    return box == boxes.end() ? nullptr : &*box;
}

/// Samples a metre as dots per inch; 0 for what makes no sense.
qint32 BoxDotsPerInch(const uchar* fraction, qint8 exponent)
{
    constexpr double kMetresPerInch = 0.0254, kMost = 1e6;
    const double denominator = BigNumber(fraction + 2, 2);
    if (denominator == 0) {
        return 0;
    }
    const double dots =
        BigNumber(fraction, 2) / denominator * std::pow(10.0, exponent) * kMetresPerInch;
    return qint32(std::lround(std::clamp(dots, 0.0, kMost)));
}

void ReadResolution(ByteSource& source, const Jpeg2000Box& parent, ImageFacts& facts)
{
    const std::vector<Jpeg2000Box> boxes = BoxesBetween(source, parent.content, parent.end);
    const Jpeg2000Box* box = FindBox(boxes, kBoxCaptureResolution);
    if (!box) {
        box = FindBox(boxes, kBoxDisplayResolution);
    }
    uchar values[10]; // vertical fraction, horizontal fraction, and the exponents of both
    if (box && source.ReadAt(box->content, values, sizeof(values)) == sizeof(values)) {
        facts.yResolution = BoxDotsPerInch(values, qint8(values[8]));
        facts.xResolution = BoxDotsPerInch(values + 4, qint8(values[9]));
    }
}

/// The channels and bits of a palette; 0 when it makes no sense.
int PaletteBits(ByteSource& source, const Jpeg2000Box& box)
{
    uchar head[3 + 255];
    const qint64 got = source.ReadAt(box.content, head, sizeof(head));
    if (got < 4 || got < 3 + head[2]) {
        return 0;
    }
    int bits = 0;
    for (int i = 0; i < head[2]; ++i) {
        bits += (head[3 + i] & 0x7f) + 1;
    }
    return bits;
}

/// The SIZ segment (ISO 15444-1, A.5.1), which begins every codestream.
void ReadSize(ByteSource& source, qint64 at, Jpeg2000Header& header)
{
    uchar siz[42 + kMostComponents * 3];
    const qint64 got = source.ReadAt(at, siz, sizeof(siz));
    if (got < 45 || BigNumber(siz, 4) != 0xff4fff51) {
        ThrowJpeg2000Damaged();
    }
    const quint32 right = BigNumber(siz + 8, 4), bottom = BigNumber(siz + 12, 4);
    header.x0 = BigNumber(siz + 16, 4);
    header.y0 = BigNumber(siz + 20, 4);
    const quint32 tileWidth = BigNumber(siz + 24, 4);
    header.tileHeight = BigNumber(siz + 28, 4);
    const quint32 tileLeft = BigNumber(siz + 32, 4);
    header.tileTop = BigNumber(siz + 36, 4);
    header.components = int(BigNumber(siz + 40, 2));
    if (right <= header.x0 || bottom <= header.y0 || tileWidth == 0 || header.tileHeight == 0
        || header.components < 1 || right > 0x7fffffff || bottom > 0x7fffffff) {
        ThrowJpeg2000Damaged();
    }
    if (header.components > kMostComponents) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This JPEG 2000 file has %1 components, which no picture has.")
                          .arg(header.components));
    }
    header.width = right - header.x0;
    header.height = bottom - header.y0;
    if (header.width > quint32(limits::kMaxSide) || header.height > quint32(limits::kMaxSide)
        || qint64(header.width) * header.height > limits::kMaxPixels) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This JPEG 2000 picture is too large: %1 by %2 pixels.")
                          .arg(header.width)
                          .arg(header.height));
    }
    header.tiled = quint64(tileLeft) + tileWidth < right
        || quint64(header.tileTop) + header.tileHeight < bottom;
    if (got < 42 + 3 * header.components) {
        ThrowJpeg2000Damaged();
    }
    int sum = 0;
    for (int i = 0; i < header.components; ++i) {
        const uchar* one = siz + 42 + 3 * i;
        const int bits = (one[0] & 0x7f) + 1;
        if (bits > kMostBits || one[1] == 0 || one[2] == 0) {
            ThrowJpeg2000Damaged();
        }
        header.bits = i == 0 ? bits : header.bits;
        header.downMost = std::max<int>(header.downMost, one[2]);
        sum += bits;
    }
    header.facts.bits = qint16(sum);
}

} // namespace

void ThrowJpeg2000Damaged()
{
    throw Failure(kFailureUnreadable, QStringLiteral("This JPEG 2000 file is damaged."));
}

Jpeg2000Header ReadJpeg2000Header(ByteSource& source)
{
    constexpr qint16 kWithBoxes = 163, kBare = 164;
    Jpeg2000Header header;
    uchar mark[8] = {};
    source.ReadAt(0, mark, sizeof(mark));
    header.boxed = BigNumber(mark + 4, 4) == kBoxSignature;
    ImageFacts& facts = header.facts;
    qint64 codestream = 0;
    int paletteBits = 0;
    if (header.boxed) {
        header.boxes = BoxesBetween(source, 0, source.Size());
        const Jpeg2000Box* data = FindBox(header.boxes, kBoxCodestream);
        if (!data) {
            ThrowJpeg2000Damaged();
        }
        codestream = data->content;
        if (const Jpeg2000Box* head = FindBox(header.boxes, kBoxHeader)) {
            const std::vector<Jpeg2000Box> inside = BoxesBetween(source, head->content, head->end);
            if (const Jpeg2000Box* box = FindBox(inside, kBoxResolution)) {
                ReadResolution(source, *box, facts);
            }
            if (const Jpeg2000Box* box = FindBox(inside, kBoxPalette)) {
                paletteBits = PaletteBits(source, *box);
            }
        }
    }
    ReadSize(source, codestream, header);
    header.palette = paletteBits > 0;
    facts.bits = paletteBits > 0 ? qint16(paletteBits) : facts.bits;
    facts.width = qint32(header.width);
    facts.height = qint32(header.height);
    facts.format = header.boxed ? kWithBoxes : kBare;
    facts.compression = QStringLiteral("JPEG 2000");
    facts.sizeDisk = source.Size();
    facts.sizeMemory = RowBytes(facts.width, facts.bits) * facts.height;
    return header;
}

} // namespace quillane::worker
