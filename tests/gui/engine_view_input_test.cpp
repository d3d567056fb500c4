#include "gui/engine_view_support.h"

#include <cmath>

namespace quillane {

namespace {

class EngineViewInputTest : public testing::Test {
protected:
    EngineViewInputTest()
    {
        ShowAndWait(mView, QSize(400, 300));
        mView.SetPaintSizeMode(EngineView::kPaintScaled);
        mView.ShowImage(Numbered({1000, 800}));
        QCoreApplication::processEvents();
    }
    QPoint Scrolled() const
    {
        return {mView.horizontalScrollBar()->value(), mView.verticalScrollBar()->value()};
    }
    void ScrollTo(QPoint to)
    {
        mView.horizontalScrollBar()->setValue(to.x());
        mView.verticalScrollBar()->setValue(to.y());
    }
    EngineView mView;
    QSignalSpy mChosen{&mView, &EngineView::zoomChosen};
};

TEST_F(EngineViewInputTest, TheWheelScrolls)
{
    ScrollTo({100, 100});
    Wheel(mView, {200, 100}, {0, -120});
    const int notch = Scrolled().y() - 100;
    EXPECT_EQ(notch, QApplication::wheelScrollLines() * mView.verticalScrollBar()->singleStep());
    EXPECT_EQ(Scrolled().x(), 100);
    Wheel(mView, {200, 100}, {0, 120});
    EXPECT_EQ(Scrolled(), QPoint(100, 100));
    Wheel(mView, {200, 100}, {0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(Scrolled(), QPoint(100 + notch, 100));
    EXPECT_EQ(mChosen.size(), 0);
}

TEST_F(EngineViewInputTest, PartsOfAWheelStepAddUp)
{
    ScrollTo({100, 100});
    Wheel(mView, {200, 100}, {0, -120});
    const int notch = Scrolled().y();
    ScrollTo({100, 100});
    for (int i = 0; i < 120; ++i) {
        Wheel(mView, {200, 100}, {0, -1});
    }
    EXPECT_EQ(Scrolled().y(), notch);
}

TEST_F(EngineViewInputTest, TouchpadsScrollByPixels)
{
    ScrollTo({100, 100});
    Wheel(mView, {200, 100}, {-80, -240}, {}, {-7, -13});
    EXPECT_EQ(Scrolled(), QPoint(107, 113));
}

TEST_F(EngineViewInputTest, TheWheelWithControlZoomsAboutThePointer)
{
    ScrollTo({300, 250});
    for (const QPointF at : {QPointF(40, 50), QPointF(200, 140), QPointF(350, 260)}) {
        for (const int turn : {120, 120, -120, 240, -120}) {
            const QPointF place = mView.ClientToBitmap(at);
            const int chosen = int(mChosen.size());
            Wheel(mView, at, {0, turn}, Qt::ControlModifier);
            const QPointF now = mView.BitmapToClient(place);
            EXPECT_NEAR(now.x(), at.x(), 1.0);
            EXPECT_NEAR(now.y(), at.y(), 1.0);
            ASSERT_EQ(mChosen.size(), chosen + 1);
            EXPECT_EQ(mChosen.last()[0].toInt(), mView.PaintScalar());
        }
    }
    EXPECT_EQ(mView.PaintSizeMode(), EngineView::kPaintScaled);
}

TEST_F(EngineViewInputTest, PartsOfAZoomStepAddUp)
{
    Wheel(mView, {200, 150}, {0, 240}, Qt::ControlModifier);
    const qint32 twoNotches = mView.PaintScalar();
    EXPECT_EQ(twoNotches, 144);
    mView.SetPaintScalar(100);
    for (int i = 0; i < 240; ++i) {
        Wheel(mView, {200, 150}, {0, 1}, Qt::ControlModifier);
    }
    EXPECT_EQ(mView.PaintScalar(), twoNotches);
    mView.SetPaintScalar(1);
    for (int i = 0; i < 8; ++i) {
        Wheel(mView, {200, 150}, {0, 120}, Qt::ControlModifier);
    }
    EXPECT_EQ(mView.PaintScalar(), 4) << "1.2 to the eighth is 4.3";
}

TEST_F(EngineViewInputTest, ZoomingStartsFromWhatFittingGave)
{
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    const double fit = mView.ZoomPercent();
    Wheel(mView, {200, 150}, {0, 120}, Qt::ControlModifier);
    EXPECT_NEAR(mView.ZoomPercent(), fit * 1.2, 0.51);
    EXPECT_EQ(mView.PaintSizeMode(), EngineView::kPaintScaled);
}

TEST_F(EngineViewInputTest, ZoomingEndsAtItsLimits)
{
    for (int i = 0; i < 100; ++i) {
        Wheel(mView, {200, 150}, {0, 480}, Qt::ControlModifier);
    }
    EXPECT_EQ(mView.PaintScalar(), 3200);
    for (int i = 0; i < 100; ++i) {
        Wheel(mView, {200, 150}, {0, -480}, Qt::ControlModifier);
    }
    EXPECT_EQ(mView.PaintScalar(), 1);
    Wheel(mView, {200, 150}, {0, 120}, Qt::ControlModifier);
    mView.Clear();
    const int before = int(mChosen.size());
    Wheel(mView, {200, 150}, {0, 120}, Qt::ControlModifier);
    EXPECT_EQ(mChosen.size(), before) << "without a picture there is nothing to zoom";
}

TEST_F(EngineViewInputTest, TheKeyboardScrolls)
{
    ScrollTo({100, 100});
    const int step = mView.verticalScrollBar()->singleStep();
    QTest::keyClick(&mView, Qt::Key_Right);
    QTest::keyClick(&mView, Qt::Key_Down);
    EXPECT_EQ(Scrolled(), QPoint(100 + step, 100 + step));
    QTest::keyClick(&mView, Qt::Key_Left);
    QTest::keyClick(&mView, Qt::Key_Up);
    EXPECT_EQ(Scrolled(), QPoint(100, 100));
    QTest::keyClick(&mView, Qt::Key_PageDown);
    EXPECT_EQ(Scrolled().y(), 100 + mView.verticalScrollBar()->pageStep());
    QTest::keyClick(&mView, Qt::Key_PageUp);
    EXPECT_EQ(Scrolled().y(), 100);
    QTest::keyClick(&mView, Qt::Key_End);
    EXPECT_EQ(Scrolled(),
              QPoint(mView.horizontalScrollBar()->maximum(), mView.verticalScrollBar()->maximum()));
    QTest::keyClick(&mView, Qt::Key_Home);
    EXPECT_EQ(Scrolled(), QPoint(0, 0));
}

TEST_F(EngineViewInputTest, DraggingScrollsWhereItIsEnabled)
{
    ScrollTo({200, 200});
    DragThrough(mView, {{200, 150}, {180, 160}, {150, 120}});
    EXPECT_EQ(Scrolled(), QPoint(200, 200)) << "off at first";
    EXPECT_FALSE(mView.DragEnabled());
    mView.SetDragEnabled(true);
    EXPECT_EQ(mView.viewport()->cursor().shape(), Qt::OpenHandCursor);
    DragThrough(mView, {{200, 150}, {180, 160}, {150, 120}}, {}, false);
    EXPECT_EQ(Scrolled(), QPoint(250, 230));
    EXPECT_EQ(mView.viewport()->cursor().shape(), Qt::ClosedHandCursor);
    SendMouse(mView, QEvent::MouseButtonRelease, {150, 120});
    EXPECT_EQ(mView.viewport()->cursor().shape(), Qt::OpenHandCursor);
    SendMouse(mView, QEvent::MouseMove, {10, 10});
    EXPECT_EQ(Scrolled(), QPoint(250, 230)) << "the button is up";
}

TEST_F(EngineViewInputTest, APictureThatFitsHasNoHand)
{
    mView.SetDragEnabled(true);
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    mView.ShowImage(Numbered({100, 80}));
    EXPECT_EQ(mView.viewport()->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(EngineViewInputTest, APictureReplacedInTheMiddleOfADragEndsIt)
{
    mView.SetDragEnabled(true);
    ScrollTo({200, 200});
    DragThrough(mView, {{200, 150}, {180, 140}}, {}, false);
    mView.ShowImage(Numbered({900, 700}));
    const QPoint scrolled = Scrolled();
    SendMouse(mView, QEvent::MouseMove, {10, 10});
    EXPECT_EQ(Scrolled(), scrolled);
    DragThrough(mView, {{200, 150}, {180, 140}}, {}, false);
    mView.Clear();
    SendMouse(mView, QEvent::MouseMove, {10, 10});
    SendMouse(mView, QEvent::MouseButtonRelease, {10, 10});
    EXPECT_FALSE(mView.HasImage());
}

TEST_F(EngineViewInputTest, AChosenZoomKeepsTheMiddle)
{
    ScrollTo({300, 250});
    const QPointF middle = QRectF(mView.viewport()->rect()).center();
    const QPointF place = mView.ClientToBitmap(middle);
    mView.SetPaintScalar(300);
    EXPECT_NEAR(mView.BitmapToClient(place).x(), middle.x(), 10);
    EXPECT_NEAR(mView.BitmapToClient(place).y(), middle.y(), 10);
}

} // namespace

} // namespace quillane
