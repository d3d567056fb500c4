#include "drawn_maker.h"
#include "picture_maker.h"

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
    files.insert("made placeable.wmf", wmf.Placeable(QRect(0, 0, 400, 300), 200));
    return files;
}

} // namespace quillane::making
