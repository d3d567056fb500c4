// Windows metafiles, drawn.
#include "codec_support_for_tests.h"
#include "drawn_maker.h"
#include "picture_maker.h"
#include <QtMath>

namespace quillane {

namespace {

using making::WmfMaker;

QRgb WmfPixel(const QByteArray& bytes, int x, int y)
{
    return making::DecodeBytes(bytes).Pixels().pixel(x, y);
}

/// One inch square, 96 pixels of it, so that a unit is a pixel.
WmfMaker WmfPage()
{
    WmfMaker wmf;
    wmf.Window(96, 96).Pen(0, 1, 5);
    return wmf;
}

QByteArray WmfBytes(const WmfMaker& wmf)
{
    return wmf.Placeable(QRect(0, 0, 96, 96), 96);
}

int WmfDark(const QImage& image, QRect area)
{
    int dark = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            dark += qGray(image.pixel(x, y)) < 128;
        }
    }
    return dark;
}

TEST(Wmf, PlaceableFileHasItsSizeOnPaperAtNinetySixDots)
{
    WmfMaker wmf;
    wmf.Window(1440, 2880).Brush(0).Rectangle(0, 0, 1440, 2880);
    const ImageFacts facts = making::ProbeBytes(wmf.Placeable(QRect(0, 0, 1440, 2880), 1440));
    EXPECT_EQ(facts.width, 96);
    EXPECT_EQ(facts.height, 192);
    EXPECT_EQ(facts.bits, 24);
    EXPECT_EQ(facts.format, 15);
    EXPECT_EQ(facts.pages, 1);
}

TEST(Wmf, PlainFileHasItsShapeAndAMiddlingSize)
{
    WmfMaker wmf;
    wmf.Window(200, 100).Brush(0).Rectangle(0, 0, 100, 100);
    const Bitmap bitmap = making::DecodeBytes(wmf.Plain());
    EXPECT_EQ(bitmap.Width(), 1000);
    EXPECT_EQ(bitmap.Height(), 500);
    EXPECT_EQ(bitmap.Pixels().pixel(250, 250), qRgb(0, 0, 0));
    EXPECT_EQ(bitmap.Pixels().pixel(750, 250), qRgb(255, 255, 255));
}

TEST(Wmf, ReducedDecodeKeepsWhatWasAskedFor)
{
    WmfMaker wmf;
    wmf.Window(200, 100).Brush(0x0000ff).Rectangle(0, 0, 100, 100);
    DecodeRequest request;
    request.atLeast = QSize(60, 40);
    const Bitmap bitmap = making::DecodeBytes(wmf.Plain(), request);
    EXPECT_EQ(bitmap.Height(), 40);
    EXPECT_EQ(bitmap.Width(), 80);
    EXPECT_EQ(bitmap.Pixels().pixel(20, 20), qRgb(255, 0, 0));
}

TEST(Wmf, FiguresStandWhereTheirParametersSay)
{
    const QByteArray bytes = WmfBytes(WmfPage().Brush(0x0000ff).Rectangle(10, 20, 40, 50));
    EXPECT_EQ(WmfPixel(bytes, 11, 21), qRgb(255, 0, 0));
    EXPECT_EQ(WmfPixel(bytes, 39, 49), qRgb(255, 0, 0));
    EXPECT_EQ(WmfPixel(bytes, 9, 30), qRgb(255, 255, 255));
    EXPECT_EQ(WmfPixel(bytes, 41, 30), qRgb(255, 255, 255));
    EXPECT_EQ(WmfPixel(bytes, 30, 51), qRgb(255, 255, 255));
}

TEST(Wmf, AWindowThatGrowsUpwardsTurnsThePicture)
{
    WmfMaker wmf;
    wmf.Add(0x0103, {8}).Add(0x020b, {96, 0}).Add(0x020c, {-96, 96});
    wmf.Pen(0, 1, 5).Brush(0x00ff00).Rectangle(0, 90, 20, 70);
    const QByteArray bytes = WmfBytes(wmf);
    EXPECT_EQ(WmfPixel(bytes, 10, 15), qRgb(0, 255, 0));
    EXPECT_EQ(WmfPixel(bytes, 10, 80), qRgb(255, 255, 255));
}

