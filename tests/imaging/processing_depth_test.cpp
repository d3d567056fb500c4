#include "core/failure.h"
#include "imaging/processing/colour.h"
#include "imaging/processing/depth.h"
#include "imaging/processing/histogram.h"
#include "imaging/resize.h"
#include "processing_support.h"
#include <cmath>
#include <gtest/gtest.h>

namespace quillane::processing {

namespace {

constexpr Layout kRgb24{"Rgb24", QImage::Format_RGB32, ColourModel::Rgb};

/// A picture of soft colours, thousands of them.
Bitmap Sky(int width, int height)
{
    QImage pixels(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            pixels.setPixel(x, y, qRgb(x * 255 / width, y * 255 / height, 255 - x * 255 / width));
        }
    }
    return Bitmap(pixels, ColourModel::Rgb, 24);
}

double MeanOf(const Bitmap& picture)
{
    const HistogramTable table = Histogram(picture, nullptr, HistogramChannel::Master);
    double sum = 0;
    for (size_t i = 0; i < table.size(); ++i) {
        sum += double(i) * double(table[i]);
    }
    return sum / (double(picture.Width()) * picture.Height());
}

double Noise(const Bitmap& a, const Bitmap& b)
{
    const QImage first = a.Pixels().convertToFormat(QImage::Format_RGB32);
    const QImage second = b.Pixels().convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            const QRgb p = first.pixel(x, y);
            const QRgb q = second.pixel(x, y);
            sum += std::pow(qRed(p) - qRed(q), 2) + std::pow(qGreen(p) - qGreen(q), 2)
                + std::pow(qBlue(p) - qBlue(q), 2);
        }
    }
    return std::sqrt(sum / (3.0 * first.width() * first.height()));
}

TEST(ToDepth, TakesEveryLayoutToEveryDepth)
{
    const struct {
        qint32 bits, stored;
        ColourModel model;
    } rows[] = {
        {1, 1, ColourModel::BlackWhite}, {4, 8, ColourModel::Palette}, {16, 16, ColourModel::Grey},
        {24, 24, ColourModel::Rgb},      {32, 32, ColourModel::Rgb},   {48, 48, ColourModel::Rgb},
        {64, 64, ColourModel::Rgb},
    };
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 33, 21);
        for (const auto& row : rows) {
            const Bitmap result = ToDepth(picture, row.bits);
            EXPECT_EQ(result.Bits(), row.stored) << layout.name << " to " << row.bits;
            EXPECT_EQ(result.Model(), row.model) << layout.name << " to " << row.bits;
            EXPECT_EQ(result.Pixels().size(), QSize(33, 21));
        }
        const bool grey =
            layout.model == ColourModel::Grey || layout.model == ColourModel::BlackWhite;
        EXPECT_EQ(ToDepth(picture, 8).Model(), grey ? ColourModel::Grey : ColourModel::Palette)
            << layout.name;
        for (const qint32 bits : {0, 2, 7, 25, -8, 128}) {
            EXPECT_THROW(ToDepth(picture, bits), Failure) << bits;
        }
    }
}

TEST(ToDepth, MoreBitsKeepTheColoursExactly)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 33, 21);
        if (picture.Pixels().hasAlphaChannel() && layout.model == ColourModel::Rgb) {
            EXPECT_TRUE(SamePixels(ToDepth(ToDepth(picture, 64), picture.Bits()).Pixels(),
                                   picture.Pixels()))
                << layout.name;
            continue;
        }
        for (const qint32 bits : {24, 32, 48, 64}) {
            EXPECT_LE(LargestDifference(ToDepth(picture, bits), picture), 0)
                << layout.name << " to " << bits;
        }
    }
    const Bitmap grey = MakePicture(kLayouts[2], 30, 30);
    EXPECT_TRUE(SamePixels(ToDepth(ToDepth(grey, 16), 8).Pixels(), grey.Pixels()));
}

TEST(ToDepth, FewColoursAreKeptExactly)
{
    QImage pixels(64, 64, QImage::Format_RGB32);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            pixels.setPixel(x, y, qRgb((x % 16) * 17, (y % 16) * 17, 5));
        }
    }
    const Bitmap picture(pixels, ColourModel::Rgb, 24);
    ASSERT_EQ(UniqueColors(picture, nullptr), 256);
    const Bitmap result = ToDepth(picture, 8);
    EXPECT_EQ(result.Pixels().colorCount(), 256);
    EXPECT_EQ(LargestDifference(result, picture), 0);
    const Bitmap two = ToDepth(MakeColour(qRgb(9, 8, 7), 5, 5), 4);
    EXPECT_EQ(two.Pixels().colorCount(), 1);
    EXPECT_EQ(ColourAt(two, 2, 2), qRgb(9, 8, 7));
}

