#include "legacy_bits.h"

namespace quillane::making {

QByteArray LegacyBytes(int count, char value)
{
    return QByteArray(count, value);
}

QByteArray LegacyRow(const IndexMake& make, int y)
{
    QByteArray row;
    for (int x = 0; x < make.width; ++x) {
        row.append(char(make.Index(x, y)));
    }
    return row;
}

QByteArray LegacyChunky(const QByteArray& indexes, int bits, int align)
{
    QByteArray row(((indexes.size() * bits + 7) / 8 + align - 1) / align * align, '\0');
    for (qsizetype x = 0; x < indexes.size(); ++x) {
        const qsizetype at = x * bits;
        row[at / 8] = char(row[at / 8] | indexes[x] << (8 - bits - at % 8));
    }
    return row;
}

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

int LegacyRun(const QByteArray& bytes, qsizetype at, int most)
{
    int run = 1;
    while (run < most && at + run < bytes.size() && bytes[at + run] == bytes[at]) {
        ++run;
    }
    return run;
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

int LegacySample(int x, int y, int plane)
{
    return (x * 9 + y * 5 + plane * 31) % 256;
}

QByteArray PackBitsCodes(const QByteArray& bytes)
{
    constexpr qsizetype kMost = 128;
    QByteArray codes;
    for (qsizetype at = 0; at < bytes.size();) {
        const int run = LegacyRun(bytes, at, kMost);
        if (run > 1) {
            codes += char(257 - run);
            codes += bytes[at];
            at += run;
            continue;
        }
        qsizetype end = at;
        while (end < bytes.size() && end - at < kMost && LegacyRun(bytes, end, 2) == 1) {
            ++end;
        }
        codes += char(end - at - 1) + bytes.mid(at, end - at);
        at = end;
    }
    return codes;
}

} // namespace quillane::making
