// PCX: a header of 128 bytes, rows of run-length packed planes, and colours in the header or, for
// 256 of them, behind the picture.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include <algorithm>

namespace quillane::codecs {

namespace {

constexpr char kPcxName[] = "PCX";
constexpr int kPcxHeaderBytes = 128;
constexpr int kPcxColoursBytes = 769; ///< at the end of the file: a mark and 256 colours
constexpr uchar kPcxColoursMark = 12;

struct PcxHeader {
    int version = 0;
    bool packed = false;
    int bits = 0; ///< of a pixel in one plane
    int planes = 0;
    int width = 0;
    int height = 0;
    int xResolution = 0;
    int yResolution = 0;
    qint64 planeBytes = 0; ///< of one row of one plane
    uchar colours[48] = {};

    int Depth() const { return bits * planes; }
};

PcxHeader PcxReadHeader(ByteSource& source)
{
    uchar p[kPcxHeaderBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kPcxName, QStringLiteral("its header is cut short"));
    }
    PcxHeader header;
    header.version = p[1];
    header.packed = p[2] == 1;
    header.bits = p[3];
    header.planes = p[65];
    header.width = Little16(p + 8) - Little16(p + 4) + 1;
    header.height = Little16(p + 10) - Little16(p + 6) + 1;
    header.planeBytes = Little16(p + 66);
    // Some writers put the size of the screen where the resolution belongs.
    const int x = Little16(p + 12);
    const int y = Little16(p + 14);
    if (x > 0 && y > 0 && x <= 4 * y && y <= 4 * x && (x != header.width || y != header.height)
        && x < 10'000) {
        header.xResolution = x;
        header.yResolution = y;
    }
    std::copy_n(p + 16, sizeof(header.colours), header.colours);
    CheckSides(kPcxName, header.width, header.height);
    const int planes = header.planes;
    const bool known = header.bits == 8 ? planes == 1 || planes == 3 || planes == 4
        : header.bits == 1              ? planes >= 1 && planes <= 4
        : header.bits == 2              ? planes == 1 || planes == 2
                                        : header.bits == 4 && planes == 1;
    if (!known) {
        Unsupported(kPcxName,
                    QStringLiteral("has %1 planes of %2 bits").arg(planes).arg(header.bits));
    }
    if (header.planeBytes * 8 < qint64(header.width) * header.bits) {
        Damaged(kPcxName, QStringLiteral("its rows are shorter than its width"));
    }
    return header;
}

/// The four colours of an early colour display: a background and one of its sets of three.
QList<QRgb> PcxDisplayColours(const PcxHeader& header)
{
    const int flags = header.colours[3];
    const int bright = flags & 0x20 ? 8 : 0;
    const QList<QRgb>& all = SixteenColours();
    if (flags & 0x80) {
        return {all[header.colours[0] >> 4], all[3 + bright], all[4 + bright], all[7 + bright]};
    }
    const int first = flags & 0x40 ? 3 : 2;
    return {all[header.colours[0] >> 4], all[first + bright], all[first + 2 + bright],
            flags & 0x40 ? all[7 + bright] : all[6 + bright]};
}

QList<QRgb> PcxColours(ByteSource& source, const PcxHeader& header)
{
    const auto listed = [](const uchar* p, int count) {
        QList<QRgb> colours;
        colours.reserve(count);
        for (int i = 0; i < count; ++i) {
            colours.append(qRgb(p[3 * i], p[3 * i + 1], p[3 * i + 2]));
        }
        return colours;
    };
    const int depth = header.Depth();
    if (depth == 1) {
        return {qRgb(0, 0, 0), qRgb(255, 255, 255)};
    }
    if (depth == 8) {
        uchar p[kPcxColoursBytes] = {};
        const bool there =
            source.ReadAt(source.Size() - kPcxColoursBytes, p, sizeof(p)) == kPcxColoursBytes
            && p[0] == kPcxColoursMark;
        return there ? listed(p + 1, 256) : GreySteps(256);
    }
    if (header.version == 3) {
        return SixteenColours(); // this version has no colours of its own
    }
    if (header.bits == 2 && header.planes == 1 && header.version != 5) {
        return PcxDisplayColours(header);
    }
    return listed(header.colours, 16);
}

/// Rows of all planes, out of runs that may go on from one row to the next.
class PcxRows {
public:
    PcxRows(ByteStream& stream, bool packed) : mStream(stream), mPacked(packed) { }
    /// False when the stream ended before the row did.
    bool Read(std::vector<uchar>& row)
    {
        if (!mPacked) {
            return mStream.Read(row.data(), qint64(row.size())) == qint64(row.size());
        }
        for (uchar& to : row) {
            if (mRun == 0 && !NextRun()) {
                return false;
            }
            --mRun;
            to = uchar(mValue);
        }
        return true;
    }

private:
    bool NextRun()
    {
        do {
            const int code = mStream.Next();
            mRun = code >= 0xc0 ? code & 0x3f : 1;
            mValue = code >= 0xc0 ? mStream.Next() : code;
            if (mValue < 0) {
                return false;
            }
        } while (mRun == 0);
        return true;
    }
    ByteStream& mStream;
    bool mPacked;
    int mRun = 0;
    int mValue = 0;
};

/// Pixels of 24 and 32 bits: planes of red, green, blue and perhaps intensity.
void PcxPutColours(const std::vector<uchar>& row, const PcxHeader& header, QRgb* to)
{
    const uchar* red = row.data();
    const uchar* green = red + header.planeBytes;
    const uchar* blue = green + header.planeBytes;
    for (int x = 0; x < header.width; ++x) {
        to[x] = qRgb(red[x], green[x], blue[x]);
    }
}

} // namespace

