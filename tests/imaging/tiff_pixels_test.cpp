#include "tiff_maker.h"
#include "worker_support.h"
#include <cmath>
#include <cstring>

namespace quillane::test {

namespace {

constexpr quint16 kMinIsWhite = 0, kMinIsBlack = 1, kRgb = 2, kPaletteColour = 3, kSeparated = 5,
                  kYcbcr = 6;

class TiffPixels : public WorkerTest {
protected:
    Bitmap Read(TiffMaker& maker, qint32 page = 0)
    {
        DecodeRequest request;
        request.page = page;
        return Decode(Write(QStringLiteral("picture.tif"), maker.File()), "TIFF", request);
    }
};

QByteArray Bytes(std::initializer_list<int> values)
{
    QByteArray bytes;
    for (const int value : values) {
        bytes.append(char(value));
    }
    return bytes;
}

quint16 Deep(const Bitmap& bitmap, int x, int y, int channel = 0, int channels = 1)
{
    return reinterpret_cast<const quint16*>(
        bitmap.Pixels().constScanLine(y))[x * channels + channel];
}

} // namespace

TEST_F(TiffPixels, OneBitIsBlackAndWhiteWhicheverOfTheTwoIsZero)
{
    for (const quint16 photometric : {kMinIsWhite, kMinIsBlack}) {
        TiffMaker maker;
        maker.Picture(10, 2, {1}, photometric, 2).Chunk(Bytes({0xa0, 0x40, 0x0f, 0x80}));
        const Bitmap bitmap = Read(maker);
        EXPECT_EQ(bitmap.Model(), ColourModel::BlackWhite);
        EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_Mono);
        const QRgb set = photometric == kMinIsBlack ? 0xffffffffu : 0xff000000u;
        const QRgb clear = set ^ 0xffffffu;
        EXPECT_EQ(bitmap.Pixels().pixel(0, 0), set);
        EXPECT_EQ(bitmap.Pixels().pixel(1, 0), clear);
        EXPECT_EQ(bitmap.Pixels().pixel(9, 0), set);
        EXPECT_EQ(bitmap.Pixels().pixel(0, 1), clear);
        EXPECT_EQ(bitmap.Pixels().pixel(8, 1), set);
        EXPECT_TRUE(bitmap.IsExact());
    }
}

TEST_F(TiffPixels, GreyOfFewBitsIsSpreadOverEight)
{
    TiffMaker two;
    two.Picture(4, 1, {2}, kMinIsBlack, 1).Chunk(Bytes({0x1b}));
    const Bitmap quarters = Read(two);
    EXPECT_EQ(quarters.Pixels().format(), QImage::Format_Grayscale8);
    EXPECT_EQ(quarters.FileDepth(), 2);
    TiffMaker four;
    four.Picture(3, 1, {4}, kMinIsWhite, 1).Chunk(Bytes({0x0f, 0x80}));
    const Bitmap sixteenths = Read(four);
    const uchar* a = quarters.Pixels().constScanLine(0);
    const uchar* b = sixteenths.Pixels().constScanLine(0);
    EXPECT_EQ((std::vector<int>{a[0], a[1], a[2], a[3]}), (std::vector<int>{0, 85, 170, 255}));
    EXPECT_EQ((std::vector<int>{b[0], b[1], b[2]}), (std::vector<int>{255, 0, 119}));
}

TEST_F(TiffPixels, DeepGreyKeepsSixteenBitsInEitherByteOrder)
{
    for (const bool big : {false, true}) {
        TiffMaker maker(big);
        maker.Picture(2, 2, {16}, kMinIsBlack, 1);
        maker.Chunk(maker.Two(0) + maker.Two(1)).Chunk(maker.Two(0x1234) + maker.Two(65535));
        const Bitmap bitmap = Read(maker);
        EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_Grayscale16);
        EXPECT_EQ(Deep(bitmap, 1, 0), 1);
        EXPECT_EQ(Deep(bitmap, 0, 1), 0x1234);
        EXPECT_EQ(Deep(bitmap, 1, 1), 65535);
        EXPECT_TRUE(bitmap.IsExact());
    }
}

