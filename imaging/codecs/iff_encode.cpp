#include "imaging/codecs/encoders.h"
#include "imaging/codecs/packbits.h"
#include <algorithm>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kIffOut[] = "interchange file";
constexpr int kIffMostSide = 65535;   ///< two bytes of its header
constexpr int kIffFullColours = 0x80; ///< the flag that colours use all of their eight bits
constexpr int kIffClearIndex = 2;     ///< masking by one of the colours

/// The first colour that is more clear than not; -1 for none.
int IffClear(const QList<QRgb>& colours)
{
    const auto found = std::find_if(colours.begin(), colours.end(),
                                    [](QRgb colour) { return qAlpha(colour) < 128; });
    return found == colours.end() ? -1 : int(found - colours.begin());
}

/// One plane of a row: bit `plane` of what `at` gives for each pixel.
template <typename At> void IffTakePlane(std::vector<uchar>& to, int width, int plane, At&& at)
{
    std::fill(to.begin(), to.end(), uchar(0));
    for (int x = 0; x < width; ++x) {
        if (at(x) >> plane & 1) {
            to[size_t(x >> 3)] = uchar(to[size_t(x >> 3)] | 0x80 >> (x & 7));
        }
    }
}

void IffPutRow(ByteWriter& body, const QImage& pixels, int y, int bits, std::vector<uchar>& plane,
               std::vector<uchar>& indexes)
{
    const int width = pixels.width();
    if (bits <= 8) {
        PackIndexes(pixels, y, 8, indexes.data());
    }
    for (int i = 0; i < bits; ++i) {
        if (bits <= 8) {
            IffTakePlane(plane, width, i, [&](int x) { return int(indexes[size_t(x)]); });
        } else {
            // Red, green, blue and how opaque it is, each from its lowest bit.
            const QRgb* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
            constexpr int kShifts[] = {16, 8, 0, 24};
            const int shift = kShifts[i / 8];
            IffTakePlane(plane, width, i % 8, [&](int x) { return int(row[x] >> shift & 0xff); });
        }
        PutPackBits(body, plane.data(), qint64(plane.size()));
    }
}

} // namespace

QByteArray IffEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kIffOut, picture, kIffMostSide, kIffMostSide);
    const QImage& pixels = picture.Pixels();
    const int bits = request.bits;
    const QList<QRgb> colours = bits <= 8 ? EncodedColours(pixels, bits) : QList<QRgb>();
    const int clear = IffClear(colours);
    ByteWriter file;
    file.Text("FORM");
    file.Big32(0); // how long it is, put in at the end
    file.Text("ILBMBMHD");
    file.Big32(20);
    file.Big16(quint32(pixels.width()));
    file.Big16(quint32(pixels.height()));
    file.Big32(0); // its place
    file.Byte(bits);
    file.Byte(clear >= 0 ? kIffClearIndex : 0);
    file.Byte(1); // ByteRun1
    file.Byte(kIffFullColours);
    file.Big16(quint32(std::max(clear, 0)));
    file.Byte(1); // pixels are square
    file.Byte(1);
    file.Big16(quint32(std::min(pixels.width(), 32767)));
    file.Big16(quint32(std::min(pixels.height(), 32767)));
    if (!colours.isEmpty()) {
        file.Text("CMAP");
        file.Big32(quint32(3 * colours.size()));
        for (const QRgb colour : colours) {
            file.Byte(qRed(colour));
            file.Byte(qGreen(colour));
            file.Byte(qBlue(colour));
        }
    }
    file.Text("CAMG");
    file.Big32(4);
    file.Big32(0); // a plain display mode
    file.Text("BODY");
    const qint64 lengthAt = file.Size();
    file.Big32(0);
    std::vector<uchar> plane((size_t(pixels.width()) + 15) / 16 * 2);
    std::vector<uchar> indexes(size_t(pixels.width()));
    for (int y = 0; y < pixels.height(); ++y) {
        IffPutRow(file, pixels, y, bits, plane, indexes);
    }
    CheckFileBytes(kIffOut, file.Size());
    file.PatchBig32(lengthAt, quint32(file.Size() - lengthAt - 4));
    if (file.Size() % 2 != 0) {
        file.Byte(0);
    }
    file.PatchBig32(4, quint32(file.Size() - 8));
    return file.Take();
}

} // namespace quillane::codecs
