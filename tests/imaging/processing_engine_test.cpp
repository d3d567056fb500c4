// Processing as the windows call it: on an instance, with its region and floater.
#include "core/failure.h"
#include "imaging/engine.h"
#include "picture_maker.h"
#include "processing_support.h"
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <gtest/gtest.h>

namespace quillane::processing {

namespace {

constexpr Layout kRgb24{"Rgb24", QImage::Format_RGB32, ColourModel::Rgb};
constexpr qint32 kRed = 255; // red in the low byte

class EngineProcessing : public testing::Test {
protected:
    EngineProcessing() { mLead.SetBitmap(MakePicture(kRgb24, 80, 60)); }

    QRgb At(int x, int y) const { return ColourAt(mLead.Bitmap(), x, y); }

    EngineInstance mLead;
    EngineInstance mUndo;
};

TEST_F(EngineProcessing, EveryCommandChangesTheImageAndUndoGivesItBack)
{
    const std::pair<const char*, std::function<void(EngineInstance&)>> commands[] = {
        {"AddNoise", [](auto& lead) { lead.AddNoise(200, 0); }},
        {"Average", [](auto& lead) { lead.Average(5); }},
        {"Median", [](auto& lead) { lead.Median(5); }},
        {"Contrast", [](auto& lead) { lead.Contrast(300); }},
        {"Flip", [](auto& lead) { lead.Flip(); }},
        {"Grayscale", [](auto& lead) { lead.Grayscale(8); }},
        {"HistogramEqualize", [](auto& lead) { lead.HistogramEqualize(); }},
        {"Hue", [](auto& lead) { lead.Hue(9000); }},
        {"Brightness", [](auto& lead) { lead.Brightness(300); }},
        {"Invert", [](auto& lead) { lead.Invert(); }},
        {"Saturation", [](auto& lead) { lead.Saturation(400); }},
        {"Reverse", [](auto& lead) { lead.Reverse(); }},
        {"Mosaic", [](auto& lead) { lead.Mosaic(8); }},
        {"SpatialFilter", [](auto& lead) { lead.SpatialFilter(16); }},
        {"BinaryFilter", [](auto& lead) { lead.BinaryFilter(0); }},
        {"Posterize", [](auto& lead) { lead.Posterize(4); }},
        {"Sharpen", [](auto& lead) { lead.Sharpen(500); }},
        {"Rotate", [](auto& lead) { lead.Rotate(1000, 1, 0xffffff); }},
        {"Shear", [](auto& lead) { lead.Shear(1000, true, 0xffffff); }},
        {"Emboss", [](auto& lead) { lead.Emboss(1, 300); }},
        {"IntensityDetect", [](auto& lead) { lead.IntensityDetect(50, 150); }},
        {"GammaCorrect", [](auto& lead) { lead.GammaCorrect(180); }},
        {"Halftone", [](auto& lead) { lead.Halftone(1, 4500); }},
        {"Resize", [](auto& lead) { lead.Resize(40, 30, 4); }},
        {"ChangeColorDepth", [](auto& lead) { lead.ChangeColorDepth(4, 0, 1); }},
        {"HistogramContrast", [](auto& lead) { lead.HistogramContrast(300); }},
        {"ContourFilter", [](auto& lead) { lead.ContourFilter(20, 40, 3, 0); }},
        {"FillColor", [](auto& lead) { lead.FillColor(kRed); }},
        {"Trim", [](auto& lead) { lead.Trim(5, 5, 20, 20); }},
        {"DrawText", [](auto& lead) { lead.DrawText(QStringLiteral("Text"), 2, 2); }},
        {"Combine",
         [](auto& lead) {
             const Bitmap grey = MakeColour(qRgb(40, 40, 40), 80, 60);
             lead.Combine(0, 0, 80, 60, grey, 0, 0, 768);
         }},
    };
    for (const auto& [name, command] : commands) {
        const Bitmap before = mLead.Bitmap();
        mUndo.SetBitmap(mLead.Bitmap());
        command(mLead);
        EXPECT_FALSE(SamePixels(mLead.Bitmap().Pixels(), before.Pixels())) << name;
        mLead.SetBitmap(mUndo.Bitmap());
        EXPECT_TRUE(SamePixels(mLead.Bitmap().Pixels(), before.Pixels())) << name;
        // Without an image each fails, or returns as if it had not been called.
        EngineInstance empty;
        EXPECT_THROW(command(empty), Failure) << name;
        empty.SetMethodErrors(false);
        EXPECT_NO_THROW(command(empty)) << name;
        EXPECT_FALSE(empty.HasBitmap()) << name;
    }
}

TEST_F(EngineProcessing, ColoursHaveRedInTheLowByte)
{
    mLead.FillColor(0x00010203);
    EXPECT_EQ(At(3, 3), qRgb(3, 2, 1));
    mLead.Rotate(4500, 1, kRed);
    EXPECT_EQ(At(0, 0), qRgb(255, 0, 0));
}

TEST_F(EngineProcessing, RotateByNinetyGrowsOnlyWhenAsked)
{
    mLead.Rotate(9000, 1, 0);
    EXPECT_EQ(mLead.BitmapWidth(), 60);
    mLead.Rotate(9000, 0, 0);
    EXPECT_EQ(mLead.BitmapWidth(), 60);
}

TEST_F(EngineProcessing, EdgeEnhanceKeepsPlainAreasAndRaisesEdges)
{
    QImage pixels(40, 40, QImage::Format_RGB32);
    pixels.fill(qRgb(50, 50, 50));
    for (int y = 20; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            pixels.setPixel(x, y, qRgb(100, 100, 100));
        }
    }
    mLead.SetBitmap(Bitmap(pixels, ColourModel::Rgb, 24));
    mUndo.SetBitmap(mLead.Bitmap());
    mLead.SpatialFilter(16);
    mLead.Combine(0, 0, mLead.BitmapWidth(), mLead.BitmapHeight(), mUndo.Bitmap(), 0, 0, 768);
    EXPECT_EQ(At(20, 5), qRgb(50, 50, 50));
    EXPECT_EQ(At(20, 35), qRgb(100, 100, 100));
    EXPECT_EQ(At(20, 20), qRgb(150, 150, 150));
}

TEST_F(EngineProcessing, NightEnhanceBrightens)
{
    mLead.SetBitmap(MakeColour(qRgb(60, 50, 40), 10, 10));
    mLead.GammaCorrect(150);
    mLead.Brightness(100);
    mLead.Contrast(100);
    mLead.Saturation(400);
    EXPECT_GT(qRed(At(5, 5)), 100);
    EXPECT_GT(qRed(At(5, 5)) - qBlue(At(5, 5)), 20);
}

TEST_F(EngineProcessing, HistogramHoldsWhatWasCountedLast)
{
    mLead.SetBitmap(MakeColour(qRgb(10, 20, 30), 20, 10));
    EXPECT_EQ(mLead.HistogramValue(10), 0);
    mLead.GetHistogram(1);
    EXPECT_EQ(mLead.HistogramValue(10), 200);
    mLead.GetHistogram(3);
    EXPECT_EQ(mLead.HistogramValue(10), 0);
    EXPECT_EQ(mLead.HistogramValue(30), 200);
    EXPECT_EQ(mLead.UniqueColors(), 1);
    EXPECT_THROW(mLead.HistogramValue(256), Failure);
    EXPECT_THROW(mLead.HistogramValue(-1), Failure);
    mLead.SetMethodErrors(false);
    EXPECT_EQ(mLead.HistogramValue(256), 0);
}

TEST_F(EngineProcessing, ARegionLimitsWhatIsChangedAndEnds)
{
    EXPECT_FALSE(mLead.HasRegion());
    const Bitmap before = mLead.Bitmap();
    mLead.SetRegionRect(10, 10, 20, 20);
    EXPECT_TRUE(mLead.HasRegion());
    EXPECT_EQ(mLead.RegionBounds(), QRect(10, 10, 20, 20));
    EXPECT_TRUE(mLead.IsPointInRegion(10, 29));
    EXPECT_FALSE(mLead.IsPointInRegion(9, 10));
    mLead.FillColor(kRed);
    EXPECT_EQ(At(15, 15), qRgb(255, 0, 0));
    EXPECT_EQ(At(5, 5), ColourAt(before, 5, 5));
    EXPECT_EQ(mLead.UniqueColors(), 1);
    mLead.GetHistogram(1);
    EXPECT_EQ(mLead.HistogramValue(255), 400);
    mLead.ClearRegion();
    EXPECT_FALSE(mLead.HasRegion());
    mLead.FillColor(kRed);
    EXPECT_EQ(At(5, 5), qRgb(255, 0, 0));
}

TEST_F(EngineProcessing, EveryShapeOfRegionCanBeSet)
{
    mLead.SetRegionEllipse(10, 10, 20, 20);
    EXPECT_FALSE(mLead.IsPointInRegion(10, 10));
    EXPECT_TRUE(mLead.IsPointInRegion(20, 20));
    mLead.SetRegionRoundRect(10, 10, 20, 20, 5);
    EXPECT_FALSE(mLead.IsPointInRegion(10, 10));
    EXPECT_TRUE(mLead.IsPointInRegion(15, 10));
    mLead.SetRegionFreeHand({{0, 0}, {20, 0}, {0, 20}});
    EXPECT_TRUE(mLead.IsPointInRegion(3, 3));
    mLead.MoveRegion(30, 10);
    EXPECT_TRUE(mLead.IsPointInRegion(33, 13));
    EXPECT_FALSE(mLead.IsPointInRegion(3, 3));
    mLead.SetBitmap(MakeColour(qRgb(1, 2, 3), 30, 30));
    mLead.SetRegionColor(0x00030201, 0x00030201);
    EXPECT_EQ(mLead.RegionBounds(), QRect(0, 0, 30, 30));
    mLead.SetRegionColor(0x00040404, 0x00ffffff);
    EXPECT_FALSE(mLead.HasRegion());
}

TEST_F(EngineProcessing, ARegionGoesWithItsImage)
{
    mLead.SetRegionRect(50, 40, 20, 15);
    mLead.SetBitmap(MakePicture(kRgb24, 80, 60));
    EXPECT_EQ(mLead.RegionBounds(), QRect(50, 40, 20, 15));
    mLead.SetBitmap(MakePicture(kRgb24, 60, 50));
    EXPECT_EQ(mLead.RegionBounds(), QRect(50, 40, 10, 10));
    mLead.Resize(30, 25, 0);
    EXPECT_FALSE(mLead.HasRegion());
    mLead.SetRegionRect(5, 5, 10, 10);
    mLead.SetBitmap({});
    EXPECT_FALSE(mLead.HasRegion());
}

TEST_F(EngineProcessing, TrimToTheRegionGivesAPictureOfItsBounds)
{
    const Bitmap before = mLead.Bitmap();
    mLead.SetRegionEllipse(20, 10, 30, 25);
    const QRect bounds = mLead.RegionBounds();
    mLead.Trim(bounds.left(), bounds.top(), bounds.width(), bounds.height());
    EXPECT_EQ(mLead.BitmapWidth(), 30);
    EXPECT_EQ(mLead.BitmapHeight(), 25);
    EXPECT_EQ(At(0, 0), ColourAt(before, 20, 10));
    EXPECT_EQ(mLead.RegionBounds(), QRect(0, 0, 30, 25));
    EXPECT_FALSE(mLead.IsPointInRegion(0, 0));
    EXPECT_THROW(mLead.Trim(100, 100, 5, 5), Failure);
}

TEST_F(EngineProcessing, AFloaterMovesACopyOfTheRegion)
{
    mLead.SetRegionEllipse(10, 10, 20, 20);
    const Bitmap before = mLead.Bitmap();
    mLead.MakeFloater();
    EXPECT_TRUE(mLead.FloaterVisible());
    EXPECT_EQ(mLead.FloaterPosition(), QPoint(10, 10));
    EXPECT_EQ(mLead.FloaterHandle().Width(), 20);
    EXPECT_EQ(qAlpha(ColourAt(mLead.FloaterHandle(), 0, 0)), 0);
    EXPECT_EQ(ColourAt(mLead.FloaterHandle(), 10, 10), ColourAt(before, 20, 20));
    mLead.SetFloaterPosition(QPoint(40, 25));
    EXPECT_TRUE(SamePixels(mLead.Bitmap().Pixels(), before.Pixels()));
    mLead.CombineFloater();
    EXPECT_EQ(At(50, 35), ColourAt(before, 20, 20));
    EXPECT_EQ(At(20, 20), ColourAt(before, 20, 20));
    EXPECT_EQ(At(40, 25), ColourAt(before, 40, 25));
    EXPECT_EQ(mLead.RegionBounds(), QRect(40, 25, 20, 20));
    mLead.ReleaseFloater();
    EXPECT_TRUE(mLead.FloaterHandle().IsNull());
    EXPECT_FALSE(mLead.FloaterVisible());
    mLead.SetFloaterVisible(true);
    EXPECT_FALSE(mLead.FloaterVisible());
    EXPECT_THROW(mLead.CombineFloater(), Failure);
}

TEST_F(EngineProcessing, AFloaterBesideTheImageLeavesItAsItIs)
{
    EXPECT_THROW(mLead.MakeFloater(), Failure);
    mLead.SetRegionRect(10, 10, 20, 20);
    mLead.MakeFloater();
    const Bitmap before = mLead.Bitmap();
    mLead.SetFloaterPosition(QPoint(-10, -10));
    mLead.CombineFloater();
    EXPECT_EQ(At(0, 0), ColourAt(before, 20, 20));
    EXPECT_EQ(mLead.RegionBounds(), QRect(0, 0, 10, 10));
    mLead.SetBitmap(before);
    mLead.SetFloaterPosition(QPoint(500, 500));
    mLead.CombineFloater();
    EXPECT_TRUE(SamePixels(mLead.Bitmap().Pixels(), before.Pixels()));
    EXPECT_FALSE(mLead.HasRegion());
}

TEST_F(EngineProcessing, TextIsStampedIntoTheLowerRightCorner)
{
    mLead.SetBitmap(MakeColour(qRgb(0, 0, 0), 400, 100));
    QFont font(QStringLiteral("Arial"));
    font.setPointSize(18);
    font.setBold(true);
    mLead.SetDrawFont(font);
    mLead.SetDrawTextColor(kRed);
    mLead.SetDrawMode(0);
    mLead.SetDrawTransparent(true);
    EXPECT_EQ(mLead.DrawTextColor(), kRed);
    EXPECT_EQ(mLead.DrawFont().pointSize(), 18);
    const QString text = QStringLiteral("Jan 12,2005  3:30:07 PM");
    const qint32 width = mLead.MeasureTextWidth(text);
    const qint32 height = mLead.MeasureTextHeight(text);
    mLead.DrawText(text, 400 - (width + 10), 100 - (height + 10));
    QRect drawn;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 400; ++x) {
            if (At(x, y) != qRgb(0, 0, 0)) {
                drawn = drawn.united(QRect(x, y, 1, 1));
                ASSERT_EQ(qGreen(At(x, y)), 0);
            }
        }
    }
    EXPECT_FALSE(drawn.isEmpty());
    EXPECT_LE(drawn.right(), 391);
    EXPECT_LE(drawn.bottom(), 90);
    EXPECT_GE(drawn.left(), 400 - (width + 11));
    EXPECT_THROW(mLead.SetDrawMode(3), Failure);
}

