// Silicon Graphics images: planes from the bottom, 8 or 16 bits a sample, packed row by row.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/raster_support.h"
#include "imaging/limits.h"
#include <algorithm>

namespace quillane::codecs {

namespace {

constexpr char kSgiName[] = "Silicon Graphics image";
constexpr int kSgiHeaderBytes = 512;
constexpr int kSgiFieldBytes = 12;

struct SgiHeader {
    bool packed = false;
    int sampleBytes = 0;
    int width = 0;
    int height = 0;
    int planes = 0;

    bool IsWide() const { return sampleBytes == 2; }
    int Shown() const { return std::min(planes, 4); }
    int Bits() const { return Shown() * sampleBytes * 8; }
};

SgiHeader SgiReadHeader(ByteSource& source)
{
    uchar p[kSgiFieldBytes];
    if (source.ReadAt(0, p, sizeof(p)) != sizeof(p)) {
        Damaged(kSgiName, QStringLiteral("its header is cut short"));
    }
    SgiHeader header;
    header.packed = p[2] == 1;
    header.sampleBytes = p[3];
    const int dimensions = Big16(p + 4);
    header.width = Big16(p + 6);
    header.height = dimensions >= 2 ? Big16(p + 8) : 1;
    header.planes = dimensions >= 3 ? Big16(p + 10) : 1;
    if (p[2] > 1 || header.sampleBytes < 1 || header.sampleBytes > 2 || dimensions < 1
        || dimensions > 3 || header.planes < 1) {
        Damaged(kSgiName, QStringLiteral("its header makes no sense"));
    }
    CheckSides(kSgiName, header.width, header.height);
    return header;
}

/// Rows of samples of any plane, from the bottom.
class SgiRows {
public:
    SgiRows(ByteSource& source, const SgiHeader& header) : mSource(source), mHeader(header)
    {
        if (!header.packed) {
            return;
        }
        const qint64 entries = qint64(header.height) * header.planes;
        mTable.resize(size_t(entries * 8));
        mTableBytes = source.ReadAt(kSgiHeaderBytes, mTable.data(), qint64(mTable.size()));
    }
    /// Fills `to` with the row's samples; false when the file lacks it or a part of it.
    bool Read(int plane, int row, std::vector<quint16>& to)
    {
        const qint64 index = qint64(plane) * mHeader.height + row;
        const qint64 rowBytes = qint64(mHeader.width) * mHeader.sampleBytes;
        if (!mHeader.packed) {
            mStored.resize(size_t(rowBytes));
            if (mSource.ReadAt(kSgiHeaderBytes + index * rowBytes, mStored.data(), rowBytes)
                != rowBytes) {
                return false;
            }
            for (size_t x = 0; x < to.size(); ++x) {
                to[x] = Sample(mStored.data() + qint64(x) * mHeader.sampleBytes);
            }
            return true;
        }
        const qint64 lengths = qint64(mHeader.height) * mHeader.planes * 4;
        if (lengths + (index + 1) * 4 > mTableBytes) {
            return false;
        }
        const qint64 at = Big32(&mTable[size_t(index * 4)]);
        // No packed row is longer than twice the plain one.
        const qint64 bytes = std::min<qint64>(Big32(&mTable[size_t(lengths + index * 4)]),
                                              2 * rowBytes + 2 * mHeader.sampleBytes);
        mStored.resize(size_t(bytes));
        return Unpack(mSource.ReadAt(at, mStored.data(), bytes), to);
    }

private:
    quint16 Sample(const uchar* p) const { return mHeader.IsWide() ? Big16(p) : *p; }
    /// Codes of the width of a sample: the low seven bits count, the eighth says literal.
    bool Unpack(qint64 bytes, std::vector<quint16>& to) const
    {
        const int step = mHeader.sampleBytes;
        qint64 at = 0;
        size_t done = 0;
        while (done < to.size() && at + step <= bytes) {
            const int code = Sample(&mStored[size_t(at)]) & 0xff;
            at += step;
            const size_t count = std::min<size_t>(size_t(code & 0x7f), to.size() - done);
            if (count == 0) {
                break;
            }
            const bool literal = (code & 0x80) != 0;
            const qint64 needed = literal ? qint64(count) * step : step;
            if (at + needed > bytes) {
                break;
            }
            for (size_t i = 0; i < count; ++i) {
                to[done++] = Sample(&mStored[size_t(at + (literal ? qint64(i) * step : 0))]);
            }
            at += needed;
        }
        std::fill(to.begin() + qsizetype(done), to.end(), quint16(0));
        return done == to.size();
    }
    ByteSource& mSource;
    const SgiHeader& mHeader;
    std::vector<uchar> mTable;
    qint64 mTableBytes = 0;
    std::vector<uchar> mStored;
};

void SgiPutRow(const SgiHeader& header, const std::vector<quint16> (&planes)[4], uchar* to)
{
    const int shown = header.Shown();
    const size_t width = size_t(header.width);
    // With two planes the second is alpha.
    const auto colour = [&](size_t x, size_t channel) {
        return planes[shown >= 3 ? channel : 0][x];
    };
    const bool alpha = shown == 2 || shown == 4;
    const std::vector<quint16>& opacity = planes[shown == 2 ? 1 : 3];
    for (size_t x = 0; x < width; ++x) {
        if (shown == 1) {
            if (header.IsWide()) {
                reinterpret_cast<quint16*>(to)[x] = planes[0][x];
            } else {
                to[x] = uchar(planes[0][x]);
            }
        } else if (header.IsWide()) {
            quint16* wide = reinterpret_cast<quint16*>(to) + 4 * x;
            wide[0] = colour(x, 0);
            wide[1] = colour(x, 1);
            wide[2] = colour(x, 2);
            wide[3] = alpha ? opacity[x] : 0xffff;
        } else {
            reinterpret_cast<QRgb*>(to)[x] =
                qRgba(colour(x, 0), colour(x, 1), colour(x, 2), alpha ? opacity[x] : 255);
        }
    }
}

QImage::Format SgiLayout(const SgiHeader& header)
{
    if (header.Shown() == 1) {
        return header.IsWide() ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8;
    }
    const bool alpha = header.Shown() != 3;
    return header.IsWide() ? (alpha ? QImage::Format_RGBA64 : QImage::Format_RGBX64)
                           : (alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
}

} // namespace

bool SgiMatches(QByteArrayView head, QStringView)
{
    if (head.size() < kSgiFieldBytes) {
        return false;
    }
    const uchar* p = reinterpret_cast<const uchar*>(head.data());
    return p[0] == 1 && p[1] == 0xda && p[2] <= 1 && p[3] >= 1 && p[3] <= 2 && p[4] == 0
        && p[5] >= 1 && p[5] <= 3;
}

ImageFacts SgiProbe(ByteSource& source)
{
    const SgiHeader header = SgiReadHeader(source);
    ImageFacts facts;
    facts.width = header.width;
    facts.height = header.height;
    facts.bits = qint16(header.Bits());
    facts.format = header.packed ? 143 : 142;
    facts.compression = header.packed ? QStringLiteral("RLE") : QStringLiteral("Uncompressed");
    return facts;
}

Bitmap SgiDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const SgiHeader header = SgiReadHeader(source);
    if (qint64(header.height) * header.planes * 8 > limits::kMaxHeaderBytes) {
        TooMuch(kSgiName, QStringLiteral("has %1 planes").arg(header.planes));
    }
    QImage image = NewImage(kSgiName, header.width, header.height, SgiLayout(header));
    SgiRows reader(source, header);
    std::vector<quint16> planes[4];
    for (std::vector<quint16>& plane : planes) {
        plane.resize(size_t(header.width));
    }
    // The rows of a plane may lie anywhere: each one is looked for, and only that none was found
    // makes the file unreadable.
    int found = 0;
    bool missing = false;
    for (int y = 0; y < header.height; ++y) {
        CheckCancelled(request);
        bool whole = true;
        for (int plane = 0; plane < header.Shown(); ++plane) {
            if (!reader.Read(plane, header.height - 1 - y, planes[plane])) {
                whole = false;
                std::fill(planes[plane].begin(), planes[plane].end(),
                          quint16(header.IsWide() ? 0xffff : 0xff));
            }
        }
        found += whole ? 1 : 0;
        missing = missing || !whole;
        SgiPutRow(header, planes, image.scanLine(y));
    }
    Bitmap bitmap =
        FinishPicture(kSgiName, std::move(image), header.Bits(), found > 0 ? header.height : 0);
    bitmap.SetPartial(missing);
    return bitmap;
}

} // namespace quillane::codecs
