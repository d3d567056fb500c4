#include "widgets/region_outline.h"

#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace quillane {

namespace {

using Places = std::set<std::pair<int, int>>;

constexpr QSize kPicture(120, 90);

/// Inside the region by the pixel centre's place, the plain way.
bool Inside(const Region& region, const ViewGeometry& geometry, int x, int y)
{
    const double column = (x + 0.5 - geometry.origin.x()) / geometry.ZoomX();
    const double row = (y + 0.5 - geometry.origin.y()) / geometry.ZoomY();
    return region.Contains(int(std::floor(column)), int(std::floor(row)));
}

Places Plainly(const Region& region, const ViewGeometry& geometry, QSize view)
{
    Places places;
    for (int y = 0; y < view.height(); ++y) {
        for (int x = 0; x < view.width(); ++x) {
            if (Inside(region, geometry, x, y)
                && !(Inside(region, geometry, x - 1, y) && Inside(region, geometry, x + 1, y)
                     && Inside(region, geometry, x, y - 1) && Inside(region, geometry, x, y + 1))) {
                places.emplace(x, y);
            }
        }
    }
    return places;
}

ViewGeometry Geometry(double zoom, QPoint origin)
{
    ViewGeometry geometry;
    geometry.picture = kPicture;
    geometry.shown = ViewGeometry::ShownSize(kPicture, zoom);
    geometry.origin = origin;
    return geometry;
}

TEST(OutlineOnScreen, IsTheEdgeAtEveryZoomAndScrollPositionForEveryShape)
{
    const Region shapes[] = {
        Region::Rectangle(kPicture, 10, 12, 60, 40),
        Region::Rectangle(kPicture, 0, 0, 120, 90),
        Region::Ellipse(kPicture, 10, 12, 60, 40),
        Region::RoundRectangle(kPicture, 30, 2, 80, 85, 20),
        Region::FreeHand(kPicture, {{5, 5}, {100, 20}, {40, 80}, {90, 85}, {2, 50}}),
    };
    const QSize view(150, 110);
    for (size_t i = 0; i < std::size(shapes); ++i) {
        for (const double zoom : {0.5, 0.77, 1.0, 1.5, 2.0, 3.3, 8.0}) {
            for (const QPoint origin : {QPoint(0, 0), QPoint(20, 7), QPoint(-31, -18)}) {
                const ViewGeometry geometry = Geometry(zoom, origin);
                const std::vector<QPoint> points = OutlineOnScreen(shapes[i], geometry, view);
                Places places;
                for (const QPoint& point : points) {
                    EXPECT_TRUE(places.emplace(point.x(), point.y()).second) << "twice";
                }
                EXPECT_EQ(places, Plainly(shapes[i], geometry, view))
                    << "shape " << i << " zoom " << zoom << " at " << origin.x();
            }
        }
    }
}

TEST(RunsUpwards, IsSoOnTheLinesThatDoAndOnNoOther)
{
    // A square that stands on its corner: two of its sides run upwards to the right.
    const Region square = Region::FreeHand(kPicture, {{60, 5}, {100, 45}, {60, 85}, {20, 45}});
    const ViewGeometry geometry = Geometry(2, {3, 4});
    int upwards = 0;
    int others = 0;
    for (const QPoint& point : OutlineOnScreen(square, geometry, {300, 200})) {
        const QPoint at = (point - geometry.origin) / 2 - QPoint(60, 45);
        if (std::abs(at.x()) < 6 || std::abs(at.y()) < 6) {
            continue; // near a corner
        }
        const bool leftTop = at.x() < 0 && at.y() < 0;
        const bool rightBottom = at.x() > 0 && at.y() > 0;
        EXPECT_EQ(RunsUpwards(square, geometry, point), leftTop || rightBottom)
            << at.x() << ", " << at.y();
        (leftTop || rightBottom ? upwards : others) += 1;
    }
    EXPECT_GT(upwards, 50);
    EXPECT_GT(others, 50);
    EXPECT_FALSE(RunsUpwards(Region::Rectangle(kPicture, 5, 5, 20, 20), geometry, {13, 14}));
}

TEST(OutlineOnScreen, AThinRegionStillHasOne)
{
    const ViewGeometry geometry = Geometry(0.1, {5, 5});
    EXPECT_FALSE(
        OutlineOnScreen(Region::Rectangle(kPicture, 51, 10, 1, 60), geometry, {50, 50}).empty());
    EXPECT_FALSE(
        OutlineOnScreen(Region::Ellipse(kPicture, 41, 41, 3, 3), geometry, {50, 50}).empty());
}

TEST(OutlineOnScreen, OutOfSightThereIsNone)
{
    const Region region = Region::Ellipse(kPicture, 0, 0, 20, 20);
    EXPECT_TRUE(OutlineOnScreen(region, Geometry(2, {-200, -200}), {100, 100}).empty());
    EXPECT_TRUE(OutlineOnScreen({}, Geometry(2, {0, 0}), {100, 100}).empty());
    EXPECT_TRUE(OutlineOnScreen(region, {}, {100, 100}).empty());
    EXPECT_TRUE(OutlineOnScreen(region, Geometry(2, {0, 0}), {}).empty());
}

} // namespace

} // namespace quillane