TEST_F(EngineProcessing, ClipboardBringsThePictureBackAsItWas)
{
    for (const Layout& layout : kLayouts) {
        const Bitmap picture = MakePicture(layout, 40, 30);
        mLead.SetBitmap(picture);
        mLead.CopyToClipboard(0);
        EngineInstance other;
        other.SetComment(3, CommentValue(QStringLiteral("text")));
        other.PasteFromClipboard(0);
        EXPECT_TRUE(SamePixels(other.Bitmap().Pixels(), picture.Pixels())) << layout.name;
        EXPECT_EQ(other.Bitmap().Model(), layout.model);
        EXPECT_TRUE(other.Comment(3).IsEmpty());
        // What other programs take.
        const QImage shown = QGuiApplication::clipboard()->image();
        EXPECT_EQ(shown.size(), QSize(40, 30)) << layout.name;
    }
}

TEST_F(EngineProcessing, ClipboardTakesTheRegionWhereThereIsOne)
{
    const Bitmap before = mLead.Bitmap();
    mLead.SetRegionRect(10, 12, 20, 15);
    mLead.CopyToClipboard(0);
    mUndo.PasteFromClipboard(0);
    EXPECT_EQ(mUndo.Bitmap().Pixels().size(), QSize(20, 15));
    EXPECT_EQ(ColourAt(mUndo.Bitmap(), 0, 0), ColourAt(before, 10, 12));
    mLead.SetRegionEllipse(10, 12, 20, 16);
    mLead.CopyToClipboard(0);
    mUndo.PasteFromClipboard(0);
    EXPECT_EQ(qAlpha(ColourAt(mUndo.Bitmap(), 0, 0)), 0);
    EXPECT_FALSE(mUndo.HasRegion());
}

