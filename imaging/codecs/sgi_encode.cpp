#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/legacy_encoders.h"
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kSgiOut[] = "Silicon Graphics image";
constexpr int kSgiOutMostSide = 65535;
constexpr int kSgiOutHeader = 512;
constexpr size_t kSgiOutMostRun = 126;

void SgiPutSample(ByteWriter& to, int value, int bytes)
{
    if (bytes == 2) {
        to.Big16(quint32(value));
    } else {
        to.Byte(value);
    }
}

/// One plane of a row, as numbers.
void SgiTakeRow(const QImage& pixels, int y, int plane, std::vector<quint16>& to)
{
    const uchar* row = pixels.constScanLine(y);
    for (size_t x = 0; x < to.size(); ++x) {
        switch (pixels.depth()) {
        case 8:
            to[x] = row[x];
            break;
        case 16:
            to[x] = reinterpret_cast<const quint16*>(row)[x];
            break;
        case 64:
            to[x] = reinterpret_cast<const quint16*>(row)[4 * x + size_t(plane)];
            break;
        default: {
            constexpr int kShifts[] = {16, 8, 0, 24};
            to[x] = quint16(reinterpret_cast<const QRgb*>(row)[x] >> kShifts[plane] & 0xff);
            break;
        }
        }
    }
}

/// Runs of one value, and of values of their own behind a count with its eighth bit set.
void SgiPutRuns(ByteWriter& to, const std::vector<quint16>& row, int bytes)
{
    constexpr size_t kWorthRun = 3;
    const auto runEnd = [&](size_t from) {
        size_t end = from + 1;
        while (end < row.size() && end - from < kSgiOutMostRun && row[end] == row[from]) {
            ++end;
        }
        return end;
    };
    for (size_t at = 0; at < row.size();) {
        const size_t run = runEnd(at);
        if (run - at >= kWorthRun) {
            SgiPutSample(to, int(run - at), bytes);
            SgiPutSample(to, row[at], bytes);
            at = run;
            continue;
        }
        size_t end = at;
        while (end < row.size() && end - at < kSgiOutMostRun && runEnd(end) - end < kWorthRun) {
            ++end;
        }
        SgiPutSample(to, 0x80 | int(end - at), bytes);
        for (; at < end; ++at) {
            SgiPutSample(to, row[at], bytes);
        }
    }
    SgiPutSample(to, 0, bytes);
}

} // namespace

QByteArray SgiEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kSgiOut, picture, kSgiOutMostSide, kSgiOutMostSide);
    const QImage& pixels = picture.Pixels();
    const bool packed = request.format == 143;
    const int bytes = request.bits == 16 || request.bits == 48 || request.bits == 64 ? 2 : 1;
    const int planes = request.bits / 8 / bytes;
    const int height = pixels.height();
    const qint64 plainBytes = qint64(planes) * height * pixels.width() * bytes;
    CheckFileBytes(kSgiOut, plainBytes);
    ByteWriter file;
    file.Reserve(kSgiOutHeader + (packed ? plainBytes / 2 : plainBytes));
    file.Big16(0x01da);
    file.Byte(packed ? 1 : 0);
    file.Byte(bytes);
    file.Big16(planes > 1 ? 3 : 2);
    file.Big16(quint32(pixels.width()));
    file.Big16(quint32(height));
    file.Big16(quint32(planes));
    file.Big32(0);
    file.Big32(bytes == 2 ? 65535 : 255);
    file.Fill(kSgiOutHeader - file.Size());
    const qint64 entries = qint64(planes) * height;
    if (packed) {
        file.Fill(8 * entries); // where the rows begin, then how long they are
    }
    std::vector<quint16> row(static_cast<size_t>(pixels.width()));
    qint64 entry = 0;
    for (int plane = 0; plane < planes; ++plane) {
        for (int y = height - 1; y >= 0; --y, ++entry) {
            SgiTakeRow(pixels, y, plane, row);
            if (!packed) {
                for (const quint16 value : row) {
                    SgiPutSample(file, value, bytes);
                }
                continue;
            }
            const qint64 begin = file.Size();
            SgiPutRuns(file, row, bytes);
            CheckFileBytes(kSgiOut, file.Size());
            file.PatchBig32(kSgiOutHeader + 4 * entry, quint32(begin));
            file.PatchBig32(kSgiOutHeader + 4 * (entries + entry), quint32(file.Size() - begin));
        }
    }
    return file.Take();
}

} // namespace quillane::codecs
