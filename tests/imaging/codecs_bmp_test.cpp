#include "codec_support_for_tests.h"
#include "picture_maker.h"

namespace quillane {

namespace {

using making::DecodeBytes;
using making::Little;
using making::ProbeBytes;
using making::RefusalOf;

struct BmpMake {
    int width = 5, height = 3;
    int bits = 24;
    int packing = 0;
    int headerBytes = 40; ///< 12: OS/2 1.x, 16 or 64: OS/2 2.x
    bool topDown = false;
    QByteArray masks;   ///< behind or in the header
    QByteArray colours; ///< as stored
    QByteArray pixels;
    int dotsPerMetre = 0;
};

QByteArray MakeBmp(const BmpMake& make)
{
    QByteArray header = Little(quint32(make.headerBytes), 4);
    if (make.headerBytes == 12) {
        header += Little(quint32(make.width), 2) + Little(quint32(make.height), 2) + Little(1, 2)
            + Little(quint32(make.bits), 2);
    } else {
        header += Little(quint32(make.width), 4)
            + Little(quint32(make.topDown ? -make.height : make.height), 4) + Little(1, 2)
            + Little(quint32(make.bits), 2) + Little(quint32(make.packing), 4)
            + Little(quint32(make.pixels.size()), 4) + Little(quint32(make.dotsPerMetre), 4)
            + Little(quint32(make.dotsPerMetre), 4)
            + Little(make.bits <= 8 ? quint32(make.colours.size() / 4) : 0, 4) + Little(0, 4)
            + make.masks;
        const qsizetype masksBehind = make.headerBytes == 40 ? make.masks.size() : 0;
        header = header.leftJustified(make.headerBytes + masksBehind, '\0', true);
    }
    const quint32 at = quint32(14 + header.size() + make.colours.size());
    return "BM" + Little(at + quint32(make.pixels.size()), 4) + Little(0, 4) + Little(at, 4)
        + header + make.colours + make.pixels;
}

/// Rows from the top, in stored order, each filled up to four bytes.
QByteArray BmpRows(const QList<QByteArray>& fromTop, bool topDown)
{
    QByteArray stored;
    for (qsizetype i = 0; i < fromTop.size(); ++i) {
        const QByteArray& row = fromTop[topDown ? i : fromTop.size() - 1 - i];
        stored += row + QByteArray((4 - row.size() % 4) % 4, '\0');
    }
    return stored;
}

const QByteArray kFourColours("\x00\x00\x00\x00"
                              "\x00\x00\xff\x00"
                              "\x00\xff\x00\x00"
                              "\xff\x00\x00\x00",
                              16);
const QRgb kBlack = qRgb(0, 0, 0);
const QRgb kRed = qRgb(255, 0, 0);
const QRgb kGreen = qRgb(0, 255, 0);
const QRgb kBlue = qRgb(0, 0, 255);

QList<QRgb> BmpTopRow(const QImage& image)
{
    QList<QRgb> row;
    for (int x = 0; x < image.width(); ++x) {
        row += image.pixel(x, 0);
    }
    return row;
}

TEST(BmpCodec, EveryDepthBothWaysUp)
{
    const struct {
        int bits;
        QByteArray top, below;
        QImage::Format format;
    } rows[] = {
        {1, QByteArray("\x50"), QByteArray("\0", 1), QImage::Format_Indexed8},
        {2, QByteArray("\x1b\x00", 2), QByteArray("\0\0", 2), QImage::Format_Indexed8},
        {4, QByteArray("\x01\x23\x00", 3), QByteArray("\0\0\0", 3), QImage::Format_Indexed8},
        {8, QByteArray("\0\1\2\3\0", 5), QByteArray(5, '\0'), QImage::Format_Indexed8},
        {16, QByteArray("\0\0\0\x7c\xe0\x03\x1f\0\0\0", 10), QByteArray(10, '\0'),
         QImage::Format_RGB32},
        {24, QByteArray("\0\0\0\0\0\xff\0\xff\0\xff\0\0\0\0\0", 15), QByteArray(15, '\0'),
         QImage::Format_RGB32},
        {32, QByteArray("\0\0\0\0\0\0\xff\0\0\xff\0\0\xff\0\0\0\0\0\0\0", 20), QByteArray(20, '\0'),
         QImage::Format_RGB32},
    };
    for (const auto& row : rows) {
        for (const bool topDown : {false, true}) {
            SCOPED_TRACE(::testing::Message() << row.bits << " bits, top down " << topDown);
            BmpMake make;
            make.bits = row.bits;
            make.topDown = topDown;
            make.colours = row.bits > 8 ? QByteArray() : kFourColours.left(row.bits == 1 ? 8 : 16);
            make.pixels = BmpRows({row.top, row.below, row.below}, topDown);
            make.dotsPerMetre = 2835;
            const QByteArray bytes = MakeBmp(make);
            const ImageFacts facts = ProbeBytes(bytes);
            EXPECT_EQ(facts.width, 5);
            EXPECT_EQ(facts.height, 3);
            EXPECT_EQ(facts.bits, row.bits);
            EXPECT_EQ(facts.format, 6);
            EXPECT_EQ(facts.xResolution, 72);
            EXPECT_EQ(facts.compression, "Uncompressed");
            const Bitmap bitmap = DecodeBytes(bytes);
            EXPECT_EQ(bitmap.Pixels().format(), row.format);
            EXPECT_EQ(bitmap.FileDepth(), row.bits);
            EXPECT_FALSE(bitmap.IsPartial());
            const QList<QRgb> expected = row.bits == 1
                ? QList<QRgb>{kBlack, kRed, kBlack, kRed, kBlack}
                : QList<QRgb>{kBlack, kRed, kGreen, kBlue, kBlack};
            EXPECT_EQ(BmpTopRow(bitmap.Pixels()), expected);
            EXPECT_EQ(bitmap.Pixels().pixel(3, 2), kBlack);
        }
    }
}

TEST(BmpCodec, BlackAndWhiteInEitherOrderIsABitMap)
{
    for (const bool whiteFirst : {false, true}) {
        BmpMake make;
        make.bits = 1;
        const QByteArray black(4, '\0');
        const QByteArray white("\xff\xff\xff\0", 4);
        make.colours = whiteFirst ? white + black : black + white;
        make.pixels = BmpRows({"\x50", "\x50", "\x50"}, false);
        const Bitmap bitmap = DecodeBytes(MakeBmp(make));
        EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_Mono);
        EXPECT_EQ(bitmap.Model(), ColourModel::BlackWhite);
        const QRgb first = whiteFirst ? 0xffffffffu : 0xff000000u;
        EXPECT_EQ(bitmap.Pixels().pixel(0, 0), first);
        EXPECT_EQ(bitmap.ToDisplay().pixel(0, 0), first);
        EXPECT_NE(bitmap.ToDisplay().pixel(1, 0), first);
    }
}

TEST(BmpCodec, OldSystemsHaveTheirOwnCodes)
{
    BmpMake make;
    make.headerBytes = 12;
    make.bits = 8;
    make.colours = QByteArray("\0\0\0\0\0\xff\0\xff\0\xff\0\0", 12); // three bytes a colour
    make.pixels =
        BmpRows({QByteArray("\0\1\2\3\0", 5), QByteArray(5, '\0'), QByteArray(5, '\0')}, false);
    EXPECT_EQ(ProbeBytes(MakeBmp(make)).format, 14);
    EXPECT_EQ(BmpTopRow(DecodeBytes(MakeBmp(make)).Pixels()),
              (QList<QRgb>{kBlack, kRed, kGreen, kBlue, kBlack}));
    make.colours = kFourColours;
    for (const int headerBytes : {16, 24, 48, 64}) {
        make.headerBytes = headerBytes;
        EXPECT_EQ(ProbeBytes(MakeBmp(make)).format, 74) << headerBytes;
        EXPECT_EQ(BmpTopRow(DecodeBytes(MakeBmp(make)).Pixels()),
                  (QList<QRgb>{kBlack, kRed, kGreen, kBlue, kBlack}));
    }
}

TEST(BmpCodec, AnOs2ArrayShowsItsFirstPicture)
{
    BmpMake make;
    make.pixels = BmpRows({QByteArray(15, '\x11'), QByteArray(15, 0), QByteArray(15, 0)}, false);
    QByteArray bytes = MakeBmp(make);
    bytes.replace(10, 4, Little(14 + 14 + 40, 4)); // counted from the whole file's beginning
    bytes = "BA" + Little(28, 4) + Little(0, 4) + Little(0, 4) + bytes;
    EXPECT_EQ(DecodeBytes(bytes).Pixels().pixel(0, 0), qRgb(0x11, 0x11, 0x11));
}

TEST(BmpCodec, MasksSayWhereTheColoursLie)
{
    BmpMake make;
    make.width = 3;
    make.height = 1;
    make.bits = 16;
    make.packing = 3;
    make.masks = Little(0xf800, 4) + Little(0x07e0, 4) + Little(0x001f, 4);
    make.pixels = BmpRows({Little(0xf800, 2) + Little(0x07e0, 2) + Little(0x8410, 2)}, false);
    for (const int headerBytes : {40, 52, 56, 108, 124}) {
        make.headerBytes = headerBytes;
        const QImage pixels = DecodeBytes(MakeBmp(make)).Pixels();
        EXPECT_EQ(pixels.pixel(0, 0), kRed) << headerBytes;
        EXPECT_EQ(pixels.pixel(1, 0), kGreen);
        EXPECT_EQ(pixels.pixel(2, 0), qRgb(132, 130, 132));
    }
    make.headerBytes = 56;
    make.bits = 32;
    make.width = 2;
    make.masks = Little(0x0000'00ff, 4) + Little(0x0000'ff00, 4) + Little(0x00ff'0000, 4)
        + Little(0xff00'0000, 4);
    make.pixels = BmpRows({Little(0x8003'0201, 4) + Little(0xff00'00ff, 4)}, false);
    const QImage pixels = DecodeBytes(MakeBmp(make)).Pixels();
    EXPECT_EQ(pixels.format(), QImage::Format_ARGB32);
    EXPECT_EQ(pixels.pixel(0, 0), qRgba(1, 2, 3, 128));
    EXPECT_EQ(pixels.pixel(1, 0), kRed);
    // Ten bits a channel: the highest eight count.
    make.masks =
        Little(0x3ff0'0000, 4) + Little(0x000f'fc00, 4) + Little(0x0000'03ff, 4) + Little(0, 4);
    make.pixels = BmpRows({Little(0x3ff0'0000, 4) + Little(0x0000'0200, 4)}, false);
    const QImage deep = DecodeBytes(MakeBmp(make)).Pixels();
    EXPECT_EQ(deep.pixel(0, 0), kRed);
    EXPECT_EQ(deep.pixel(1, 0), qRgb(0, 0, 128));
}

TEST(BmpCodec, RunsOfEightBits)
{
    BmpMake make;
    make.bits = 8;
    make.packing = 1;
    make.colours = kFourColours;
    // Bottom row: run, literal of three (filled up), end of line; then two rows up, one across.
    make.pixels = QByteArray("\x02\x01"
                             "\x00\x03\x02\x03\x01\x00"
                             "\x00\x00"
                             "\x00\x02\x01\x01"
                             "\x09\x02"
                             "\x00\x01",
                             18);
    const QByteArray bytes = MakeBmp(make);
    EXPECT_EQ(ProbeBytes(bytes).format, 84);
    EXPECT_EQ(ProbeBytes(bytes).compression, "RLE");
    const Bitmap bitmap = DecodeBytes(bytes);
    EXPECT_FALSE(bitmap.IsPartial());
    const QImage& pixels = bitmap.Pixels();
    EXPECT_EQ(BmpTopRow(pixels), (QList<QRgb>{kBlack, kGreen, kGreen, kGreen, kGreen}));
    EXPECT_EQ(BmpTopRow(pixels.copy(0, 2, 5, 1)), (QList<QRgb>{kRed, kRed, kGreen, kBlue, kRed}));
    EXPECT_EQ(pixels.pixel(2, 1), kBlack);
}

TEST(BmpCodec, RunsOfFourBitsAndOfColours)
{
    BmpMake make;
    make.height = 1;
    make.bits = 4;
    make.packing = 2;
    make.colours = kFourColours;
    make.pixels = QByteArray("\x03\x12\x00\x02\x00\x00\x02\x33\x00\x01", 10);
    EXPECT_EQ(BmpTopRow(DecodeBytes(MakeBmp(make)).Pixels()),
              (QList<QRgb>{kRed, kGreen, kRed, kBlue, kBlue}));
    make.pixels = QByteArray("\x00\x05\x12\x31\x20\x00\x00\x01", 8);
    EXPECT_EQ(BmpTopRow(DecodeBytes(MakeBmp(make)).Pixels()),
              (QList<QRgb>{kRed, kGreen, kBlue, kRed, kGreen}));
    make.headerBytes = 64;
    make.bits = 24;
    make.packing = 4;
    make.colours.clear();
    make.pixels = QByteArray("\x02\0\0\xff\x00\x03\0\xff\0\xff\0\0\0\0\0\x00\x00\x01", 18);
    EXPECT_EQ(BmpTopRow(DecodeBytes(MakeBmp(make)).Pixels()),
              (QList<QRgb>{kRed, kRed, kGreen, kBlue, kBlack}));
}

TEST(BmpCodec, SenselessRunsEnd)
{
    BmpMake make;
    make.bits = 8;
    make.packing = 1;
    make.colours = kFourColours;
    // All behind the second row's end.
    make.pixels = QByteArray("\x05\x01\x00\x00", 4) + QByteArray(20'000'000, '\xff');
    making::CountingSource source(MakeBmp(make));
    making::CodecFor(MakeBmp(make)).decode(source, {});
    EXPECT_LT(source.bytes, 100'000);
}

TEST(BmpCodec, ATruncatedPictureShowsItsLowerRows)
{
    BmpMake make;
    make.width = make.height = 100;
    make.pixels = QByteArray(300 * 100, '\x22');
    const QByteArray bytes = MakeBmp(make);
    const Bitmap bitmap = DecodeBytes(bytes.left(bytes.size() / 2));
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().pixel(50, 99), qRgb(0x22, 0x22, 0x22));
    EXPECT_EQ(bitmap.Pixels().pixel(50, 0), kBlack);
    EXPECT_EQ(RefusalOf([&] { DecodeBytes(bytes.left(60)); }).words,
              "This BMP is damaged: it ends before its first row.");
}

TEST(BmpCodec, RefusesWithWords)
{
    BmpMake make;
    make.pixels = QByteArray(100, '\0');
    const auto words = [](const BmpMake& bad) {
        return RefusalOf([&] { DecodeBytes(MakeBmp(bad)); }).words;
    };
    BmpMake bad = make;
    bad.width = -5;
    EXPECT_EQ(words(bad), "This BMP is damaged: it claims a size of -5 x 3 pixels.");
    bad = make;
    bad.width = 70'000;
    EXPECT_EQ(words(bad),
              "This BMP claims a size of 70000 x 3 pixels, which is more than can be read.");
    bad = make;
    bad.width = bad.height = 60'000;
    EXPECT_EQ(words(bad), "This BMP has 60000 x 60000 pixels, which is more than can be read.");
    bad = make;
    bad.bits = 7;
    EXPECT_EQ(words(bad), "This BMP has 7 bits per pixel, which is not supported.");
    bad = make;
    bad.packing = 5;
    EXPECT_EQ(words(bad), "This BMP wraps a JPEG or PNG for a printer, which is not supported.");
    bad.packing = 9;
    EXPECT_EQ(words(bad), "This BMP is damaged: it claims packing 9 at 24 bits.");
    EXPECT_EQ(RefusalOf([&] { ProbeBytes(MakeBmp(make).left(30)); }).words,
              "This BMP is damaged: its header is cut short.");
}

} // namespace

} // namespace quillane
