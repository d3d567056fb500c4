// Encapsulated PostScript: a box of a point a pixel, or of its size in print, with one image in
// the language's second level.
#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/legacy_encoders.h"
#include "imaging/codecs/packbits.h"
#include <algorithm>
#include <cmath>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kEpsOut[] = "EPS";
constexpr int kEpsLine = 72; ///< characters of a line of codes
constexpr double kPointsPerInch = 72;

/// Four bytes in five characters from "!" on, as the ASCII85Decode filter takes them.
class EpsAscii85 {
public:
    explicit EpsAscii85(ByteWriter& to) : mTo(to) { }
    void Put(const QByteArray& bytes)
    {
        for (const char byte : bytes) {
            mGroup[mHeld++] = uchar(byte);
            if (mHeld == 4) {
                Flush();
            }
        }
    }
    void End()
    {
        if (mHeld > 0) {
            std::fill(mGroup + mHeld, mGroup + 4, uchar(0));
            Flush();
        }
        mTo.Text("~>\n");
    }

private:
    void Flush()
    {
        quint32 value = quint32(mGroup[0]) << 24 | quint32(mGroup[1]) << 16
            | quint32(mGroup[2]) << 8 | mGroup[3];
        char digits[5];
        for (int i = 4; i >= 0; --i, value /= 85) {
            digits[i] = char('!' + value % 85);
        }
        const bool zeros = mHeld == 4 && (mGroup[0] | mGroup[1] | mGroup[2] | mGroup[3]) == 0;
        const int count = zeros ? 1 : mHeld + 1;
        for (int i = 0; i < count; ++i) {
            // A line that begins as a comment would be taken for one by some.
            if (mColumn >= kEpsLine) {
                mTo.Byte('\n');
                mColumn = 0;
            }
            const char digit = zeros ? 'z' : digits[i];
            if (mColumn == 0 && digit == '%') {
                mTo.Byte(' ');
            }
            mTo.Byte(digit);
            ++mColumn;
        }
        mHeld = 0;
    }
    ByteWriter& mTo;
    uchar mGroup[4] = {};
    int mHeld = 0;
    int mColumn = 0;
};

QByteArray EpsColourSpace(const QImage& pixels, int bits)
{
    if (bits == 24) {
        return "/DeviceRGB setcolorspace\n";
    }
    if (bits == 1 || pixels.format() == QImage::Format_Grayscale8) {
        return "/DeviceGray setcolorspace\n";
    }
    QByteArray space = "[/Indexed /DeviceRGB 255 <\n";
    int column = 0;
    for (const QRgb colour : EncodedColours(pixels, bits)) {
        space += QByteArray::number(colour & 0xffffffu, 16).rightJustified(6, '0');
        space += ++column % 12 == 0 ? "\n" : "";
    }
    return space + ">] setcolorspace\n";
}

} // namespace

QByteArray EpsEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const QImage& pixels = picture.Pixels();
    const int bits = request.bits;
    const int width = pixels.width();
    const int height = pixels.height();
    const auto points = [](int side, qint32 dots) {
        return dots > 0 ? side * kPointsPerInch / dots : double(side);
    };
    const double across = points(width, request.xResolution);
    const double down = points(height, request.yResolution);
    const auto number = [](double value) { return QByteArray::number(value, 'f', 4); };
    const bool indexed = bits == 8 && pixels.format() != QImage::Format_Grayscale8;
    ByteWriter file;
    file.Text("%!PS-Adobe-3.0 EPSF-3.0\n");
    file.Text("%%BoundingBox: 0 0 " + QByteArray::number(int(std::ceil(across))) + " "
              + QByteArray::number(int(std::ceil(down))) + "\n");
    file.Text("%%HiResBoundingBox: 0 0 " + number(across) + " " + number(down) + "\n");
    file.Text("%%Creator: Quillane\n%%LanguageLevel: 2\n%%Pages: 1\n%%EndComments\n");
    file.Text("%%Page: 1 1\ngsave\n" + number(across) + " " + number(down) + " scale\n");
    file.Text(EpsColourSpace(pixels, bits));
    const QByteArray w = QByteArray::number(width);
    const QByteArray h = QByteArray::number(height);
    file.Text("<<\n/ImageType 1\n/Width " + w + "\n/Height " + h + "\n/BitsPerComponent "
              + QByteArray(bits == 1 ? "1" : "8") + "\n/Decode "
              + QByteArray(indexed          ? "[0 255]"
                               : bits == 24 ? "[0 1 0 1 0 1]"
                                            : "[0 1]")
              + "\n/ImageMatrix [" + w + " 0 0 -" + h + " 0 " + h
              + "]\n/DataSource currentfile "
                "/ASCII85Decode filter /RunLengthDecode filter\n>>\nimage\n");
    EpsAscii85 codes(file);
    std::vector<uchar> row((size_t(width) * size_t(bits) + 7) / 8);
    for (int y = 0; y < height; ++y) {
        if (bits == 1) {
            PackBilevel(pixels, y, false, row.data());
        } else if (bits == 8) {
            PackIndexes(pixels, y, 8, row.data());
        } else {
            const QRgb* from = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
            uchar* to = row.data();
            for (int x = 0; x < width; ++x) {
                *to++ = uchar(qRed(from[x]));
                *to++ = uchar(qGreen(from[x]));
                *to++ = uchar(qBlue(from[x]));
            }
        }
        ByteWriter packed;
        PutPackBits(packed, row.data(), qint64(row.size()));
        codes.Put(packed.Take());
        CheckFileBytes(kEpsOut, file.Size());
    }
    codes.Put(QByteArray(1, '\x80')); // the end of the runs
    codes.End();
    file.Text("grestore\nshowpage\n%%EOF\n");
    return file.Take();
}

} // namespace quillane::codecs
