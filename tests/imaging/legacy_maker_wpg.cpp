// WordPerfect graphics.
#include "legacy_bits.h"
#include "picture_maker.h"

namespace quillane::making {

namespace {

/// A length in one byte, or in two or four behind 255.
QByteArray WpgLengthOf(qsizetype bytes)
{
    if (bytes < 255) {
        return QByteArray(1, char(bytes));
    }
    if (bytes < 0x8000) {
        return '\xff' + Little(quint32(bytes), 2);
    }
    return '\xff' + Little(quint32(bytes) >> 16 | 0x8000u, 2) + Little(quint32(bytes) & 0xffffu, 2);
}

/// The first version: literals, runs, runs of ones, and rows like the one before.
QByteArray WpgFirstCodes(const QList<QByteArray>& rows)
{
    QByteArray codes;
    for (qsizetype y = 0; y < rows.size(); ++y) {
        if (y > 0 && rows[y] == rows[y - 1]) {
            codes += QByteArray("\0\1", 2);
            continue;
        }
        for (qsizetype at = 0; at < rows[y].size();) {
            const int run = LegacyRun(rows[y], at, 127);
            if (run == 1) {
                codes += '\1';
                codes += rows[y][at];
            } else if (uchar(rows[y][at]) == 0xff) {
                codes += '\x80';
                codes += char(run);
            } else {
                codes += char(0x80 | run);
                codes += rows[y][at];
            }
            at += run;
        }
    }
    return codes;
}

/// The second version: samples of one byte or three, in runs that may go on into the next row.
QByteArray WpgSecondCodes(const QByteArray& bytes, int sample)
{
    QByteArray codes = "\x7d" + QByteArray(1, char(sample));
    const qsizetype count = bytes.size() / sample;
    for (qsizetype at = 0; at < count;) {
        const QByteArray value = bytes.mid(at * sample, sample);
        int run = 1;
        while (run < 128 && at + run < count && bytes.mid((at + run) * sample, sample) == value) {
            ++run;
        }
        // The marks in the upper values of a count stand for something else.
        run = run >= 126 ? 125 : run;
        if (value == QByteArray(sample, '\0')) {
            codes += '\x7f';
            codes += char(run - 1);
        } else if (value == QByteArray(sample, '\xff')) {
            codes += '\xff';
            codes += char(run - 1);
        } else {
            codes += char(run > 1 ? 0x80 | (run - 1) : 0);
            codes += value;
        }
        at += run;
    }
    return codes;
}

} // namespace

QByteArray MakeWpgRecord(int version, int kind, const QByteArray& body)
{
    return version == 1 ? char(kind) + WpgLengthOf(body.size()) + body
                        : QByteArray(1, '\0') + char(kind) + '\0' + WpgLengthOf(body.size()) + body;
}

QByteArray MakeWpgFile(int version, const QByteArray& records)
{
    return "\xffWPC" + Little(16, 4) + '\1' + '\x16' + char(version) + '\0' + Little(0, 4)
        + records;
}

QByteArray MakeWpg(const IndexMake& make, int version)
{
    QByteArray colours;
    for (int i = 0; i < 1 << make.bits && make.bits > 1; ++i) {
        colours += LegacyColours(make, i + 1).right(3);
        colours += version == 2 ? QByteArray(1, '\0') : QByteArray();
    }
    QList<QByteArray> rows;
    for (int y = 0; y < make.height; ++y) {
        rows.append(LegacyChunky(LegacyRow(make, y), make.bits));
    }
    QByteArray records =
        MakeWpgRecord(version, version == 1 ? 0x0f : 1, QByteArray(6, '\1')); // the beginning
    if (make.bits > 1) {
        records += MakeWpgRecord(version, version == 1 ? 0x0e : 0x0c,
                                 Little(0, 2) + Little(1u << make.bits, 2) + colours);
    }
    const QByteArray sides = Little(quint32(make.width), 2) + Little(quint32(make.height), 2);
    if (version == 1) {
        records += MakeWpgRecord(1, 0x0b,
                                 sides + Little(quint32(make.bits), 2) + Little(150, 2)
                                     + Little(120, 2) + WpgFirstCodes(rows));
        return MakeWpgFile(1, records + MakeWpgRecord(1, 0x10, {}));
    }
    const char code = make.bits == 1 ? '\1' : make.bits == 2 ? '\2' : make.bits == 4 ? '\3' : '\4';
    records += MakeWpgRecord(2, 0x0e,
                             sides + code + char(make.packed)
                                 + (make.packed ? WpgSecondCodes(rows.join(), 1) : rows.join()));
    return MakeWpgFile(2, records + MakeWpgRecord(2, 2, {}));
}

QByteArray MakeWpgRgb(int width, int height, bool packed)
{
    QByteArray bytes;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            bytes += Big(PlaceColour(x, y, width, height) & 0xffffffu, 3);
        }
    }
    return MakeWpgRecord(2, 0x0e,
                         Little(quint32(width), 2) + Little(quint32(height), 2) + '\x08'
                             + char(packed)
                             + (packed ? WpgSecondCodes(bytes, 3) : "\x7d\3" + bytes));
}

} // namespace quillane::making
