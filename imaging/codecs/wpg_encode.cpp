#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/encoders.h"
#include <algorithm>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kWpgOut[] = "WordPerfect graphic";
constexpr int kWpgMostSide = 32767;
constexpr int kWpgMostRun = 127;
constexpr int kWpgUnitsPerInch = 1200;
constexpr int kWpgUsualDots = 75; ///< per inch, where the picture tells none

enum WpgRecord : quint8 { kWpgBitmap = 0x0b, kWpgColours = 0x0e, kWpgStart = 0x0f, kWpgEnd = 0x10 };

/// A record's type and length; a long length is marked, its upper half first.
void WpgPutRecord(ByteWriter& file, WpgRecord type, qint64 bytes)
{
    file.Byte(type);
    if (bytes < 0xff) {
        file.Byte(int(bytes));
        return;
    }
    file.Byte(0xff);
    if (bytes >= 0x8000) {
        file.Little16(quint32(bytes >> 16) | 0x8000u);
    }
    file.Little16(quint32(bytes & 0xffff));
}

/// A count with its highest bit set repeats the byte behind it, one without is followed by so many.
void WpgPutRow(ByteWriter& to, const std::vector<uchar>& row)
{
    constexpr int kWorthRun = 3;
    const int size = int(row.size());
    const auto run = [&](int at) {
        int end = at + 1;
        while (end < size && end - at < kWpgMostRun && row[size_t(end)] == row[size_t(at)]) {
            ++end;
        }
        return end - at;
    };
    for (int at = 0; at < size;) {
        const int count = run(at);
        if (count >= kWorthRun) {
            to.Byte(0x80 | count);
            to.Byte(row[size_t(at)]);
            at += count;
            continue;
        }
        int end = at;
        while (end < size && end - at < kWpgMostRun && run(end) < kWorthRun) {
            ++end;
        }
        to.Byte(end - at);
        to.Bytes(&row[size_t(at)], end - at);
        at = end;
    }
}

} // namespace

QByteArray WpgEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kWpgOut, picture, kWpgMostSide, kWpgMostSide);
    const auto dots = [](qint32 told) {
        return std::clamp(told > 0 ? told : kWpgUsualDots, 1, 32767);
    };
    const qint32 across = dots(request.xResolution);
    const qint32 down = dots(request.yResolution);
    const auto units = [](qint32 pixels, qint32 perInch) {
        return quint32(std::clamp<qint64>(qint64(pixels) * kWpgUnitsPerInch / perInch, 1, 32767));
    };
    ByteWriter data;
    std::vector<uchar> row((size_t(picture.Width()) * size_t(request.bits) + 7) / 8);
    for (int y = 0; y < picture.Height(); ++y) {
        PackIndexes(picture.Pixels(), y, request.bits, row.data());
        WpgPutRow(data, row);
    }
    constexpr qint64 kMostRecord = 0x7fffffff;
    CheckFileBytes(kWpgOut, std::min(data.Size(), kMostRecord));

    ByteWriter file;
    file.Text("\xffWPC");
    file.Little32(16); // where the records begin
    file.Byte(1);      // WordPerfect
    file.Byte(0x16);   // a graphic
    file.Byte(1);      // version 1.0
    file.Byte(0);
    file.Little32(0); // not encrypted
    WpgPutRecord(file, kWpgStart, 6);
    file.Byte(1);
    file.Byte(0);
    file.Little16(units(picture.Width(), across));
    file.Little16(units(picture.Height(), down));
    const QList<QRgb> colours = EncodedColours(picture.Pixels(), request.bits);
    WpgPutRecord(file, kWpgColours, 4 + 3 * colours.size());
    file.Little16(0);
    file.Little16(quint32(colours.size()));
    for (const QRgb colour : colours) {
        file.Byte(qRed(colour));
        file.Byte(qGreen(colour));
        file.Byte(qBlue(colour));
    }
    WpgPutRecord(file, kWpgBitmap, 10 + data.Size());
    file.Little16(quint32(picture.Width()));
    file.Little16(quint32(picture.Height()));
    file.Little16(quint32(request.bits));
    file.Little16(quint32(across));
    file.Little16(quint32(down));
    file.Text(data.Take());
    WpgPutRecord(file, kWpgEnd, 0);
    return file.Take();
}

} // namespace quillane::codecs
