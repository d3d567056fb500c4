#include "core/failure.h"
#include "imaging/processing/colour.h"
#include "imaging/processing/histogram.h"
#include "imaging/processing/tone.h"
#include "processing_support.h"
#include <gtest/gtest.h>
#include <limits>
#include <numeric>

namespace quillane::processing {

namespace {

constexpr qint32 kLeast = std::numeric_limits<qint32>::min();
constexpr qint32 kMost = std::numeric_limits<qint32>::max();
constexpr Layout kGrey8{"Grey8", QImage::Format_Grayscale8, ColourModel::Grey};
constexpr Layout kGrey16{"Grey16", QImage::Format_Grayscale16, ColourModel::Grey};
constexpr Layout kRgb24{"Rgb24", QImage::Format_RGB32, ColourModel::Rgb};

/// Grey of 8 bits with all values from left to right.
Bitmap Ramp()
{
    QImage pixels(256, 4, QImage::Format_Grayscale8);
    for (int y = 0; y < 4; ++y) {
        std::iota(pixels.scanLine(y), pixels.scanLine(y) + 256, uchar(0));
    }
    return Bitmap(pixels, ColourModel::Grey, 8);
}

int ValueAt(const Bitmap& picture, int x)
{
    return picture.Pixels().constScanLine(1)[x];
}

void ExpectRising(const Bitmap& ramp)
{
    for (int x = 1; x < 256; ++x) {
        ASSERT_GE(ValueAt(ramp, x), ValueAt(ramp, x - 1)) << x;
    }
}

TEST(Brightness, RaisesWithItsValueAndIsClamped)
{
    Bitmap darker = Brightness(Ramp(), nullptr, -1000);
    for (const qint32 value : {-999, -500, -100, -10, 0, 10, 100, 500, 999, 1000}) {
        const Bitmap brighter = Brightness(Ramp(), nullptr, value);
        ExpectRising(brighter);
        for (int x = 0; x < 256; ++x) {
            ASSERT_GE(ValueAt(brighter, x), ValueAt(darker, x)) << value << " at " << x;
        }
        darker = brighter;
    }
    EXPECT_EQ(ValueAt(Brightness(Ramp(), nullptr, 1000), 0), 255);
    EXPECT_EQ(ValueAt(Brightness(Ramp(), nullptr, -1000), 255), 0);
    EXPECT_EQ(ValueAt(Brightness(Ramp(), nullptr, 100), 100), 126);
    EXPECT_TRUE(SamePixels(Brightness(Ramp(), nullptr, 0).Pixels(), Ramp().Pixels()));
    EXPECT_TRUE(SamePixels(Brightness(Ramp(), nullptr, kMost).Pixels(),
                           Brightness(Ramp(), nullptr, 1000).Pixels()));
    EXPECT_TRUE(SamePixels(Brightness(Ramp(), nullptr, kLeast).Pixels(),
                           Brightness(Ramp(), nullptr, -1000).Pixels()));
}

TEST(Contrast, SteepensAroundMiddleGreyToBothEnds)
{
    EXPECT_TRUE(SamePixels(Contrast(Ramp(), nullptr, 0).Pixels(), Ramp().Pixels()));
    const Bitmap more = Contrast(Ramp(), nullptr, 400);
    ExpectRising(more);
    EXPECT_LT(ValueAt(more, 60), 60);
    EXPECT_GT(ValueAt(more, 200), 200);
    const Bitmap none = Contrast(Ramp(), nullptr, -1000);
    EXPECT_EQ(ValueAt(none, 0), 128);
    EXPECT_EQ(ValueAt(none, 255), 128);
    const Bitmap most = Contrast(Ramp(), nullptr, 1000);
    EXPECT_EQ(ValueAt(most, 127), 0);
    EXPECT_EQ(ValueAt(most, 128), 255);
    EXPECT_TRUE(SamePixels(Contrast(Ramp(), nullptr, kMost).Pixels(), most.Pixels()));
}

TEST(HistogramContrast, KeepsTheMeanWhereItIs)
{
    const Bitmap dark = Brightness(MakePicture(kGrey8, 80, 60), nullptr, -300);
    const auto mean = [](const Bitmap& picture) {
        const HistogramTable table = Histogram(picture, nullptr, HistogramChannel::Master);
        double sum = 0;
        for (size_t i = 0; i < table.size(); ++i) {
            sum += double(i) * double(table[i]);
        }
        return sum / (picture.Width() * double(picture.Height()));
    };
    EXPECT_NEAR(mean(HistogramContrast(dark, nullptr, -500)), mean(dark), 2);
    EXPECT_TRUE(SamePixels(HistogramContrast(dark, nullptr, 0).Pixels(), dark.Pixels()));
}

TEST(HistogramContrast, TakesTheMeanOfTheRegion)
{
    QImage pixels(40, 20, QImage::Format_Grayscale8);
    pixels.fill(200);
    for (int y = 0; y < 20; ++y) {
        std::fill_n(pixels.scanLine(y), 20, uchar(50));
    }
    const Region left = Region::Rectangle(QSize(40, 20), 0, 0, 20, 20);
    // All of the region is its mean, so nothing moves.
    const Bitmap result = HistogramContrast(Bitmap(pixels, ColourModel::Grey, 8), &left, 900);
    EXPECT_TRUE(SamePixels(result.Pixels(), pixels));
}

TEST(GammaCorrect, BrightensAboveOneHundredAndKeepsTheEnds)
{
    const Bitmap brighter = GammaCorrect(Ramp(), nullptr, 150);
    ExpectRising(brighter);
    EXPECT_EQ(ValueAt(brighter, 0), 0);
    EXPECT_EQ(ValueAt(brighter, 255), 255);
    EXPECT_GT(ValueAt(brighter, 100), 100);
    EXPECT_LT(ValueAt(GammaCorrect(Ramp(), nullptr, 50), 100), 100);
    EXPECT_TRUE(SamePixels(GammaCorrect(Ramp(), nullptr, 100).Pixels(), Ramp().Pixels()));
    EXPECT_EQ(ValueAt(GammaCorrect(Ramp(), nullptr, 0), 200), 0);
    EXPECT_EQ(ValueAt(GammaCorrect(Ramp(), nullptr, kLeast), 0), 0);
    EXPECT_EQ(ValueAt(GammaCorrect(Ramp(), nullptr, kMost), 1), 241);
}

TEST(Invert, TwiceIsTheSamePicture)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 50, 30);
        const Bitmap once = Invert(picture, nullptr);
        EXPECT_EQ(LargestDifference(Invert(once, nullptr), picture), 0) << layout.name;
    }
    EXPECT_EQ(ValueAt(Invert(Ramp(), nullptr), 40), 215);
}

