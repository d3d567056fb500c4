// GEM images: planes of one bit, packed into runs, repeated patterns and repeated rows; colours
// only with an extension of the header.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include <algorithm>
#include <cstring>

namespace quillane::codecs {

namespace {

constexpr char kGemName[] = "GEM image";
constexpr int kGemFieldBytes = 16;
constexpr int kGemPerMille = 1000; ///< a full colour in the extended header

struct GemHeader {
    int headerBytes = 0;
    int planes = 0;
    int patternBytes = 0;
    int width = 0;
    int height = 0;
    int xResolution = 0;
    int yResolution = 0;
    int PlaneBytes() const { return (width + 7) / 8; }
};

bool GemMakesSense(const uchar* p)
{
    const int version = Big16(p);
    const int words = Big16(p + 2);
    const int planes = Big16(p + 4);
    const int pattern = Big16(p + 6);
    return version >= 1 && version <= 3 && words >= 8 && words < 2048 && planes >= 1 && planes <= 8
        && pattern >= 1 && pattern <= 8 && Big16(p + 12) > 0 && Big16(p + 14) > 0;
}

GemHeader GemReadHeader(ByteSource& source)
{
    uchar p[kGemFieldBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kGemName, QStringLiteral("its header is cut short"));
    }
    if (!GemMakesSense(p)) {
        Damaged(kGemName, QStringLiteral("its header makes no sense"));
    }
    GemHeader header;
    header.headerBytes = 2 * Big16(p + 2);
    header.planes = Big16(p + 4);
    header.patternBytes = Big16(p + 6);
    // The size of a pixel is told in micrometres.
    const auto dots = [](int micrometres) {
        return micrometres > 0 ? DotsPerInch(1e6 / micrometres) : 0;
    };
    header.xResolution = dots(Big16(p + 8));
    header.yResolution = dots(Big16(p + 10));
    header.width = Big16(p + 12);
    header.height = Big16(p + 14);
    CheckSides(kGemName, header.width, header.height);
    return header;
}

/// The colours of the display that pictures without colours of their own were made for.
QList<QRgb> GemDisplayColours(int planes)
{
    if (planes == 1) {
        return {qRgb(255, 255, 255), qRgb(0, 0, 0)};
    }
    if (planes == 2) {
        return {qRgb(255, 255, 255), qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 0)};
    }
    // The bits of a value are red, green and blue, dimmed from 8 on; 0 is paper, the last is ink.
    QList<QRgb> colours;
    colours.reserve(16);
    for (int i = 0; i < 16; ++i) {
        const int full = i < 8 ? 255 : 170;
        colours.append(qRgb(i & 1 ? full : 0, i & 2 ? full : 0, i & 4 ? full : 0));
    }
    colours[0] = qRgb(255, 255, 255);
    colours[7] = planes == 3 ? qRgb(0, 0, 0) : qRgb(170, 170, 170);
    colours[8] = qRgb(85, 85, 85);
    colours[15] = qRgb(0, 0, 0);
    return colours;
}

QList<QRgb> GemColours(ByteSource& source, const GemHeader& header)
{
    const int wanted = 1 << header.planes;
    const qint64 room = header.headerBytes - kGemFieldBytes;
    std::vector<uchar> p(size_t(std::max<qint64>(room, 0)));
    const qint64 got = source.ReadAt(kGemFieldBytes, p.data(), qint64(p.size()));
    QList<QRgb> colours;
    colours.reserve(256);
    if (got >= 6 && std::memcmp(p.data(), "XIMG", 4) == 0 && Big16(&p[4]) == 0) {
        const auto level = [&](qint64 at) {
            return std::min<int>(Big16(&p[size_t(at)]), kGemPerMille) * 255 / kGemPerMille;
        };
        for (qint64 at = 6; at + 6 <= got && colours.size() < wanted; at += 6) {
            colours.append(qRgb(level(at), level(at + 2), level(at + 4)));
        }
    } else if (got >= 6 && std::memcmp(p.data(), "STTT", 4) == 0) {
        const auto level = [](int three) { return (three & 7) * 255 / 7; };
        for (qint64 at = 6; at + 2 <= got && colours.size() < wanted; at += 2) {
            const int value = Big16(&p[size_t(at)]);
            colours.append(qRgb(level(value >> 8), level(value >> 4), level(value)));
        }
    }
    if (colours.size() < 2) {
        colours = header.planes <= 4 ? GemDisplayColours(header.planes) : GreySteps(wanted);
    }
    return colours;
}

