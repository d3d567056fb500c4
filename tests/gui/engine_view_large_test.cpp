// Pictures that are too large to be converted whole.
#include "gui/engine_view_support.h"

#include <cstring>

namespace quillane {

namespace {

constexpr qint64 kMegabyte = 1'000'000;

/// Black strokes of one pixel on white paper, one column in 40 and one row in 50.
Bitmap Fax(QSize size)
{
    QImage pixels(size, QImage::Format_Mono);
    pixels.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    for (int y = 0; y < size.height(); ++y) {
        uchar* const row = pixels.scanLine(y);
        if (y % 50 == 7) {
            std::memset(row, 0, size_t(pixels.bytesPerLine()));
            continue;
        }
        for (qsizetype i = 0; i < pixels.bytesPerLine(); ++i) {
            row[i] = i % 5 == 2 ? 0xf7 : 0xff;
        }
    }
    return Bitmap(pixels, ColourModel::BlackWhite, 1);
}

double MeanGrey(const QImage& image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        const QRgb* const row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            sum += qRed(row[x]);
        }
    }
    return sum / (double(image.width()) * image.height());
}

class LargePictureTest : public testing::Test {
protected:
    LargePictureTest() { ShowAndWait(mView, QSize(900, 700)); }
    EngineView mView;
};

TEST_F(LargePictureTest, AFaxShowsItsStrokesAtEveryZoomInLittleMemory)
{
    const Bitmap fax = Fax({20'000, 20'000});
    const double wanted = 255 * (39 / 40.0) * (49 / 50.0);
    mView.ShowBitmap(fax);
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    const auto check = [&] {
        const QImage shown = Finished(mView);
        const QRect inside = mView.ImageRect().toAlignedRect().intersected(shown.rect());
        EXPECT_NEAR(MeanGrey(shown.copy(inside)), wanted, wanted * 0.02)
            << mView.ZoomPercent() << " %";
        EXPECT_LT(mView.CacheBytes(), 40 * kMegabyte);
        EXPECT_EQ(fax.Pixels().format(), QImage::Format_Mono);
    };
    check();
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    for (const int percent : {2, 4, 7, 10, 13, 24, 33, 50, 66, 100}) {
        mView.SetPaintScalar(percent);
        check();
        mView.horizontalScrollBar()->setValue(mView.horizontalScrollBar()->maximum());
        mView.verticalScrollBar()->setValue(mView.verticalScrollBar()->maximum());
        check();
    }
}

TEST_F(LargePictureTest, TilesStayWithinABudgetHoweverMuchIsScrolledAndZoomed)
{
    const QImage pixels = Numbered({6000, 5000});
    Bitmap bitmap(pixels, ColourModel::Rgb, 24);
    mView.ShowBitmap(bitmap);
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    qint64 most = 0;
    for (const int percent : {10, 30, 60, 150, 400, 1000}) {
        mView.SetPaintScalar(percent);
        for (int step = 0; step < 25; ++step) {
            mView.horizontalScrollBar()->setValue(step * mView.horizontalScrollBar()->maximum()
                                                  / 25);
            mView.verticalScrollBar()->setValue(step * mView.verticalScrollBar()->maximum() / 25);
            Grabbed(*mView.viewport());
            most = std::max(most, mView.CacheBytes());
        }
    }
    EXPECT_LT(most, 25 * kMegabyte) << "the picture itself has 120";
    mView.Clear();
    EXPECT_EQ(mView.CacheBytes(), 0);
}

TEST_F(LargePictureTest, SomethingSensibleIsThereAtOnce)
{
    QImage pixels(7000, 6000, QImage::Format_RGB32);
    pixels.fill(qRgb(10, 160, 90));
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    mView.ShowBitmap(Bitmap(pixels, ColourModel::Rgb, 24));
    const QImage first = Grabbed(*mView.viewport());
    EXPECT_EQ(first.pixel(first.rect().center()), qRgb(10, 160, 90));
    Finished(mView);
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    for (const int percent : {45, 100, 180, 700, 30}) {
        mView.SetPaintScalar(percent);
        const QImage shown = Grabbed(*mView.viewport());
        EXPECT_EQ(shown.pixel(shown.rect().center()), qRgb(10, 160, 90)) << percent;
        EXPECT_EQ(shown.pixel(20, 30), qRgb(10, 160, 90)) << percent;
    }
}

