#include "core/failure.h"
#include "imaging/region.h"
#include "processing_support.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace quillane {

namespace {

constexpr QSize kPicture(60, 40);

int CountOf(const Region& region)
{
    int count = 0;
    for (int y = -5; y < kPicture.height() + 5; ++y) {
        for (int x = -5; x < kPicture.width() + 5; ++x) {
            count += region.Contains(x, y) ? 1 : 0;
        }
    }
    return count;
}

TEST(Region, StartsEmptyAndHoldsNothing)
{
    const Region region;
    EXPECT_TRUE(region.IsEmpty());
    EXPECT_FALSE(region.Contains(0, 0));
    EXPECT_TRUE(region.Moved(kPicture, 3, 3).IsEmpty());
}

TEST(Region, ARectangleHoldsItsPixelsAndNoOthers)
{
    const Region region = Region::Rectangle(kPicture, 10, 5, 20, 8);
    EXPECT_EQ(region.Bounds(), QRect(10, 5, 20, 8));
    EXPECT_TRUE(region.IsRectangle());
    EXPECT_EQ(CountOf(region), 160);
    EXPECT_TRUE(region.Contains(10, 5));
    EXPECT_TRUE(region.Contains(29, 12));
    EXPECT_FALSE(region.Contains(30, 12));
    EXPECT_FALSE(region.Contains(9, 5));
}

TEST(Region, ADragToTheLeftAndUpwardsIsTheSameRectangle)
{
    EXPECT_EQ(Region::Rectangle(kPicture, 30, 13, -20, -8),
              Region::Rectangle(kPicture, 10, 5, 20, 8));
}

TEST(Region, IsClippedToThePicture)
{
    EXPECT_EQ(Region::Rectangle(kPicture, -10, -10, 30, 30).Bounds(), QRect(0, 0, 20, 20));
    EXPECT_TRUE(Region::Rectangle(kPicture, 60, 0, 10, 10).IsEmpty());
    EXPECT_TRUE(Region::Rectangle(kPicture, 5, 5, 0, 10).IsEmpty());
    EXPECT_TRUE(Region::Ellipse(kPicture, 100, 0, 10, 10).IsEmpty());
    EXPECT_TRUE(Region::Rectangle(QSize(), 0, 0, 10, 10).IsEmpty());
}

TEST(Region, NumbersAtTheEndOfTheirRangeAreTaken)
{
    constexpr qint32 kLeast = std::numeric_limits<qint32>::min();
    constexpr qint32 kMost = std::numeric_limits<qint32>::max();
    EXPECT_EQ(Region::Rectangle(kPicture, -1000, -1000, kMost, kMost).Bounds(),
              QRect(QPoint(0, 0), kPicture));
    EXPECT_TRUE(Region::Rectangle(kPicture, kMost, kMost, kMost, kMost).IsEmpty());
    EXPECT_TRUE(Region::Rectangle(kPicture, kLeast, kLeast, kLeast, kLeast).IsEmpty());
    EXPECT_EQ(Region::Ellipse(kPicture, kLeast / 2, kLeast / 2, kMost, kMost).Bounds(),
              QRect(QPoint(0, 0), kPicture));
    EXPECT_EQ(Region::RoundRectangle(kPicture, kLeast, kLeast, kMost, kMost, kMost).IsEmpty(),
              true);
    EXPECT_TRUE(Region::Rectangle(kPicture, 0, 0, 5, 5).Moved(kPicture, kMost, kLeast).IsEmpty());
}

TEST(Region, AnEllipseHoldsAboutItsAreaAndTouchesItsSides)
{
    const Region region = Region::Ellipse(kPicture, 4, 6, 40, 24);
    EXPECT_EQ(region.Bounds(), QRect(4, 6, 40, 24));
    EXPECT_FALSE(region.IsRectangle());
    EXPECT_NEAR(CountOf(region), M_PI * 20 * 12, 12);
    EXPECT_TRUE(region.Contains(24, 18));
    EXPECT_FALSE(region.Contains(4, 6));
    EXPECT_FALSE(region.Contains(43, 29));
    for (int y = 6; y < 30; ++y) {
        for (int x = 4; x < 44; ++x) {
            ASSERT_EQ(region.Contains(x, y), region.Contains(47 - x, 35 - y)) << x << "," << y;
        }
    }
}

TEST(Region, ARoundedRectangleLacksItsCornersOnly)
{
    const Region region = Region::RoundRectangle(kPicture, 10, 10, 30, 20, 6);
    EXPECT_EQ(region.Bounds(), QRect(10, 10, 30, 20));
    EXPECT_FALSE(region.Contains(10, 10));
    EXPECT_FALSE(region.Contains(39, 29));
    EXPECT_TRUE(region.Contains(16, 10));
    EXPECT_TRUE(region.Contains(10, 16));
    EXPECT_NEAR(CountOf(region), 30 * 20 - (4 - M_PI) * 36, 8);
    EXPECT_EQ(Region::RoundRectangle(kPicture, 10, 10, 30, 20, 0),
              Region::Rectangle(kPicture, 10, 10, 30, 20));
    EXPECT_EQ(Region::RoundRectangle(kPicture, 10, 10, 20, 20, 1000),
              Region::Ellipse(kPicture, 10, 10, 20, 20));
}

TEST(Region, AFreeHandOutlineHoldsWhatItEncloses)
{
    const Region square = Region::FreeHand(kPicture, {{10, 10}, {30, 10}, {30, 25}, {10, 25}});
    EXPECT_EQ(square, Region::Rectangle(kPicture, 10, 10, 20, 15));
    const Region triangle = Region::FreeHand(kPicture, {{0, 0}, {20, 0}, {0, 20}});
    EXPECT_TRUE(triangle.Contains(2, 2));
    EXPECT_FALSE(triangle.Contains(18, 18));
    EXPECT_NEAR(CountOf(triangle), 200, 12);
    EXPECT_TRUE(Region::FreeHand(kPicture, {{0, 0}, {20, 0}}).IsEmpty());
    EXPECT_TRUE(Region::FreeHand(kPicture, {}).IsEmpty());
}

TEST(Region, AnOutlineThatCrossesItselfLeavesOutWhatItHoldsTwice)
{
    // A small square within a large one, walked in one line.
    const Region ring = Region::FreeHand(kPicture,
                                         {{0, 0},
                                          {30, 0},
                                          {30, 30},
                                          {0, 30},
                                          {0, 0},
                                          {10, 10},
                                          {20, 10},
                                          {20, 20},
                                          {10, 20},
                                          {10, 10}});
    EXPECT_TRUE(ring.Contains(5, 15));
    EXPECT_FALSE(ring.Contains(15, 15));
    EXPECT_EQ(CountOf(ring), 800);
}

TEST(Region, AnOutlineBeyondAnyPictureIsRefusedOrClipped)
{
    EXPECT_THROW(Region::FreeHand(kPicture, QList<QPoint>(100'001, QPoint(1, 1))), Failure);
    constexpr int kFar = 2'000'000'000;
    EXPECT_EQ(
        Region::FreeHand(kPicture, {{-kFar, -kFar}, {kFar, -kFar}, {kFar, kFar}, {-kFar, kFar}})
            .Bounds(),
        QRect(QPoint(0, 0), kPicture));
}

TEST(Region, AColourMatchHoldsThePixelsBetweenTwoColours)
{
    QImage pixels(10, 10, QImage::Format_RGB32);
    pixels.fill(qRgb(10, 20, 30));
    pixels.setPixel(3, 4, qRgb(200, 100, 50));
    pixels.setPixel(6, 7, qRgb(210, 110, 60));
    pixels.setPixel(7, 7, qRgb(210, 110, 61));
    const Region region = Region::ColourMatch(Bitmap(pixels, ColourModel::Rgb, 24),
                                              qRgb(200, 100, 50), qRgb(210, 110, 60));
    EXPECT_EQ(CountOf(region), 2);
    EXPECT_TRUE(region.Contains(3, 4));
    EXPECT_TRUE(region.Contains(6, 7));
    EXPECT_EQ(region.Bounds(), QRect(QPoint(3, 4), QPoint(6, 7)));
    EXPECT_THROW(Region::ColourMatch({}, 0, 0xffffffff), Failure);
}

TEST(Region, AColourMatchTakesEveryLayout)
{
    for (const auto& layout : processing::kLayouts) {
        const Bitmap picture = processing::MakePicture(layout, 20, 10);
        EXPECT_EQ(Region::ColourMatch(picture, 0xff000000u, 0xffffffffu).Bounds(),
                  QRect(0, 0, 20, 10))
            << layout.name;
    }
}

TEST(Region, MovesWithItsShapeAndLosesWhatLeavesThePicture)
{
    const Region region = Region::Ellipse(kPicture, 10, 10, 20, 20);
    const Region moved = region.Moved(kPicture, 5, -3);
    EXPECT_EQ(moved, Region::Ellipse(kPicture, 15, 7, 20, 20));
    EXPECT_EQ(region.Moved(kPicture, 0, 0), region);
    const Region half = region.Moved(kPicture, -20, 0);
    EXPECT_EQ(half.Bounds(), QRect(0, 10, 10, 20));
    EXPECT_EQ(half, Region::Ellipse(kPicture, -10, 10, 20, 20));
    EXPECT_TRUE(region.Moved(kPicture, 100, 0).IsEmpty());
}

} // namespace

} // namespace quillane