TEST(Posterize, LeavesAsManyLevels)
{
    for (const qint32 levels : {2, 3, 7, 64, 256}) {
        const Bitmap result = Posterize(Ramp(), nullptr, levels);
        ExpectRising(result);
        EXPECT_EQ(UniqueColors(result, nullptr), levels);
        EXPECT_EQ(ValueAt(result, 0), 0);
        EXPECT_EQ(ValueAt(result, 255), 255);
    }
    EXPECT_EQ(UniqueColors(Posterize(Ramp(), nullptr, kLeast), nullptr), 2);
    EXPECT_TRUE(SamePixels(Posterize(Ramp(), nullptr, kMost).Pixels(), Ramp().Pixels()));
}

TEST(StretchIntensity, ReachesBothEnds)
{
    const Bitmap flat = Contrast(Ramp(), nullptr, -500);
    const Bitmap result = StretchIntensity(flat, nullptr);
    EXPECT_EQ(ValueAt(result, 0), 0);
    EXPECT_EQ(ValueAt(result, 255), 255);
    ExpectRising(result);
    for (const Layout& layout : kLayouts) {
        const Bitmap constant = MakeConstant(layout, 20, 20, 255);
        EXPECT_EQ(LargestDifference(StretchIntensity(constant, nullptr), constant), 0)
            << layout.name;
    }
}

TEST(HistogramEqualize, SpreadsIntensitiesEvenly)
{
    const Bitmap dark = GammaCorrect(Ramp(), nullptr, 30);
    const Bitmap result = HistogramEqualize(dark, nullptr);
    ExpectRising(result);
    const HistogramTable table = Histogram(result, nullptr, HistogramChannel::Master);
    const qint64 lower = std::accumulate(table.begin(), table.begin() + 128, qint64(0));
    EXPECT_NEAR(double(lower) / (256.0 * 4), 0.5, 0.15);
    EXPECT_EQ(ValueAt(result, 255), 255);
    EXPECT_EQ(ValueAt(result, 0), 0);
    for (const Layout& layout : kLayouts) {
        const Bitmap constant = MakeConstant(layout, 20, 20, 77);
        EXPECT_EQ(LargestDifference(HistogramEqualize(constant, nullptr), constant), 0)
            << layout.name;
    }
}

TEST(HistogramEqualize, KeepsTheDifferencesOfColours)
{
    QImage pixels(2, 1, QImage::Format_RGB32);
    pixels.setPixel(0, 0, qRgb(100, 110, 120));
    pixels.setPixel(1, 0, qRgb(140, 120, 130));
    const Bitmap result = HistogramEqualize(Bitmap(pixels, ColourModel::Rgb, 24), nullptr);
    const QRgb low = ColourAt(result, 0, 0);
    EXPECT_EQ(qRed(low), 0);
    EXPECT_EQ(qBlue(low) - qGreen(low), 10);
    const QRgb high = ColourAt(result, 1, 0);
    EXPECT_EQ(qRed(high), 255);
    EXPECT_GE(qGreen(high), 240);
}

