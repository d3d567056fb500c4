#include "core/failure.h"
#include "viewer/region_drag.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace quillane {

namespace {

class MakeRegionTest : public testing::Test {
protected:
    MakeRegionTest()
    {
        QImage pixels(200, 100, QImage::Format_RGB32);
        pixels.fill(Qt::white);
        mPicture.SetBitmap(Bitmap(pixels, ColourModel::Rgb, 24));
    }
    EngineInstance mPicture;
};

TEST(PixelsBetween, EdgesLieAtTheNearestPixelEdges)
{
    EXPECT_EQ(PixelsBetween({10, 20, 30, 40}), QRect(10, 20, 30, 40));
    EXPECT_EQ(PixelsBetween(QRectF(QPointF(10.4, 20.4), QPointF(30.6, 40.6))),
              QRect(10, 20, 21, 21));
    EXPECT_TRUE(PixelsBetween(QRectF(QPointF(3.1, 3.1), QPointF(3.4, 9))).isEmpty());
    EXPECT_EQ(PixelsBetween(QRectF(QPointF(-5.2, -3), QPointF(2, 2))), QRect(-5, -3, 7, 5));
}

TEST(PixelsBetween, FarPlacesAreCut)
{
    const QRect far = PixelsBetween(QRectF(QPointF(-1e12, -1e12), QPointF(1e12, 1e12)));
    EXPECT_TRUE(far.contains(QRect(0, 0, 65'500, 65'500)));
    EXPECT_GT(far.width(), 0);
}

TEST(FloaterPlace, MovesByWholePixels)
{
    EXPECT_EQ(FloaterPlace({10, 10}, {0.2, 0.2}, {5.4, -3.1}), QPoint(15, 7));
    EXPECT_EQ(FloaterPlace({10, 10}, {3, 3}, {3.3, 3.3}), QPoint(10, 10));
}

TEST_F(MakeRegionTest, ARectangleIsWhatWasDrawn)
{
    MakeRegion(mPicture, RegionTool::Rectangle, {10, 20, 30, 40}, {});
    EXPECT_EQ(mPicture.RegionBounds(), QRect(10, 20, 30, 40));
    EXPECT_TRUE(mPicture.RegionShape().IsRectangle());
}

TEST_F(MakeRegionTest, WhatLiesBesideThePictureIsCutOff)
{
    MakeRegion(mPicture, RegionTool::Rectangle, {150, -20, 100, 40}, {});
    EXPECT_EQ(mPicture.RegionBounds(), QRect(150, 0, 50, 20));
    MakeRegion(mPicture, RegionTool::Rectangle, {250, 20, 10, 40}, {});
    EXPECT_FALSE(mPicture.HasRegion());
}

TEST_F(MakeRegionTest, AnEllipseHasNoCornersAndItsArea)
{
    MakeRegion(mPicture, RegionTool::Ellipse, {20, 10, 100, 60}, {});
    EXPECT_EQ(mPicture.RegionBounds(), QRect(20, 10, 100, 60));
    EXPECT_FALSE(mPicture.IsPointInRegion(22, 12));
    EXPECT_TRUE(mPicture.IsPointInRegion(70, 40));
    int inside = 0;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 200; ++x) {
            inside += mPicture.IsPointInRegion(x, y) ? 1 : 0;
        }
    }
    EXPECT_NEAR(inside, std::acos(-1.0) * 50 * 30, 50);
}

TEST_F(MakeRegionTest, ARoundedRectangleLosesOnlyItsCorners)
{
    MakeRegion(mPicture, RegionTool::RoundedRectangle, {20, 10, 100, 60}, {});
    EXPECT_EQ(mPicture.RegionBounds(), QRect(20, 10, 100, 60));
    EXPECT_FALSE(mPicture.IsPointInRegion(20, 10));
    EXPECT_FALSE(mPicture.IsPointInRegion(119, 69));
    EXPECT_TRUE(mPicture.IsPointInRegion(20, 40));
    EXPECT_TRUE(mPicture.IsPointInRegion(70, 10));
    EXPECT_TRUE(mPicture.IsPointInRegion(26, 16)) << "the corner's radius is 15";
}

TEST_F(MakeRegionTest, TheFreeHandEnclosesWhatItWentAround)
{
    MakeRegion(mPicture, RegionTool::FreeHand, {}, {{10, 10}, {90.2, 10}, {10, 90.1}});
    EXPECT_TRUE(mPicture.IsPointInRegion(20, 20));
    EXPECT_FALSE(mPicture.IsPointInRegion(80, 80));
    EXPECT_EQ(mPicture.RegionBounds().topLeft(), QPoint(10, 10));
}

TEST_F(MakeRegionTest, AFreeHandThatEnclosesNothingIsNoRegion)
{
    MakeRegion(mPicture, RegionTool::FreeHand, {}, {{10, 10}, {10.2, 10.1}, {10.3, 10.2}});
    EXPECT_FALSE(mPicture.HasRegion());
    MakeRegion(mPicture, RegionTool::FreeHand, {}, {});
    EXPECT_FALSE(mPicture.HasRegion());
}

TEST_F(MakeRegionTest, NoToolChangesNothing)
{
    mPicture.SetRegionRect(1, 2, 3, 4);
    MakeRegion(mPicture, RegionTool::None, {10, 20, 30, 40}, {});
    EXPECT_EQ(mPicture.RegionBounds(), QRect(1, 2, 3, 4));
}

TEST_F(MakeRegionTest, AnOutlineOfTooManyPointsFailsAndKeepsTheRegion)
{
    mPicture.SetRegionRect(1, 2, 3, 4);
    QList<QPointF> line;
    line.reserve(100'002);
    for (int i = 0; i < 100'002; ++i) {
        line.append(QPointF(i % 2, i));
    }
    EXPECT_THROW(MakeRegion(mPicture, RegionTool::FreeHand, {}, line), Failure);
    EXPECT_EQ(mPicture.RegionBounds(), QRect(1, 2, 3, 4));
}

} // namespace

} // namespace quillane
