#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/legacy_encoders.h"
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kTgaOut[] = "TARGA";
constexpr int kTgaOutMostSide = 65535;

enum TgaOutKind : int { kTgaOutMapped = 1, kTgaOutColour = 2, kTgaOutGrey = 3 };

void TgaPutPixels(const QImage& pixels, int y, int bits, uchar* to)
{
    if (bits == 8) {
        PackIndexes(pixels, y, 8, to);
        return;
    }
    const QRgb* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
    const auto five = [](int level) { return (level * 31 + 127) / 255; };
    for (int x = 0; x < pixels.width(); ++x) {
        const QRgb p = row[x];
        if (bits == 16) {
            const int value = five(qRed(p)) << 10 | five(qGreen(p)) << 5 | five(qBlue(p));
            *to++ = uchar(value & 0xff);
            *to++ = uchar(value >> 8);
            continue;
        }
        *to++ = uchar(qBlue(p));
        *to++ = uchar(qGreen(p));
        *to++ = uchar(qRed(p));
        if (bits == 32) {
            *to++ = uchar(qAlpha(p));
        }
    }
}

} // namespace

QByteArray TgaEncode(const Bitmap& picture, const EncodeRequest& request)
{
    CheckFits(kTgaOut, picture, kTgaOutMostSide, kTgaOutMostSide);
    const QImage& pixels = picture.Pixels();
    const int bits = request.bits;
    const bool grey = pixels.format() == QImage::Format_Grayscale8;
    const bool mapped = bits == 8 && !grey;
    const qint64 rowBytes = qint64(pixels.width()) * bits / 8;
    CheckFileBytes(kTgaOut, rowBytes * pixels.height());
    constexpr int kTopDown = 0x20;
    constexpr int kEightAlphaBits = 8;
    ByteWriter file;
    file.Reserve(1024 + rowBytes * pixels.height());
    file.Byte(0); // no name
    file.Byte(mapped ? 1 : 0);
    file.Byte(mapped ? kTgaOutMapped : bits == 8 ? kTgaOutGrey : kTgaOutColour);
    file.Little16(0);
    file.Little16(mapped ? 256 : 0);
    file.Byte(mapped ? 24 : 0);
    file.Little32(0);
    file.Little16(quint32(pixels.width()));
    file.Little16(quint32(pixels.height()));
    file.Byte(bits);
    file.Byte(kTopDown | (bits == 32 ? kEightAlphaBits : 0));
    if (mapped) {
        for (const QRgb colour : EncodedColours(pixels, bits)) {
            file.Byte(qBlue(colour));
            file.Byte(qGreen(colour));
            file.Byte(qRed(colour));
        }
    }
    std::vector<uchar> row(static_cast<size_t>(rowBytes));
    for (int y = 0; y < pixels.height(); ++y) {
        TgaPutPixels(pixels, y, bits, row.data());
        file.Bytes(row.data(), rowBytes);
    }
    file.Little32(0); // no extension, no developer's area
    file.Little32(0);
    file.Text("TRUEVISION-XFILE.");
    file.Byte(0);
    return file.Take();
}

} // namespace quillane::codecs
