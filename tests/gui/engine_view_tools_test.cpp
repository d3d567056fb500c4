// The magnifying glass, the frame and the band as the view draws them.
#include "gui/engine_view_support.h"

#include <cmath>

namespace quillane {

namespace {

class ViewToolsTest : public testing::Test {
protected:
    ViewToolsTest()
    {
        ShowAndWait(mView, QSize(600, 500));
        mView.SetPaintSizeMode(EngineView::kPaintFit);
    }
    QImage Shown() { return Grabbed(*mView.viewport()).convertToFormat(QImage::Format_RGB32); }
    EngineView mView;
};

TEST_F(ViewToolsTest, TheGlassShowsTheFullPixelsUnderThePointer)
{
    const QImage picture = Numbered({2400, 2000});
    mView.ShowBitmap(Bitmap(picture, ColourModel::Rgb, 24));
    Finished(mView);
    mView.StartMagnifier({});
    EXPECT_EQ(mView.viewport()->cursor().shape(), Qt::BlankCursor);
    for (const QPoint at : {QPoint(200, 200), QPoint(401, 333), QPoint(150, 300)}) {
        SendMouse(mView, QEvent::MouseMove, at);
        EXPECT_EQ(mView.MagnifierRect().center(), QPointF(at)) << "it follows the pointer";
        EXPECT_EQ(mView.MagnifierZoom(), 1.0);
        const QImage shown = Shown();
        const QPointF place = mView.ClientToBitmap(at);
        for (const QPoint off : {QPoint(0, 0), QPoint(60, -40), QPoint(-80, 50)}) {
            const QRgb is = shown.pixel(at + off);
            bool found = false; // to a pixel: the place under the pointer may be between two
            for (int y = -1; y <= 1; ++y) {
                for (int x = -1; x <= 1; ++x) {
                    found |=
                        picture.pixel(int(place.x()) + off.x() + x, int(place.y()) + off.y() + y)
                        == is;
                }
            }
            EXPECT_TRUE(found) << at.x() << " " << off.x();
        }
    }
}

TEST_F(ViewToolsTest, TheGlassEnlargesAtEveryZoom)
{
    mView.ShowBitmap(Bitmap(Numbered({2400, 2000}), ColourModel::Rgb, 24));
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    mView.StartMagnifier({});
    for (const int percent : {5, 25, 50, 100, 400, 3200}) {
        mView.SetPaintScalar(percent);
        SendMouse(mView, QEvent::MouseMove, {300, 250});
        EXPECT_GE(mView.MagnifierZoom() * 100, 2.0 * percent);
        Shown();
    }
}

TEST_F(ViewToolsTest, TheGlassLooksAsItIsTold)
{
    QImage white(300, 250, QImage::Format_RGB32);
    white.fill(Qt::white);
    mView.ShowBitmap(Bitmap(white, ColourModel::Rgb, 24));
    MagnifierLook look;
    look.width = 120;
    look.height = 80;
    look.border = Qt::red;
    look.borderWidth = 6;
    look.background = Qt::green;
    look.shadow = false;
    look.round = false;
    look.cross = false;
    look.pointer = true;
    mView.StartMagnifier(look);
    EXPECT_EQ(mView.viewport()->cursor().shape(), Qt::ArrowCursor);
    const QPoint corner = mView.ImageRect().toAlignedRect().topLeft();
    SendMouse(mView, QEvent::MouseMove, corner);
    QImage shown = Shown();
    EXPECT_EQ(shown.pixelColor(corner + QPoint(-58, 0)), QColor(Qt::red));
    EXPECT_EQ(shown.pixelColor(corner + QPoint(-30, -20)), QColor(Qt::green));
    EXPECT_EQ(shown.pixelColor(corner + QPoint(30, 20)), QColor(Qt::white));
    EXPECT_NE(shown.pixelColor(corner + QPoint(-70, 0)), QColor(Qt::red));
    look.round = true;
    look.cross = true;
    mView.StartMagnifier(look);
    SendMouse(mView, QEvent::MouseMove, corner + QPoint(100, 100));
    shown = Shown();
    EXPECT_EQ(shown.pixelColor(corner + QPoint(100 - 58, 100 - 38)), QColor(Qt::white))
        << "outside the round";
    EXPECT_NE(shown.pixelColor(corner + QPoint(105, 101)), QColor(Qt::white)) << "the cross";
    mView.StopMagnifier();
    EXPECT_TRUE(mView.MagnifierRect().isEmpty());
    EXPECT_EQ(Shown().copy(QRect(corner, white.size())), white);
}

TEST_F(ViewToolsTest, TheGlassGoesWithThePointer)
{
    mView.ShowBitmap(Bitmap(Numbered({300, 250}), ColourModel::Rgb, 24));
    mView.StartMagnifier({});
    SendMouse(mView, QEvent::MouseMove, {200, 200});
    EXPECT_FALSE(mView.MagnifierRect().isEmpty());
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(mView.viewport(), &leave);
    EXPECT_TRUE(mView.MagnifierRect().isEmpty());
    SendMouse(mView, QEvent::MouseMove, {200, 200});
    mView.Clear();
    EXPECT_TRUE(mView.MagnifierRect().isEmpty());
    Shown();
    SendMouse(mView, QEvent::MouseMove, {210, 200});
    Shown();
}

TEST_F(ViewToolsTest, TheBandIsDrawnInEachShapeAndOnAnyGround)
{
    for (const QColor ground : {QColor(Qt::black), QColor(Qt::white)}) {
        QImage plain(500, 400, QImage::Format_RGB32);
        plain.fill(ground);
        mView.ShowBitmap(Bitmap(plain, ColourModel::Rgb, 24));
        const QImage before = Shown();
        for (const qint32 mode :
             {kBandRectangle, kBandEllipse, kBandFreeHand, kBandRoundRectangle}) {
            mView.SetRubberBandMode(mode);
            mView.StartRubberBand({100, 100});
            mView.MoveRubberBand({300, 120});
            mView.MoveRubberBand({320, 300});
            const QImage shown = Shown();
            const int middle = (100 + 320) / 2;
            bool changed = false;
            for (int x = middle - 12; x <= middle + 12; ++x) {
                for (int y = 95; y < 125; ++y) {
                    changed |= shown.pixel(x, y) != before.pixel(x, y);
                }
            }
            EXPECT_TRUE(changed) << "mode " << mode;
            mView.EndRubberBand();
            EXPECT_EQ(Shown(), before);
        }
        mView.SetRubberBandMode(kBandOff);
        mView.StartRubberBand({100, 100});
        EXPECT_FALSE(mView.IsRubberBandActive());
    }
}

TEST_F(ViewToolsTest, TheRubberBandRectIsInViewCoordinates)
{
    mView.ShowBitmap(Bitmap(Numbered({2000, 1700}), ColourModel::Rgb, 24));
    mView.SetRubberBandMode(kBandRectangle);
    mView.StartRubberBand({300, 200});
    mView.MoveRubberBand({100, 260});
    mView.EndRubberBand();
    const QRectF rect = mView.RubberBandRect();
    EXPECT_NEAR(rect.left(), 100, 1e-6);
    EXPECT_NEAR(rect.top(), 200, 1e-6);
    EXPECT_NEAR(rect.width(), 200, 1e-6);
    EXPECT_NEAR(rect.height(), 60, 1e-6);
}

} // namespace

} // namespace quillane
