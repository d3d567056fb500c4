#include "imaging/codecs/encode_support.h"
#include "imaging/codecs/encoders.h"
#include "imaging/limits.h"
#include <QtEndian>
#include <cstring>

namespace quillane::codecs {

namespace {

/// 0xff when the pixels' ones are the lighter colour, else 0: what turns them into "1 is white".
uchar EncodeLightMask(const QImage& pixels)
{
    const QList<QRgb> colours = pixels.colorTable();
    const bool onesAreDark = colours.size() > 1 && qGray(colours[1]) < qGray(colours[0]);
    return onesAreDark ? 0xff : 0;
}

/// Clears the bits of a row's last byte that no pixel has.
void EncodeTrimRow(uchar* row, qint64 bits)
{
    if (bits % 8 != 0) {
        row[bits / 8] = uchar(row[bits / 8] & 0xff00 >> bits % 8);
    }
}

} // namespace

bool NoFileMatches(QByteArrayView, QStringView)
{
    return false;
}

void CannotHold(const char* format, const QString& what)
{
    const QString name = QString::fromLatin1(format);
    throw Failure(kFailureLimit, QStringLiteral("A %1 cannot hold %2.").arg(name, what), name);
}

void CheckFits(const char* format, const Bitmap& picture, qint64 mostWidth, qint64 mostHeight)
{
    if (picture.Width() > mostWidth || picture.Height() > mostHeight) {
        CannotHold(format,
                   QStringLiteral("a picture of %1 x %2 pixels, at most %3 x %4")
                       .arg(picture.Width())
                       .arg(picture.Height())
                       .arg(mostWidth)
                       .arg(mostHeight));
    }
}

void CheckFileBytes(const char* format, qint64 bytes)
{
    if (bytes > limits::kMaxFileBytes) {
        CannotHold(format,
                   QStringLiteral("this picture: the file would have %1 MB, and at most %2 MB can "
                                  "be read again")
                       .arg(bytes >> 20)
                       .arg(limits::kMaxFileBytes >> 20));
    }
}

void ByteWriter::Little16(quint32 value)
{
    Byte(int(value & 0xff));
    Byte(int(value >> 8 & 0xff));
}

void ByteWriter::Little32(quint32 value)
{
    Little16(value & 0xffff);
    Little16(value >> 16);
}

void ByteWriter::Big16(quint32 value)
{
    Byte(int(value >> 8 & 0xff));
    Byte(int(value & 0xff));
}

void ByteWriter::Big32(quint32 value)
{
    Big16(value >> 16);
    Big16(value & 0xffff);
}

void ByteWriter::PatchLittle32(qint64 position, quint32 value)
{
    qToLittleEndian(value, mBytes.data() + position);
}

void ByteWriter::PatchBig32(qint64 position, quint32 value)
{
    qToBigEndian(value, mBytes.data() + position);
}

QList<QRgb> EncodedColours(const QImage& pixels, int bits)
{
    QList<QRgb> colours = pixels.colorTable();
    if (pixels.format() == QImage::Format_Grayscale8) {
        colours.clear();
        colours.reserve(256);
        for (int i = 0; i < 256; ++i) {
            colours.append(qRgb(i, i, i));
        }
    }
    const qsizetype most = qsizetype(1) << bits;
    while (colours.size() < most) {
        colours.append(qRgb(0, 0, 0));
    }
    colours.resize(most);
    return colours;
}

void PackIndexes(const QImage& pixels, int y, int bits, uchar* to)
{
    const int width = pixels.width();
    const uchar* from = pixels.constScanLine(y);
    if (pixels.depth() == bits) {
        std::memcpy(to, from, size_t((qint64(width) * bits + 7) / 8));
        EncodeTrimRow(to, qint64(width) * bits);
        return;
    }
    std::memset(to, 0, size_t((qint64(width) * bits + 7) / 8));
    const int perByte = 8 / bits;
    const int most = (1 << bits) - 1;
    const bool single = pixels.depth() == 1;
    for (int x = 0; x < width; ++x) {
        const int index = single ? from[x >> 3] >> (7 - (x & 7)) & 1 : from[x] & most;
        uchar& byte = to[x / perByte];
        byte = uchar(byte | index << (8 - bits * (x % perByte + 1)));
    }
}

void PackBilevel(const QImage& pixels, int y, bool blackIsOne, uchar* to)
{
    const uchar mask = uchar(EncodeLightMask(pixels) ^ (blackIsOne ? 0xff : 0));
    const uchar* from = pixels.constScanLine(y);
    const qint64 bytes = (qint64(pixels.width()) + 7) / 8;
    for (qint64 i = 0; i < bytes; ++i) {
        to[i] = uchar(from[i] ^ mask);
    }
    EncodeTrimRow(to, pixels.width());
}

} // namespace quillane::codecs
