#include "widgets/rubber_band.h"
#include "widgets/view_geometry.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

TEST(ViewGeometry, PositionsGoToThePictureAndBackAtEveryZoomRatioAndScrolling)
{
    for (const double zoom : {0.01, 0.09, 0.25, 0.333, 1.0, 1.5, 2.0, 7.77, 32.0}) {
        for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
            for (const QPoint origin : {QPoint(0, 0), QPoint(-1234, -17), QPoint(50, 300)}) {
                ViewGeometry geometry;
                geometry.picture = {1237, 991};
                geometry.shown = ViewGeometry::ShownSize(geometry.picture, zoom);
                geometry.ratio = ratio;
                geometry.origin = origin;
                for (const QPointF place : {QPointF(0, 0), QPointF(1237, 991), QPointF(3.5, 700)}) {
                    const QPointF back = geometry.ToPicture(geometry.ToView(place));
                    EXPECT_NEAR(back.x(), place.x(), 1e-6);
                    EXPECT_NEAR(back.y(), place.y(), 1e-6);
                }
                // Position less the destination's left, times source by destination width.
                const QRectF target = geometry.Covered();
                const QPointF view(123.25, 45.5);
                EXPECT_NEAR(geometry.ToPicture(view).x(),
                            (view.x() - target.left()) * 1237 / target.width(), 1e-6);
                EXPECT_NEAR(geometry.ToPicture(view).y(),
                            (view.y() - target.top()) * 991 / target.height(), 1e-6);
            }
        }
    }
}

TEST(ViewGeometry, APictureIsNeverPaintedSmallerThanAPixel)
{
    EXPECT_EQ(ViewGeometry::ShownSize({1000, 10}, 0.01), QSize(10, 1));
    EXPECT_TRUE(ViewGeometry::ShownSize({}, 1).isEmpty());
}

TEST(ViewGeometry, FittingFillsTheSideThatIsShortOfRoom)
{
    EXPECT_EQ(ViewGeometry::FittingZoom({400, 100}, {200, 200}, false), 0.5);
    EXPECT_EQ(ViewGeometry::FittingZoom({100, 400}, {200, 200}, false), 0.5);
    EXPECT_EQ(ViewGeometry::FittingZoom({100, 50}, {200, 200}, false), 1.0);
    EXPECT_EQ(ViewGeometry::FittingZoom({100, 50}, {200, 200}, true), 2.0);
    EXPECT_EQ(ViewGeometry::FittingZoom({1, 1}, {20'000, 20'000}, true), 32.0);
    EXPECT_EQ(ViewGeometry::FittingZoom({}, {200, 200}, true), 1.0);
    EXPECT_GT(ViewGeometry::FittingZoom({100, 50}, {0, 0}, false), 0.0);
}

TEST(ViewGeometry, WithoutAPictureNothingIsCovered)
{
    const ViewGeometry none;
    EXPECT_TRUE(none.IsEmpty());
    EXPECT_TRUE(none.Covered().isEmpty());
    EXPECT_EQ(none.ToPicture({5, 5}), QPointF());
}

TEST(RubberBand, ARectangleReachesInEveryDirection)
{
    RubberBand band;
    band.SetMode(kBandRectangle);
    band.Start({50, 60});
    EXPECT_TRUE(band.IsActive());
    band.MoveTo({20, 90});
    EXPECT_EQ(band.Places(), QRectF(20, 60, 30, 30));
    band.End();
    EXPECT_FALSE(band.IsActive());
    EXPECT_EQ(band.Places(), QRectF(20, 60, 30, 30)) << "what was drawn can still be read";
    band.MoveTo({0, 0});
    EXPECT_EQ(band.Places(), QRectF(20, 60, 30, 30));
    band.Clear();
    EXPECT_TRUE(band.Places().isEmpty());
}

TEST(RubberBand, WithoutAModeNothingBegins)
{
    RubberBand band;
    band.Start({1, 1});
    EXPECT_FALSE(band.IsActive());
    band.SetMode(7);
    EXPECT_EQ(band.Mode(), kBandOff);
}

TEST(RubberBand, TheFreeHandIsSurroundedByItsPlaces)
{
    RubberBand band;
    band.SetMode(kBandFreeHand);
    band.Start({50, 50});
    for (const QPointF place : {QPointF(80, 20), QPointF(80, 20), QPointF(10, 60)}) {
        band.MoveTo(place);
    }
    EXPECT_EQ(band.Line().size(), 3);
    EXPECT_EQ(band.Places(), QRectF(QPointF(10, 20), QPointF(80, 60)));
}

TEST(RubberBand, AnEndlessLineStaysBoundedAndKeepsItsEnds)
{
    RubberBand band;
    band.SetMode(kBandFreeHand);
    band.Start({0, 0});
    for (int i = 1; i <= 300'000; ++i) {
        band.MoveTo(QPointF(i, i % 7));
        ASSERT_LE(band.Line().size(), RubberBand::kMostPoints);
    }
    EXPECT_EQ(band.Line().first(), QPointF(0, 0));
    EXPECT_EQ(band.Line().last(), QPointF(300'000, 300'000 % 7));
    EXPECT_GT(band.Line().size(), RubberBand::kMostPoints / 4);
}

} // namespace

} // namespace quillane
