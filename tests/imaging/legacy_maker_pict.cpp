// QuickDraw pictures.
#include "legacy_bits.h"
#include "picture_maker.h"

namespace quillane::making {

namespace {

/// PackBits of two bytes each.
QByteArray PictWordCodes(const QByteArray& bytes)
{
    QByteArray codes;
    for (qsizetype at = 0; at + 2 <= bytes.size();) {
        int run = 1;
        while (run < 128 && at + 2 * run + 2 <= bytes.size()
               && bytes.mid(at + 2 * run, 2) == bytes.mid(at, 2)) {
            ++run;
        }
        codes += char(run > 1 ? 257 - run : 0);
        codes += bytes.mid(at, 2);
        at += 2 * run;
    }
    return codes;
}

QByteArray PictRow(const QByteArray& row, const QByteArray& codes, int rowBytes)
{
    return rowBytes < 8 ? row : Big(quint32(codes.size()), rowBytes > 250 ? 2 : 1) + codes;
}

QByteArray PictOperation(int operation, int version)
{
    return Big(quint32(operation), version == 1 ? 1 : 2);
}

/// Head of a map behind its row's length and bounds.
QByteArray PictMapHead(int packing, bool full, int bits, int channels)
{
    return Big(0, 2) + Big(quint32(packing), 2) + Big(0, 4) + Big(150 << 16, 4) + Big(120 << 16, 4)
        + Big(full ? 16 : 0, 2) + Big(quint32(bits), 2) + Big(quint32(channels), 2)
        + Big(full ? (bits == 16 ? 5 : 8) : quint32(bits), 2) + Big(0, 12);
}

QByteArray PictEven(QByteArray bytes, int version)
{
    return version == 2 && bytes.size() % 2 ? bytes + '\0' : bytes;
}

} // namespace

QByteArray MakePictBox(int left, int top, int width, int height)
{
    return Big(quint32(top), 2) + Big(quint32(left), 2) + Big(quint32(top + height), 2)
        + Big(quint32(left + width), 2);
}

QByteArray MakePictFile(int width, int height, const QByteArray& operations, int version,
                        QPoint corner)
{
    QByteArray file = LegacyBytes(512) + Big(0, 2)
        + MakePictBox(corner.x(), corner.y(), width, height)
        + (version == 1 ? Big(0x1101, 2) : Big(0x001102ff, 4));
    if (version == 2) {
        file += Big(0x0c00, 2) + Big(0xffffffff, 4) + Big(0, 20);
    }
    return file + operations + PictOperation(0xff, version);
}

QByteArray MakePictMap(const IndexMake& make, const PictMapMake& how)
{
    const int rowBytes = (make.width * make.bits + 15) / 16 * 2;
    QByteArray map = Big(quint32(rowBytes) | (how.colours ? 0x8000u : 0u), 2)
        + MakePictBox(how.corner.x(), how.corner.y(), make.width, make.height);
    if (how.colours) {
        map += PictMapHead(0, false, make.bits, 1) + Big(0, 4) + Big(0, 2)
            + Big((1u << make.bits) - 1, 2);
        for (int i = 0; i < 1 << make.bits; ++i) {
            const QRgb colour = make.Colour(i);
            map += Big(quint32(i), 2);
            for (const int level : {qRed(colour), qGreen(colour), qBlue(colour)}) {
                map += Big(quint32(level * 257), 2);
            }
        }
    }
    map += MakePictBox(how.corner.x(), how.corner.y(), make.width, make.height)
        + MakePictBox(how.corner.x(), how.corner.y(),
                      how.targetWidth > 0 ? how.targetWidth : make.width, make.height)
        + Big(quint32(how.mode), 2) + how.region;
    for (int y = 0; y < make.height; ++y) {
        const QByteArray row = LegacyChunky(LegacyRow(make, y), make.bits, 2);
        map += PictRow(row, PackBitsCodes(row), rowBytes);
    }
    return PictEven(PictOperation(how.operation, how.version) + map, how.version);
}

QByteArray MakePictColours(int width, int height, int depth, int packing, int channels)
{
    const int rowBytes = width * depth / 8;
    QByteArray map = Big(0x9a, 2) + Big(0xff, 4) + Big(quint32(rowBytes) | 0x8000u, 2)
        + MakePictBox(0, 0, width, height) + PictMapHead(packing, true, depth, channels)
        + MakePictBox(0, 0, width, height) + MakePictBox(0, 0, width, height) + Big(0, 2);
    for (int y = 0; y < height; ++y) {
        QByteArray planes[4], words, bare, padded;
        for (int x = 0; x < width; ++x) {
            const QRgb colour = PlaceColour(x, y, width, height);
            words += Big(
                quint32(qRed(colour) >> 3 << 10 | qGreen(colour) >> 3 << 5 | qBlue(colour) >> 3),
                2);
            bare += Big(colour & 0xffffffu, 3);
            padded += Big(colour & 0xffffffu, 4);
            planes[0] += 'x';
            planes[1] += char(qRed(colour));
            planes[2] += char(qGreen(colour));
            planes[3] += char(qBlue(colour));
        }
        const QByteArray planar =
            (channels == 4 ? planes[0] : QByteArray()) + planes[1] + planes[2] + planes[3];
        if (packing == 2) {
            map += bare;
        } else if (packing == 1) {
            map += depth == 16 ? words : padded;
        } else {
            map += depth == 16 ? PictRow(words, PictWordCodes(words), rowBytes)
                               : PictRow(padded, PackBitsCodes(planar), rowBytes);
        }
    }
    return PictEven(map, 2);
}

QByteArray MakePictJpeg(int width, int height, const QByteArray& jpeg)
{
    QByteArray body = Big(0, 2);
    for (const quint32 value : {1u << 16, 0u, 0u, 0u, 1u << 16, 0u, 0u, 0u, 1u << 30}) {
        body += Big(value, 4);
    }
    body += Big(0, 4) + Big(0, 8) + Big(0, 2) + MakePictBox(0, 0, width, height) + Big(0, 4)
        + Big(0, 4);
    QByteArray about = "jpeg" + LegacyBytes(8) + LegacyBytes(16) + Big(quint32(width), 2)
        + Big(quint32(height), 2) + LegacyBytes(50);
    body += Big(quint32(about.size() + 4), 4) + about + jpeg;
    body += LegacyBytes(int(body.size() & 1));
    return Big(0x8200, 2) + Big(quint32(body.size()), 4) + body;
}

} // namespace quillane::making
