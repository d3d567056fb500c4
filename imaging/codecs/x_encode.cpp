// The formats of the X Window System that are pieces of C source.
#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/encoders.h"
#include <cstdio>
#include <vector>

namespace quillane::codecs {

namespace {

constexpr char kXpmOut[] = "X pixmap";
constexpr char kXbmOut[] = "X bitmap";
constexpr int kXbmPerLine = 12;
/// Characters that stand for colours: printable ones but for those a C string cannot hold as they
/// are.
constexpr char kXpmDigits[] = " .+@#$%&*=-;>,')!~{]^/(_:<[}|1234567890abcdefghijklmnopqrstuvwxyz"
                              "ABCDEFGHIJKLMNOPQRSTUVWXYZ`";
constexpr int kXpmDigitCount = int(sizeof(kXpmDigits) - 1);

/// A byte with its bits the other way round.
int XbmTurned(int byte)
{
    int turned = 0;
    for (int i = 0; i < 8; ++i) {
        turned |= (byte >> i & 1) << (7 - i);
    }
    return turned;
}

/// The name of a colour, as many characters as all need.
QByteArray XpmName(int index, int characters)
{
    QByteArray name;
    for (int i = 0; i < characters; ++i, index /= kXpmDigitCount) {
        name.append(kXpmDigits[index % kXpmDigitCount]);
    }
    return name;
}

QByteArray XpmColour(QRgb colour)
{
    if (qAlpha(colour) < 128) {
        return "None";
    }
    char text[16];
    std::snprintf(text, sizeof(text), "#%02X%02X%02X", unsigned(qRed(colour)),
                  unsigned(qGreen(colour)), unsigned(qBlue(colour)));
    return text;
}

} // namespace

QByteArray XbmEncode(const Bitmap& picture, const EncodeRequest&)
{
    const QImage& pixels = picture.Pixels();
    const qint64 rowBytes = (qint64(pixels.width()) + 7) / 8;
    CheckFileBytes(kXbmOut, rowBytes * pixels.height() * 6);
    ByteWriter file;
    file.Text("#define picture_width " + QByteArray::number(pixels.width()) + "\n");
    file.Text("#define picture_height " + QByteArray::number(pixels.height()) + "\n");
    file.Text("static unsigned char picture_bits[] = {");
    std::vector<uchar> row;
    row.resize(size_t(rowBytes));
    qint64 count = 0;
    for (int y = 0; y < pixels.height(); ++y) {
        PackBilevel(pixels, y, true, row.data());
        for (const uchar byte : row) {
            char text[8];
            std::snprintf(text, sizeof(text), "0x%02x", unsigned(XbmTurned(byte)));
            file.Text(count == 0 ? "\n   " : count % kXbmPerLine == 0 ? ",\n   " : ", ");
            file.Text(text);
            ++count;
        }
    }
    file.Text("\n};\n");
    return file.Take();
}

QByteArray XpmEncode(const Bitmap& picture, const EncodeRequest& request)
{
    const QImage& pixels = picture.Pixels();
    const QList<QRgb> colours = EncodedColours(pixels, request.bits);
    const int characters = colours.size() > kXpmDigitCount ? 2 : 1;
    CheckFileBytes(kXpmOut, (qint64(pixels.width()) * characters + 4) * pixels.height());
    ByteWriter file;
    file.Text("/* XPM */\nstatic char *picture[] = {\n");
    file.Text('"' + QByteArray::number(pixels.width()) + ' ' + QByteArray::number(pixels.height())
              + ' ' + QByteArray::number(colours.size()) + ' ' + QByteArray::number(characters)
              + "\",\n");
    std::vector<QByteArray> names;
    names.reserve(size_t(colours.size()));
    for (int i = 0; i < colours.size(); ++i) {
        names.push_back(XpmName(i, characters));
        file.Text('"' + names.back() + " c " + XpmColour(colours[i]) + "\",\n");
    }
    std::vector<uchar> indexes(size_t(pixels.width()));
    for (int y = 0; y < pixels.height(); ++y) {
        PackIndexes(pixels, y, 8, indexes.data());
        file.Byte('"');
        for (const uchar index : indexes) {
            file.Text(names[index]);
        }
        file.Text(y + 1 < pixels.height() ? "\",\n" : "\"\n};\n");
    }
    return file.Take();
}

} // namespace quillane::codecs
