// QuickDraw pictures, made byte by byte.
#include "legacy_support.h"

namespace quillane {

namespace {

using making::Big;
using making::IndexMake;
using making::LegacyFacts;
using making::LegacyPicture;
using making::LegacyRefusal;
using making::MakePictBox;
using making::MakePictFile;
using making::MakePictMap;
using making::PictMapMake;

QByteArray PictInk(QRgb colour, quint32 operation = 0x1a)
{
    return Big(operation, 2) + Big(quint32(qRed(colour) * 257), 2)
        + Big(quint32(qGreen(colour) * 257), 2) + Big(quint32(qBlue(colour) * 257), 2);
}

/// A region of a size, and of more than its box when there are rows.
QByteArray PictRegion(int left, int top, int width, int height, const QByteArray& rows = {})
{
    return Big(quint32(10 + rows.size()), 2) + MakePictBox(left, top, width, height) + rows;
}

TEST(QuickDraw, MapsOfEveryDepthKeepTheirOwnPixels)
{
    for (const int bits : {1, 2, 4, 8}) {
        for (const int width : {3, 21, 300, 1000}) {
            SCOPED_TRACE(QString("%1 %2").arg(bits).arg(width).toStdString());
            const IndexMake make{width, 13, bits};
            const QByteArray file = MakePictFile(width, 13, MakePictMap(make));
            const ImageFacts facts = LegacyFacts("PICT", file);
            EXPECT_EQ(facts.width, width);
            EXPECT_EQ(facts.height, 13);
            EXPECT_EQ(facts.bits, bits);
            EXPECT_EQ(facts.format, 56);
            EXPECT_EQ(facts.xResolution, 150);
            EXPECT_EQ(facts.yResolution, 120);
            const Bitmap bitmap = LegacyPicture("PICT", file);
            EXPECT_FALSE(bitmap.IsPartial());
            EXPECT_TRUE(bitmap.IsExact());
            EXPECT_EQ(bitmap.FileDepth(), bits);
            EXPECT_EQ(bitmap.Model(), bits == 1 ? ColourModel::BlackWhite : ColourModel::Palette);
            EXPECT_EQ(making::WrongIndexes(bitmap, make), 0);
        }
    }
}

TEST(QuickDraw, ColoursInEveryPackingOfBothDepths)
{
    for (const int width : {1, 13, 200}) {
        for (const int packing : {0, 1, 3}) {
            const QByteArray file =
                MakePictFile(width, 7, making::MakePictColours(width, 7, 16, packing));
            EXPECT_EQ(making::WrongPlaces(LegacyPicture("PICT", file), 7), 0)
                << width << " " << packing;
            EXPECT_EQ(LegacyFacts("PICT", file).bits, 16);
        }
        for (const int packing : {0, 1, 2, 4}) {
            for (const int channels : {3, 4}) {
                if (width == 1 && packing == 2) {
                    continue; // rows that short are never without their fourth byte
                }
                const QByteArray file = MakePictFile(
                    width, 7, making::MakePictColours(width, 7, 32, packing, channels));
                EXPECT_EQ(making::WrongPlaces(LegacyPicture("PICT", file)), 0)
                    << width << " " << packing << " " << channels;
                EXPECT_EQ(LegacyFacts("PICT", file).bits, channels == 3 ? 24 : 32);
            }
        }
    }
}

TEST(QuickDraw, ABitmapOfTheFirstVersionIsInkOnPaper)
{
    const IndexMake make{50, 13, 1};
    for (const int version : {1, 2}) {
        const QByteArray file =
            MakePictFile(50, 13, MakePictMap(make, PictMapMake(0x98, version, false)), version);
        const Bitmap bitmap = LegacyPicture("PICT", file);
        EXPECT_FALSE(bitmap.IsPartial());
        EXPECT_EQ(bitmap.Pixels().pixel(0, 0), qRgb(255, 255, 255));
        EXPECT_EQ(bitmap.Pixels().pixel(3, 0), qRgb(0, 0, 0));
        EXPECT_EQ(bitmap.Pixels().pixel(3, 1), qRgb(255, 255, 255));
        EXPECT_EQ(LegacyFacts("PICT", file).bits, 1);
    }
}

TEST(QuickDraw, OperationsOfTheFirstVersionStandAtOddPlacesToo)
{
    // An odd number of bytes in the bitmap, then a second one beside it.
    const IndexMake make{24, 3, 1};
    PictMapMake right{0x98, 1, false};
    right.corner = {24, 0};
    const QByteArray file = MakePictFile(
        48, 3, MakePictMap(make, PictMapMake(0x98, 1, false)) + MakePictMap(make, right), 1);
    const Bitmap bitmap = LegacyPicture("PICT", file);
    EXPECT_FALSE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().pixel(3, 0), qRgb(0, 0, 0));
    EXPECT_EQ(bitmap.Pixels().pixel(27, 0), qRgb(0, 0, 0));
    EXPECT_EQ(bitmap.Pixels().pixel(24, 0), qRgb(255, 255, 255));
}

TEST(QuickDraw, WithoutThe512BytesBeforeItAPictureIsKnownByItsContent)
{
    const QByteArray file = MakePictFile(21, 13, MakePictMap({21, 13, 8}));
    EXPECT_EQ(FindCodec(file.left(512), u"pct"), &making::LegacyCodec("PICT"));
    EXPECT_NE(FindCodec(file.left(512), u"dat"), &making::LegacyCodec("PICT"));
    const QByteArray bare = file.mid(512);
    EXPECT_EQ(FindCodec(bare.left(512), u"dat"), &making::LegacyCodec("PICT"));
    EXPECT_EQ(making::WrongIndexes(LegacyPicture("PICT", bare), {21, 13, 8}), 0);
}

TEST(QuickDraw, AFrameThatBeginsElsewhere)
{
    PictMapMake how;
    how.corner = {-7, 90};
    const QByteArray file = MakePictFile(21, 13, MakePictMap({21, 13, 4}, how), 2, how.corner);
    EXPECT_EQ(making::WrongIndexes(LegacyPicture("PICT", file), {21, 13, 4}), 0);
}

TEST(QuickDraw, FiguresAreDrawnInTheirColours)
{
    const QByteArray file =
        MakePictFile(40, 30,
                     PictInk(qRgb(255, 0, 0)) + Big(0x31, 2) + MakePictBox(5, 5, 10, 10) // painted
                         + PictInk(qRgb(0, 0, 255)) + Big(0x51, 2) + MakePictBox(20, 5, 16, 16)
                         + PictInk(qRgb(0, 255, 0), 0x1b) + Big(0x3a, 2)); // the first erased
    const Bitmap bitmap = LegacyPicture("PICT", file);
    EXPECT_FALSE(bitmap.IsExact());
    EXPECT_FALSE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Width(), 40);
    EXPECT_EQ(bitmap.Height(), 30);
    EXPECT_EQ(bitmap.Pixels().pixel(0, 0), qRgb(255, 255, 255));
    EXPECT_EQ(bitmap.Pixels().pixel(10, 10), qRgb(0, 255, 0));
    EXPECT_EQ(bitmap.Pixels().pixel(28, 13), qRgb(0, 0, 255));
    EXPECT_EQ(bitmap.Pixels().pixel(20, 5), qRgb(255, 255, 255));
    EXPECT_EQ(LegacyFacts("PICT", file).bits, 24);
    EXPECT_EQ(LegacyFacts("PICT", file).xResolution, 72);
}

