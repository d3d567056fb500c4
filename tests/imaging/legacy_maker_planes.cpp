// Silicon Graphics images, MacPaint, Microsoft Paint, GEM images and interchange files.
#include "legacy_bits.h"
#include "legacy_maker.h"
#include "picture_maker.h"

namespace quillane::making {

namespace {

QByteArray LegacyChunk(const char* name, const QByteArray& body)
{
    return QByteArray(name, 4) + Big(quint32(body.size()), 4) + body
        + LegacyBytes(int(body.size() & 1));
}

} // namespace

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

} // namespace quillane::making
