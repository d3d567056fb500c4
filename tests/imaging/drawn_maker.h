#pragma once
// Makes drawings in memory for the tests, record by record.
#include <QByteArray>
#include <QList>
#include <QMap>
#include <QRect>
#include <QString>
#include <initializer_list>

namespace quillane::making {

/// A Windows metafile. Parameters are 16-bit words in the order in which the file has them.
class WmfMaker {
public:
    WmfMaker& Add(int function, std::initializer_list<int> words = {}, const QByteArray& more = {});
    /// The usual beginning: a window of that size from the origin.
    WmfMaker& Window(int width, int height);
    /// A solid brush (or one with that style and hatch) and a pen, selected as objects 0 and 1.
    WmfMaker& Brush(int colour, int style = 0, int hatch = 0);
    WmfMaker& Pen(int colour, int width, int style = 0);
    /// Rectangle from left, top to right, bottom.
    WmfMaker& Rectangle(int left, int top, int right, int bottom);
    QByteArray Plain() const;
    QByteArray Placeable(QRect box, int unitsPerInch) const;

private:
    QByteArray mRecords;
    int mObjects = 0;
};

/// An enhanced metafile of `width` by `height` device units, 96 of them to the inch.
class EmfMaker {
public:
    /// A record with 32-bit numbers, then bytes.
    EmfMaker& Add(int type, std::initializer_list<int> numbers = {}, const QByteArray& more = {});
    /// A drawing record that begins with a box that is not looked at.
    EmfMaker& AddBoxed(int type, std::initializer_list<int> numbers, const QByteArray& more = {});
    /// A brush as object 1 and a pen as object 2, selected. Style 5 draws no line.
    EmfMaker& Brush(int colour, int style = 0, int hatch = 0);
    EmfMaker& Pen(int colour, int width, int style = 0);
    QByteArray Bytes(int width, int height) const;

private:
    QByteArray mRecords;
    int mCount = 0;
};

/// A drawing exchange file, pair by pair.
class DxfMaker {
public:
    struct Pair {
        int code;
        QByteArray value;
        Pair(int c, const char* v) : code(c), value(v) { }
        Pair(int c, double v) : code(c), value(QByteArray::number(v, 'g', 15)) { }
        Pair(int c, int v) : code(c), value(QByteArray::number(v)) { }
    };
    /// More of one section.
    DxfMaker& Header(std::initializer_list<Pair> pairs);
    DxfMaker& Table(std::initializer_list<Pair> pairs);
    DxfMaker& Block(std::initializer_list<Pair> pairs);
    DxfMaker& Entity(std::initializer_list<Pair> pairs);
    QByteArray Written() const;
    /// The same as a binary file with codes of one or two bytes.
    QByteArray Binary(int codeBytes) const;

private:
    QList<Pair> Pairs() const;
    QList<Pair> mHeader, mTables, mBlocks, mEntities;
};

/// A device-independent bitmap of 24 bits: header and pixels, pixel (x, y) as PlaceColour tells.
QByteArray MakeDib(int width, int height);

/// Small drawings of every drawn format, by names.
QMap<QString, QByteArray> MadeDrawings();

} // namespace quillane::making
