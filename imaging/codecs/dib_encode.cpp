#include "imaging/codecs/dib_encode.h"
#include <algorithm>
#include <cstring>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr int kDibOutMostRun = 255;
constexpr int kDibV4Bytes = 108;
constexpr quint32 kDibSrgb = 0x73524742; ///< LCS_sRGB

int DibOutHeaderBytes(const DibOut& out)
{
    return out.kind == DibKind::Os21 ? 12
        : out.kind == DibKind::Os22  ? 64
        : out.masks[3] != 0          ? kDibV4Bytes
                                     : 40;
}

bool DibOutHasMasks(const DibOut& out)
{
    return out.masks[0] != 0;
}

/// Whether every value is one that 5 bits of a colour stand for.
bool DibFitsFiveBits(const QImage& pixels)
{
    bool exact[256] = {};
    for (int i = 0; i < 32; ++i) {
        exact[(i * 255 + 15) / 31] = true;
    }
    for (int y = 0; y < pixels.height(); ++y) {
        const QRgb* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        const bool fits = std::all_of(row, row + pixels.width(), [&](QRgb p) {
            return exact[qRed(p)] && exact[qGreen(p)] && exact[qBlue(p)];
        });
        if (!fits) {
            return false;
        }
    }
    return true;
}

bool DibHasAlpha(const QImage& pixels)
{
    if (pixels.format() != QImage::Format_ARGB32) {
        return false;
    }
    for (int y = 0; y < pixels.height(); ++y) {
        const QRgb* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        if (std::any_of(row, row + pixels.width(), [](QRgb p) { return qAlpha(p) != 255; })) {
            return true;
        }
    }
    return false;
}

void DibPutDeepRow(const QImage& pixels, int y, const DibOut& out, uchar* to)
{
    const QRgb* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
    const int width = pixels.width();
    const int greenMost = DibOutHasMasks(out) ? 63 : 31;
    for (int x = 0; x < width; ++x) {
        const QRgb p = row[x];
        if (out.bits == 16) {
            const int red = (qRed(p) * 31 + 127) / 255;
            const int green = (qGreen(p) * greenMost + 127) / 255;
            const int blue = (qBlue(p) * 31 + 127) / 255;
            const int value =
                greenMost == 63 ? red << 11 | green << 5 | blue : red << 10 | green << 5 | blue;
            *to++ = uchar(value & 0xff);
            *to++ = uchar(value >> 8);
            continue;
        }
        *to++ = uchar(qBlue(p));
        *to++ = uchar(qGreen(p));
        *to++ = uchar(qRed(p));
        if (out.bits == 32) {
            *to++ = out.opacity ? uchar(qAlpha(p)) : uchar(0);
        }
    }
}

/// Where the run of equal indexes that begins at `from` ends, at most kDibOutMostRun on.
int DibRunEnd(const std::vector<uchar>& row, int from)
{
    const int most = std::min<int>(int(row.size()), from + kDibOutMostRun);
    int at = from + 1;
    while (at < most && row[size_t(at)] == row[size_t(from)]) {
        ++at;
    }
    return at;
}

void DibPutLiteralRun(ByteWriter& to, const uchar* from, int count, DibPacking packing)
{
    to.Byte(0);
    to.Byte(count);
    int bytes = count;
    if (packing == DibPacking::Rle8) {
        to.Bytes(from, count);
    } else {
        bytes = (count + 1) / 2;
        for (int i = 0; i < count; i += 2) {
            to.Byte(from[i] << 4 | (i + 1 < count ? from[i + 1] : 0));
        }
    }
    if (bytes % 2 != 0) {
        to.Byte(0);
    }
}

void DibPutRunRow(ByteWriter& to, const std::vector<uchar>& row, DibPacking packing)
{
    const auto repeat = [&](int count, uchar index) {
        to.Byte(count);
        to.Byte(packing == DibPacking::Rle8 ? index : index << 4 | index);
    };
    const int width = int(row.size());
    constexpr int kWorthRun = 3; // shorter ones cost no more among the others
    for (int x = 0; x < width;) {
        int end = DibRunEnd(row, x);
        if (end - x >= kWorthRun) {
            repeat(end - x, row[size_t(x)]);
            x = end;
            continue;
        }
        while (end < width && end - x < kDibOutMostRun && DibRunEnd(row, end) - end < kWorthRun) {
            ++end;
        }
        if (end - x < kWorthRun) { // so few as they are would be a command
            for (; x < end; ++x) {
                repeat(1, row[size_t(x)]);
            }
        } else {
            DibPutLiteralRun(to, &row[size_t(x)], end - x, packing);
        }
        x = end;
    }
}

} // namespace

