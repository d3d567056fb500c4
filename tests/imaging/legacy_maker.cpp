#include "legacy_maker.h"
#include "picture_maker.h"
#include <bit>

namespace quillane::making {

namespace {

QByteArray LegacyBytes(int count, char value = '\0')
{
    return QByteArray(count, value);
}

/// One row's indexes, one byte each.
QByteArray LegacyRow(const IndexMake& make, int y)
{
    QByteArray row;
    for (int x = 0; x < make.width; ++x) {
        row.append(char(make.Index(x, y)));
    }
    return row;
}

/// Indexes in fields of `bits`, the first highest, in whole multiples of `align` bytes.
QByteArray LegacyChunky(const QByteArray& indexes, int bits, int align = 1)
{
    QByteArray row(((indexes.size() * bits + 7) / 8 + align - 1) / align * align, '\0');
    for (qsizetype x = 0; x < indexes.size(); ++x) {
        const qsizetype at = x * bits;
        row[at / 8] = char(row[at / 8] | indexes[x] << (8 - bits - at % 8));
    }
    return row;
}

/// Planes of one bit, one behind the other, each in whole multiples of `align` bytes.
QList<QByteArray> LegacyPlanes(const QByteArray& indexes, int planes, int align)
{
    QList<QByteArray> list;
    for (int plane = 0; plane < planes; ++plane) {
        QByteArray bits;
        for (const char index : indexes) {
            bits.append(char(index >> plane & 1));
        }
        list.append(LegacyChunky(bits, 1, align));
    }
    return list;
}

/// Length of the run at a place, at most `most`.
int LegacyRun(const QByteArray& bytes, qsizetype at, int most)
{
    int run = 1;
    while (run < most && at + run < bytes.size() && bytes[at + run] == bytes[at]) {
        ++run;
    }
    return run;
}

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

QByteArray LegacyColours(const IndexMake& make, int count)
{
    QByteArray colours;
    for (int i = 0; i < count; ++i) {
        const QRgb colour = make.Colour(i);
        colours += char(qRed(colour));
        colours += char(qGreen(colour));
        colours += char(qBlue(colour));
    }
    return colours;
}

QByteArray LegacyChunk(const char* name, const QByteArray& body)
{
    return QByteArray(name, 4) + Big(quint32(body.size()), 4) + body
        + LegacyBytes(int(body.size() & 1));
}

int LegacySample(int x, int y, int plane)
{
    return (x * 9 + y * 5 + plane * 31) % 256;
}

} // namespace

QByteArray PackBitsCodes(const QByteArray& bytes)
{
    QByteArray codes;
    for (qsizetype at = 0; at < bytes.size();) {
        const int run = LegacyRun(bytes, at, 128);
        codes += char(run > 1 ? 257 - run : 0);
        codes += bytes[at];
        at += run;
    }
    return codes;
}

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

QByteArray MakeSgi(int width, int height, int planes, int sampleBytes, bool packed)
{
    QByteArray head = QByteArray("\x01\xda", 2) + char(packed) + char(sampleBytes)
        + Big(planes > 1 ? 3 : 2, 2) + Big(quint32(width), 2) + Big(quint32(height), 2)
        + Big(quint32(planes), 2) + Big(0, 4) + Big(255, 4);
    head = head.leftJustified(512, '\0');
    QByteArray rows, starts, lengths;
    const qsizetype dataAt = 512 + 8 * planes * height;
    for (int plane = 0; plane < planes; ++plane) {
        for (int y = height - 1; y >= 0; --y) {
            QByteArray row;
            for (int x = 0; x < width; ++x) {
                // Three alike, then three of their own.
                const QByteArray sample =
                    Big(quint32(LegacySample(x / 3 % 2 ? x : x / 3 * 3, y, plane))
                            << (sampleBytes == 2 ? 8 : 0),
                        sampleBytes);
                if (packed) {
                    const bool run = x / 3 % 2 == 0;
                    if (x % 3 == 0) {
                        const int count = std::min(3, width - x);
                        row += Big(quint32(run ? count : 0x80 | count), sampleBytes);
                    }
                    row += run && x % 3 != 0 ? QByteArray() : sample;
                } else {
                    row += sample;
                }
            }
            row += packed ? Big(0, sampleBytes) : QByteArray();
            starts += Big(quint32(dataAt + rows.size()), 4);
            lengths += Big(quint32(row.size()), 4);
            rows += row;
        }
    }
    return packed ? head + starts + lengths + rows : head + rows;
}

QByteArray MakeMac(bool wrapped)
{
    const IndexMake make{576, 720, 1, true};
    QByteArray file;
    if (wrapped) {
        file = QByteArray("\0\4Name", 6).leftJustified(65, '\0') + "PNTGMPNT";
        file = file.leftJustified(128, '\0');
    }
    file += Big(2, 4) + LegacyBytes(508);
    for (int y = 0; y < 720; ++y) {
        file += PackBitsCodes(LegacyChunky(LegacyRow(make, y), 1));
    }
    return file;
}

QByteArray MakeMsp(const IndexMake& make)
{
    QByteArray file = QByteArray(make.packed ? "LinS" : "DanM", 4) + Little(quint32(make.width), 2)
        + Little(quint32(make.height), 2) + LegacyBytes(24);
    QByteArray lengths, rows;
    for (int y = 0; y < make.height; ++y) {
        QByteArray row = LegacyChunky(LegacyRow(make, y), 1);
        if (make.packed) {
            // A literal byte, then runs.
            QByteArray codes = QByteArray("\1") + row[0];
            for (qsizetype at = 1; at < row.size();) {
                const int run = LegacyRun(row, at, 255);
                codes += QByteArray(1, '\0') + char(run) + row[at];
                at += run;
            }
            row = codes;
        }
        lengths += Little(quint32(row.size()), 2);
        rows += row;
    }
    return file + (make.packed ? lengths : QByteArray()) + rows;
}

QByteArray MakeGem(const IndexMake& make, bool colours)
{
    QByteArray file = Big(1, 2) + Big(quint32(colours ? 11 + 3 * (1 << make.bits) : 8), 2)
        + Big(quint32(make.bits), 2) + Big(2, 2) + Big(254, 2) + Big(127, 2)
        + Big(quint32(make.width), 2) + Big(quint32(make.height), 2);
    if (colours) {
        file += "XIMG" + Big(0, 2);
        for (int i = 0; i < 1 << make.bits; ++i) {
            const QRgb colour = make.Colour(i);
            for (const int level : {qRed(colour), qGreen(colour), qBlue(colour)}) {
                file += Big(quint32((level * 1000 + 254) / 255), 2);
            }
        }
    }
    for (int y = 0; y < make.height; ++y) {
        int repeat = 1;
        while (repeat < 255 && y + repeat < make.height
               && LegacyRow(make, y + repeat) == LegacyRow(make, y)) {
            ++repeat;
        }
        if (repeat > 1) {
            file += QByteArray("\0\0\xff", 3) + char(repeat);
        }
        for (const QByteArray& plane : LegacyPlanes(LegacyRow(make, y), make.bits, 1)) {
            for (qsizetype at = 0; at < plane.size();) {
                const int run = LegacyRun(plane, at, 127);
                const uchar value = uchar(plane[at]);
                if (value == 0 || value == 0xff) {
                    file += char(run | (value & 0x80));
                    at += run;
                } else if (at + 4 <= plane.size() && plane.mid(at, 2) == plane.mid(at + 2, 2)) {
                    file += QByteArray("\0\2", 2) + plane.mid(at, 2); // a pattern twice
                    at += 4;
                } else {
                    file += QByteArray("\x80\1", 2) + plane[at];
                    ++at;
                }
            }
        }
        y += repeat - 1;
    }
    return file;
}

QByteArray MakeIffForm(int width, int height, int planes, const QList<QRgb>& colours, quint32 mode,
                       const QByteArray& rows)
{
    QByteArray map;
    for (const QRgb colour : colours) {
        map += char(qRed(colour));
        map += char(qGreen(colour));
        map += char(qBlue(colour));
    }
    const QByteArray header = Big(quint32(width), 2) + Big(quint32(height), 2) + Big(0, 4)
        + char(planes) + LegacyBytes(3) + Big(0, 2) + "\x0a\x0b" + Big(320, 2) + Big(200, 2);
    return LegacyChunk("FORM",
                       "ILBM" + LegacyChunk("BMHD", header) + LegacyChunk("CAMG", Big(mode, 4))
                           + (map.isEmpty() ? QByteArray() : LegacyChunk("CMAP", map))
                           + LegacyChunk("BODY", rows));
}

QByteArray MakeIff(const IndexMake& make, bool chunky, quint32 mode)
{
    QByteArray rows;
    for (int y = 0; y < make.height; ++y) {
        const QByteArray indexes = LegacyRow(make, y);
        const QList<QByteArray> planes = chunky ? QList<QByteArray>{LegacyChunky(indexes, 8, 2)}
                                                : LegacyPlanes(indexes, make.bits, 2);
        for (const QByteArray& plane : planes) {
            rows += make.packed ? PackBitsCodes(plane) : plane;
        }
    }
    QByteArray form = MakeIffForm(make.width, make.height, chunky ? 8 : make.bits, {}, mode, rows);
    form.replace("CAMG", "CMAP"); // the colours take the place of the mode
    const qsizetype at = form.indexOf("CMAP");
    const QByteArray colours = LegacyColours(make, 1 << make.bits);
    form.replace(at, 12, LegacyChunk("CMAP", colours));
    if (mode != 0) {
        form.insert(at, LegacyChunk("CAMG", Big(mode, 4)));
    }
    form[30] = make.packed ? '\1' : '\0';
    form.replace(8, 4, chunky ? "PBM " : "ILBM");
    return form.replace(4, 4, Big(quint32(form.size() - 8), 4));
}

QByteArray MakePsd(const PsdMake& make)
{
    const auto length = [&](qsizetype bytes) {
        return make.big ? Big(0, 4) + Big(quint32(bytes), 4) : Big(quint32(bytes), 4);
    };
    QByteArray file = "8BPS" + Big(make.big ? 2 : 1, 2) + LegacyBytes(6)
        + Big(quint32(make.channels), 2) + Big(quint32(make.height), 4)
        + Big(quint32(make.width), 4) + Big(quint32(make.depth), 2) + Big(quint32(make.mode), 2);
    QByteArray palette;
    for (int i = 0; i < 768 && make.mode == 2; ++i) {
        palette += char(i * 3);
    }
    file += Big(quint32(palette.size()), 4) + palette;
    QByteArray resources;
    const auto resource = [&](int number, const QByteArray& name, const QByteArray& body) {
        resources += "8BIM" + Big(quint32(number), 2) + char(name.size()) + name
            + LegacyBytes(name.size() % 2 ? 0 : 1) + Big(quint32(body.size()), 4) + body
            + LegacyBytes(int(body.size() & 1));
    };
    resource(1000, "abc", "odd");
    if (make.dotsPerInch > 0) {
        const QByteArray dots = Big(quint32(make.dotsPerInch) << 16, 4) + Big(1, 2) + Big(1, 2);
        resource(1005, "", dots + dots);
    }
    if (!make.icc.isEmpty()) {
        resource(1039, "", make.icc);
    }
    file += Big(quint32(resources.size()), 4) + resources;
    const QByteArray layers = make.transparency ? length(2) + Big(0xffff, 2) : QByteArray();
    file += length(layers.size()) + layers + Big(make.packed ? 1 : 0, 2);
    QByteArray rows, lengths;
    for (int channel = 0; channel < make.channels; ++channel) {
        for (int y = 0; y < make.height; ++y) {
            QByteArray row;
            for (int x = 0; x < make.width; ++x) {
                const int sample = LegacySample(x, y, channel);
                if (make.depth == 1) {
                    row += char((x / 3 + y) & 1);
                } else if (make.depth == 32) {
                    row += Big(std::bit_cast<quint32>(float(sample) / 255), 4);
                } else {
                    row += Big(quint32(sample) << (make.depth - 8), make.depth / 8);
                }
            }
            row = make.depth == 1 ? LegacyChunky(row, 1) : row;
            row = make.packed ? PackBitsCodes(row) : row;
            lengths += Big(quint32(row.size()), make.big ? 4 : 2);
            rows += row;
        }
    }
    return file + (make.packed ? lengths : QByteArray()) + rows;
}

QMap<QString, QByteArray> MadeLegacyPictures()
{
    QMap<QString, QByteArray> files;
    for (const bool packed : {false, true}) {
        const auto add = [&](const QString& name, const QByteArray& bytes) {
            files.insert((packed ? "made packed " : "made ") + name, bytes);
        };
        for (const int bits : {1, 4, 8}) {
            const IndexMake make{21, 13, bits, packed};
            add(QString("%1.pcx").arg(bits), MakePcx(make));
            add(QString("%1.ras").arg(bits), MakeSun(make));
            add(QString("%1.iff").arg(bits), MakeIff(make));
        }
        const IndexMake make{21, 13, 8, packed};
        add("map.tga", MakeTga(make));
        add("chunky.iff", MakeIff(make, true));
        add("ham.iff", MakeIff({21, 13, 6, packed}, false, 0x800));
        add("half.iff", MakeIff({21, 13, 6, packed}, false, 0x80));
        add("made.msp", MakeMsp({21, 13, 1, packed}));
        for (const int planes : {1, 2, 3, 4}) {
            add(QString("%1.sgi").arg(planes), MakeSgi(14, 6, planes, 1 + planes % 2, packed));
        }
        for (const int depth : {16, 24, 32}) {
            TgaMake tga;
            tga.depth = depth;
            tga.packed = packed;
            tga.alphaBits = depth == 32 ? 8 : 0;
            add(QString("%1.tga").arg(depth), MakeTgaRgb(tga));
        }
        for (const int mode : {0, 1, 2, 3, 4, 9}) {
            PsdMake psd;
            psd.mode = mode;
            psd.packed = packed;
            psd.depth = mode == 0 ? 1 : mode == 1 ? 16 : 8;
            psd.channels = mode >= 3 ? 5 : 1;
            psd.big = mode == 3;
            psd.transparency = mode == 3;
            psd.dotsPerInch = 240;
            add(QString("%1.psd").arg(mode), MakePsd(psd));
        }
    }
    files.insert("made 24.pcx", MakePcx24(13, 7));
    files.insert("made 32.ras", MakeSunRgb(13, 7, 32, false));
    files.insert("made 1.img", MakeGem({50, 13, 1, true}, false));
    files.insert("made 4.img", MakeGem({50, 13, 4, true}, true));
    files.insert("made.mac", MakeMac(false));
    files.insert("made wrapped.mac", MakeMac(true));
    return files;
}

} // namespace quillane::making