TEST(ToDepth, ManyColoursAreReducedAndDitheredNearby)
{
    const Bitmap sky = Sky(200, 150);
    for (const qint32 bits : {4, 8}) {
        const int most = bits == 4 ? 16 : 256;
        for (const auto palette : {PaletteChoice::Best, PaletteChoice::Fixed}) {
            for (const auto dither : {DitherChoice::None, DitherChoice::FloydSteinberg}) {
                const Bitmap result = ToDepth(sky, bits, {palette, dither});
                EXPECT_LE(result.Pixels().colorCount(), most);
                EXPECT_GT(result.Pixels().colorCount(), most / 2);
                const int most4 = palette == PaletteChoice::Best ? 45 : 95;
                EXPECT_LT(Noise(result, sky), bits == 4 ? most4 : 35)
                    << bits << " " << int(palette) << " " << int(dither);
                // A dithered picture is right from afar.
                if (dither == DitherChoice::FloydSteinberg) {
                    const QSize small(20, 15);
                    EXPECT_LT(Noise(Resized(result, small, ResizeWay::Resample),
                                    Resized(sky, small, ResizeWay::Resample)),
                              bits == 4 ? 22 : 6)
                        << bits << " " << int(palette);
                }
            }
        }
        EXPECT_LT(Noise(ToDepth(sky, 8), sky), Noise(ToDepth(sky, 4), sky));
    }
}

TEST(ToDepth, FixedAndGreyPalettesHoldOnlyTheirColours)
{
    const Bitmap result =
        ToDepth(Sky(100, 80), 8, {PaletteChoice::Fixed, DitherChoice::FloydSteinberg});
    for (const QRgb colour : result.Pixels().colorTable()) {
        EXPECT_EQ(qRed(colour) % 51, 0);
        EXPECT_EQ(qBlue(colour) % 51, 0);
    }
    for (const qint32 bits : {4, 8}) {
        const Bitmap grey = ToDepth(Sky(100, 80), bits, {PaletteChoice::Grey, DitherChoice::None});
        EXPECT_EQ(grey.Model(), ColourModel::Palette);
        EXPECT_LE(grey.Pixels().colorCount(), bits == 4 ? 16 : 256);
        for (const QRgb colour : grey.Pixels().colorTable()) {
            EXPECT_EQ(qRed(colour), qGreen(colour));
            EXPECT_EQ(qRed(colour), qBlue(colour));
        }
    }
}

TEST(ToDepth, BlackAndWhiteIsAsBrightAsThePicture)
{
    for (const int value : {0, 30, 128, 200, 255}) {
        const Bitmap grey = MakeConstant(kLayouts[2], 120, 90, value);
        EXPECT_NEAR(MeanOf(ToDepth(grey, 1)), value, 3);
        EXPECT_EQ(MeanOf(ToDepth(grey, 1, {PaletteChoice::Best, DitherChoice::None})),
                  value < 128 ? 0 : 255);
    }
    const Bitmap once = ToDepth(Sky(70, 50), 1);
    EXPECT_EQ(LargestDifference(ToDepth(ToDepth(once, 8), 1), once), 0);
}

TEST(ToDepth, PalettesKeepTransparency)
{
    QImage pixels(40, 40, QImage::Format_ARGB32);
    pixels.fill(qRgba(0, 0, 0, 0));
    for (int y = 0; y < 40; ++y) {
        for (int x = 20; x < 40; ++x) {
            pixels.setPixel(x, y, qRgba(x * 6, y * 6, x * y % 256, 255));
        }
    }
    const Bitmap picture(pixels, ColourModel::Rgb, 32);
    const Bitmap result = ToDepth(picture, 8);
    EXPECT_EQ(qAlpha(ColourAt(result, 5, 5)), 0);
    EXPECT_EQ(qAlpha(ColourAt(result, 30, 30)), 255);
    EXPECT_EQ(qAlpha(ColourAt(ToDepth(result, 32), 5, 5)), 0);
    // Without alpha, as on paper.
    EXPECT_EQ(ColourAt(ToDepth(picture, 24), 5, 5), qRgb(255, 255, 255));
    EXPECT_EQ(ColourAt(ToDepth(picture, 48), 5, 5), qRgb(255, 255, 255));
}

TEST(ToDepth, InksBecomeLight)
{
    QImage pixels(2, 1, QImage::Format_RGBA8888);
    pixels.scanLine(0)[0] = 255; // cyan
    pixels.scanLine(0)[1] = pixels.scanLine(0)[2] = pixels.scanLine(0)[3] = 0;
    std::fill_n(pixels.scanLine(0) + 4, 4, uchar(0));
    const Bitmap inks(pixels, ColourModel::Cmyk, 32);
    EXPECT_EQ(ColourAt(ToDepth(inks, 24), 0, 0), qRgb(0, 255, 255));
    EXPECT_EQ(ColourAt(ToDepth(inks, 24), 1, 0), qRgb(255, 255, 255));
    EXPECT_EQ(ToDepth(inks, 32).Model(), ColourModel::Rgb);
}

TEST(AtDepth, GivesBackWhatHasTheDepthAlready)
{
    const Bitmap picture = MakePicture(kRgb24, 9, 9);
    EXPECT_EQ(AtDepth(picture, 24).Pixels().cacheKey(), picture.Pixels().cacheKey());
    EXPECT_TRUE(AtDepth({}, 8).IsNull());
    EXPECT_EQ(AtDepth(picture, 4).Pixels().format(), QImage::Format_Indexed8);
}

} // namespace

} // namespace quillane::processing
