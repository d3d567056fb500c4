#include "gui/region_tools_fixture.h"

#include <set>

namespace quillane {

TEST_F(RegionToolsTest, ARectangleIsDrawnByDragging)
{
    mTools.Select(RegionTool::Rectangle);
    EXPECT_FALSE(mView.DragEnabled());
    EXPECT_EQ(mView.RubberBandMode(), 0);
    Drag({20, 30}, {80, 70});
    EXPECT_EQ(LEAD1.RegionBounds(), QRect(20, 30, 60, 40));
    EXPECT_TRUE(LEAD1.RegionShape().IsRectangle());
    EXPECT_EQ(mRegion.size(), 1);
    EXPECT_EQ(mPicture.size(), 0);
    EXPECT_EQ(mView.RegionFrame(), 1);
    EXPECT_FALSE(mTools.IsBusy());
    EXPECT_EQ(mView.RubberBandRect(), QRectF(At(20, 30), At(80, 70))) << "in view coordinates";
}

TEST_F(RegionToolsTest, EachShapeIsMadeOfTheDragsRectangle)
{
    mTools.Select(RegionTool::Ellipse);
    Drag({100, 120}, {20, 30});
    EXPECT_EQ(LEAD1.RegionBounds(), QRect(20, 30, 80, 90));
    EXPECT_FALSE(LEAD1.IsPointInRegion(22, 32));
    mTools.Select(RegionTool::RoundedRectangle);
    Drag({110, 10}, {190, 130});
    EXPECT_EQ(LEAD1.RegionBounds(), QRect(110, 10, 80, 120));
    EXPECT_FALSE(LEAD1.IsPointInRegion(110, 10));
    EXPECT_TRUE(LEAD1.IsPointInRegion(117, 17));
    EXPECT_EQ(mTools.Tool(), RegionTool::RoundedRectangle) << "the tool stays";
}

TEST_F(RegionToolsTest, TheFreeHandEnclosesWhatItWentAround)
{
    mTools.Select(RegionTool::FreeHand);
    EXPECT_EQ(mView.RubberBandMode(), 2);
    DragThrough(mView, {At(20, 20), At(100, 20), At(100, 60), At(20, 100)});
    EXPECT_TRUE(LEAD1.IsPointInRegion(30, 30));
    EXPECT_TRUE(LEAD1.IsPointInRegion(95, 40));
    EXPECT_FALSE(LEAD1.IsPointInRegion(95, 80));
}

TEST_F(RegionToolsTest, ADragMapsRightAtEveryZoomAndScrollPosition)
{
    Use(Numbered({1600, 1200}));
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    for (const int percent : {25, 50, 100, 150, 200, 300, 1000}) {
        mView.SetPaintScalar(percent);
        for (const double part : {0.0, 0.37, 1.0}) {
            mView.horizontalScrollBar()->setValue(
                int(mView.horizontalScrollBar()->maximum() * part));
            mView.verticalScrollBar()->setValue(int(mView.verticalScrollBar()->maximum() * part));
            mTools.ClearRegion();
            for (const RegionTool tool : {RegionTool::Rectangle, RegionTool::Ellipse}) {
                mTools.Select(tool);
                const QPointF from(41, 53), to(263, 201);
                const QRectF target = mView.DestinationRect();
                const auto bitmap = [&](const QPointF& client) {
                    return QPointF((client.x() - target.left()) * 1600 / target.width(),
                                   (client.y() - target.top()) * 1200 / target.height());
                };
                const QRectF wanted =
                    QRectF(bitmap(from), bitmap(to)).intersected(QRectF(0, 0, 1600, 1200));
                DragThrough(mView, {from, {100, 100}, to}, Qt::ShiftModifier);
                const QRect made = LEAD1.RegionBounds();
                // An ellipse in a raster may touch its sides by less than half a pixel.
                const double room = tool == RegionTool::Ellipse ? 1.01 : 0.5;
                EXPECT_NEAR(made.left(), wanted.left(), room) << percent << " % at " << part;
                EXPECT_NEAR(made.top(), wanted.top(), room);
                EXPECT_NEAR(made.right() + 1, wanted.right(), room);
                EXPECT_NEAR(made.bottom() + 1, wanted.bottom(), room);
            }
        }
    }
}

TEST_F(RegionToolsTest, TheBandSticksToThePictureWhenThatIsScrolledOrZoomed)
{
    Use(Numbered({1600, 1200}));
    mTools.Select(RegionTool::Rectangle);
    const QPointF from = mView.ClientToBitmap({50, 50});
    DragThrough(mView, {{50, 50}, {100, 100}}, {}, false);
    Wheel(mView, {100, 100}, {0, -120});
    Wheel(mView, {100, 100}, {0, 120}, Qt::ControlModifier);
    const QPointF to = mView.ClientToBitmap({300, 200});
    SendMouse(mView, QEvent::MouseMove, {300, 200});
    SendMouse(mView, QEvent::MouseButtonRelease, {300, 200});
    EXPECT_NEAR(LEAD1.RegionBounds().left(), from.x(), 0.5);
    EXPECT_NEAR(LEAD1.RegionBounds().top(), from.y(), 0.5);
    EXPECT_NEAR(LEAD1.RegionBounds().right() + 1, to.x(), 0.5);
    EXPECT_NEAR(LEAD1.RegionBounds().bottom() + 1, to.y(), 0.5);
}

TEST_F(RegionToolsTest, ADragBesideTheViewScrollsThePictureAlong)
{
    Use(Numbered({1600, 1200}));
    mTools.Select(RegionTool::Rectangle);
    DragThrough(mView, {{50, 50}, {500, 350}, {500, 350}, {300, 200}});
    EXPECT_GT(mView.horizontalScrollBar()->value(), 0);
    EXPECT_GT(mView.verticalScrollBar()->value(), 0);
    EXPECT_EQ(LEAD1.RegionBounds().topLeft(), QPoint(50, 50));
    EXPECT_EQ(LEAD1.RegionBounds().right() + 1, 300 + mView.horizontalScrollBar()->value());
}

TEST_F(RegionToolsTest, AClickOutsideClearsTheRegion)
{
    mTools.Select(RegionTool::Rectangle);
    Drag({20, 30}, {80, 70});
    Drag({150, 120}, {150.5, 120});
    EXPECT_FALSE(LEAD1.HasRegion());
    EXPECT_EQ(mRegion.size(), 2);
    EXPECT_FALSE(mView.IsMarching());
}

TEST_F(RegionToolsTest, EscapeEndsADragThenTheRegion)
{
    mTools.Select(RegionTool::Rectangle);
    Drag({20, 30}, {80, 70});
    Drag({100, 100}, {180, 140}, {}, false);
    EXPECT_TRUE(mTools.IsBusy());
    EXPECT_TRUE(mView.IsRubberBandActive());
    QTest::keyClick(&mView, Qt::Key_Escape);
    EXPECT_FALSE(mTools.IsBusy());
    EXPECT_FALSE(mView.IsRubberBandActive());
    SendMouse(mView, QEvent::MouseButtonRelease, At(180, 140));
    EXPECT_EQ(LEAD1.RegionBounds(), QRect(20, 30, 60, 40)) << "the old one is still there";
    QTest::keyClick(&mView, Qt::Key_Escape);
    EXPECT_FALSE(LEAD1.HasRegion());
}

TEST_F(RegionToolsTest, TheToolBarsButtonsAreRectangleAndFreeHand)
{
    mTools.StartRubberBand(2);
    EXPECT_EQ(mTools.Tool(), RegionTool::FreeHand);
    mTools.StartRubberBand(0);
    EXPECT_EQ(mTools.Tool(), RegionTool::Rectangle);
    EXPECT_FALSE(mView.DragEnabled());
    mTools.StartRubberBand(9);
    EXPECT_EQ(mTools.Tool(), RegionTool::Rectangle);
}

TEST_F(RegionToolsTest, NoneEndsTheTool)
{
    mTools.Select(RegionTool::Ellipse);
    const QSignalSpy tools(&mTools, &RegionTools::ToolChanged);
    mTools.Select(RegionTool::None);
    EXPECT_EQ(tools.size(), 1);
    EXPECT_EQ(mView.RubberBandMode(), kBandOff);
    Drag({20, 30}, {80, 70});
    EXPECT_FALSE(LEAD1.HasRegion());
}

TEST_F(RegionToolsTest, TheFrameIsHiddenAndShownAndTheRegionStays)
{
    mTools.Select(RegionTool::Rectangle);
    Drag({20, 30}, {80, 70});
    EXPECT_TRUE(mView.IsMarching());
    mTools.SetRegionFrame(0);
    EXPECT_FALSE(mView.IsMarching());
    EXPECT_TRUE(LEAD1.HasRegion());
    EXPECT_EQ(Finished(mView).copy(mView.ImageRect().toAlignedRect()), Pixels());
    mTools.SetRegionFrame(1);
    EXPECT_TRUE(mView.IsMarching());
    mView.hide();
    EXPECT_FALSE(mView.IsMarching()) << "nobody sees it";
    mView.show();
    EXPECT_TRUE(mView.IsMarching());
}

TEST_F(RegionToolsTest, TheFrameLiesOnTheRegionsOutermostPixels)
{
    QImage grey(200, 150, QImage::Format_RGB32);
    grey.fill(QColor(128, 128, 128));
    Use(grey);
    LEAD1.SetRegionRect(40, 30, 60, 50);
    mTools.SetRegionFrame(1);
    for (const int percent : {100, 400}) {
        mView.SetPaintSizeMode(EngineView::kPaintScaled);
        mView.SetPaintScalar(percent);
        mView.Show(LEAD1);
        const QImage shown = Grabbed(*mView.viewport()).convertToFormat(QImage::Format_RGB32);
        const QPoint corner =
            (At(40, 30) * mView.devicePixelRatioF()).toPoint(); // the first screen pixel inside
        if (!shown.rect().contains(corner)) {
            continue;
        }
        const int far = 3 * qRound(mView.devicePixelRatioF());
        for (int i = 0; i < 30; ++i) {
            EXPECT_NE(shown.pixel(corner + QPoint(i, 0)), grey.pixel(0, 0));
            EXPECT_NE(shown.pixel(corner + QPoint(0, i)), grey.pixel(0, 0));
        }
        EXPECT_EQ(shown.pixel(corner + QPoint(far, far)), grey.pixel(0, 0));
        EXPECT_EQ(shown.pixel(corner - QPoint(far, far)), grey.pixel(0, 0));
    }
}

TEST_F(RegionToolsTest, TheFrameShowsOnAnyPictureAndMarches)
{
    for (const QColor colour : {QColor(Qt::black), QColor(Qt::white), QColor(128, 128, 128)}) {
        QImage plain(200, 150, QImage::Format_RGB32);
        plain.fill(colour);
        Use(plain);
        LEAD1.SetRegionEllipse(20, 30, 100, 80);
        mView.Show(LEAD1);
        mTools.SetRegionFrame(1);
        const auto frame = [&] {
            const QImage shown = Grabbed(*mView.viewport()).convertToFormat(QImage::Format_RGB32);
            std::set<std::pair<int, int>> places;
            const QRect inside = mView.ImageRect().toAlignedRect();
            for (int y = inside.top(); y <= inside.bottom(); ++y) {
                for (int x = inside.left(); x <= inside.right(); ++x) {
                    if (shown.pixelColor(x, y) != colour) {
                        places.emplace(x, y);
                    }
                }
            }
            return places;
        };
        const auto first = frame();
        EXPECT_GT(first.size(), 100U);
        if (colour == QColor(128, 128, 128)) {
            EXPECT_EQ(first, frame());
            continue; // both colours show: the places stay the same
        }
        Until([&] { return frame() != first; });
    }
}

TEST_F(RegionToolsTest, CropCutsToTheRegionAndClearsIt)
{
    const QImage before = Pixels();
    mTools.Select(RegionTool::Ellipse);
    Drag({20, 30}, {80, 70});
    const QRect bounds = LEAD1.RegionBounds();
    EXPECT_TRUE(mTools.Crop());
    EXPECT_EQ(Pixels(), before.copy(bounds));
    EXPECT_FALSE(LEAD1.HasRegion());
    EXPECT_EQ(mView.ImageSize(), bounds.size());
    EXPECT_EQ(mPicture.size(), 1);
    EXPECT_EQ(mRegion.size(), 2);
    EXPECT_FALSE(mView.IsMarching());
}

TEST_F(RegionToolsTest, CropWithoutARegionFailsQuietly)
{
    const QImage before = Pixels();
    EXPECT_FALSE(mTools.Crop());
    EXPECT_EQ(Pixels(), before);
    LEAD1.SetBitmap({});
    mView.Show(LEAD1);
    EXPECT_FALSE(mTools.Crop());
    EXPECT_EQ(mPicture.size(), 0);
}

TEST_F(RegionToolsTest, ACroppedPictureFillsTheFrameInItsShape)
{
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    mView.SetEnlargesToFit(true);
    LEAD1.SetRegionRect(10, 10, 120, 30);
    ASSERT_TRUE(mTools.Crop());
    EXPECT_EQ(mView.ImageRect().size(), QSizeF(400, 100)) << "wider than the frame";
    LEAD1.SetRegionRect(0, 0, 10, 30);
    ASSERT_TRUE(mTools.Crop());
    EXPECT_EQ(mView.ImageRect().size(), QSizeF(100, 300));
}

TEST_F(RegionToolsTest, TheMagnifierClearsTheRegionAndEndsTools)
{
    mTools.Select(RegionTool::Rectangle);
    Drag({20, 30}, {80, 70});
    mTools.SetMagnifier(true);
    EXPECT_TRUE(mView.IsMagnifierOn());
    EXPECT_FALSE(mView.DragEnabled());
    EXPECT_FALSE(LEAD1.HasRegion());
    ASSERT_EQ(mMagnifier.size(), 1);
    EXPECT_TRUE(mMagnifier[0][0].toBool());
    Drag({20, 30}, {80, 70});
    EXPECT_FALSE(LEAD1.HasRegion()) << "no tool acts under the glass";
    LEAD1.SetRegionRect(1, 1, 5, 5);
    mTools.ToggleMagnifier();
    EXPECT_FALSE(mView.IsMagnifierOn());
    EXPECT_TRUE(mView.DragEnabled());
    EXPECT_FALSE(LEAD1.HasRegion());
    EXPECT_EQ(mMagnifier.size(), 2);
    mTools.SetMagnifier(false);
    EXPECT_EQ(mMagnifier.size(), 2);
    for (const auto& turnOff : std::initializer_list<std::function<void()>>{
             [&] { mTools.Pointer(); }, [&] { mTools.Select(RegionTool::Ellipse); },
             [&] { mTools.StartRubberBand(0); },
             [&] { QTest::keyClick(&mView, Qt::Key_Escape); }}) {
        mTools.SetMagnifier(true);
        turnOff();
        EXPECT_FALSE(mView.IsMagnifierOn());
    }
}

TEST_F(RegionToolsTest, APictureReplacedInTheMiddleOfADragEndsIt)
{
    mTools.Select(RegionTool::Rectangle);
    Drag({20, 30}, {80, 70}, {}, false);
    Use(Numbered({120, 90}));
    EXPECT_FALSE(mTools.IsBusy());
    SendMouse(mView, QEvent::MouseMove, At(50, 50));
    SendMouse(mView, QEvent::MouseButtonRelease, At(50, 50));
    EXPECT_FALSE(LEAD1.HasRegion());
}

TEST_F(RegionToolsTest, APictureEmptiedInTheMiddleOfADragEndsIt)
{
    for (const bool floats : {false, true}) {
        Use(Numbered({200, 150}));
        LEAD1.ClearRegion();
        mTools.Select(RegionTool::Ellipse);
        if (floats) {
            LEAD1.SetRegionRect(20, 30, 40, 20);
        }
        mView.Show(LEAD1);
        Drag({30, 40}, {90, 100}, {}, false);
        LEAD1.SetBitmap({});
        mView.Show(LEAD1);
        SendMouse(mView, QEvent::MouseMove, {50, 50});
        SendMouse(mView, QEvent::MouseButtonRelease, {50, 50});
        EXPECT_FALSE(LEAD1.HasRegion());
        EXPECT_FALSE(LEAD1.HasBitmap());
        EXPECT_FALSE(mTools.IsBusy());
        DragThrough(mView, {{10, 10}, {60, 60}});
        EXPECT_FALSE(LEAD1.HasRegion());
    }
}

TEST_F(RegionToolsTest, WhileAnEarlyPictureStandsInNoToolActs)
{
    mTools.Select(RegionTool::Rectangle);
    mView.ShowReduced(Numbered({80, 60}), {800, 600});
    DragThrough(mView, {{20, 20}, {60, 60}});
    EXPECT_FALSE(LEAD1.HasRegion());
    EXPECT_EQ(mView.ImageSize(), QSize(800, 600)) << "nothing older is shown again";
}

TEST_F(RegionToolsTest, WhatTheEngineRefusesChangesNothing)
{
    LEAD1.SetMethodErrors(false);
    mTools.Select(RegionTool::FreeHand);
    Drag({20, 20}, {25, 20});
    EXPECT_FALSE(LEAD1.HasRegion()) << "a line encloses nothing";
    EXPECT_FALSE(mTools.Crop());
}

} // namespace quillane