TEST(IntensityDetect, IsWhiteWithinTheLimitsAndBlackElsewhere)
{
    for (const Layout& layout :
         {kGrey8, kRgb24, kGrey16, Layout{"Rgb48", QImage::Format_RGBX64, ColourModel::Rgb}}) {
        for (const int value : {0, 59, 60, 100, 170, 171, 255}) {
            const Bitmap result =
                IntensityDetect(MakeConstant(layout, 3, 3, value), nullptr, 60, 170);
            const int expected = value >= 60 && value <= 170 ? 255 : 0;
            EXPECT_EQ(qGreen(ColourAt(result, 1, 1)), expected) << layout.name << " " << value;
        }
    }
    EXPECT_EQ(ValueAt(IntensityDetect(Ramp(), nullptr, kLeast, kMost), 0), 255);
    EXPECT_EQ(ValueAt(IntensityDetect(Ramp(), nullptr, 200, 100), 150), 255);
}

TEST(Tone, UsesTheStepsOfSixteenBits)
{
    QImage pixels(4, 1, QImage::Format_Grayscale16);
    auto* row = reinterpret_cast<quint16*>(pixels.scanLine(0));
    row[0] = 1;
    row[1] = 1000;
    row[2] = 1001;
    row[3] = 65535;
    const Bitmap deep(pixels, ColourModel::Grey, 16);
    const Bitmap inverted = Invert(deep, nullptr);
    const auto* result = reinterpret_cast<const quint16*>(inverted.Pixels().constScanLine(0));
    EXPECT_EQ(result[0], 65534);
    EXPECT_EQ(result[1], 64535);
    EXPECT_EQ(result[2], 64534);
    EXPECT_EQ(result[3], 0);
}

TEST(Tone, BecomesWhatTheDepthNeeds)
{
    const struct {
        Layout from;
        ColourModel model;
        qint32 bits;
    } rows[] = {
        {kLayouts[0], ColourModel::Grey, 8}, {kLayouts[1], ColourModel::Rgb, 24},
        {kLayouts[2], ColourModel::Grey, 8}, {kLayouts[3], ColourModel::Grey, 16},
        {kLayouts[4], ColourModel::Rgb, 24}, {kLayouts[5], ColourModel::Rgb, 32},
        {kLayouts[6], ColourModel::Rgb, 24}, {kLayouts[7], ColourModel::Rgb, 48},
        {kLayouts[8], ColourModel::Rgb, 64},
    };
    for (const auto& row : rows) {
        const Bitmap result = Brightness(MakePicture(row.from, 9, 9), nullptr, 10);
        EXPECT_EQ(result.Model(), row.model) << row.from.name;
        EXPECT_EQ(result.Bits(), row.bits) << row.from.name;
    }
}

TEST(Tone, KeepsTheProfileOnlyWhereItStillFits)
{
    Bitmap colours = MakePicture(kRgb24, 9, 9);
    colours.SetIcc(QByteArray("profile"));
    EXPECT_EQ(Brightness(colours, nullptr, 10).Icc(), QByteArray("profile"));
    EXPECT_TRUE(Grayscale(colours, nullptr, 8).Icc().isEmpty());
    Bitmap inks = MakePicture(kLayouts[6], 9, 9);
    inks.SetIcc(QByteArray("profile"));
    EXPECT_TRUE(Brightness(inks, nullptr, 10).Icc().isEmpty());
}

TEST(Hue, GoesAroundTheCircle)
{
    const auto turned = [](QRgb colour, qint32 angle) {
        return ColourAt(Hue(MakeColour(colour, 2, 2), nullptr, angle), 1, 1);
    };
    EXPECT_EQ(turned(qRgb(255, 0, 0), 12000), qRgb(0, 255, 0));
    EXPECT_EQ(turned(qRgb(255, 0, 0), 24000), qRgb(0, 0, 255));
    EXPECT_EQ(turned(qRgb(255, 0, 0), 6000), qRgb(255, 255, 0));
    EXPECT_EQ(turned(qRgb(255, 0, 0), -12000), qRgb(0, 0, 255));
    EXPECT_EQ(turned(qRgb(10, 200, 90), 36000), qRgb(10, 200, 90));
    EXPECT_EQ(turned(qRgb(10, 200, 90), 12000), qRgb(90, 10, 200));
    EXPECT_EQ(turned(qRgb(77, 77, 77), 5000), qRgb(77, 77, 77));
    EXPECT_EQ(turned(qRgb(0, 0, 0), 5000), qRgb(0, 0, 0));
    EXPECT_EQ(turned(qRgb(255, 255, 255), 35999), qRgb(255, 255, 255));
    EXPECT_EQ(turned(qRgb(1, 2, 3), kMost), turned(qRgb(1, 2, 3), kMost % 36000));
    EXPECT_EQ(turned(qRgb(1, 2, 3), kLeast), turned(qRgb(1, 2, 3), kLeast % 36000 + 36000));
}

