#include "imaging/thumbs/shown_small.h"
#include <gtest/gtest.h>

namespace quillane {

namespace {

double MeanOf(const QImage& shown)
{
    double sum = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            sum += qGray(shown.pixel(x, y));
        }
    }
    return sum / (double(shown.width()) * shown.height());
}

/// White with every tenth row black, from the sixth on.
Bitmap ThinStrokes(QSize size)
{
    QImage pixels(size, QImage::Format_Mono);
    pixels.fill(1);
    for (int y = 5; y < size.height(); y += 10) {
        std::fill_n(pixels.scanLine(y), pixels.bytesPerLine(), uchar(0));
    }
    return Bitmap(pixels, ColourModel::BlackWhite, 1);
}

} // namespace

TEST(ShownSmall, ThinStrokesOfAHugeSheetKeepTheirWeight)
{
    const Bitmap sheet = ThinStrokes({9'000, 7'000});
    const QImage shown = ShrunkForDisplay(sheet, {180, 140});
    ASSERT_EQ(shown.size(), QSize(180, 140));
    EXPECT_NEAR(MeanOf(shown), 255 * 0.9, 255 * 0.02);
    for (int y = 0; y < shown.height(); ++y) {
        EXPECT_NEAR(qGray(shown.pixel(90, y)), 255 * 0.9, 255 * 0.05) << "row " << y;
    }
}

TEST(ShownSmall, ALargePictureIsTheSameAsOneThatIsConvertedWhole)
{
    QImage grey(5'000, 4'000, QImage::Format_Grayscale8);
    for (int y = 0; y < grey.height(); ++y) {
        for (int x = 0; x < grey.width(); ++x) {
            grey.scanLine(y)[x] = uchar(x / 20 + y / 160);
        }
    }
    const QImage large = ShrunkForDisplay(Bitmap(grey, ColourModel::Grey, 8), {100, 80});
    const QImage same = ShrunkForDisplay(
        Bitmap(grey.convertToFormat(QImage::Format_RGB32), ColourModel::Rgb, 24), {100, 80});
    ASSERT_EQ(large.size(), same.size());
    for (int y = 0; y < large.height(); ++y) {
        for (int x = 0; x < large.width(); ++x) {
            ASSERT_NEAR(qGray(large.pixel(x, y)), qGray(same.pixel(x, y)), 2) << x << "," << y;
        }
    }
}

TEST(ShownSmall, TransparencyOfALargePictureStays)
{
    QImage pixels(4'500, 4'000, QImage::Format_RGBA64);
    pixels.fill(QColor(255, 0, 0, 128));
    const QImage shown = ShrunkForDisplay(Bitmap(pixels, ColourModel::Rgb, 64), {45, 40});
    ASSERT_TRUE(shown.hasAlphaChannel());
    EXPECT_NEAR(qAlpha(shown.pixel(20, 20)), 128, 2);
    EXPECT_NEAR(shown.pixelColor(20, 20).red(), 255, 2);
}

TEST(ShownSmall, AStripOfOneRowIsShown)
{
    const QImage shown = ShrunkForDisplay(ThinStrokes({60'000, 400}), {100, 1});
    EXPECT_EQ(shown.size(), QSize(100, 1));
    EXPECT_NEAR(MeanOf(shown), 255 * 0.9, 255 * 0.02);
}

} // namespace quillane