TEST(QuickDraw, APatternOfPixelsIsReadOver)
{
    QByteArray pattern = Big(0x13, 2) + Big(1, 2) + QByteArray(8, '\xff');
    pattern += MakePictMap({8, 8, 8}).mid(2, 2 + 8 + 36 + 8 + 8 * 256);
    for (int y = 0; y < 8; ++y) {
        pattern += Big(2, 1) + QByteArray("\xf9\0", 2);
    }
    const QByteArray file = MakePictFile(
        20, 10, pattern + PictInk(qRgb(9, 8, 7)) + Big(0x31, 2) + MakePictBox(0, 0, 20, 10));
    const Bitmap bitmap = LegacyPicture("PICT", file);
    EXPECT_FALSE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().pixel(10, 5), qRgb(9, 8, 7));
}

TEST(QuickDraw, AStretchedMapIsPaintedIntoTheFrame)
{
    PictMapMake how;
    how.targetWidth = 42;
    const IndexMake make{21, 13, 1};
    const Bitmap bitmap = LegacyPicture("PICT", MakePictFile(42, 13, MakePictMap(make, how)));
    EXPECT_EQ(bitmap.Width(), 42);
    EXPECT_EQ(bitmap.Pixels().pixel(1, 0), qRgb(0, 0, 0));
    EXPECT_EQ(bitmap.Pixels().pixel(8, 0), qRgb(255, 255, 255));
}