TEST(Hue, ThereAndBackIsTheSameColourToAStep)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 64, 40);
        for (const qint32 angle : {100, 3333, 17000, 29999}) {
            const Bitmap back = Hue(Hue(picture, nullptr, angle), nullptr, 36000 - angle);
            EXPECT_LE(LargestDifference(back, picture), 2) << layout.name << " " << angle;
        }
    }
}

TEST(Saturation, ReachesGreyAndMovesAwayFromIt)
{
    const Bitmap colour = MakeColour(qRgb(200, 100, 50), 2, 2);
    const QRgb grey = ColourAt(Saturation(colour, nullptr, -1000), 0, 0);
    EXPECT_EQ(qRed(grey), qGreen(grey));
    EXPECT_EQ(qRed(grey), qBlue(grey));
    EXPECT_NEAR(qRed(grey), 124, 1);
    const QRgb more = ColourAt(Saturation(colour, nullptr, 400), 0, 0);
    EXPECT_GT(qRed(more), 200);
    EXPECT_LT(qBlue(more), 50);
    EXPECT_EQ(ColourAt(Saturation(colour, nullptr, 0), 0, 0), qRgb(200, 100, 50));
    EXPECT_EQ(ColourAt(Saturation(colour, nullptr, kMost), 0, 0),
              ColourAt(Saturation(colour, nullptr, 1000), 0, 0));
    EXPECT_EQ(ColourAt(Saturation(colour, nullptr, kLeast), 0, 0), grey);
}

TEST(Grayscale, KeepsIntensityAtEitherDepth)
{
    const Bitmap colour = MakeColour(qRgb(200, 100, 50), 3, 3);
    const Bitmap grey = Grayscale(colour, nullptr, 8);
    EXPECT_EQ(grey.Model(), ColourModel::Grey);
    EXPECT_EQ(grey.Bits(), 8);
    EXPECT_NEAR(ValueAt(grey, 1), 124, 1);
    EXPECT_EQ(Grayscale(colour, nullptr, 16).Bits(), 16);
    for (const Layout& layout : kLayouts) {
        EXPECT_EQ(Grayscale(MakePicture(layout, 20, 10), nullptr, 8).Model(), ColourModel::Grey)
            << layout.name;
    }
    EXPECT_THROW(Grayscale(colour, nullptr, 4), Failure);
}

TEST(Grayscale, InARegionLeavesTheColoursAroundIt)
{
    const Bitmap colour = MakeColour(qRgb(200, 100, 50), 10, 10);
    const Region region = Region::Rectangle(QSize(10, 10), 2, 2, 3, 3);
    const Bitmap result = Grayscale(colour, &region, 8);
    EXPECT_EQ(result.Bits(), 24);
    EXPECT_EQ(ColourAt(result, 0, 0), qRgb(200, 100, 50));
    const QRgb inside = ColourAt(result, 3, 3);
    EXPECT_EQ(qRed(inside), qBlue(inside));
}

TEST(Grayscale, ShowsTransparentPartsAsOnWhite)
{
    QImage pixels(2, 1, QImage::Format_ARGB32);
    pixels.setPixel(0, 0, qRgba(0, 0, 0, 0));
    pixels.setPixel(1, 0, qRgba(0, 0, 0, 255));
    const Bitmap grey = Grayscale(Bitmap(pixels, ColourModel::Rgb, 32), nullptr, 8);
    EXPECT_EQ(grey.Pixels().constScanLine(0)[0], 255);
    EXPECT_EQ(grey.Pixels().constScanLine(0)[1], 0);
}

TEST(FillColor, FillsWithTheColourAndKeepsGreyWhereItCan)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap filled = FillColor(MakePicture(layout, 8, 8), nullptr, qRgb(10, 90, 200));
        EXPECT_EQ(ColourAt(filled, 7, 7), qRgb(10, 90, 200)) << layout.name;
        const Bitmap grey = FillColor(MakePicture(layout, 8, 8), nullptr, qRgb(90, 90, 90));
        EXPECT_EQ(ColourAt(grey, 3, 3), qRgb(90, 90, 90)) << layout.name;
    }
    EXPECT_EQ(FillColor(MakePicture(kGrey16, 8, 8), nullptr, qRgb(9, 9, 9)).Bits(), 16);
    EXPECT_EQ(FillColor(MakePicture(kGrey16, 8, 8), nullptr, qRgb(9, 9, 8)).Bits(), 48);
    EXPECT_EQ(RgbOfColour(0x00c85a0a), qRgb(10, 90, 200));
}

} // namespace

} // namespace quillane::processing
