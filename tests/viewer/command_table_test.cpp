#include "viewer/command_table.h"

#include <QImage>
#include <gtest/gtest.h>

namespace quillane {

namespace {

using enum CommandDialog;

/// A picture in which no two rows or columns are alike.
Bitmap Motley(int width = 24, int height = 17)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, qRgb((x * 11) % 256, (y * 13 + x) % 256, (x * y * 3) % 256));
        }
    }
    return {image, ColourModel::Rgb, 24};
}

struct Expected {
    const char* name;
    const char16_t* caption;
    CommandDialog dialog;
    quint32 flags;
    CommandValues start;
    bool undo;
    CommandValues chosen; ///< what the dialog gives
    std::function<void(EngineInstance&)> effect;
};

const std::vector<Expected>& Rows()
{
    using E = EngineInstance;
    constexpr qint32 white = 0xFFFFFF;
    static const std::vector<Expected> rows = {
        {"mnuRotate90",
         u"Rotate 90    (90 deg. Right)",
         None,
         0,
         {9000, 1, white},
         true,
         {},
         [](E& l) { l.Rotate(9000, 1, white); }},
        {"mnuRotate180",
         u"Rotate 180  (Flip)",
         None,
         0,
         {18000, 1, white},
         true,
         {},
         [](E& l) { l.Rotate(18000, 1, white); }},
        {"mnuRotate270",
         u"Rotate 270  (90 deg. Left)",
         None,
         0,
         {27000, 1, white},
         true,
         {},
         [](E& l) { l.Rotate(27000, 1, white); }},
        {"mnuRotateAngle",
         u"Rotate by Angle...",
         Rotate,
         3,
         {0, 0, white},
         true,
         {3000, 1, 255},
         [](E& l) { l.Rotate(3000, 1, 255); }},
        {"mnuFlipImage", u"Flip", None, 0, {}, true, {}, [](E& l) { l.Flip(); }},
        {"mnuReverse", u"Mirror", None, 0, {}, true, {}, [](E& l) { l.Reverse(); }},
        {"mnuShear",
         u"Shear...",
         Rotate,
         4,
         {0, 0, white},
         true,
         {1500, 1, 255},
         [](E& l) { l.Shear(1500, true, 255); }},
        {"mnuResize",
         u"Resize...",
         Resize,
         0,
         {},
         true,
         {12, 9, 2},
         [](E& l) { l.Resize(12, 9, 2); }},
        {"mnuPosterize", u"Posterize...", Value, 128, {0}, true, {4}, [](E& l) { l.Posterize(4); }},
        {"mnuMosaic", u"Mosaic...", Value, 256, {0}, true, {5}, [](E& l) { l.Mosaic(5); }},
        {"mnuAverage", u"Average...", Value, 512, {0}, true, {3}, [](E& l) { l.Average(3); }},
        {"mnuMedian", u"Median...", Value, 1024, {0}, true, {3}, [](E& l) { l.Median(3); }},
        {"mnuSharpen", u"Sharpen...", Value, 1, {0}, true, {300}, [](E& l) { l.Sharpen(300); }},
        {"mnuEmboss",
         u"Emboss...",
         Emboss,
         0,
         {0, 0},
         true,
         {2, 500},
         [](E& l) { l.Emboss(2, 500); }},
        {"mnuAddNoise",
         u"Add Noise...",
         Noise,
         0,
         {0, 0},
         true,
         {0, 0},
         [](E& l) { l.AddNoise(0, 0); }},
        {"mnuEdgeEnhance",
         u"Edge Enhance",
         None,
         0,
         {},
         true,
         {},
         [](E& l) {
             const Bitmap before = l.Bitmap();
             l.SpatialFilter(16);
             l.Combine(0, 0, l.BitmapWidth(), l.BitmapHeight(), before, 0, 0, 768);
         }},
        {"mnuGradiant",
         u"Gradiant...",
         Filter,
         1,
         {},
         true,
         {1, 77},
         [](E& l) { l.SpatialFilter(1); }},
        {"mnuLaplacian",
         u"Laplacian...",
         Filter,
         2,
         {},
         true,
         {5, 77},
         [](E& l) { l.SpatialFilter(5); }},
        {"mnuSobel", u"Sobel...", Filter, 4, {}, true, {10, 77}, [](E& l) { l.SpatialFilter(10); }},
        {"mnuPrewitt",
         u"Prewitt...",
         Filter,
         8,
         {},
         true,
         {12, 77},
         [](E& l) { l.SpatialFilter(12); }},
        {"mnuShiftDifference",
         u"Shift and Difference...",
         Filter,
         16,
         {},
         true,
         {14, 77},
         [](E& l) { l.SpatialFilter(14); }},
        {"mnuLineSegment",
         u"Line Segment...",
         Filter,
         32,
         {},
         true,
         {17, 77},
         [](E& l) { l.SpatialFilter(17); }},
        {"mnuErosion",
         u"Erosion...",
         Filter,
         64,
         {},
         true,
         {77, 0},
         [](E& l) { l.BinaryFilter(0); }},
        {"mnuDialation",
         u"Dilation...",
         Filter,
         128,
         {},
         true,
         {77, 4},
         [](E& l) { l.BinaryFilter(4); }},
        {"mnuDateStamp", u"Add Date/Time Stamp", None, 0, {}, false, {}, {}},
        {"mnuGrayscale", u"Grayscale", None, 0, {8}, true, {}, [](E& l) { l.Grayscale(8); }},
        {"mnuChangeColorDepth",
         u"Change Color Depth",
         ColorDepth,
         0xFFFFFFD,
         {},
         true,
         {4, 0, 0},
         [](E& l) { l.ChangeColorDepth(4, 0, 0); }},
        {"mnuHalftone",
         u"Halftone",
         Value,
         64,
         {0},
         true,
         {4500},
         [](E& l) { l.Halftone(1, 4500); }},
        {"mnuInvert", u"Invert", None, 0, {}, true, {}, [](E& l) { l.Invert(); }},
        {"mnuBrightness",
         u"Brightness...",
         Value,
         2,
         {0},
         true,
         {120},
         [](E& l) { l.Brightness(120); }},
        {"mnuContrast",
         u"Contrast...",
         Value,
         4,
         {0},
         true,
         {-120},
         [](E& l) { l.Contrast(-120); }},
        {"mnuHistogramContrast",
         u"Histogram Contrast",
         Value,
         16,
         {0},
         true,
         {200},
         [](E& l) { l.HistogramContrast(200); }},
        {"mnuHue", u"Hue...", Value, 32, {0}, true, {9000}, [](E& l) { l.Hue(9000); }},
        {"mnuSaturation",
         u"Saturation",
         Value,
         8,
         {0},
         true,
         {500},
         [](E& l) { l.Saturation(500); }},
        {"mnuViewHistogram", u"View Histogram", Histogram, 0, {}, false, {}, {}},
        {"mnuHistogramEqualize",
         u"Histogram Equalize",
         None,
         0,
         {},
         true,
         {},
         [](E& l) { l.HistogramEqualize(); }},
        {"mnuStretchIntensity",
         u"Stretch Intensity",
         None,
         0,
         {},
         true,
         {},
         [](E& l) { l.StretchIntensity(); }},
        {"mnuGammaCorrection",
         u"Gamma Correction...",
         Gamma,
         0,
         {0},
         true,
         {180},
         [](E& l) { l.GammaCorrect(180); }},
        {"mnuIntenistyDetect",
         u"Intensity Detect",
         Intensity,
         0,
         {0, 255},
         true,
         {40, 120},
         [](E& l) { l.IntensityDetect(40, 120); }},
        {"mnuContourFill",
         u"Contour Fill",
         Contour,
         125,
         {31},
         true,
         {40, 2, 1, 0},
         [](E& l) { l.ContourFilter(40, 2, 1, 0); }},
        {"mnuFill",
         u"Fill",
         FillColor,
         0,
         {},
         true,
         {0x00FF80},
         [](E& l) { l.FillColor(0x00FF80); }},
        {"mnuCountUniqueColors", u"Count Unique Colors", MessageBox, 0, {}, false, {}, {}},
        {"mnuNightEnhance",
         u"Night Enhance",
         None,
         0,
         {},
         false,
         {},
         [](E& l) {
             l.GammaCorrect(150);
             l.Brightness(100);
             l.Contrast(100);
             l.Saturation(400);
         }},
    };
    return rows;
}