TEST_F(TiffPixels, TwelveBitGreyIsSpreadOverSixteen)
{
    TiffMaker maker;
    maker.Picture(2, 1, {12}, kMinIsBlack, 1).Chunk(Bytes({0xff, 0xf8, 0x00}));
    const Bitmap bitmap = Read(maker);
    EXPECT_EQ(Deep(bitmap, 0, 0), 65535);
    EXPECT_EQ(Deep(bitmap, 1, 0), (0x800 * 65535u + 2047) / 4095);
}

TEST_F(TiffPixels, PalettesOfSixteenAndOfEightBitsAChannel)
{
    for (const quint32 scale : {257u, 1u}) {
        QList<quint32> map(3 * 16, 0);
        map[2] = 255 * scale;      // red of colour 2
        map[16 + 3] = 128 * scale; // green of colour 3
        map[32 + 15] = 64 * scale; // blue of colour 15
        TiffMaker maker;
        maker.Picture(4, 1, {4}, kPaletteColour, 1).Short(320, map).Chunk(Bytes({0x23, 0xf0}));
        const Bitmap bitmap = Read(maker);
        EXPECT_EQ(bitmap.Model(), ColourModel::Palette);
        EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_Indexed8);
        EXPECT_EQ(bitmap.Pixels().pixelIndex(1, 0), 3);
        EXPECT_EQ(bitmap.Pixels().pixel(0, 0), 0xffff0000u);
        EXPECT_EQ(bitmap.Pixels().pixel(1, 0), 0xff008000u);
        EXPECT_EQ(bitmap.Pixels().pixel(2, 0), 0xff000040u);
        EXPECT_EQ(bitmap.Pixels().pixel(3, 0), 0xff000000u);
    }
}

TEST_F(TiffPixels, RgbSideBySideAndInPlanes)
{
    TiffMaker beside;
    beside.Picture(2, 1, {8, 8, 8}, kRgb, 1).Chunk(Bytes({1, 2, 3, 250, 251, 252}));
    TiffMaker planes;
    planes.Picture(2, 1, {8, 8, 8}, kRgb, 1).Short(284, {2});
    planes.Chunk(Bytes({1, 250})).Chunk(Bytes({2, 251})).Chunk(Bytes({3, 252}));
    for (TiffMaker* maker : {&beside, &planes}) {
        const Bitmap bitmap = Read(*maker);
        EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_RGB32);
        EXPECT_EQ(bitmap.Pixels().pixel(0, 0), 0xff010203u);
        EXPECT_EQ(bitmap.Pixels().pixel(1, 0), 0xfffafbfcu);
    }
}

TEST_F(TiffPixels, DeepRgbKeepsSixteenBitsAChannel)
{
    TiffMaker maker(true);
    maker.Picture(1, 1, {16, 16, 16}, kRgb, 1);
    maker.Chunk(maker.Two(0x0102) + maker.Two(0x8000) + maker.Two(65535));
    const Bitmap bitmap = Read(maker);
    EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_RGBX64);
    EXPECT_EQ(bitmap.FileDepth(), 48);
    EXPECT_EQ(Deep(bitmap, 0, 0, 0, 4), 0x0102);
    EXPECT_EQ(Deep(bitmap, 0, 0, 1, 4), 0x8000);
    EXPECT_EQ(Deep(bitmap, 0, 0, 2, 4), 65535);
}

TEST_F(TiffPixels, AlphaIsKeptAndTakenOutOfPremultipliedColours)
{
    TiffMaker plain;
    plain.Picture(1, 1, {8, 8, 8, 8}, kRgb, 1).Short(338, {2}).Chunk(Bytes({200, 100, 50, 128}));
    TiffMaker multiplied;
    multiplied.Picture(1, 1, {8, 8, 8, 8}, kRgb, 1).Short(338, {1});
    multiplied.Chunk(Bytes({100, 50, 25, 128}));
    EXPECT_EQ(Read(plain).Pixels().pixel(0, 0), 0x80c86432u);
    EXPECT_TRUE(Read(plain).IsExact());
    const Bitmap taken = Read(multiplied);
    EXPECT_EQ(taken.Pixels().format(), QImage::Format_ARGB32);
    EXPECT_NEAR(qRed(taken.Pixels().pixel(0, 0)), 199, 1);
    EXPECT_NEAR(qBlue(taken.Pixels().pixel(0, 0)), 50, 1);
    EXPECT_EQ(qAlpha(taken.Pixels().pixel(0, 0)), 128);
    EXPECT_FALSE(taken.IsExact());
}

