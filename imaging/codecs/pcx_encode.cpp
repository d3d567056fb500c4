#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/legacy_encoders.h"
#include <algorithm>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kPcxOut[] = "PCX";
constexpr int kPcxOutMostSide = 65535;
constexpr int kPcxOutMostRun = 63;
constexpr uchar kPcxOutRunMark = 0xc0;

/// One plane's row; runs end with it.
void PcxPutPlane(ByteWriter& to, const std::vector<uchar>& plane)
{
    for (size_t at = 0; at < plane.size();) {
        size_t end = at + 1;
        while (end < plane.size() && end - at < kPcxOutMostRun && plane[end] == plane[at]) {
            ++end;
        }
        if (end - at > 1 || plane[at] >= kPcxOutRunMark) {
            to.Byte(kPcxOutRunMark | int(end - at));
        }
        to.Byte(plane[at]);
        at = end;
    }
}

void PcxPutColours(ByteWriter& to, const QList<QRgb>& colours, int count)
{
    for (int i = 0; i < count; ++i) {
        const QRgb colour = i < colours.size() ? colours[i] : qRgb(0, 0, 0);
        to.Byte(qRed(colour));
        to.Byte(qGreen(colour));
        to.Byte(qBlue(colour));
    }
}

/// The planes of a row, one after the other.
void PcxPutRow(ByteWriter& to, const QImage& pixels, int y, int bits, std::vector<uchar>& plane,
               std::vector<uchar>& indexes)
{
    const int width = pixels.width();
    std::fill(plane.begin(), plane.end(), uchar(0));
    if (bits == 1) {
        PackBilevel(pixels, y, false, plane.data());
        PcxPutPlane(to, plane);
    } else if (bits == 8) {
        PackIndexes(pixels, y, 8, plane.data());
        PcxPutPlane(to, plane);
    } else if (bits == 4) {
        PackIndexes(pixels, y, 8, indexes.data());
        for (int i = 0; i < 4; ++i) {
            std::fill(plane.begin(), plane.end(), uchar(0));
            for (int x = 0; x < width; ++x) {
                const int bit = indexes[size_t(x)] >> i & 1;
                plane[size_t(x >> 3)] = uchar(plane[size_t(x >> 3)] | bit << (7 - (x & 7)));
            }
            PcxPutPlane(to, plane);
        }
    } else {
        const QRgb* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        for (const int shift : {16, 8, 0}) {
            std::transform(row, row + width, plane.begin(),
                           [shift](QRgb p) { return uchar(p >> shift); });
            PcxPutPlane(to, plane);
        }
    }
}

} // namespace

QByteArray PcxEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kPcxOut, picture, kPcxOutMostSide, kPcxOutMostSide);
    const QImage& pixels = picture.Pixels();
    const int bits = request.bits;
    const int width = pixels.width();
    const bool planar = bits == 1 || bits == 4;
    const int planeBytes = ((planar ? (width + 7) / 8 : width) + 1) / 2 * 2;
    if (planeBytes > kPcxOutMostSide) {
        CannotHold(kPcxOut, QStringLiteral("rows of more than 65534 pixels"));
    }
    const QList<QRgb> colours = bits <= 8 ? EncodedColours(pixels, bits) : QList<QRgb>();
    const auto dots = [](qint32 told) { return quint32(std::clamp(told, 0, 65535)); };
    ByteWriter file;
    file.Byte(10); // the mark
    file.Byte(5);  // version 3.0, which has colours of its own
    file.Byte(1);  // in runs
    file.Byte(planar ? 1 : 8);
    file.Little32(0);
    file.Little16(quint32(width - 1));
    file.Little16(quint32(pixels.height() - 1));
    file.Little16(dots(request.xResolution));
    file.Little16(dots(request.yResolution));
    if (bits == 1) {
        PcxPutColours(file, {qRgb(0, 0, 0), qRgb(255, 255, 255)}, 16);
    } else {
        PcxPutColours(file, bits == 4 ? colours : QList<QRgb>(), 16);
    }
    file.Byte(0);
    file.Byte(bits == 4 ? 4 : bits == 24 ? 3 : 1);
    file.Little16(quint32(planeBytes));
    file.Little16(1); // colours, or black and white
    file.Fill(58);
    std::vector<uchar> plane(static_cast<size_t>(planeBytes));
    std::vector<uchar> indexes(static_cast<size_t>(width));
    for (int y = 0; y < pixels.height(); ++y) {
        PcxPutRow(file, pixels, y, bits, plane, indexes);
    }
    if (bits == 8) {
        file.Byte(12); // the mark of the colours at the end
        PcxPutColours(file, colours, 256);
    }
    CheckFileBytes(kPcxOut, file.Size());
    return file.Take();
}

} // namespace quillane::codecs