struct Bench {
    Bench() { LEAD1.SetBitmap(Motley()); }
    CommandRoad Road(const CommandValues& chosen)
    {
        CommandRoad road;
        road.ask = [this, chosen](const EnhanceCommand&) {
            ++asked;
            undoWhenAsked = LEAD2.Bitmap().Pixels();
            return chosen;
        };
        road.run = [this](const std::function<void(EngineInstance&)>& work) { work(LEAD1); };
        return road;
    }
    void Do(const char* name, const CommandValues& chosen = {})
    {
        RunEnhanceCommand(*FindEnhanceCommand(QLatin1String(name)), LEAD1, LEAD2, Road(chosen));
    }
    QImage Picture() const { return LEAD1.Bitmap().Pixels(); }
    EngineInstance LEAD1, LEAD2;
    QImage undoWhenAsked;
    int asked = 0;
};

} // namespace

TEST(CommandTable, HoldsEveryRowInTheOrderOfTheMenus)
{
    const auto commands = EnhanceCommands();
    ASSERT_EQ(commands.size(), Rows().size());
    for (size_t i = 0; i < Rows().size(); ++i) {
        const Expected& row = Rows()[i];
        EXPECT_STREQ(commands[i].name, row.name);
        EXPECT_EQ(QString::fromUtf16(commands[i].caption), QString::fromUtf16(row.caption));
        EXPECT_EQ(commands[i].dialog, row.dialog) << row.name;
        EXPECT_EQ(commands[i].flags, row.flags) << row.name;
        EXPECT_EQ(commands[i].start, row.start) << row.name;
        EXPECT_EQ(commands[i].undo, row.undo) << row.name;
    }
}

