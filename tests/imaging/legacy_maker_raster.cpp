// PCX, Sun rasters and TARGA.
#include "legacy_bits.h"
#include "legacy_maker.h"
#include "picture_maker.h"

namespace quillane::making {

namespace {

QByteArray LegacyPcxCodes(const QByteArray& bytes)
{
    QByteArray codes;
    for (qsizetype at = 0; at < bytes.size();) {
        const int run = LegacyRun(bytes, at, 63);
        if (run > 1 || uchar(bytes[at]) >= 0xc0) {
            codes.append(char(0xc0 | run));
        }
        codes.append(bytes[at]);
        at += run;
    }
    return codes;
}

QByteArray LegacySunCodes(const QByteArray& bytes)
{
    QByteArray codes;
    for (qsizetype at = 0; at < bytes.size();) {
        const int run = LegacyRun(bytes, at, 256);
        if (run > 2 || (run > 1 && uchar(bytes[at]) == 0x80)) {
            codes += QByteArray("\x80") + char(run - 1) + bytes[at];
        } else if (uchar(bytes[at]) == 0x80) {
            codes += QByteArray("\x80\0", 2);
        } else {
            codes += QByteArray(run, bytes[at]);
        }
        at += run;
    }
    return codes;
}

QByteArray LegacyTgaCodes(const QByteArray& pixels, int step)
{
    QByteArray codes;
    const qsizetype count = pixels.size() / step;
    for (qsizetype at = 0; at < count;) {
        int run = 1;
        while (run < 128 && at + run < count
               && pixels.mid((at + run) * step, step) == pixels.mid(at * step, step)) {
            ++run;
        }
        // Single pixels go as a packet of literals, so that both kinds are seen.
        codes += char(run > 1 ? 0x80 | (run - 1) : 0);
        codes += pixels.mid(at * step, step);
        at += run;
    }
    return codes;
}

QByteArray LegacyTgaHeader(int kind, int mapCount, int width, int height, int depth, int flags)
{
    return QByteArray(1, '\4') + char(mapCount > 0) + char(kind) + Little(0, 2)
        + Little(quint32(mapCount), 2) + char(mapCount > 0 ? 24 : 0) + Little(0, 4)
        + Little(quint32(width), 2) + Little(quint32(height), 2) + char(depth) + char(flags)
        + "name";
}

QByteArray LegacyPcxHeader(int bits, int planes, int width, int height, int planeBytes, bool packed,
                           const QByteArray& colours)
{
    return QByteArray(1, '\x0a') + '\5' + char(packed) + char(bits) + Little(3, 2) + Little(2, 2)
        + Little(quint32(width + 2), 2) + Little(quint32(height + 1), 2) + Little(150, 2)
        + Little(120, 2) + colours.leftJustified(48, '\0', true) + '\0' + char(planes)
        + Little(quint32(planeBytes), 2) + Little(1, 2) + LegacyBytes(58);
}

} // namespace

QByteArray MakePcx(const IndexMake& make, bool chunky)
{
    const bool planar = make.bits == 1 || (make.bits < 8 && !chunky);
    const int planeBytes = ((make.width * (planar ? 1 : make.bits) + 7) / 8 + 1) / 2 * 2;
    QByteArray file =
        LegacyPcxHeader(planar ? 1 : make.bits, planar ? make.bits : 1, make.width, make.height,
                        planeBytes, make.packed, LegacyColours(make, std::min(16, 1 << make.bits)));
    for (int y = 0; y < make.height; ++y) {
        const QByteArray indexes = LegacyRow(make, y);
        const QByteArray row = planar ? LegacyPlanes(indexes, make.bits, 2).join()
                                      : LegacyChunky(indexes, make.bits, 2);
        file += make.packed ? LegacyPcxCodes(row) : row;
    }
    return make.bits == 8 ? file + '\x0c' + LegacyColours(make, 256) : file;
}

QByteArray MakePcx24(int width, int height)
{
    const int planeBytes = (width + 1) / 2 * 2;
    QByteArray file = LegacyPcxHeader(8, 3, width, height, planeBytes, true, {});
    for (int y = 0; y < height; ++y) {
        QByteArray row(planeBytes * 3, '\0');
        for (int x = 0; x < width; ++x) {
            const QRgb colour = PlaceColour(x, y, width, height);
            row[x] = char(qRed(colour));
            row[planeBytes + x] = char(qGreen(colour));
            row[2 * planeBytes + x] = char(qBlue(colour));
        }
        file += LegacyPcxCodes(row);
    }
    return file;
}

QByteArray MakeSun(const IndexMake& make, bool colours)
{
    QByteArray map;
    for (int channel = 0; channel < 3 && colours; ++channel) {
        for (int i = 0; i < 1 << make.bits; ++i) {
            map += char(make.Colour(i) >> (16 - 8 * channel) & 255);
        }
    }
    QByteArray rows;
    for (int y = 0; y < make.height; ++y) {
        rows += LegacyChunky(LegacyRow(make, y), make.bits, 2);
    }
    return QByteArray("\x59\xa6\x6a\x95", 4) + Big(quint32(make.width), 4)
        + Big(quint32(make.height), 4) + Big(quint32(make.bits), 4) + Big(quint32(rows.size()), 4)
        + Big(make.packed ? 2 : 1, 4) + Big(colours ? 1 : 0, 4) + Big(quint32(map.size()), 4) + map
        + (make.packed ? LegacySunCodes(rows) : rows);
}

QByteArray MakeSunRgb(int width, int height, int depth, bool rgb)
{
    QByteArray rows;
    for (int y = 0; y < height; ++y) {
        QByteArray row;
        for (int x = 0; x < width; ++x) {
            const QRgb colour = PlaceColour(x, y, width, height);
            row += depth == 32 ? LegacyBytes(1, 'x') : QByteArray();
            row += char(rgb ? qRed(colour) : qBlue(colour));
            row += char(qGreen(colour));
            row += char(rgb ? qBlue(colour) : qRed(colour));
        }
        rows += row + LegacyBytes(int(row.size() & 1));
    }
    return QByteArray("\x59\xa6\x6a\x95", 4) + Big(quint32(width), 4) + Big(quint32(height), 4)
        + Big(quint32(depth), 4) + Big(quint32(rows.size()), 4) + Big(rgb ? 3 : 1, 4) + Big(0, 8)
        + rows;
}

QByteArray MakeTga(const IndexMake& make)
{
    QByteArray map, pixels;
    for (int i = 0; i < 256; ++i) {
        const QRgb colour = make.Colour(i);
        map += char(qBlue(colour));
        map += char(qGreen(colour));
        map += char(qRed(colour));
    }
    for (int y = make.height - 1; y >= 0; --y) {
        pixels += LegacyRow(make, y);
    }
    return LegacyTgaHeader(make.packed ? 9 : 1, 256, make.width, make.height, 8, 0) + map
        + (make.packed ? LegacyTgaCodes(pixels, 1) : pixels);
}

QByteArray MakeTgaRgb(const TgaMake& make)
{
    QByteArray pixels;
    for (int row = 0; row < make.height; ++row) {
        const int y = make.topDown ? row : make.height - 1 - row;
        for (int column = 0; column < make.width; ++column) {
            const int x = make.rightToLeft ? make.width - 1 - column : column;
            const QRgb colour = PlaceColour(x, y, make.width, make.height);
            if (make.depth <= 16) {
                pixels += Little(quint32(qRed(colour) >> 3 << 10 | qGreen(colour) >> 3 << 5
                                         | qBlue(colour) >> 3),
                                 2);
            } else {
                pixels += Little(colour & 0xffffffu, 3);
                pixels += make.depth == 32 ? QByteArray(1, char(255 - y)) : QByteArray();
            }
        }
    }
    return LegacyTgaHeader(make.packed ? 10 : 2, 0, make.width, make.height, make.depth,
                           make.alphaBits | (make.topDown ? 0x20 : 0)
                               | (make.rightToLeft ? 0x10 : 0))
        + (make.packed ? LegacyTgaCodes(pixels, (make.depth + 7) / 8) : pixels);
}

} // namespace quillane::making