TEST_F(TiffPixels, AnExtraSampleThatIsNoAlphaIsPassedOver)
{
    TiffMaker maker;
    maker.Picture(2, 1, {8, 8, 8, 8}, kRgb, 1).Short(338, {0});
    maker.Chunk(Bytes({1, 2, 3, 0, 4, 5, 6, 0}));
    const Bitmap bitmap = Read(maker);
    EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_RGB32);
    EXPECT_EQ(bitmap.Pixels().pixel(1, 0), 0xff040506u);
    EXPECT_EQ(bitmap.FileDepth(), 32);
}

TEST_F(TiffPixels, CmykKeepsItsFourChannels)
{
    TiffMaker eight;
    eight.Picture(1, 1, {8, 8, 8, 8}, kSeparated, 1).Chunk(Bytes({10, 20, 30, 40}));
    TiffMaker sixteen;
    sixteen.Picture(1, 1, {16, 16, 16, 16}, kSeparated, 1);
    sixteen.Chunk(sixteen.Two(10 << 8) + sixteen.Two(20 << 8) + sixteen.Two(30 << 8)
                  + sixteen.Two(40 << 8));
    for (TiffMaker* maker : {&eight, &sixteen}) {
        const Bitmap bitmap = Read(*maker);
        EXPECT_EQ(bitmap.Model(), ColourModel::Cmyk);
        EXPECT_EQ(bitmap.Pixels().format(), QImage::Format_RGBA8888);
        EXPECT_EQ(std::memcmp(bitmap.Pixels().constScanLine(0), "\x0a\x14\x1e\x28", 4), 0);
        EXPECT_EQ(bitmap.IsExact(), maker == &eight);
    }
}

TEST_F(TiffPixels, FloatsAreAView)
{
    const auto grey = [&](const std::vector<float>& values) {
        TiffMaker maker;
        maker.Picture(quint32(values.size()), 1, {32}, kMinIsBlack, 1).Short(339, {3});
        QByteArray bytes;
        for (const float value : values) {
            quint32 word;
            std::memcpy(&word, &value, 4);
            bytes += maker.Four(word);
        }
        maker.Chunk(bytes);
        return Read(maker);
    };
    const Bitmap unit = grey({0.0f, 0.5f, 1.0f, std::nanf("")});
    EXPECT_FALSE(unit.IsExact());
    EXPECT_EQ(Deep(unit, 1, 0), 32768);
    EXPECT_EQ(Deep(unit, 2, 0), 65535);
    EXPECT_EQ(Deep(unit, 3, 0), 0);
    const Bitmap wide = grey({-100.0f, 0.0f, 300.0f});
    EXPECT_EQ(Deep(wide, 0, 0), 0);
    EXPECT_EQ(Deep(wide, 1, 0), 16384);
    EXPECT_EQ(Deep(wide, 2, 0), 65535);
    const Bitmap flat = grey({7.0f, 7.0f});
    EXPECT_EQ(Deep(flat, 0, 0), 0);
}

TEST_F(TiffPixels, WideAndSignedIntegersAreViews)
{
    TiffMaker wide;
    wide.Picture(3, 1, {32}, kMinIsBlack, 1);
    wide.Chunk(wide.Four(1000) + wide.Four(2000) + wide.Four(3000));
    const Bitmap spread = Read(wide);
    EXPECT_FALSE(spread.IsExact());
    EXPECT_EQ(Deep(spread, 1, 0), 32768);
    TiffMaker negative;
    negative.Picture(3, 1, {8}, kMinIsBlack, 1).Short(339, {2}).Chunk(Bytes({0x80, 0, 0x7f}));
    const Bitmap moved = Read(negative);
    const uchar* row = moved.Pixels().constScanLine(0);
    EXPECT_EQ((std::vector<int>{row[0], row[1], row[2]}), (std::vector<int>{0, 128, 255}));
    EXPECT_FALSE(moved.IsExact());
}

