// Sun raster files: a header of eight numbers, colours as three planes, rows of whole 16 bits.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include <cstring>

namespace quillane::codecs {

namespace {

constexpr char kSunName[] = "Sun raster";
constexpr uchar kSunMark[] = {0x59, 0xa6, 0x6a, 0x95};
constexpr int kSunHeaderBytes = 32;
constexpr int kSunRunMark = 0x80;

enum SunType : quint32 { kSunOld = 0, kSunStandard = 1, kSunPacked = 2, kSunRgb = 3 };

struct SunHeader {
    qint64 width = 0;
    qint64 height = 0;
    int depth = 0;
    quint32 type = kSunStandard;
    int colourBytes = 0; ///< all three planes of colours
    qint64 mapBytes = 0; ///< what stands between header and pixels

    qint64 RowBytes() const { return (width * depth + 15) / 16 * 2; }
};

SunHeader SunReadHeader(ByteSource& source)
{
    uchar p[kSunHeaderBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kSunName, QStringLiteral("its header is cut short"));
    }
    SunHeader header;
    header.width = Big32(p + 4);
    header.height = Big32(p + 8);
    const quint32 depth = Big32(p + 12);
    header.type = Big32(p + 20);
    const quint32 mapKind = Big32(p + 24);
    header.mapBytes = Big32(p + 28);
    CheckSides(kSunName, header.width, header.height);
    if (depth != 1 && depth != 4 && depth != 8 && depth != 24 && depth != 32) {
        Unsupported(kSunName, QStringLiteral("has %1 bits per pixel").arg(depth));
    }
    header.depth = int(depth);
    if (header.type > kSunRgb) {
        Unsupported(kSunName, QStringLiteral("is of type %1").arg(header.type));
    }
    if (header.mapBytes > source.Size()) {
        Damaged(kSunName, QStringLiteral("its colours lie beyond its end"));
    }
    if (mapKind == 1 && depth <= 8) {
        header.colourBytes = int(std::min<qint64>(header.mapBytes, 3 * 256));
    }
    return header;
}

QList<QRgb> SunColours(ByteSource& source, const SunHeader& header)
{
    uchar p[3 * 256] = {};
    source.ReadAt(kSunHeaderBytes, p, header.colourBytes);
    const int count = header.colourBytes / 3;
    QList<QRgb> colours;
    colours.reserve(256);
    for (int i = 0; i < count; ++i) {
        colours.append(qRgb(p[i], p[count + i], p[2 * count + i]));
    }
    return colours;
}

class SunRows {
public:
    SunRows(ByteStream& stream, bool packed) : mStream(stream), mPacked(packed) { }
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
    /// A run is its mark, its length less one and its value; a mark before 0 stands for itself.
    bool NextRun()
    {
        mRun = 1;
        mValue = mStream.Next();
        if (mValue != kSunRunMark) {
            return mValue >= 0;
        }
        const int length = mStream.Next();
        if (length > 0) {
            mRun = length + 1;
            mValue = mStream.Next();
        }
        return length >= 0 && mValue >= 0;
    }
    ByteStream& mStream;
    bool mPacked;
    int mRun = 0;
    int mValue = 0;
};

void SunPutColours(const uchar* from, const SunHeader& header, QRgb* to)
{
    const int step = header.depth / 8;
    const uchar* p = from + step - 3; // the first of four bytes is unused
    const bool rgb = header.type == kSunRgb;
    for (qint64 x = 0; x < header.width; ++x, p += step) {
        to[x] = rgb ? qRgb(p[0], p[1], p[2]) : qRgb(p[2], p[1], p[0]);
    }
}

} // namespace

bool SunMatches(QByteArrayView head, QStringView)
{
    return head.size() >= kSunHeaderBytes
        && std::memcmp(head.data(), kSunMark, sizeof(kSunMark)) == 0;
}

ImageFacts SunProbe(ByteSource& source)
{
    const SunHeader header = SunReadHeader(source);
    ImageFacts facts;
    facts.width = qint32(header.width);
    facts.height = qint32(header.height);
    facts.bits = qint16(header.depth);
    facts.format = 55;
    facts.compression =
        header.type == kSunPacked ? QStringLiteral("RLE") : QStringLiteral("Uncompressed");
    return facts;
}

Bitmap SunDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const SunHeader header = SunReadHeader(source);
    QImage image;
    if (header.depth > 8) {
        image = NewImage(kSunName, header.width, header.height, QImage::Format_RGB32);
    } else if (header.colourBytes > 0) {
        image = NewIndexedImage(kSunName, header.width, header.height, header.depth,
                                SunColours(source, header));
    } else if (header.depth == 8) {
        image = NewImage(kSunName, header.width, header.height, QImage::Format_Grayscale8);
    } else {
        // Without colours a set bit is ink; with more bits the values are levels of grey.
        image = NewIndexedImage(kSunName, header.width, header.height, header.depth,
                                header.depth == 1 ? QList<QRgb>{qRgb(255, 255, 255), qRgb(0, 0, 0)}
                                                  : GreySteps(1 << header.depth));
    }
    ByteStream stream(source, kSunHeaderBytes + header.mapBytes, source.Size());
    SunRows reader(stream, header.type == kSunPacked);
    std::vector<uchar> row(size_t(header.RowBytes()));
    std::vector<uchar> indexes(size_t(header.width));
    int rows = 0;
    for (; rows < header.height; ++rows) {
        CheckCancelled(request);
        if (!reader.Read(row)) {
            break;
        }
        if (header.depth > 8) {
            SunPutColours(row.data(), header, reinterpret_cast<QRgb*>(image.scanLine(rows)));
        } else {
            SpreadPixels(row.data(), header.depth, header.width, indexes.data());
            PutIndexes(image, rows, indexes.data());
        }
    }
    return FinishPicture(kSunName, std::move(image), header.depth, rows);
}

} // namespace quillane::codecs