TEST_F(LargePictureTest, EveryZoomShowsTheRightPlace)
{
    // 24 bits and 48 bits: painted directly or by tiles.
    const QImage plain = Numbered({3000, 2500});
    for (const Bitmap& bitmap :
         {Bitmap(plain, ColourModel::Rgb, 24),
          Bitmap(plain.convertToFormat(QImage::Format_RGBX64), ColourModel::Rgb, 48)}) {
        mView.ShowBitmap(bitmap);
        mView.SetPaintSizeMode(EngineView::kPaintScaled);
        for (const int percent : {100, 200, 300, 1600}) {
            mView.SetPaintScalar(percent);
            for (const QPoint scroll : {QPoint(0, 0), QPoint(733, 511), QPoint(2111, 1777)}) {
                mView.horizontalScrollBar()->setValue(scroll.x());
                mView.verticalScrollBar()->setValue(scroll.y());
                const QImage shown = Finished(mView);
                for (const QPoint at : {QPoint(0, 0), QPoint(301, 255), QPoint(600, 513)}) {
                    const QPointF place = mView.ClientToBitmap(QPointF(at) + QPointF(0.5, 0.5));
                    EXPECT_EQ(shown.pixel(at), plain.pixel(int(place.x()), int(place.y())))
                        << percent << " % at " << at.x();
                }
            }
        }
    }
}

TEST_F(LargePictureTest, AnEarlyPictureStandsForTheFullOne)
{
    QImage early(600, 400, QImage::Format_RGB32);
    early.fill(Qt::blue);
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    mView.ShowReduced(early, {6000, 4000});
    EXPECT_EQ(mView.ImageSize(), QSize(6000, 4000));
    EXPECT_NEAR(mView.ZoomPercent(), 15, 0.01);
    QImage shown = Finished(mView);
    EXPECT_EQ(shown.pixelColor(shown.rect().center()), QColor(Qt::blue));
    mView.SetPaintSizeMode(EngineView::kPaintScaled);
    mView.SetPaintScalar(100);
    EXPECT_EQ(mView.horizontalScrollBar()->maximum() + mView.viewport()->width(), 6000);
    mView.horizontalScrollBar()->setValue(1234);
    shown = Finished(mView);
    EXPECT_EQ(shown.pixelColor(3, 3), QColor(Qt::blue));
    QImage full(6000, 4000, QImage::Format_RGB32);
    full.fill(Qt::green);
    mView.ShowBitmap(Bitmap(full, ColourModel::Rgb, 24));
    EXPECT_EQ(mView.horizontalScrollBar()->value(), 1234) << "it does not jump";
    shown = Finished(mView);
    EXPECT_EQ(shown.pixelColor(3, 3), QColor(Qt::green));
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    EXPECT_EQ(Finished(mView).pixelColor(450, 350), QColor(Qt::green));
}

TEST_F(LargePictureTest, AnEarlyPictureThatIsNoneClears)
{
    mView.ShowReduced({}, {6000, 4000});
    EXPECT_FALSE(mView.HasImage());
    mView.ShowReduced(Numbered({60, 40}), {6000, 4000});
    EXPECT_TRUE(mView.HasImage());
    mView.Clear();
    EXPECT_FALSE(mView.HasImage());
}

TEST_F(LargePictureTest, TheSamePictureShownAgainIsNotWorkedOnAgain)
{
    EngineInstance instance;
    instance.SetBitmap(Bitmap(Numbered({4000, 3000}), ColourModel::Rgb, 24));
    mView.SetPaintSizeMode(EngineView::kPaintFit);
    mView.Show(instance);
    Finished(mView);
    const qint64 bytes = mView.CacheBytes();
    EXPECT_GT(bytes, 0);
    const QSignalSpy replaced(&mView, &EngineView::pictureReplaced);
    mView.Show(instance);
    EXPECT_EQ(mView.CacheBytes(), bytes);
    EXPECT_TRUE(mView.IsFinished());
    EXPECT_EQ(replaced.size(), 0);
    instance.Invert();
    mView.Show(instance);
    EXPECT_EQ(replaced.size(), 1);
    EXPECT_FALSE(mView.IsFinished());
    Finished(mView);
}

TEST_F(LargePictureTest, GoesWhileItWorksOnAPicture)
{
    const Bitmap fax = Fax({20'000, 20'000});
    const Bitmap photo(Numbered({5000, 4000}), ColourModel::Rgb, 24);
    for (int i = 0; i < 6; ++i) {
        EngineView view;
        view.SetPaintSizeMode(i % 2 ? EngineView::kPaintFit : EngineView::kPaintScaled);
        view.SetPaintScalar(40);
        ShowAndWait(view, QSize(800, 600));
        view.ShowBitmap(i < 3 ? fax : photo);
        Grabbed(*view.viewport());
        view.ShowBitmap(i < 3 ? photo : fax);
        Grabbed(*view.viewport());
    }
    mView.ShowBitmap(photo);
    EXPECT_EQ(Finished(mView).size(), mView.viewport()->size());
}

} // namespace

} // namespace quillane
