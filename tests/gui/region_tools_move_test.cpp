// A region that is drawn holds pixels: moving them, and what ends a move.
#include "gui/region_tools_fixture.h"

namespace quillane {

TEST_F(RegionToolsTest, ADragInsideMovesTheRegionsPixels)
{
    const QImage before = Pixels();
    mTools.Select(RegionTool::Rectangle);
    Drag({20, 30}, {60, 50});
    EXPECT_EQ(PointerOver(30, 40), Qt::SizeAllCursor);
    Drag({30, 40}, {90, 100}, {}, false);
    EXPECT_TRUE(LEAD1.FloaterVisible());
    EXPECT_EQ(LEAD1.FloaterPosition(), QPoint(80, 90));
    EXPECT_EQ(mView.RegionFrame(), 0) << "hidden while it is moved";
    EXPECT_EQ(Pixels(), before) << "nothing has changed yet";
    const QImage shown = Grabbed(*mView.viewport()).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(shown.pixel(OnScreen(85, 95)), before.pixel(25, 35)) << "it shows where it lies";
    SendMouse(mView, QEvent::MouseButtonRelease, At(90, 100));
    EXPECT_FALSE(LEAD1.FloaterVisible());
    EXPECT_EQ(LEAD1.RegionBounds(), QRect(80, 90, 40, 20));
    EXPECT_EQ(mView.RegionFrame(), 1);
    EXPECT_EQ(Pixels().copy(80, 90, 40, 20), before.copy(20, 30, 40, 20));
    EXPECT_EQ(Pixels().copy(0, 0, 200, 90), before.copy(0, 0, 200, 90)) << "the rest as it was";
    EXPECT_EQ(mPicture.size(), 1);
    EXPECT_EQ(Finished(mView).pixel(OnScreen(85, 95)), before.pixel(25, 35));
}

TEST_F(RegionToolsTest, AFloaterMovesRightAtEveryZoom)
{
    for (const int percent : {50, 100, 200, 500}) {
        const QImage before = Numbered({600, 500});
        Use(before);
        mView.SetPaintSizeMode(EngineView::kPaintScaled);
        mView.SetPaintScalar(percent);
        mView.horizontalScrollBar()->setValue(0);
        mView.verticalScrollBar()->setValue(0);
        LEAD1.SetRegionEllipse(10, 10, 30, 24);
        mView.Show(LEAD1);
        Drag({25, 22}, {45, 32});
        EXPECT_EQ(LEAD1.RegionBounds().topLeft(), QPoint(30, 20)) << percent;
        EXPECT_EQ(Pixels().pixel(45, 32), before.pixel(25, 22));
        EXPECT_EQ(Pixels().pixel(30, 20), before.pixel(30, 20)) << "outside the ellipse";
    }
}

TEST_F(RegionToolsTest, WithShiftOrControlADragInsideMakesANewRegion)
{
    const QImage before = Pixels();
    mTools.Select(RegionTool::Rectangle);
    for (const Qt::KeyboardModifier key : {Qt::ShiftModifier, Qt::ControlModifier}) {
        mTools.ClearRegion();
        Drag({20, 30}, {120, 130});
        EXPECT_NE(PointerOver(50, 50, key), Qt::SizeAllCursor);
        Drag({40, 50}, {90, 100}, key);
        EXPECT_EQ(LEAD1.RegionBounds(), QRect(40, 50, 50, 50));
    }
    EXPECT_EQ(Pixels(), before);
    EXPECT_EQ(mPicture.size(), 0);
}

TEST_F(RegionToolsTest, AClickInsideChangesNothing)
{
    const QImage before = Pixels();
    mTools.Select(RegionTool::Rectangle);
    Drag({20, 30}, {60, 50});
    const int regions = int(mRegion.size());
    Drag({30, 40}, {30, 40});
    EXPECT_EQ(Pixels(), before);
    EXPECT_EQ(LEAD1.RegionBounds(), QRect(20, 30, 40, 20));
    EXPECT_EQ(mPicture.size(), 0);
    EXPECT_EQ(mRegion.size(), regions);
    EXPECT_EQ(mView.RegionFrame(), 1);
    EXPECT_FALSE(LEAD1.FloaterVisible());
}

TEST_F(RegionToolsTest, EscapeTakesAMoveBack)
{
    const QImage before = Pixels();
    mTools.Select(RegionTool::Rectangle);
    Drag({20, 30}, {60, 50});
    Drag({30, 40}, {90, 100}, {}, false);
    QTest::keyClick(&mView, Qt::Key_Escape);
    EXPECT_FALSE(LEAD1.FloaterVisible());
    EXPECT_EQ(mView.RegionFrame(), 1);
    SendMouse(mView, QEvent::MouseButtonRelease, At(90, 100));
    EXPECT_EQ(Pixels(), before);
    EXPECT_EQ(LEAD1.RegionBounds(), QRect(20, 30, 40, 20));
}

TEST_F(RegionToolsTest, AFloaterDraggedOutOfThePictureLosesTheRegionAlone)
{
    const QImage before = Pixels();
    mTools.Select(RegionTool::Rectangle);
    Drag({150, 110}, {190, 140});
    Drag({160, 120}, {240, 180});
    EXPECT_EQ(Pixels(), before);
    EXPECT_FALSE(LEAD1.HasRegion());
}

TEST_F(RegionToolsTest, ThePointerMovesARegionTooAndElseScrolls)
{
    Use(Numbered({1600, 1200}));
    mTools.Select(RegionTool::Rectangle);
    Drag({20, 30}, {60, 50});
    mTools.Pointer();
    EXPECT_TRUE(mView.DragEnabled());
    EXPECT_EQ(mTools.Tool(), RegionTool::None);
    EXPECT_EQ(mView.RubberBandMode(), kBandOff);
    EXPECT_TRUE(LEAD1.HasRegion());
    Drag({30, 40}, {90, 100});
    EXPECT_EQ(LEAD1.RegionBounds().topLeft(), QPoint(80, 90));
    Drag({250, 250}, {200, 210});
    EXPECT_EQ(mView.horizontalScrollBar()->value(), 50);
    EXPECT_EQ(mView.verticalScrollBar()->value(), 40);
    EXPECT_TRUE(LEAD1.HasRegion());
}

TEST_F(RegionToolsTest, APictureReplacedInTheMiddleOfAMoveIsNotTouched)
{
    LEAD1.SetRegionRect(20, 30, 40, 20);
    mView.Show(LEAD1);
    Drag({30, 40}, {90, 100}, {}, false);
    QImage other(200, 150, QImage::Format_RGB32);
    other.fill(Qt::yellow);
    Use(other); // same size, so that the floater would fit
    SendMouse(mView, QEvent::MouseButtonRelease, At(90, 100));
    EXPECT_EQ(Pixels(), other);
    EXPECT_EQ(mPicture.size(), 0);

    LEAD1.SetRegionRect(20, 30, 40, 20);
    mView.Show(LEAD1);
    Drag({30, 40}, {90, 100}, {}, false);
    LEAD1.SetBitmap(Bitmap(Numbered({200, 150}), ColourModel::Rgb, 24)); // nobody tells the view
    SendMouse(mView, QEvent::MouseButtonRelease, At(90, 100));
    EXPECT_EQ(Pixels(), Numbered({200, 150}));
    EXPECT_EQ(mPicture.size(), 0);
}

} // namespace quillane