bool PcxMatches(QByteArrayView head, QStringView)
{
    if (head.size() < kPcxHeaderBytes) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    return p[0] == 10 && p[1] <= 5 && p[2] <= 1
        && (p[3] == 1 || p[3] == 2 || p[3] == 4 || p[3] == 8) && p[65] >= 1 && p[65] <= 4;
}

ImageFacts PcxProbe(ByteSource& source)
{
    const PcxHeader header = PcxReadHeader(source);
    ImageFacts facts;
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = qint16(header.Depth());
    facts.format = 1;
    facts.xResolution = header.xResolution;
    facts.yResolution = header.yResolution;
    facts.compression = header.packed ? QStringLiteral("RLE") : QStringLiteral("Uncompressed");
    return facts;
}

Bitmap PcxDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const PcxHeader header = PcxReadHeader(source);
    const int depth = header.Depth();
    QImage image;
    if (depth > 8) {
        image = NewImage(kPcxName, header.width, header.height, QImage::Format_RGB32);
    } else {
        const QList<QRgb> colours = PcxColours(source, header);
        if (depth == 8 && AreGreySteps(colours)) {
            image = NewImage(kPcxName, header.width, header.height, QImage::Format_Grayscale8);
        } else {
            image = NewIndexedImage(kPcxName, header.width, header.height, depth, colours);
        }
    }
    ByteStream stream(source, kPcxHeaderBytes, source.Size());
    PcxRows reader(stream, header.packed);
    std::vector<uchar> row(size_t(header.planeBytes * header.planes));
    std::vector<uchar> indexes(size_t(header.width));
    std::vector<uchar> second(indexes.size());
    int rows = 0;
    for (; rows < header.height; ++rows) {
        CheckCancelled(request);
        if (!reader.Read(row)) {
            break;
        }
        if (depth > 8) {
            PcxPutColours(row, header, reinterpret_cast<QRgb*>(image.scanLine(rows)));
            continue;
        }
        if (header.bits == 1) {
            MergePlanes(row.data(), header.planes, header.planeBytes, header.width, indexes.data());
        } else {
            SpreadPixels(row.data(), header.bits, header.width, indexes.data());
        }
        if (header.bits == 2 && header.planes == 2) {
            SpreadPixels(row.data() + header.planeBytes, 2, header.width, second.data());
            std::transform(indexes.begin(), indexes.end(), second.begin(), indexes.begin(),
                           [](uchar low, uchar high) { return uchar(low | high << 2); });
        }
        PutIndexes(image, rows, indexes.data());
    }
    return FinishPicture(kPcxName, std::move(image), depth, rows);
}

} // namespace quillane::codecs
