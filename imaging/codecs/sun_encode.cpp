#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/legacy_encoders.h"
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kSunOut[] = "Sun raster";

} // namespace

QByteArray SunEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const QImage& pixels = picture.Pixels();
    const int bits = request.bits;
    const int width = pixels.width();
    const bool grey = pixels.format() == QImage::Format_Grayscale8;
    const QList<QRgb> colours = bits == 8 && !grey ? EncodedColours(pixels, bits) : QList<QRgb>();
    const qint64 rowBytes = (qint64(width) * bits + 15) / 16 * 2;
    CheckFileBytes(kSunOut, rowBytes * pixels.height());
    ByteWriter file;
    file.Reserve(1024 + rowBytes * pixels.height());
    file.Big32(0x59a66a95);
    file.Big32(quint32(width));
    file.Big32(quint32(pixels.height()));
    file.Big32(quint32(bits));
    file.Big32(quint32(rowBytes * pixels.height()));
    file.Big32(1); // not packed
    file.Big32(colours.isEmpty() ? 0 : 1);
    file.Big32(quint32(3 * colours.size()));
    for (const int shift : {16, 8, 0}) {
        for (const QRgb colour : colours) {
            file.Byte(int(colour >> shift & 0xff));
        }
    }
    std::vector<uchar> row(static_cast<size_t>(rowBytes));
    for (int y = 0; y < pixels.height(); ++y) {
        if (bits == 1) {
            PackBilevel(pixels, y, true, row.data()); // a set bit is ink
        } else if (bits == 8) {
            PackIndexes(pixels, y, 8, row.data());
        } else {
            const QRgb* from = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
            uchar* to = row.data();
            for (int x = 0; x < width; ++x) {
                *to++ = uchar(qBlue(from[x]));
                *to++ = uchar(qGreen(from[x]));
                *to++ = uchar(qRed(from[x]));
            }
        }
        file.Bytes(row.data(), rowBytes);
    }
    return file.Take();
}

} // namespace quillane::codecs
