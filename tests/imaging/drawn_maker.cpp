#include "drawn_maker.h"
#include "fpx_maker.h"
#include "picture_maker.h"
#include <bit>

namespace quillane::making {

WmfMaker& WmfMaker::Add(int function, std::initializer_list<int> words, const QByteArray& more)
{
    QByteArray parameters;
    for (const int word : words) {
        parameters += Little(quint32(word), 2);
    }
    parameters += more;
    if (parameters.size() % 2 != 0) {
        parameters += '\0';
    }
    mRecords += Little(quint32(3 + parameters.size() / 2), 4) + Little(quint32(function), 2);
    mRecords += parameters;
    return *this;
}

WmfMaker& WmfMaker::Window(int width, int height)
{
    Add(0x0103, {8});
    Add(0x020b, {0, 0});
    return Add(0x020c, {height, width});
}

WmfMaker& WmfMaker::Brush(int colour, int style, int hatch)
{
    Add(0x02fc, {style, colour & 0xffff, colour >> 16, hatch});
    return Add(0x012d, {mObjects++});
}

WmfMaker& WmfMaker::Pen(int colour, int width, int style)
{
    Add(0x02fa, {style, width, 0, colour & 0xffff, colour >> 16});
    return Add(0x012d, {mObjects++});
}

WmfMaker& WmfMaker::Rectangle(int left, int top, int right, int bottom)
{
    return Add(0x041b, {bottom, right, top, left});
}

QByteArray WmfMaker::Plain() const
{
    const QByteArray records = mRecords + Little(3, 4) + Little(0, 2);
    return Little(1, 2) + Little(9, 2) + Little(0x0300, 2)
        + Little(quint32(9 + records.size() / 2), 4) + Little(8, 2) + Little(1000, 4) + Little(0, 2)
        + records;
}

QByteArray WmfMaker::Placeable(QRect box, int unitsPerInch) const
{
    QByteArray head = Little(0x9ac6cdd7, 4) + Little(0, 2);
    for (const int side : {box.x(), box.y(), box.x() + box.width(), box.y() + box.height()}) {
        head += Little(quint32(side), 2);
    }
    head += Little(quint32(unitsPerInch), 2) + Little(0, 4);
    quint16 sum = 0;
    for (int i = 0; i < head.size(); i += 2) {
        sum = quint16(sum ^ (uchar(head[i]) | uchar(head[i + 1]) << 8));
    }
    return head + Little(sum, 2) + Plain();
}

EmfMaker& EmfMaker::Add(int type, std::initializer_list<int> numbers, const QByteArray& more)
{
    QByteArray body;
    for (const int number : numbers) {
        body += Little(quint32(number), 4);
    }
    body += more;
    body += QByteArray((4 - body.size() % 4) % 4, '\0');
    mRecords += Little(quint32(type), 4) + Little(quint32(8 + body.size()), 4) + body;
    ++mCount;
    return *this;
}

EmfMaker& EmfMaker::AddBoxed(int type, std::initializer_list<int> numbers, const QByteArray& more)
{
    QByteArray body(16, '\0');
    for (const int number : numbers) {
        body += Little(quint32(number), 4);
    }
    return Add(type, {}, body + more);
}

EmfMaker& EmfMaker::Brush(int colour, int style, int hatch)
{
    return Add(39, {1, style, colour, hatch}).Add(37, {1});
}

EmfMaker& EmfMaker::Pen(int colour, int width, int style)
{
    return Add(38, {2, style, width, 0, colour}).Add(37, {2});
}

QByteArray EmfMaker::Bytes(int width, int height) const
{
    // The device has 960 units on 254 millimetres, the frame counts hundredths of those.
    QByteArray head = Little(1, 4) + Little(88, 4) + Little(0, 4) + Little(0, 4)
        + Little(quint32(width - 1), 4) + Little(quint32(height - 1), 4) + Little(0, 8)
        + Little(quint32(width * 25400 / 960), 4) + Little(quint32(height * 25400 / 960), 4)
        + Little(0x464d4520, 4) + Little(0x10000, 4) + Little(quint32(mRecords.size() + 108), 4)
        + Little(quint32(mCount + 2), 4) + Little(8, 4) + Little(0, 8) + Little(0, 4)
        + Little(960, 4) + Little(960, 4) + Little(254, 4) + Little(254, 4);
    return head + mRecords + Little(14, 4) + Little(20, 4) + Little(0, 8) + Little(20, 4);
}

DxfMaker& DxfMaker::Header(std::initializer_list<Pair> pairs)
{
    mHeader.append(QList<Pair>(pairs));
    return *this;
}

DxfMaker& DxfMaker::Table(std::initializer_list<Pair> pairs)
{
    mTables.append(QList<Pair>(pairs));
    return *this;
}

DxfMaker& DxfMaker::Block(std::initializer_list<Pair> pairs)
{
    mBlocks.append(QList<Pair>(pairs));
    return *this;
}

DxfMaker& DxfMaker::Entity(std::initializer_list<Pair> pairs)
{
    mEntities.append(QList<Pair>(pairs));
    return *this;
}

QList<DxfMaker::Pair> DxfMaker::Pairs() const
{
    QList<Pair> all;
    const auto section = [&all](const char* name, const QList<Pair>& pairs) {
        all.append({{0, "SECTION"}, {2, name}});
        all.append(pairs);
        all.append({0, "ENDSEC"});
    };
    if (!mHeader.isEmpty()) {
        section("HEADER", mHeader);
    }
    section("TABLES", mTables);
    section("BLOCKS", mBlocks);
    section("ENTITIES", mEntities);
    all.append({0, "EOF"});
    return all;
}

QByteArray DxfMaker::Written() const
{
    QByteArray bytes;
    for (const Pair& pair : Pairs()) {
        bytes += QByteArray::number(pair.code).rightJustified(3) + "\r\n" + pair.value + "\r\n";
    }
    return bytes;
}

QByteArray DxfMaker::Binary(int codeBytes) const
{
    QByteArray bytes("AutoCAD Binary DXF\r\n\x1a\0", 22);
    for (const Pair& pair : Pairs()) {
        if (codeBytes == 1 && pair.code > 254) {
            bytes += '\xff' + Little(quint32(pair.code), 2);
        } else {
            bytes += Little(quint32(pair.code), codeBytes);
        }
        if ((pair.code >= 10 && pair.code < 60) || (pair.code >= 210 && pair.code < 240)) {
            const quint64 bits = std::bit_cast<quint64>(pair.value.toDouble());
            bytes += Little(quint32(bits), 4) + Little(quint32(bits >> 32), 4);
        } else if (pair.code >= 60 && pair.code < 80) {
            bytes += Little(quint32(pair.value.toInt()), 2);
        } else if (pair.code >= 90 && pair.code < 100) {
            bytes += Little(quint32(pair.value.toInt()), 4);
        } else {
            bytes += pair.value + '\0';
        }
    }
    return bytes;
}

QByteArray MakeDib(int width, int height)
{
    QByteArray dib = Little(40, 4) + Little(quint32(width), 4) + Little(quint32(height), 4)
        + Little(1, 2) + Little(24, 2) + QByteArray(24, '\0');
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x) {
            const QRgb colour = PlaceColour(x, y, width, height);
            dib += char(qBlue(colour));
            dib += char(qGreen(colour));
            dib += char(qRed(colour));
        }
        dib += QByteArray((4 - width * 3 % 4) % 4, '\0');
    }
    return dib;
}