TEST(QuickDraw, AMaskLeavesOutWhatIsBesideIt)
{
    PictMapMake how{0x99};
    const IndexMake make{20, 10, 8};
    how.region = PictRegion(0, 0, 20, 10);
    const Bitmap whole = LegacyPicture("PICT", MakePictFile(20, 10, MakePictMap(make, how)));
    EXPECT_EQ(making::WrongIndexes(whole, make), 0);
    EXPECT_TRUE(whole.IsExact());
    // The left half, and below the fifth row the right one.
    const auto row = [](int y, std::initializer_list<int> changes) {
        QByteArray bytes = Big(quint32(y), 2);
        for (const int x : changes) {
            bytes += Big(quint32(x), 2);
        }
        return bytes + Big(0x7fff, 2);
    };
    how.region = PictRegion(0, 0, 20, 10,
                            row(0, {0, 10}) + row(5, {0, 20}) + row(10, {10, 20}) + Big(0x7fff, 2));
    const Bitmap part = LegacyPicture("PICT", MakePictFile(20, 10, MakePictMap(make, how)));
    EXPECT_EQ(part.Pixels().pixel(4, 2), make.Colour(make.Index(4, 2)));
    EXPECT_EQ(part.Pixels().pixel(14, 2), qRgb(255, 255, 255));
    EXPECT_EQ(part.Pixels().pixel(4, 7), qRgb(255, 255, 255));
    EXPECT_EQ(part.Pixels().pixel(14, 7), make.Colour(make.Index(14, 7)));
}

TEST(QuickDraw, APictureOfAMovieCodecIsItsJpeg)
{
    making::JpegMake make;
    make.width = 40;
    make.height = 30;
    make.across = make.down = 1;
    const QByteArray jpeg = making::MakeJpeg(make);
    // What follows draws words for those who cannot read it.
    const QByteArray file = MakePictFile(
        40, 30, making::MakePictJpeg(40, 30, jpeg) + Big(0x31, 2) + MakePictBox(0, 0, 40, 30));
    const Bitmap bitmap = LegacyPicture("PICT", file);
    EXPECT_EQ(making::WrongPlaces(bitmap, 24), 0);
    EXPECT_EQ(bitmap.Pixels(), LegacyPicture("JPEG", jpeg).Pixels());
    EXPECT_EQ(LegacyFacts("PICT", file).bits, 24);
}

