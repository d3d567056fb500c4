#include "viewer/resize_choice.h"
#include <gtest/gtest.h>

namespace quillane {

TEST(ResizeRatio, IsHeightByWidthIn16384ths)
{
    EXPECT_EQ(ResizeRatio({4000, 3000}), 12288);
    EXPECT_EQ(ResizeRatio({100, 100}), 16384);
    EXPECT_EQ(ResizeRatio({1000, 333}), 5456) << "5455.87";
    EXPECT_EQ(ResizeRatio({16384, 1}), 1);
}

TEST(ResizeRatio, HasItsLimits)
{
    EXPECT_EQ(ResizeRatio({1000, 2000}), 32767) << "one less than the double";
    EXPECT_EQ(ResizeRatio({1000, 3000}), 32767);
    EXPECT_EQ(ResizeRatio({1, 65'500}), 32767);
    EXPECT_EQ(ResizeRatio({65'500, 1}), 1);
    EXPECT_EQ(ResizeRatio({}), 16384);
}

TEST(ResizeRatio, TiesGoToTheEvenNumber)
{
    EXPECT_EQ(ResizeRatio({32768, 5}), 2) << "2.5";
    EXPECT_EQ(ResizeRatio({32768, 7}), 4) << "3.5";
}

TEST(HeightForWidth, FollowsTheRatio)
{
    EXPECT_EQ(HeightForWidth(4000, 12288), 3000);
    EXPECT_EQ(HeightForWidth(800, 12288), 600);
    EXPECT_EQ(HeightForWidth(1, 12288), 1);
    EXPECT_EQ(HeightForWidth(1, 1), 1) << "never nothing";
    EXPECT_EQ(HeightForWidth(16384, 32767), 32767) << "the end of one bar is the end of the other";
    EXPECT_EQ(HeightForWidth(16384, 12288), 12288);
}

TEST(WidthForHeight, FollowsTheRatio)
{
    EXPECT_EQ(WidthForHeight(3000, 12288), 4000);
    EXPECT_EQ(WidthForHeight(12288, 12288), 16384);
    EXPECT_EQ(WidthForHeight(32767, 1), 16384) << "no further than its bar";
    EXPECT_EQ(WidthForHeight(1, 32767), 1) << "never nothing";
}

TEST(ResizeChoice, ThereAndBackLosesLessThanAPixelOfTheSmallerSide)
{
    for (const QSize picture : {QSize(4000, 3000), QSize(3000, 4000), QSize(1920, 1080)}) {
        const qint32 ratio = ResizeRatio(picture);
        for (qint32 width = 1; width <= kResizeMostWidth; width += 97) {
            const qint32 back = WidthForHeight(HeightForWidth(width, ratio), ratio);
            const double pixel = double(picture.width()) / picture.height();
            EXPECT_LE(qAbs(back - width), std::max(1.0, pixel) + 0.5) << width;
        }
    }
}

} // namespace quillane