TEST_F(TiffPixels, TilesReachOverTheEdges)
{
    TiffMaker maker;
    maker.Picture(20, 18, {8}, kMinIsBlack).Tiles(16, 16);
    for (int tile = 0; tile < 4; ++tile) {
        QByteArray bytes;
        for (int i = 0; i < 256; ++i) {
            const int x = tile % 2 * 16 + i % 16, y = tile / 2 * 16 + i / 16;
            bytes.append(char(x * 10 + y));
        }
        maker.Chunk(bytes);
    }
    const Bitmap bitmap = Read(maker);
    for (int y = 0; y < 18; ++y) {
        for (int x = 0; x < 20; ++x) {
            ASSERT_EQ(bitmap.Pixels().constScanLine(y)[x], uchar(x * 10 + y)) << x << ' ' << y;
        }
    }
    EXPECT_FALSE(bitmap.IsPartial());
}

TEST_F(TiffPixels, SubsampledYcbcrIsConverted)
{
    TiffMaker maker;
    maker.Picture(2, 2, {8, 8, 8}, kYcbcr, 2).Short(530, {2, 2});
    maker.Chunk(Bytes({76, 149, 29, 255, 128, 128}));
    const Bitmap grey = Read(maker);
    EXPECT_EQ(grey.Pixels().format(), QImage::Format_RGB32);
    EXPECT_NEAR(qRed(grey.Pixels().pixel(0, 0)), 76, 1);
    EXPECT_NEAR(qGreen(grey.Pixels().pixel(1, 0)), 149, 1);
    EXPECT_NEAR(qBlue(grey.Pixels().pixel(0, 1)), 29, 1);
    EXPECT_NEAR(qBlue(grey.Pixels().pixel(1, 1)), 255, 1);
}

TEST_F(TiffPixels, MissingStripsStayWhiteAndThePictureIsPartial)
{
    TiffMaker maker;
    maker.Picture(4, 4, {8}, kMinIsBlack, 2).Chunk(QByteArray(8, 'A')).Chunk(QByteArray(8, 'B'));
    // The second strip is told to lie behind the end of the file.
    QByteArray file = maker.File();
    const qsizetype offsets = file.indexOf(maker.Four(8) + maker.Four(16));
    ASSERT_GT(offsets, 0);
    file.replace(offsets + 4, 4, maker.Four(1'000'000));
    const Bitmap bitmap = Decode(Write(QStringLiteral("cut.tif"), file), "TIFF");
    EXPECT_TRUE(bitmap.IsPartial());
    EXPECT_EQ(bitmap.Pixels().constScanLine(1)[3], 'A');
    EXPECT_EQ(bitmap.Pixels().constScanLine(2)[0], 255);
}

TEST_F(TiffPixels, ThePageAskedForIsRead)
{
    TiffMaker first, second;
    first.Picture(1, 1, {8}, kMinIsBlack, 1).Chunk("a");
    second.Picture(2, 1, {8}, kMinIsBlack, 1).Chunk("bc");
    const QByteArray back = second.Page(8);
    const QByteArray front = first.Page(8 + quint32(back.size()), second.DirectoryAt());
    const QString path =
        Write(QStringLiteral("two.tif"), first.Head(first.DirectoryAt()) + back + front);
    DecodeRequest request;
    EXPECT_EQ(Probe(path, "TIFF").pages, 2);
    EXPECT_EQ(Decode(path, "TIFF", request).Width(), 1);
    request.page = 1;
    EXPECT_EQ(Decode(path, "TIFF", request).Width(), 2);
    request.page = 2;
    EXPECT_EQ(FailureOf([&] { Decode(path, "TIFF", request); }).Number(), kFailureGeneral);
    request.page = -1;
    EXPECT_EQ(FailureOf([&] { Decode(path, "TIFF", request); }).Number(), kFailureGeneral);
}

} // namespace quillane::test