TEST_F(EngineProcessing, ClipboardOfOtherProgramsIsReadByTheProgramsOwnReaders)
{
    auto* png = new QMimeData;
    png->setData(QStringLiteral("image/png"), making::MakePng({}));
    QGuiApplication::clipboard()->setMimeData(png);
    mLead.PasteFromClipboard(0);
    EXPECT_EQ(mLead.Bitmap().Pixels().size(), QSize(32, 24));

    auto* image = new QMimeData;
    QImage pixels(7, 5, QImage::Format_RGB888);
    pixels.fill(qRgb(1, 2, 3));
    image->setImageData(pixels);
    QGuiApplication::clipboard()->setMimeData(image);
    mLead.PasteFromClipboard(0);
    EXPECT_EQ(mLead.BitmapBits(), 24);
    EXPECT_EQ(At(6, 4), qRgb(1, 2, 3));
}

TEST_F(EngineProcessing, ClipboardWithoutAPictureChangesNothing)
{
    const Bitmap before = mLead.Bitmap();
    QGuiApplication::clipboard()->clear();
    EXPECT_THROW(mLead.PasteFromClipboard(0), Failure);
    QGuiApplication::clipboard()->setText(QStringLiteral("words"));
    EXPECT_THROW(mLead.PasteFromClipboard(0), Failure);
    auto* broken = new QMimeData;
    broken->setData(QStringLiteral("image/png"), QByteArray("\x89PNG\r\n\x1a\n no more"));
    QGuiApplication::clipboard()->setMimeData(broken);
    EXPECT_THROW(mLead.PasteFromClipboard(0), Failure);
    EXPECT_TRUE(SamePixels(mLead.Bitmap().Pixels(), before.Pixels()));
    EngineInstance empty;
    EXPECT_THROW(empty.CopyToClipboard(0), Failure);
}

} // namespace

} // namespace quillane::processing
