#pragma once
// Makes pictures of older formats for the tests, byte by byte.
#include <QByteArray>
#include <QList>
#include <QMap>
#include <QPoint>
#include <QRgb>
#include <QString>

namespace quillane::making {

/// A picture of indexes: pixel (x, y) has index (x / 3 + y) % colours, so that rows hold runs.
struct IndexMake {
    int width = 21, height = 13;
    int bits = 8; ///< of a pixel
    bool packed = true;

    int Index(int x, int y) const { return (x / 3 + y) % (1 << bits); }
    /// Colour i of the picture; two colours are black and white.
    QRgb Colour(int i) const
    {
        return bits == 1 ? (i ? 0xffffffffu : 0xff000000u) : qRgb(i * 7 % 256, 255 - i, i);
    }
};

/// Sixteen colours lie in four planes, or, when `chunky`, in half a byte each.
QByteArray MakePcx(const IndexMake& make, bool chunky = false);
/// Pixel (x, y) as PlaceColour tells.
QByteArray MakePcx24(int width, int height);
QByteArray MakeSun(const IndexMake& make, bool colours = true);
/// Depth 24 or 32, in the order of the screen or that of type 3.
QByteArray MakeSunRgb(int width, int height, int depth, bool rgb);
QByteArray MakeTga(const IndexMake& make);
struct TgaMake {
    int width = 9, height = 7;
    int depth = 24;
    int alphaBits = 0;
    bool packed = false, topDown = false, rightToLeft = false;
};
/// Pixel (x, y) as PlaceColour tells, with alpha 255 - y.
QByteArray MakeTgaRgb(const TgaMake& make);
/// Planes of 8 or 16 bits: grey, grey and alpha, RGB, RGBA. Sample (x, y, plane) is
/// x * 9 + y * 5 + plane * 31, of 16 bits 256 times that.
QByteArray MakeSgi(int width, int height, int planes, int sampleBytes, bool packed);
/// Pixel (x, y) is ink where x / 3 + y is odd.
QByteArray MakeMac(bool wrapped);
QByteArray MakeMsp(const IndexMake& make);
/// With the extended header and its colours when `colours`.
QByteArray MakeGem(const IndexMake& make, bool colours);
/// Planes, or chunky pixels.
QByteArray MakeIff(const IndexMake& make, bool chunky = false, quint32 mode = 0);
/// Chunks of a form around the rows given, for pictures of other kinds.
QByteArray MakeIffForm(int width, int height, int planes, const QList<QRgb>& colours, quint32 mode,
                       const QByteArray& rows);
struct PsdMake {
    int width = 9, height = 7;
    int mode = 3, channels = 3, depth = 8;
    bool packed = false, big = false, transparency = false;
    int dotsPerInch = 0;
    QByteArray icc;
};
/// Sample (x, y, channel) is x * 9 + y * 5 + channel * 31, of 16 bits 256 times that and of
/// floating point a 255th; of one bit x / 3 + y is odd.
QByteArray MakePsd(const PsdMake& make);

/// A WordPerfect graphic, of version 1 or 2, with the colours before its bitmap; two colours stand
/// as they are.
QByteArray MakeWpg(const IndexMake& make, int version = 1);
/// The records of a WordPerfect graphic behind its header.
QByteArray MakeWpgFile(int version, const QByteArray& records);
/// A record of a WordPerfect graphic.
QByteArray MakeWpgRecord(int version, int kind, const QByteArray& body);
/// The record of a bitmap of 24 bits in version 2; pixel (x, y) as PlaceColour tells.
QByteArray MakeWpgRgb(int width, int height, bool packed);

/// A QuickDraw picture of version 1 or 2 with these operations, whose frame begins at `corner`.
QByteArray MakePictFile(int width, int height, const QByteArray& operations, int version = 2,
                        QPoint corner = {});
/// The operation that copies a map of indexes. `operation` is one of 0x90, 0x91, 0x98 and 0x99;
/// those that have a region take `region`. Without `colours` it is a bitmap, a set bit ink.
struct PictMapMake {
    explicit PictMapMake(int what = 0x98, int from = 2, bool coloured = true)
        : operation(what),
          version(from),
          colours(coloured)
    { }
    int operation;
    int version;
    bool colours;
    QPoint corner;
    QByteArray region;
    int targetWidth = 0; ///< where it is stretched to
    int mode = 0;
};
QByteArray MakePictMap(const IndexMake& make, const PictMapMake& how = PictMapMake());
/// The operation that copies colours of 16 or 32 bits, packed in the way of that number, of 3 or 4
/// channels; pixel (x, y) as PlaceColour tells.
QByteArray MakePictColours(int width, int height, int depth, int packing, int channels = 3);
/// The operation with a JPEG in it that fills these pixels.
QByteArray MakePictJpeg(int width, int height, const QByteArray& jpeg);
/// A rectangle as a QuickDraw picture has it.
QByteArray MakePictBox(int left, int top, int width, int height);

/// A clipboard file, of either kind, with some text and then an entry of that format.
QByteArray MakeClp(quint32 format, const QByteArray& body, bool wide = false);
/// One with a device's bitmap: 9 x 1 pixels in four planes.
QByteArray MakeClpPlanes();
/// A Dr. Halo picture: in row y three times 2, then y and nothing more that is told.
QByteArray MakeCut();

/// The codes of PackBits for some bytes.
QByteArray PackBitsCodes(const QByteArray& bytes);

/// Small pictures of all these that tell what they are, by names.
QMap<QString, QByteArray> MadeLegacyPictures();
/// Those that tell too little of themselves to be shown in part, by names.
QMap<QString, QByteArray> MadeBarePictures();

} // namespace quillane::making
