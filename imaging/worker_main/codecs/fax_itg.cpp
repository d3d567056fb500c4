// Intergraph raster files: two blocks of header, then runs of bits, a Group 4 stream or plain
// samples.
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/fax_wrap.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <algorithm>
#include <array>

namespace quillane::worker {

namespace {

constexpr char kItgName[] = "Intergraph raster";
constexpr int kItgHeaderBytes = 512;
constexpr int kItgLineMark = 0x5900; ///< begins the header of a line, four words long
constexpr int kItgLineWords = 4;

enum ItgKind : int {
    kItgBits = 1,
    kItgBytes = 2,
    kItgRuns = 9, ///< of pixels off and on in turn
    kItgGroup4 = 24,
    kItgRgb = 28,
};

int ItgLittle(const uchar* p)
{
    return p[0] | p[1] << 8;
}

qint64 ItgLong(const uchar* p)
{
    return qint64(ItgLittle(p)) | qint64(ItgLittle(p + 2)) << 16;
}

struct ItgHeader {
    int kind = 0;
    qint64 width = 0, height = 0;
    qint64 dataAt = 0;
    quint8 orientation = 1;
    int dotsPerInch = 0;
};

ItgHeader ItgReadHeader(ByteSource& source)
{
    uchar p[kItgHeaderBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        ThrowFaxDamaged(kItgName, QStringLiteral("its header is cut short"));
    }
    ItgHeader header;
    header.kind = ItgLittle(p + 4);
    header.dataAt = (qint64(ItgLittle(p + 2)) + 2) * 2;
    header.width = ItgLong(p + 184);
    header.height = ItgLong(p + 188);
    const int resolution = qint16(ItgLittle(p + 192));
    header.dotsPerInch = resolution < 0 ? -resolution : 0;
    // From which corner, and along which side, the lines run.
    constexpr quint8 kOrientations[] = {5, 6, 8, 7, 1, 2, 4, 3};
    header.orientation = p[194] < std::size(kOrientations) ? kOrientations[p[194]] : quint8(1);
    CheckFaxSize(kItgName, header.width, header.height);
    switch (header.kind) {
    case kItgBits:
    case kItgBytes:
    case kItgRuns:
    case kItgGroup4:
    case kItgRgb:
        return header;
    default:
        ThrowFaxUnsupported(kItgName, QStringLiteral("holds data of type %1").arg(header.kind));
    }
}

int ItgBitsOf(const ItgHeader& header)
{
    return header.kind == kItgBytes ? 8 : header.kind == kItgRgb ? 24 : 1;
}

/// Words of the file, lowest byte first.
class ItgWords {
public:
    ItgWords(ByteSource& source, qint64 from) : mSource(source), mFrom(from) { }
    /// The next word, or -1 at the end.
    int Next()
    {
        if (mAt + 2 > mHeld) {
            mFrom += mAt;
            mHeld = mSource.ReadAt(mFrom, mBuffer.data(), qint64(mBuffer.size()));
            mAt = 0;
            if (mHeld < 2) {
                mHeld = 0;
                return -1;
            }
        }
        const int word = ItgLittle(&mBuffer[size_t(mAt)]);
        mAt += 2;
        return word;
    }

private:
    ByteSource& mSource;
    qint64 mFrom, mAt = 0, mHeld = 0;
    std::array<uchar, 16 * 1024> mBuffer{};
};

/// Sets bits from `from` on, white or black.
void ItgFill(uchar* row, qint64 from, qint64 count, bool black)
{
    for (qint64 x = from; x < from + count; ++x) {
        const auto bit = uchar(0x80 >> (x & 7));
        row[x >> 3] = black ? uchar(row[x >> 3] & ~bit) : uchar(row[x >> 3] | bit);
    }
}

/// True when some of the picture was missing.
bool ItgDecodeRuns(ByteSource& source, const ItgHeader& header, PictureSink& sink)
{
    PictureShape shape;
    shape.width = qint32(header.width);
    shape.height = qint32(header.height);
    shape.layout = PixelLayout::Mono;
    shape.fileDepth = 1;
    ItgWords words(source, header.dataAt);
    // The size is announced only when there is something to show.
    int word = words.Next();
    if (word < 0) {
        ThrowFaxDamaged(kItgName, QStringLiteral("it ends before its first row"));
    }
    sink.Begin(shape);
    bool ended = false;
    for (qint64 y = 0; y < header.height; ++y) {
        uchar* row = sink.NextRow();
        ItgFill(row, 0, header.width, false);
        if (word == kItgLineMark) {
            for (int i = 0; i < kItgLineWords; ++i) {
                word = words.Next();
            }
        }
        bool black = false;
        qint64 x = 0;
        // Runs of nothing only change the colour; a line has no more of them than pixels.
        for (qint64 runs = 0; x < header.width && word >= 0 && runs <= 2 * header.width; ++runs) {
            const qint64 count = std::min<qint64>(word, header.width - x);
            if (black) {
                ItgFill(row, x, count, true);
            }
            x += count;
            black = !black;
            word = words.Next();
        }
        ended = ended || x < header.width;
    }
    return ended;
}

} // namespace

ImageFacts ProbeItg(ByteSource& source)
{
    const ItgHeader header = ItgReadHeader(source);
    ImageFacts facts;
    facts.width = qint32(header.width);
    facts.height = qint32(header.height);
    facts.bits = qint16(ItgBitsOf(header));
    facts.format = 122;
    facts.orientation = header.orientation;
    facts.xResolution = facts.yResolution = header.dotsPerInch;
    facts.compression = header.kind == kItgRuns ? QStringLiteral("RLE")
        : header.kind == kItgGroup4             ? QStringLiteral("CCITT Group 4")
                                                : QStringLiteral("Uncompressed");
    return facts;
}

bool DecodeItg(ByteSource& source, const PictureWish&, PictureSink& sink)
{
    const ItgHeader header = ItgReadHeader(source);
    if (header.kind == kItgRuns) {
        return ItgDecodeRuns(source, header, sink);
    }
    BarePixels pixels;
    pixels.at = header.dataAt;
    pixels.bytes = source.Size() - pixels.at;
    pixels.width = qint32(header.width);
    pixels.height = qint32(header.height);
    pixels.coding = header.kind == kItgGroup4 ? BareCoding::Group4 : BareCoding::None;
    pixels.bits = header.kind == kItgBytes || header.kind == kItgRgb ? 8 : 1;
    pixels.samples = header.kind == kItgRgb ? 3 : 1;
    return DecodeBarePixels(source, pixels, kItgName, sink);
}

} // namespace quillane::worker