TEST(Wmf, PolygonsAlternateOrFillWhole)
{
    for (const bool winding : {false, true}) {
        WmfMaker wmf = WmfPage();
        wmf.Brush(0).Add(0x0106, {winding ? 2 : 1});
        // Two squares that run the same way round, one in the other.
        wmf.Add(0x0538, {2, 4, 4, 10, 10, 90, 10, 90, 90, 10, 90, 30, 30, 70, 30, 70, 70, 30, 70});
        EXPECT_EQ(WmfPixel(WmfBytes(wmf), 50, 50), winding ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
        EXPECT_EQ(WmfPixel(WmfBytes(wmf), 20, 20), qRgb(0, 0, 0));
    }
}

TEST(Wmf, ArcsPiesAndChordsRunAgainstTheClock)
{
    // From the right end of the circle to its top: the upper right quarter.
    for (const int function : {0x081a, 0x0830}) {
        WmfMaker wmf = WmfPage();
        wmf.Brush(0).Add(function, {0, 48, 48, 96, 90, 90, 6, 6});
        const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
        EXPECT_EQ(image.pixel(74, 22), qRgb(0, 0, 0));
        EXPECT_EQ(image.pixel(22, 22), qRgb(255, 255, 255));
        EXPECT_EQ(image.pixel(74, 74), qRgb(255, 255, 255));
        // A pie reaches the middle, a chord does not.
        EXPECT_EQ(image.pixel(54, 42), function == 0x081a ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
    }
    WmfMaker arc = WmfPage();
    arc.Pen(0, 4).Add(0x0817, {0, 48, 48, 96, 90, 90, 6, 6});
    const QImage image = making::DecodeBytes(WmfBytes(arc)).Pixels();
    const int at = int(42 * M_SQRT1_2);
    EXPECT_LT(qGray(image.pixel(48 + at, 48 - at)), 60);
    EXPECT_EQ(image.pixel(48 - at, 48 - at), qRgb(255, 255, 255));
    EXPECT_EQ(image.pixel(48 + at - 12, 48 - at + 12), qRgb(255, 255, 255));
}

TEST(Wmf, EllipsesAndRoundRectanglesLeaveTheirCorners)
{
    WmfMaker wmf = WmfPage();
    wmf.Brush(0xff0000).Add(0x0418, {96, 96, 0, 0});
    EXPECT_EQ(WmfPixel(WmfBytes(wmf), 48, 48), qRgb(0, 0, 255));
    EXPECT_EQ(WmfPixel(WmfBytes(wmf), 3, 3), qRgb(255, 255, 255));
    WmfMaker round = WmfPage();
    round.Brush(0xff0000).Add(0x061c, {40, 40, 96, 96, 0, 0});
    EXPECT_EQ(WmfPixel(WmfBytes(round), 48, 2), qRgb(0, 0, 255));
    EXPECT_EQ(WmfPixel(WmfBytes(round), 12, 12), qRgb(0, 0, 255));
    EXPECT_EQ(WmfPixel(WmfBytes(round), 2, 2), qRgb(255, 255, 255));
}

TEST(Wmf, LinesHaveTheirPen)
{
    WmfMaker wmf = WmfPage();
    wmf.Pen(0x0000ff, 10).Add(0x0214, {48, 10}).Add(0x0213, {48, 90});
    const QByteArray bytes = WmfBytes(wmf);
    EXPECT_EQ(WmfPixel(bytes, 50, 45), qRgb(255, 0, 0));
    EXPECT_EQ(WmfPixel(bytes, 50, 51), qRgb(255, 0, 0));
    EXPECT_EQ(WmfPixel(bytes, 50, 40), qRgb(255, 255, 255));
    EXPECT_EQ(WmfPixel(bytes, 50, 56), qRgb(255, 255, 255));
}

TEST(Wmf, DashedLinesHaveGaps)
{
    for (int style = 0; style <= 4; ++style) {
        WmfMaker wmf = WmfPage();
        wmf.Pen(0, 1, style).Add(0x0214, {48, 0}).Add(0x0213, {48, 96});
        const int dark = WmfDark(making::DecodeBytes(WmfBytes(wmf)).Pixels(), QRect(0, 46, 96, 4));
        if (style == 0) {
            EXPECT_GE(dark, 94);
        } else {
            EXPECT_GT(dark, 20) << style;
            EXPECT_LT(dark, 85) << style;
        }
    }
}

TEST(Wmf, HatchesRunTheirWay)
{
    // Horizontal, vertical, downwards, upwards, both, both.
    for (int hatch = 0; hatch < 6; ++hatch) {
        WmfMaker wmf = WmfPage();
        wmf.Brush(0, 2, hatch).Rectangle(0, 0, 96, 96);
        const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
        int along[4] = {}; // dark neighbours: right, below, below right, below left
        for (int y = 16; y < 80; ++y) {
            for (int x = 16; x < 80; ++x) {
                if (qGray(image.pixel(x, y)) < 128) {
                    along[0] += qGray(image.pixel(x + 1, y)) < 128;
                    along[1] += qGray(image.pixel(x, y + 1)) < 128;
                    along[2] += qGray(image.pixel(x + 1, y + 1)) < 128;
                    along[3] += qGray(image.pixel(x - 1, y + 1)) < 128;
                }
            }
        }
        const bool wanted[6][4] = {{true, false, false, false}, {false, true, false, false},
                                   {false, false, true, false}, {false, false, false, true},
                                   {true, true, false, false},  {false, false, true, true}};
        for (int way = 0; way < 4; ++way) {
            EXPECT_EQ(along[way] > 300, wanted[hatch][way]) << hatch << " " << way;
        }
    }
}

TEST(Wmf, OpaqueHatchHasTheBackColourBetweenItsLines)
{
    for (const bool opaque : {true, false}) {
        WmfMaker wmf = WmfPage();
        wmf.Add(0x0201, {0xff00, 0}).Add(0x0102, {opaque ? 2 : 1});
        wmf.Brush(0, 2, 0).Rectangle(0, 0, 96, 96);
        const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
        int green = 0;
        for (int y = 20; y < 28; ++y) {
            green += image.pixel(50, y) == qRgb(0, 255, 0);
        }
        EXPECT_EQ(green, opaque ? 7 : 0);
    }
}

TEST(Wmf, DrawingModesCombineWithWhatIsThere)
{
    struct Row {
        int mode;
        QRgb result;
    };
    // Brush (255, 0, 255) over (255, 255, 0).
    const Row rows[] = {
        {1, qRgb(0, 0, 0)},        {2, qRgb(0, 0, 0)},      {3, qRgb(0, 255, 0)},
        {4, qRgb(0, 255, 0)},      {5, qRgb(0, 0, 255)},    {6, qRgb(0, 0, 255)},
        {7, qRgb(0, 255, 255)},    {8, qRgb(0, 255, 255)},  {9, qRgb(255, 0, 0)},
        {10, qRgb(255, 0, 0)},     {11, qRgb(255, 255, 0)}, {12, qRgb(255, 255, 0)},
        {13, qRgb(255, 0, 255)},   {14, qRgb(255, 0, 255)}, {15, qRgb(255, 255, 255)},
        {16, qRgb(255, 255, 255)},
    };
    for (const Row& row : rows) {
        WmfMaker wmf = WmfPage();
        wmf.Brush(0x00ffff).Rectangle(0, 0, 96, 96).Add(0x0104, {row.mode});
        wmf.Brush(0xff00ff).Rectangle(20, 20, 60, 60);
        const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
        EXPECT_EQ(image.pixel(40, 40), row.result) << row.mode;
        EXPECT_EQ(image.pixel(80, 80), qRgb(255, 255, 0)) << row.mode;
    }
}

TEST(Wmf, ClippingBoxesIntersectAndExclude)
{
    WmfMaker wmf = WmfPage();
    wmf.Brush(0).Add(0x001e).Add(0x0416, {60, 60, 20, 20}).Add(0x0415, {50, 50, 40, 40});
    wmf.Rectangle(0, 0, 96, 96).Add(0x0127, {-1}).Rectangle(80, 80, 90, 90);
    const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
    EXPECT_EQ(image.pixel(30, 30), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(45, 45), qRgb(255, 255, 255));
    EXPECT_EQ(image.pixel(10, 10), qRgb(255, 255, 255));
    EXPECT_EQ(image.pixel(85, 85), qRgb(0, 0, 0)); // after the restore nothing is clipped
}

TEST(Wmf, SavedStateComesBackWithPensAndWindow)
{
    WmfMaker wmf = WmfPage();
    wmf.Brush(0x0000ff).Add(0x001e).Brush(0x00ff00).Add(0x020c, {192, 192});
    wmf.Rectangle(0, 0, 40, 40).Add(0x0127, {-1}).Rectangle(50, 50, 90, 90);
    const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
    EXPECT_EQ(image.pixel(10, 10), qRgb(0, 255, 0));
    EXPECT_EQ(image.pixel(30, 30), qRgb(255, 255, 255)); // the window was twice as large
    EXPECT_EQ(image.pixel(70, 70), qRgb(255, 0, 0));
}

TEST(Wmf, ADeletedObjectLeavesItsNumberToTheNext)
{
    WmfMaker wmf = WmfPage(); // the pen is object 0
    wmf.Add(0x02fc, {0, 0xff, 0, 0}).Add(0x02fc, {0, 0xff00, 0, 0}).Add(0x01f0, {1});
    wmf.Add(0x02fc, {0, 0, 0xff, 0}).Add(0x012d, {1}).Rectangle(0, 0, 96, 96);
    EXPECT_EQ(WmfPixel(WmfBytes(wmf), 50, 50), qRgb(0, 0, 255));
}

TEST(Wmf, TextStandsAtItsPlace)
{
    WmfMaker wmf = WmfPage();
    wmf.Add(0x02fb, {-24, 0, 0, 0, 700},
            QByteArray("\0\0\0\0\0\0\0\x22"
                       "Arial\0",
                       14));
    wmf.Add(0x012d, {1}).Add(0x0102, {1}).Add(0x012e, {0x18}).Add(0x0209, {0, 0});
    wmf.Add(0x0521, {4, 0x4848, 0x4848, 60, 10});
    const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
    EXPECT_GT(WmfDark(image, QRect(10, 40, 70, 22)), 200);
    EXPECT_EQ(WmfDark(image, QRect(0, 62, 96, 34)), 0); // nothing below the base line
    EXPECT_EQ(WmfDark(image, QRect(0, 0, 96, 38)), 0);
    EXPECT_EQ(WmfDark(image, QRect(0, 0, 9, 96)), 0);
}

TEST(Wmf, TurnedTextRunsUpwards)
{
    WmfMaker wmf = WmfPage();
    wmf.Add(0x02fb, {-20, 0, 900, 900, 700},
            QByteArray("\0\0\0\0\0\0\0\x22"
                       "Arial\0",
                       14));
    wmf.Add(0x012d, {1}).Add(0x0102, {1}).Add(0x012e, {0x18});
    wmf.Add(0x0521, {4, 0x4848, 0x4848, 90, 50});
    const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
    EXPECT_GT(WmfDark(image, QRect(32, 30, 19, 62)), 200);
    EXPECT_EQ(WmfDark(image, QRect(52, 0, 44, 96)), 0);
}

TEST(Wmf, ExtendedTextFillsItsBoxAndKeepsItsDistances)
{
    WmfMaker wmf = WmfPage();
    wmf.Add(0x02fb, {-20, 0, 0, 0, 700},
            QByteArray("\0\0\0\0\0\0\0\x22"
                       "Arial\0",
                       14));
    wmf.Add(0x012d, {1}).Add(0x012e, {0x18}).Add(0x0201, {0xffff, 0}).Add(0x0102, {1});
    wmf.Add(0x0a32, {60, 5, 2, 2, 0, 30, 96, 70, 0x4949, 60, 10});
    const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
    EXPECT_EQ(image.pixel(90, 32), qRgb(255, 255, 0));
    EXPECT_EQ(image.pixel(90, 75), qRgb(255, 255, 255));
    EXPECT_GT(WmfDark(image, QRect(4, 40, 10, 21)), 20);
    EXPECT_GT(WmfDark(image, QRect(64, 40, 10, 21)), 20);
    EXPECT_EQ(WmfDark(image, QRect(16, 30, 46, 40)), 0);
}

TEST(Wmf, BitmapsAreStretchedAndMirrored)
{
    for (const bool mirrored : {false, true}) {
        WmfMaker wmf = WmfPage();
        wmf.Add(0x0107, {3})
            .Add(0x0f43,
                 {0x20, 0xcc, 0, 8, 8, 0, 0, 64, mirrored ? -64 : 64, 16, mirrored ? 80 : 16},
                 making::MakeDib(8, 8));
        const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
        const QRgb left = image.pixel(18, 18);
        const QRgb right = image.pixel(77, 18);
        const QRgb first = making::PlaceColour(0, 0, 8, 8);
        const QRgb last = making::PlaceColour(7, 0, 8, 8);
        EXPECT_LT(making::ColourDistance(mirrored ? right : left, first), 12);
        EXPECT_LT(making::ColourDistance(mirrored ? left : right, last), 12);
        EXPECT_EQ(image.pixel(8, 40), qRgb(255, 255, 255));
    }
}

TEST(Wmf, RasterOperationsOfBitmapsCombine)
{
    // SRCINVERT with a white ground, then SRCAND of the same.
    WmfMaker wmf = WmfPage();
    wmf.Add(0x0b41, {0x46, 0x66, 8, 8, 0, 0, 64, 64, 16, 16}, making::MakeDib(8, 8));
    const QImage inverted = making::DecodeBytes(WmfBytes(wmf)).Pixels();
    EXPECT_EQ(inverted.pixel(19, 19), QRgb(~making::PlaceColour(0, 0, 8, 8)) | 0xff000000);
    wmf.Add(0x0b41, {0xc6, 0x88, 8, 8, 0, 0, 64, 64, 16, 16}, making::MakeDib(8, 8));
    EXPECT_EQ(WmfPixel(WmfBytes(wmf), 19, 19), qRgb(0, 0, 0));
    // Inverting takes no source: what is white becomes black.
    WmfMaker plain = WmfPage();
    plain.Add(0x061d, {0x09, 0x55, 32, 32, 16, 16});
    EXPECT_EQ(WmfPixel(WmfBytes(plain), 20, 20), qRgb(0, 0, 0));
    EXPECT_EQ(WmfPixel(WmfBytes(plain), 60, 60), qRgb(255, 255, 255));
}

TEST(Wmf, PatternBrushRepeatsItsPicture)
{
    WmfMaker wmf = WmfPage();
    wmf.Add(0x0142, {5, 0}, making::MakeDib(8, 8)).Add(0x012d, {1}).Rectangle(0, 0, 96, 96);
    const QImage image = making::DecodeBytes(WmfBytes(wmf)).Pixels();
    for (int i = 8; i < 88; ++i) {
        EXPECT_EQ(image.pixel(i, 20), image.pixel(i - 8, 12));
    }
    EXPECT_NE(image.pixel(9, 20), image.pixel(14, 20));
}

TEST(Wmf, FiguresThatStandOutOfAFrameThatIsTooSmallAreSeen)
{
    WmfMaker wmf = WmfPage();
    wmf.Brush(0).Rectangle(48, 10, 120, 60);
    const ImageFacts facts = making::ProbeBytes(WmfBytes(wmf));
    EXPECT_EQ(facts.width, 120);
    EXPECT_EQ(facts.height, 96);
    WmfMaker far = WmfPage();
    far.Brush(0).Rectangle(-5000, -5000, 5000, 5000);
    EXPECT_EQ(making::ProbeBytes(WmfBytes(far)).width, 96);
}

TEST(Wmf, AFileThatEndsEarlyIsShownInPart)
{
    const QByteArray whole =
        WmfBytes(WmfPage().Brush(0).Rectangle(0, 0, 40, 40).Rectangle(50, 50, 90, 90));
    EXPECT_FALSE(making::DecodeBytes(whole).IsPartial());
    const Bitmap cut = making::DecodeBytes(whole.left(whole.size() - 16));
    EXPECT_TRUE(cut.IsPartial());
    EXPECT_EQ(cut.Pixels().pixel(20, 20), qRgb(0, 0, 0));
    EXPECT_EQ(cut.Pixels().pixel(70, 70), qRgb(255, 255, 255));
    EXPECT_EQ(making::RefusalOf([&] { making::DecodeBytes(whole.left(60)); }).number,
              kFailureUnreadable);
}

} // namespace

} // namespace quillane