int DibOut::ColoursAt() const
{
    const int masksBehind = DibOutHasMasks(*this) && masks[3] == 0 ? 12 : 0;
    return DibOutHeaderBytes(*this) + masksBehind;
}

int DibOut::HeadBytes() const
{
    const int colours = bits <= 8 ? 1 << bits : 0;
    return ColoursAt() + colours * (kind == DibKind::Os21 ? 3 : 4);
}

DibOut DibLayout(const Bitmap& picture, const EncodeRequest& request, DibKind kind,
                 DibPacking packing)
{
    DibOut out;
    out.kind = kind;
    out.packing = packing;
    out.bits = request.bits;
    out.xResolution = request.xResolution;
    out.yResolution = request.yResolution;
    if (out.bits == 16 && !DibFitsFiveBits(picture.Pixels())) {
        out.masks = {0xf800, 0x07e0, 0x001f, 0};
    } else if (out.bits == 32 && DibHasAlpha(picture.Pixels())) {
        out.masks = {0xff0000, 0xff00, 0xff, 0xff000000};
        out.opacity = true;
    }
    return out;
}

qint64 DibRowBytes(const Bitmap& picture, int bits)
{
    return (qint64(picture.Width()) * bits + 31) / 32 * 4;
}

void WriteDibHead(ByteWriter& to, const Bitmap& picture, const DibOut& out, qint64 dataBytes)
{
    const int height = picture.Height() * (out.twiceAsHigh ? 2 : 1);
    const int colours = out.bits <= 8 ? 1 << out.bits : 0;
    const int size = DibOutHeaderBytes(out);
    to.Little32(quint32(size));
    if (out.kind == DibKind::Os21) {
        to.Little16(quint32(picture.Width()));
        to.Little16(quint32(height));
        to.Little16(1); // plane
        to.Little16(quint32(out.bits));
    } else {
        to.Little32(quint32(picture.Width()));
        to.Little32(quint32(height));
        to.Little16(1); // plane
        to.Little16(quint32(out.bits));
        to.Little32(DibOutHasMasks(out)                   ? 3
                        : out.packing == DibPacking::Rle8 ? 1
                        : out.packing == DibPacking::Rle4 ? 2
                                                          : 0);
        to.Little32(quint32(dataBytes));
        to.Little32(DotsPerMetre(out.xResolution));
        to.Little32(DotsPerMetre(out.yResolution));
        to.Little32(quint32(colours));
        to.Little32(quint32(colours));
        if (size > 40 && out.kind == DibKind::Os22) {
            to.Fill(size - 40); // no halftoning, no colour encoding of its own
        }
    }
    if (DibOutHasMasks(out)) {
        for (int i = 0; i < (size == kDibV4Bytes ? 4 : 3); ++i) {
            to.Little32(out.masks[size_t(i)]);
        }
        if (size == kDibV4Bytes) {
            to.Little32(kDibSrgb);
            to.Fill(48); // end points and gamma, which sRGB needs not
        }
    }
    if (colours > 0) {
        for (const QRgb colour : EncodedColours(picture.Pixels(), out.bits)) {
            to.Byte(qBlue(colour));
            to.Byte(qGreen(colour));
            to.Byte(qRed(colour));
            if (out.kind != DibKind::Os21) {
                to.Byte(0);
            }
        }
    }
}

void WriteDibRows(ByteWriter& to, const Bitmap& picture, const DibOut& out)
{
    const QImage& pixels = picture.Pixels();
    std::vector<uchar> row(size_t(DibRowBytes(picture, out.bits)), 0);
    for (int y = pixels.height() - 1; y >= 0; --y) {
        if (out.bits <= 8) {
            PackIndexes(pixels, y, out.bits, row.data());
        } else {
            DibPutDeepRow(pixels, y, out, row.data());
        }
        to.Bytes(row.data(), qint64(row.size()));
    }
}

void WriteDibRuns(ByteWriter& to, const Bitmap& picture, DibPacking packing)
{
    const QImage& pixels = picture.Pixels();
    std::vector<uchar> row(size_t(pixels.width()));
    for (int y = pixels.height() - 1; y >= 0; --y) {
        PackIndexes(pixels, y, 8, row.data());
        DibPutRunRow(to, row, packing);
        to.Little16(y > 0 ? 0x0000 : 0x0100); // end of the row, of the picture
    }
}

} // namespace quillane::codecs