TEST(QuickDraw, TheHeaderOfTheSecondVersionMayTellAResolution)
{
    QByteArray file = MakePictFile(50, 13, MakePictMap({50, 13, 4}));
    file.replace(512 + 2, 8, MakePictBox(0, 0, 12, 3)); // in points
    file.replace(512 + 16, 2, Big(0xfffe, 2));
    file.replace(512 + 20, 8, Big(300 << 16, 4) + Big(300 << 16, 4));
    file.replace(512 + 28, 8, MakePictBox(0, 0, 50, 13));
    EXPECT_EQ(making::WrongIndexes(LegacyPicture("PICT", file), {50, 13, 4}), 0);
    EXPECT_EQ(LegacyFacts("PICT", file).width, 50);
}

TEST(QuickDraw, WhatIsReservedIsReadOver)
{
    const QByteArray file = MakePictFile(
        21, 13,
        Big(0xa0, 2) + Big(7, 2) + Big(0xa1, 2) + Big(7, 2) + Big(3, 2) + "abc" + '\0'
            + Big(0x00b5, 2) + Big(0x00d5, 2) + Big(4, 4) + "abcd" + Big(0x0277, 2) + "wxyz"
            + Big(0x8001, 2) + Big(0x8107, 2) + Big(2, 4) + "ab" + Big(0x0024, 2) + Big(2, 2) + "ab"
            + Big(0x01, 2) + PictRegion(0, 0, 21, 13) + MakePictMap({21, 13, 8}));
    const Bitmap bitmap = LegacyPicture("PICT", file);
    EXPECT_FALSE(bitmap.IsPartial());
    EXPECT_EQ(making::WrongIndexes(bitmap, {21, 13, 8}), 0);
}

TEST(QuickDraw, RefusalsAreInWords)
{
    EXPECT_EQ(LegacyRefusal("PICT", QByteArray(600, 'x')),
              "This QuickDraw picture is damaged: it does not begin as one.");
    EXPECT_EQ(LegacyRefusal("PICT", MakePictFile(5, 5, {})),
              "This QuickDraw picture is damaged: it ends before it draws anything.");
    QByteArray deep = MakePictFile(21, 13, MakePictMap({21, 13, 8}));
    deep[512 + 40 + 2 + 2 + 8 + 19] = 3;
    EXPECT_EQ(LegacyRefusal("PICT", deep),
              "This QuickDraw picture has a bitmap of 3 bits per pixel, which is not supported.");
    EXPECT_EQ(LegacyRefusal("PICT", MakePictFile(0, 5, {})),
              "This QuickDraw picture is damaged: it does not begin as one.");
}

TEST(QuickDraw, ManyLargeBitmapsOfFewBytesEndInAnEarlyEnd)
{
    // Each row is one byte of length; what it lacks is blank.
    QByteArray large = Big(0x98, 2) + Big(0x8000 | 0x3ffe, 2) + MakePictBox(0, 0, 16000, 13000);
    large += MakePictMap({16, 1, 8}).mid(2 + 2 + 8, 36);
    large += Big(0, 4) + Big(0, 2) + Big(0, 2) + Big(0, 8) + MakePictBox(0, 0, 16000, 13000)
        + MakePictBox(0, 0, 16000, 13000) + Big(0, 2) + QByteArray(300'000, '\0');
    const making::Refusal huge =
        making::RefusalOf([&] { LegacyPicture("PICT", MakePictFile(16000, 13000, large)); });
    EXPECT_EQ(huge.number, kFailureLimit) << huge.words.toStdString();
    // Some that may be, over and over.
    QByteArray some = Big(0x98, 2) + Big(0x8000 | 0x3ffe, 2) + MakePictBox(0, 0, 16000, 1000);
    some += MakePictMap({16, 1, 8}).mid(2 + 2 + 8, 36);
    some += Big(0, 4) + Big(0, 2) + Big(0, 2) + Big(0, 8) + MakePictBox(0, 0, 16000, 1000)
        + MakePictBox(0, 0, 16000, 1000) + Big(0, 2) + QByteArray(2000, '\0');
    const Bitmap bitmap = LegacyPicture("PICT", MakePictFile(160, 10, some.repeated(200)));
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Width(), 160);
}

} // namespace

} // namespace quillane