TEST(CommandTable, EveryCommandDoesWhatItsEngineCallDoes)
{
    for (const Expected& row : Rows()) {
        Bench bench;
        bench.Do(row.name, row.chosen);
        EngineInstance wanted;
        wanted.SetBitmap(Motley());
        if (row.effect) {
            row.effect(wanted);
        }
        EXPECT_EQ(bench.Picture(), wanted.Bitmap().Pixels()) << row.name;
        EXPECT_EQ(bench.asked, row.dialog == None ? 0 : 1) << row.name;
    }
}

TEST(CommandTable, NoiseGoesWhereItIsChosen)
{
    Bench bench;
    bench.Do("mnuAddNoise", {900, 1});
    const QImage before = Motley().Pixels();
    int changed = 0;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            changed += qRed(bench.Picture().pixel(x, y)) != qRed(before.pixel(x, y)) ? 1 : 0;
            EXPECT_EQ(qBlue(bench.Picture().pixel(x, y)), qBlue(before.pixel(x, y)));
        }
    }
    EXPECT_GT(changed, 0);
}

TEST(CommandTable, TheUndoCopyIsTakenBeforeTheDialogAsTheRowSays)
{
    for (const Expected& row : Rows()) {
        Bench bench;
        bench.Do(row.name, row.chosen);
        EXPECT_EQ(bench.LEAD2.HasBitmap(), row.undo) << row.name;
        if (row.undo) {
            EXPECT_EQ(bench.LEAD2.Bitmap().Pixels(), Motley().Pixels()) << row.name;
        }
        if (row.undo && row.dialog != None) {
            EXPECT_EQ(bench.undoWhenAsked, Motley().Pixels()) << row.name;
        }
    }
}

TEST(CommandTable, ACancelledDialogChangesNothingButTheUndoCopy)
{
    for (const Expected& row : Rows()) {
        if (row.dialog == None || !row.undo) {
            continue;
        }
        Bench bench;
        bench.Do("mnuInvert");
        const QImage inverted = bench.Picture();
        CommandRoad road = bench.Road({});
        road.ask = [](const EnhanceCommand&) -> CommandValues {
            throw Failure(kFailureCancelled, QStringLiteral("Cancelled."));
        };
        EXPECT_THROW(RunEnhanceCommand(*FindEnhanceCommand(QLatin1String(row.name)), bench.LEAD1,
                                       bench.LEAD2, road),
                     Failure)
            << row.name;
        EXPECT_EQ(bench.Picture(), inverted) << row.name;
        UndoLast(bench.LEAD1, bench.LEAD2);
        EXPECT_EQ(bench.Picture(), inverted) << row.name << ": the copy is that very picture";
    }
}

TEST(CommandTable, OnlyTheLastOfTwoCommandsIsTakenBackAndASecondUndoChangesNothing)
{
    Bench bench;
    bench.Do("mnuInvert");
    const QImage inverted = bench.Picture();
    bench.Do("mnuFlipImage");
    EXPECT_NE(bench.Picture(), inverted);
    UndoLast(bench.LEAD1, bench.LEAD2);
    EXPECT_EQ(bench.Picture(), inverted);
    UndoLast(bench.LEAD1, bench.LEAD2);
    EXPECT_EQ(bench.Picture(), inverted);
}

TEST(CommandTable, UndoAfterNightEnhanceGoesBackBeforeTheCommandBeforeIt)
{
    Bench bench;
    bench.Do("mnuInvert");
    bench.Do("mnuNightEnhance");
    UndoLast(bench.LEAD1, bench.LEAD2);
    EXPECT_EQ(bench.Picture(), Motley().Pixels());
}

TEST(CommandTable, ARegionStaysThroughUndoAndHoldsEffectsIn)
{
    Bench bench;
    bench.LEAD1.SetRegionRect(4, 3, 8, 6);
    bench.Do("mnuInvert");
    EXPECT_EQ(bench.Picture().pixel(0, 0), Motley().Pixels().pixel(0, 0));
    EXPECT_NE(bench.Picture().pixel(5, 5), Motley().Pixels().pixel(5, 5));
    UndoLast(bench.LEAD1, bench.LEAD2);
    EXPECT_EQ(bench.Picture(), Motley().Pixels());
    EXPECT_EQ(bench.LEAD1.RegionBounds(), QRect(4, 3, 8, 6));
    bench.Do("mnuRotate90");
    EXPECT_EQ(bench.Picture().pixel(0, 0), Motley().Pixels().pixel(0, 0));
    EXPECT_EQ(bench.Picture().size(), Motley().Pixels().size());
}

TEST(CommandTable, AnUnknownNameHasNoRow)
{
    EXPECT_EQ(FindEnhanceCommand(QLatin1String("mnuNothing")), nullptr);
}

TEST(UniqueColors, AreToldInWords)
{
    EXPECT_EQ(UniqueColorsText(7), QStringLiteral("Bitmap contains 7 unique colors"));
    EXPECT_EQ(UniqueColorsText(16'777'216),
              QStringLiteral("Bitmap contains 16777216 unique colors"));
}

} // namespace quillane
