#include "core/failure.h"
#include "viewer/histogram_lines.h"
#include <gtest/gtest.h>

namespace quillane {

TEST(LinesOf, EveryLevelHasAnUprightLineOnTheFoot)
{
    processing::HistogramTable table{};
    for (size_t i = 0; i < table.size(); ++i) {
        table[i] = qint64(i);
    }
    const HistogramDrawing drawing = LinesOf(table);
    EXPECT_EQ(drawing.max, 255);
    ASSERT_EQ(drawing.lines.size(), 256u);
    for (size_t i = 0; i < table.size(); ++i) {
        const HistogramLine& line = drawing.lines[i];
        EXPECT_EQ(line.X1, float(i));
        EXPECT_EQ(line.X2, float(i));
        EXPECT_EQ(line.Y1, 98.0f);
        EXPECT_NEAR(line.Y2, 98.0f - 94.0f * float(i) / 255.0f, 1e-4);
    }
    EXPECT_EQ(drawing.lines[0].Y2, 98.0f);
    EXPECT_EQ(drawing.lines[255].Y2, 4.0f) << "four units under the top";
}

TEST(LinesOf, OneColourIsOneLineOfFullHeight)
{
    QImage pixels(40, 30, QImage::Format_RGB32);
    pixels.fill(QColor(128, 128, 128));
    const auto table = processing::Histogram(Bitmap(pixels, ColourModel::Rgb, 24), nullptr,
                                             processing::HistogramChannel::Master);
    const HistogramDrawing drawing = LinesOf(table);
    EXPECT_EQ(drawing.max, 1200) << "all pixels";
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(drawing.lines[size_t(i)].Y2, i == 128 ? 4.0f : 98.0f) << i;
    }
}

TEST(LinesOf, LargeCountsKeepTheirShape)
{
    processing::HistogramTable table{};
    table[3] = 200'000'000'000;
    table[4] = 100'000'000'000;
    const HistogramDrawing drawing = LinesOf(table);
    EXPECT_EQ(drawing.lines[3].Y2, 4.0f);
    EXPECT_EQ(drawing.lines[4].Y2, 51.0f);
}

TEST(LinesOf, AllZeroIsADivisionFailure)
{
    try {
        LinesOf({});
        ADD_FAILURE() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), kFailureDivision);
        EXPECT_FALSE(failure.Description().isEmpty());
    }
}

TEST(HistogramScale, LeavesAMarginOnBothSides)
{
    EXPECT_EQ(kHistogramLeft, -5.0f);
    EXPECT_EQ(kHistogramTop, 0.0f);
    EXPECT_EQ(kHistogramLeft + kHistogramWidth, 265.0f);
    EXPECT_EQ(kHistogramHeight, 100.0f);
}

} // namespace quillane
