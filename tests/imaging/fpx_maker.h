#pragma once
// Makes FlashPix pictures in memory for the tests: a compound file with its streams.
#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSize>
#include <QString>

namespace quillane::making {

/// A compound file with these streams, by their paths ("storage/stream").
QByteArray MakeCompound(const QMap<QString, QByteArray>& streams);

struct FpxTileMake {
    int packing = 0; ///< 0 none, 1 one colour, 2 JPEG
    QByteArray detail = QByteArray(4, '\0');
    QByteArray bytes;
    bool sharesFirst = false; ///< its bytes are those of the first tile
};

struct FpxResolutionMake {
    QSize size;
    QList<FpxTileMake> tiles;
};

struct FpxMake {
    QList<FpxResolutionMake> resolutions; ///< smallest first
    QList<quint32> channels{0x30000, 0x30001, 0x30002};
    QMap<int, QByteArray> tables;
    QString store = "Data Object Store 000001/"; ///< empty for a file that is the object itself
    int tileSide = 64;
};
QByteArray MakeFpx(const FpxMake& make);

/// Tables of a JPEG as a stream of their own, and the picture without them.
QByteArray JpegTablesOf(const QByteArray& jpeg);
QByteArray JpegWithoutTables(const QByteArray& jpeg);

} // namespace quillane::making
