#include "gui/engine_view_support.h"
#include "widgets/ui/engine_view.h"

#include <QScrollBar>

namespace quillane {

namespace {

class EngineViewTest : public testing::Test {
protected:
    EngineViewTest() { ShowAndWait(mView, QSize(400, 300)); }
    QRect Placed() const { return mView.ImageRect().toAlignedRect(); }
    EngineView mView;
};

TEST_F(EngineViewTest, AHundredPercentIsOnePixelToOne)
{
    mView.ShowImage(Numbered({200, 100}));
    EXPECT_EQ(Placed(), QRect(100, 100, 200, 100)) << "in the middle";
    const QImage shown = Grabbed(*mView.viewport()).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(shown.copy(Placed()), Numbered({200, 100}));
    EXPECT_EQ(mView.ZoomPercent(), 100.0);
}

TEST_F(EngineViewTest, FitShowsTheWholePictureInItsShapeAndDoesNotEnlarge)
{
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    mView.ShowImage(Numbered({1600, 300}));
    EXPECT_EQ(Placed().size(), QSize(400, 75));
    EXPECT_FALSE(mView.verticalScrollBar()->isVisible());
    mView.ShowImage(Numbered({100, 600}));
    EXPECT_EQ(Placed().size(), QSize(50, 300));
    mView.ShowImage(Numbered({40, 30}));
    EXPECT_EQ(Placed().size(), QSize(40, 30));
    mView.SetEnlargesToFit(true);
    EXPECT_EQ(Placed().size(), QSize(400, 300));
}

TEST_F(EngineViewTest, ThePercentageIsUsedInModeFourAlone)
{
    mView.ShowImage(Numbered({200, 100}));
    mView.SetPaintScalar(50);
    EXPECT_EQ(Placed().size(), QSize(200, 100));
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    EXPECT_EQ(Placed().size(), QSize(100, 50));
    mView.SetPaintScalar(0);
    EXPECT_EQ(mView.PaintScalar(), 1);
    mView.SetPaintScalar(100'000);
    EXPECT_EQ(mView.PaintScalar(), 3200);
    mView.SetPaintSizeMode(9);
    EXPECT_EQ(mView.PaintSizeMode(), EngineView::kPaintNormal);
}

TEST_F(EngineViewTest, ALargePictureHasScrollBarsWhenAutoScrollIsOn)
{
    mView.ShowImage(Numbered({1000, 800}));
    QCoreApplication::processEvents();
    EXPECT_TRUE(mView.horizontalScrollBar()->isVisible());
    EXPECT_TRUE(mView.verticalScrollBar()->isVisible());
    mView.horizontalScrollBar()->setValue(120);
    mView.verticalScrollBar()->setValue(70);
    EXPECT_EQ(Placed().topLeft(), QPoint(-120, -70));
    const QImage shown = Grabbed(*mView.viewport()).convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(shown, Numbered({1000, 800}).copy(QRect(QPoint(120, 70), shown.size())));
    mView.SetAutoScroll(false);
    QCoreApplication::processEvents();
    EXPECT_FALSE(mView.horizontalScrollBar()->isVisible());
    EXPECT_EQ(Placed().topLeft(), QPoint(0, 0));
}

TEST_F(EngineViewTest, EveryPixelCanBeScrolledTo)
{
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    mView.SetPaintScalar(300);
    mView.ShowImage(Numbered({500, 400}));
    QCoreApplication::processEvents();
    mView.horizontalScrollBar()->setValue(mView.horizontalScrollBar()->maximum());
    mView.verticalScrollBar()->setValue(mView.verticalScrollBar()->maximum());
    EXPECT_EQ(Placed().bottomRight(), mView.viewport()->rect().bottomRight());
}

TEST_F(EngineViewTest, PixelsStaySquaresWhenEnlarged)
{
    QImage picture(2, 2, QImage::Format_RGB32);
    picture.setPixelColor(0, 0, Qt::red);
    picture.setPixelColor(1, 0, Qt::green);
    picture.setPixelColor(0, 1, Qt::blue);
    picture.setPixelColor(1, 1, Qt::white);
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    mView.SetPaintScalar(800);
    mView.ShowImage(picture);
    const QImage shown = Grabbed(*mView.viewport());
    const QPoint at = Placed().topLeft();
    EXPECT_EQ(shown.pixelColor(at + QPoint(7, 7)), QColor(Qt::red));
    EXPECT_EQ(shown.pixelColor(at + QPoint(8, 7)), QColor(Qt::green));
    EXPECT_EQ(shown.pixelColor(at + QPoint(7, 8)), QColor(Qt::blue));
    EXPECT_EQ(shown.pixelColor(at + QPoint(15, 15)), QColor(Qt::white));
}

TEST_F(EngineViewTest, ASmallerPictureIsSmoothedInTheEnd)
{
    QImage stripes(800, 600, QImage::Format_RGB32);
    for (int x = 0; x < 800; ++x) {
        for (int y = 0; y < 600; ++y) {
            stripes.setPixelColor(x, y, x % 2 ? Qt::white : Qt::black);
        }
    }
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    mView.ShowImage(stripes);
    Until([&] {
        const int grey = qGray(Grabbed(*mView.viewport()).pixel(200, 150));
        return grey > 100 && grey < 156;
    });
}

TEST_F(EngineViewTest, MousePositionsBecomePicturePixelsAndBack)
{
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    mView.SetPaintScalar(200);
    mView.ShowImage(Numbered({100, 50}));
    const QPointF corner = mView.ImageRect().topLeft();
    EXPECT_EQ(mView.ClientToBitmap(corner), QPointF(0, 0));
    EXPECT_EQ(mView.ClientToBitmap(corner + QPointF(20, 10)), QPointF(10, 5));
    EXPECT_EQ(mView.BitmapToClient(QPointF(10, 5)), corner + QPointF(20, 10));
}

TEST_F(EngineViewTest, WhatIsTransparentShowsACheckerboard)
{
    QImage clear(64, 64, QImage::Format_ARGB32_Premultiplied);
    clear.fill(Qt::transparent);
    mView.ShowImage(clear);
    const QImage shown = Grabbed(*mView.viewport());
    const QPoint at = Placed().topLeft();
    EXPECT_NE(shown.pixel(at + QPoint(4, 4)), shown.pixel(at + QPoint(12, 4)));
    EXPECT_EQ(shown.pixel(at + QPoint(4, 4)), shown.pixel(at + QPoint(12, 12)));
}

TEST_F(EngineViewTest, ShowsWhatAnInstanceHolds)
{
    EngineInstance instance;
    mView.Show(instance);
    EXPECT_FALSE(mView.HasImage());
    EXPECT_TRUE(mView.ImageRect().isEmpty());
    instance.SetBitmap(Bitmap(Picture({30, 20}), ColourModel::Rgb, 24));
    mView.Show(instance);
    EXPECT_EQ(mView.ImageSize(), QSize(30, 20));
    mView.Clear();
    EXPECT_FALSE(mView.HasImage());
    Grabbed(mView);
}

TEST_F(EngineViewTest, GoesWhileItMakesAPictureSmaller)
{
    for (int i = 0; i < 5; ++i) {
        EngineView view;
        view.SetPaintSizeMode(EngineView::kPaintFit);
        ShowAndWait(view, QSize(100, 100));
        view.ShowImage(Numbered({2000, 1500}));
        Grabbed(view);
    }
    EXPECT_EQ(mView.accessibleName(), "Picture");
}

} // namespace

} // namespace quillane