class GemRows {
public:
    GemRows(ByteStream& stream, const GemHeader& header)
        : mStream(stream),
          mPattern(size_t(header.patternBytes)),
          mPlaneBytes(header.PlaneBytes())
    { }
    /// Fills one row of planes and says in `repeat` how often it stands; false at the end.
    bool Read(std::vector<uchar>& row, int& repeat)
    {
        repeat = 1;
        for (size_t at = 0; at < row.size(); at += mPlaneBytes) {
            if (!ReadPlane(&row[at], at == 0 ? &repeat : nullptr)) {
                return false;
            }
        }
        return true;
    }

private:
    bool ReadPlane(uchar* to, int* repeat)
    {
        size_t done = 0;
        while (done < mPlaneBytes) {
            const int code = mStream.Next();
            const size_t room = mPlaneBytes - done;
            if (code < 0) {
                return false;
            }
            if (code == 0) {
                const int count = mStream.Next();
                if (count == 0) {
                    // Four bytes, the last of them the count, say how often the row stands.
                    const int mark = mStream.Next();
                    const int rows = mStream.Next();
                    if (mark != 0xff || rows < 0) {
                        return false;
                    }
                    if (repeat && done == 0) {
                        *repeat = std::max(rows, 1);
                    }
                    continue;
                }
                if (count < 0
                    || mStream.Read(mPattern.data(), qint64(mPattern.size()))
                        != qint64(mPattern.size())) {
                    return false;
                }
                const size_t part = std::min(room, size_t(count) * mPattern.size());
                for (size_t i = 0; i < part; ++i) {
                    to[done + i] = mPattern[i % mPattern.size()];
                }
                done += part;
            } else if (code == 0x80) {
                const int count = mStream.Next();
                if (count < 0) {
                    return false;
                }
                const size_t part = std::min(room, size_t(count));
                if (mStream.Read(to + done, qint64(part)) != qint64(part)) {
                    return false;
                }
                done += part;
            } else {
                const size_t part = std::min(room, size_t(code & 0x7f));
                std::memset(to + done, code & 0x80 ? 0xff : 0, part);
                done += part;
            }
        }
        return true;
    }
    ByteStream& mStream;
    std::vector<uchar> mPattern;
    size_t mPlaneBytes;
};

} // namespace

bool GemMatches(QByteArrayView head, QStringView extension)
{
    if (head.size() < kGemFieldBytes) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    const bool marked = head.size() >= kGemFieldBytes + 4
        && (std::memcmp(p + kGemFieldBytes, "XIMG", 4) == 0
            || std::memcmp(p + kGemFieldBytes, "STTT", 4) == 0);
    // Without a mark the header is the common one, or the name has to tell.
    const bool common = Big16(p) == 1 && (Big16(p + 2) == 8 || Big16(p + 2) == 9);
    return GemMakesSense(p)
        && (marked || common || extension.compare(u"IMG", Qt::CaseInsensitive) == 0);
}

ImageFacts GemProbe(ByteSource& source)
{
    const GemHeader header = GemReadHeader(source);
    ImageFacts facts;
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = qint16(header.planes);
    facts.format = 52;
    facts.xResolution = header.xResolution;
    facts.yResolution = header.yResolution;
    facts.compression = QStringLiteral("RLE");
    return facts;
}

Bitmap GemDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const GemHeader header = GemReadHeader(source);
    QImage image = NewIndexedImage(kGemName, header.width, header.height, header.planes,
                                   GemColours(source, header));
    ByteStream stream(source, header.headerBytes, source.Size());
    GemRows reader(stream, header);
    std::vector<uchar> row(size_t(header.PlaneBytes() * header.planes));
    std::vector<uchar> indexes(size_t(header.width));
    int rows = 0;
    while (rows < header.height) {
        CheckCancelled(request);
        int repeat = 1;
        if (!reader.Read(row, repeat)) {
            break;
        }
        MergePlanes(row.data(), header.planes, header.PlaneBytes(), header.width, indexes.data());
        for (; repeat > 0 && rows < header.height; --repeat) {
            PutIndexes(image, rows++, indexes.data());
        }
    }
    return FinishPicture(kGemName, std::move(image), header.planes, rows);
}

} // namespace quillane::codecs
