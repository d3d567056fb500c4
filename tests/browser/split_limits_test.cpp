#include "browser/panel_layout.h"
#include "browser/split_limits.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

const SplitMetrics kTestMetrics{2, 1, 210, 0};
constexpr int kTestBar = 6; // the smallest pane is (210 - 10) / 2 = 100

} // namespace

TEST(SplitLimits, TheSmallestPaneIsHalfOfWhatTheSmallestWindowLeaves)
{
    EXPECT_EQ(MinimumPaneWidth(kTestMetrics, kTestBar), 100);
    EXPECT_EQ(MinimumPaneWidth({2, 1, 4, 0}, kTestBar), 0);
}

TEST(SplitLimits, TheBarStopsAtBothLimits)
{
    EXPECT_EQ(ClampBar(-50, 800, kTestBar, kTestMetrics), 100);
    EXPECT_EQ(ClampBar(300, 800, kTestBar, kTestMetrics), 300);
    EXPECT_EQ(ClampBar(5000, 800, kTestBar, kTestMetrics), 800 - kTestBar - 100);
}

TEST(SplitLimits, TheRightLimitHoldsForAMaximisedWindow)
{
    EXPECT_EQ(ClampBar(99'999, 3840, kTestBar, kTestMetrics), 3840 - kTestBar - 100);
}

TEST(SplitLimits, TheUpperLimitWinsInAWindowTooSmallForBoth)
{
    EXPECT_EQ(ClampBar(100, 150, kTestBar, kTestMetrics), 44);
    EXPECT_EQ(ClampBar(100, 50, kTestBar, kTestMetrics), 0);
}

TEST(SplitLimits, AnInsetIsKeptFree)
{
    SplitMetrics sunken = kTestMetrics;
    sunken.inset = 4;
    EXPECT_EQ(ClampBar(5000, 800, kTestBar, sunken), 800 - kTestBar - 100 - 4);
}

TEST(ArrangePanes, TheBarStandsBetweenAtFullHeight)
{
    const SplitPanes panes =
        ArrangePanes(QRect(0, 0, 800, 600), 30, 20, 300, kTestBar, kTestMetrics);
    EXPECT_EQ(panes.first, QRect(0, 30, 300, 550));
    EXPECT_EQ(panes.bar, QRect(300, 30, 6, 550));
    EXPECT_EQ(panes.second, QRect(306, 30, 494, 550));
}

TEST(ArrangePanes, AShrunkParentPullsTheBarIn)
{
    const SplitPanes panes = ArrangePanes(QRect(0, 0, 400, 600), 0, 0, 700, kTestBar, kTestMetrics);
    EXPECT_EQ(panes.second.width(), 100);
    EXPECT_EQ(panes.bar.left(), 400 - 100 - kTestBar);
}

TEST(FitToScreen, AWindowTooHighIsCutWithThirtyPixelsLeftBelow)
{
    EXPECT_EQ(FitToScreen(QRect(7, 12, 1000, 1200), QSize(1920, 1080)), QRect(7, 0, 1000, 1050));
}

TEST(FitToScreen, AWindowTooWideTakesTheScreensWidth)
{
    EXPECT_EQ(FitToScreen(QRect(100, 12, 1900, 700), QSize(1920, 1080)), QRect(0, 12, 1920, 700));
}

TEST(FitToScreen, AWindowThatFitsStaysWhereItIs)
{
    EXPECT_EQ(FitToScreen(QRect(7, 12, 1000, 700), QSize(1920, 1080)), QRect(7, 12, 1000, 700));
}

TEST(PanelLayout, WithRoomEveryBlockStandsWhereItBelongs)
{
    const QVector<PlacedBlock> placed =
        PlaceBlocks({{0, 80, 40}, {95, 210, 100}, {360, 15, 15}, {380, 15, 15}}, 600, 2);
    EXPECT_EQ(placed.at(1).top, 95);
    EXPECT_EQ(placed.at(1).height, 210);
    EXPECT_EQ(placed.at(2).top, 360);
    EXPECT_EQ(placed.at(3).top, 380);
}

TEST(PanelLayout, GapsCloseBeforeBlocksShrink)
{
    const QVector<PlacedBlock> placed = PlaceBlocks({{0, 80, 40}, {100, 100, 50}}, 190, 2);
    EXPECT_EQ(placed.at(0).height, 80);
    EXPECT_EQ(placed.at(1).height, 100);
    EXPECT_EQ(placed.at(1).top, 90);
}

TEST(PanelLayout, BlocksShrinkToTheirMinimumAndNoFurther)
{
    const QVector<PlacedBlock> placed = PlaceBlocks({{0, 80, 40}, {100, 100, 50}}, 10, 2);
    EXPECT_EQ(placed.at(0).height, 40);
    EXPECT_EQ(placed.at(1).top, 42);
    EXPECT_EQ(placed.at(1).height, 50);
}

TEST(PanelLayout, ATallLinePushesTheNextDown)
{
    const QVector<PlacedBlock> placed =
        PlaceBlocks({{0, 30, 30}, {15, 30, 30}, {30, 30, 30}}, 400, 2);
    EXPECT_EQ(placed.at(1).top, 30);
    EXPECT_EQ(placed.at(2).top, 60);
}

} // namespace quillane