QMap<QString, QByteArray> MadeDrawings()
{
    QMap<QString, QByteArray> files;
    WmfMaker wmf;
    wmf.Window(400, 300).Brush(0x0000ff).Pen(0xff0000, 5).Rectangle(20, 20, 200, 150);
    wmf.Brush(0x00ff00, 2, 3).Add(0x0418, {280, 380, 200, 220});
    wmf.Add(0x001e).Add(0x0416, {100, 100, 10, 10}).Add(0x0104, {7});
    wmf.Add(0x0538, {2, 3, 4, 0, 0, 50, 50, 0, 100, 10, 10, 60, 10, 60, 60, 10, 60});
    wmf.Add(0x0127, {-1})
        .Add(0x02fb, {-40, 0, 300, 0, 700}, QByteArray("\1\1\0\0\0\0\0\0Arial\0", 14));
    wmf.Add(0x012d, {3}).Add(0x0521, {4, 0x6574, 0x7478, 60, 250});
    wmf.Add(0x0817, {0, 10, 10, 0, 90, 90, 10, 10}).Add(0x061c, {20, 20, 290, 190, 200, 100});
    wmf.Add(0x0f43, {0x20, 0xcc, 0, 6, 8, 0, 0, 60, 80, 10, 300}, MakeDib(8, 6));
    wmf.Add(0x0940, {0x46, 0x66, 0, 0, 6, 8, 100, 300}, MakeDib(8, 6));
    wmf.Add(0x0142, {5, 0}, MakeDib(8, 8)).Add(0x012d, {4}).Rectangle(300, 150, 390, 190);
    files.insert("made.wmf", wmf.Plain());
    EmfMaker emf;
    emf.Brush(0x0000ff).Pen(0xff0000, 5).Add(43, {20, 20, 200, 150}).Add(33).Brush(0xff00, 2, 3);
    emf.Add(35, {0x3f800000, 0x3e800000, 0, 0x3f000000, 0, 0}).Add(42, {200, 100, 300, 190});
    emf.Add(59).Add(27, {10, 10}).AddBoxed(88, {3, 0x00200040, 0x00400020, 0x00500050});
    emf.Add(61).Add(60).Add(67, {1}).Add(34, {-1}).AddBoxed(63, {});
    emf.AddBoxed(91, {2, 7, 3, 4}, QByteArray("\0\0\0\0\x40\0\0\0\x20\0\x30\0", 12).repeated(3));
    emf.Add(82, {1, -20, 0, 300, 0, 700, 0, 0}, QByteArray("A\0r\0i\0a\0l\0\0\0", 12));
    emf.Add(37, {1}).AddBoxed(84, {1, 0, 0, 20, 150, 2, 76, 2, 0, 0, 90, 90, 80},
                              QByteArray("H\0i\0\x14\0\0\0\x14\0\0\0", 12));
    emf.AddBoxed(81, {10, 10, 0, 0, 8, 6, 80, 40, 120, 144, 0, 0xcc0020, 80, 60}, MakeDib(8, 6));
    emf.AddBoxed(118, {2, 1, 0, 0, 0, 0, 0, 60, 40, -1, -1, 0, 1});
    files.insert("made.emf", emf.Bytes(320, 200));
    DxfMaker dxf;
    dxf.Header({{9, "$EXTMIN"}, {10, 0}, {20, 0}, {9, "$EXTMAX"}, {10, 100}, {20, 100}});
    dxf.Table({{0, "TABLE"}, {2, "LAYER"}, {0, "LAYER"}, {2, "A"}, {70, 0}, {62, 1}, {6, "D"}});
    dxf.Table({{0, "ENDTAB"}, {0, "TABLE"}, {2, "LTYPE"}, {0, "LTYPE"}, {2, "D"}, {49, 1}});
    dxf.Block({{0, "BLOCK"}, {8, "0"}, {2, "B"}, {10, 1}, {20, 2}});
    dxf.Block({{0, "CIRCLE"}, {8, "0"}, {10, 5}, {20, 5}, {40, 4}, {0, "ENDBLK"}});
    dxf.Entity({{0, "LINE"}, {8, "A"}, {10, 0}, {20, 0}, {11, 99}, {21, 99}});
    dxf.Entity({{0, "INSERT"}, {8, "A"}, {2, "B"}, {10, 9}, {20, 9}, {70, 2}, {71, 3}, {44, 9}});
    dxf.Entity({{0, "LWPOLYLINE"}, {90, 2}, {70, 1}, {10, 5}, {20, 5}, {42, 1}, {10, 9}, {20, 50}});
    dxf.Entity({{0, "TEXT"}, {10, 9}, {20, 70}, {40, 5}, {1, "T%%d"}, {72, 5}, {11, 50}, {21, 80}});
    dxf.Entity({{0, "HATCH"}, {70, 0}, {91, 1}, {92, 2}, {72, 1}, {73, 1}, {93, 3}, {10, 20}});
    dxf.Entity({{20, 20}, {42, 0.5}, {10, 60}, {20, 20}, {42, 0}, {10, 40}, {20, 60}, {42, 0}});
    dxf.Entity({{97, 0}, {75, 0}, {76, 1}, {78, 1}, {53, 45}, {43, 0}, {44, 0}, {45, -2}, {46, 2}});
    dxf.Entity({{0, "SPLINE"}, {71, 2}, {40, 0}, {40, 0}, {40, 0}, {40, 1}, {40, 1}, {40, 1}});
    dxf.Entity({{10, 1}, {20, 1}, {10, 50}, {20, 90}, {10, 90}, {20, 1}, {0, "POLYLINE"}, {70, 0}});
    dxf.Entity({{0, "VERTEX"}, {10, 5}, {20, 5}, {0, "VERTEX"}, {10, 9}, {20, 95}, {0, "SEQEND"}});
    files.insert("made.dxf", dxf.Written());
    files.insert("made binary.dxf", dxf.Binary(2));
    files.insert("made old binary.dxf", dxf.Binary(1));
    JpegMake jpeg;
    jpeg.width = jpeg.height = 64;
    FpxMake fpx;
    fpx.tables.insert(1, JpegTablesOf(MakeJpeg(jpeg)));
    const FpxTileMake plain{0, QByteArray(4, '\0'), QByteArray(64 * 64 * 3, 'p')};
    const FpxTileMake colour{1, QByteArray("abcd", 4), {}};
    const FpxTileMake packed{2, QByteArray("\0\x22\1\1", 4), JpegWithoutTables(MakeJpeg(jpeg))};
    fpx.resolutions = {{QSize(64, 40), {colour}}, {QSize(160, 50), {plain, colour, packed}}};
    files.insert("made.fpx", MakeFpx(fpx));
    files.insert("made placeable.wmf", wmf.Placeable(QRect(0, 0, 400, 300), 200));
    return files;
}

} // namespace quillane::making
