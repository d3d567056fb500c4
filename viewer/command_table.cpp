#include "viewer/command_table.h"

namespace quillane {

namespace {

using enum CommandDialog;
using Lead = EngineInstance;
using Values = CommandValues;

constexpr qint32 kWhiteFill = 0xFFFFFF;
constexpr qint32 kShiftAndDifference = 16; ///< filter code
constexpr qint32 kCombineEdges = 768;      ///< flags of Combine

/// The filter's edges, laid over the picture that they were found in.
void EdgeEnhance(Lead& lead, const Values&)
{
    const Bitmap before = lead.Bitmap();
    lead.SpatialFilter(kShiftAndDifference);
    lead.Combine(0, 0, lead.BitmapWidth(), lead.BitmapHeight(), before, 0, 0, kCombineEdges);
}

void NightEnhance(Lead& lead, const Values&)
{
    lead.GammaCorrect(150);
    lead.Brightness(100);
    lead.Contrast(100);
    lead.Saturation(400);
}

void SpatialResult(Lead& lead, const Values& v)
{
    lead.SpatialFilter(v[0]);
}

void BinaryResult(Lead& lead, const Values& v)
{
    lead.BinaryFilter(v[1]);
}

void TurnBy(Lead& lead, const Values& v)
{
    lead.Rotate(v[0], v[1], v[2]);
}

// clang-format off
constexpr EnhanceCommand kEnhanceCommands[] = {
    {"mnuImage", "mnuRotate90", u"Rotate 90    (90 deg. Right)", None, 0, {9000, 1, kWhiteFill}, TurnBy, true},
    {"mnuImage", "mnuRotate180", u"Rotate 180  (Flip)", None, 0, {18000, 1, kWhiteFill}, TurnBy, true},
    {"mnuImage", "mnuRotate270", u"Rotate 270  (90 deg. Left)", None, 0, {27000, 1, kWhiteFill}, TurnBy, true},
    {"mnuImage", "mnuRotateAngle", u"Rotate by Angle...", Rotate, 3, {0, 0, kWhiteFill}, TurnBy, true},
    {"mnuImage", "mnuFlipImage", u"Flip", None, 0, {}, [](Lead& l, const Values&) { l.Flip(); }, true},
    {"mnuImage", "mnuReverse", u"Mirror", None, 0, {}, [](Lead& l, const Values&) { l.Reverse(); }, true},
    {"mnuImage", "mnuShear", u"Shear...", Rotate, 4, {0, 0, kWhiteFill}, [](Lead& l, const Values& v) { l.Shear(v[0], v[1] != 0, v[2]); }, true},
    {"mnuImage", "mnuResize", u"Resize...", Resize, 0, {}, [](Lead& l, const Values& v) { l.Resize(float(v[0]), float(v[1]), v[2]); }, true},

    {"mnuEffects", "mnuPosterize", u"Posterize...", Value, 128, {0}, [](Lead& l, const Values& v) { l.Posterize(v[0]); }, true},
    {"mnuEffects", "mnuMosaic", u"Mosaic...", Value, 256, {0}, [](Lead& l, const Values& v) { l.Mosaic(v[0]); }, true},
    {"mnuEffects", "mnuAverage", u"Average...", Value, 512, {0}, [](Lead& l, const Values& v) { l.Average(v[0]); }, true},
    {"mnuEffects", "mnuMedian", u"Median...", Value, 1024, {0}, [](Lead& l, const Values& v) { l.Median(v[0]); }, true},
    {"mnuEffects", "mnuSharpen", u"Sharpen...", Value, 1, {0}, [](Lead& l, const Values& v) { l.Sharpen(v[0]); }, true},
    {"mnuEffects", "mnuEmboss", u"Emboss...", Emboss, 0, {0, 0}, [](Lead& l, const Values& v) { l.Emboss(v[0], v[1]); }, true},
    {"mnuEffects", "mnuAddNoise", u"Add Noise...", Noise, 0, {0, 0}, [](Lead& l, const Values& v) { l.AddNoise(v[0], v[1]); }, true},
    {"mnuEffects", "mnuEdgeEnhance", u"Edge Enhance", None, 0, {}, EdgeEnhance, true},
    {"mnuSpatialFilters", "mnuGradiant", u"Gradiant...", Filter, 1, {}, SpatialResult, true},
    {"mnuSpatialFilters", "mnuLaplacian", u"Laplacian...", Filter, 2, {}, SpatialResult, true},
    {"mnuSpatialFilters", "mnuSobel", u"Sobel...", Filter, 4, {}, SpatialResult, true},
    {"mnuSpatialFilters", "mnuPrewitt", u"Prewitt...", Filter, 8, {}, SpatialResult, true},
    {"mnuSpatialFilters", "mnuShiftDifference", u"Shift and Difference...", Filter, 16, {}, SpatialResult, true},
    {"mnuSpatialFilters", "mnuLineSegment", u"Line Segment...", Filter, 32, {}, SpatialResult, true},
    {"mnuBinaryFilters", "mnuErosion", u"Erosion...", Filter, 64, {}, BinaryResult, true},
    {"mnuBinaryFilters", "mnuDialation", u"Dilation...", Filter, 128, {}, BinaryResult, true},
    {"mnuEffects", "mnuDateStamp", u"Add Date/Time Stamp", None, 0, {}, nullptr, false},

    {"mnuColors", "mnuGrayscale", u"Grayscale", None, 0, {8}, [](Lead& l, const Values& v) { l.Grayscale(v[0]); }, true},
    {"mnuColors", "mnuChangeColorDepth", u"Change Color Depth", ColorDepth, 0xFFFFFFD, {}, [](Lead& l, const Values& v) { l.ChangeColorDepth(v[0], v[1], v[2]); }, true},
    {"mnuColors", "mnuHalftone", u"Halftone", Value, 64, {0}, [](Lead& l, const Values& v) { l.Halftone(1, v[0]); }, true},
    {"mnuColors", "mnuInvert", u"Invert", None, 0, {}, [](Lead& l, const Values&) { l.Invert(); }, true},
    {"mnuColors", "mnuBrightness", u"Brightness...", Value, 2, {0}, [](Lead& l, const Values& v) { l.Brightness(v[0]); }, true},
    {"mnuColors", "mnuContrast", u"Contrast...", Value, 4, {0}, [](Lead& l, const Values& v) { l.Contrast(v[0]); }, true},
    {"mnuColors", "mnuHistogramContrast", u"Histogram Contrast", Value, 16, {0}, [](Lead& l, const Values& v) { l.HistogramContrast(v[0]); }, true},
    {"mnuColors", "mnuHue", u"Hue...", Value, 32, {0}, [](Lead& l, const Values& v) { l.Hue(v[0]); }, true},
    {"mnuColors", "mnuSaturation", u"Saturation", Value, 8, {0}, [](Lead& l, const Values& v) { l.Saturation(v[0]); }, true},
    {"mnuColors", "mnuViewHistogram", u"View Histogram", Histogram, 0, {}, nullptr, false},
    {"mnuColors", "mnuHistogramEqualize", u"Histogram Equalize", None, 0, {}, [](Lead& l, const Values&) { l.HistogramEqualize(); }, true},
    {"mnuColors", "mnuStretchIntensity", u"Stretch Intensity", None, 0, {}, [](Lead& l, const Values&) { l.StretchIntensity(); }, true},
    {"mnuColors", "mnuGammaCorrection", u"Gamma Correction...", Gamma, 0, {0}, [](Lead& l, const Values& v) { l.GammaCorrect(v[0]); }, true},
    {"mnuColors", "mnuIntenistyDetect", u"Intensity Detect", Intensity, 0, {0, 255}, [](Lead& l, const Values& v) { l.IntensityDetect(v[0], v[1]); }, true},
    {"mnuColors", "mnuContourFill", u"Contour Fill", Contour, 125, {31}, [](Lead& l, const Values& v) { l.ContourFilter(v[0], v[1], v[2], v[3]); }, true},
    {"mnuColors", "mnuFill", u"Fill", FillColor, 0, {}, [](Lead& l, const Values& v) { l.FillColor(v[0]); }, true},
    {"mnuColors", "mnuCountUniqueColors", u"Count Unique Colors", MessageBox, 0, {}, nullptr, false},
    {"mnuColors", "mnuNightEnhance", u"Night Enhance", None, 0, {}, NightEnhance, false},
};
// clang-format on

} // namespace

std::span<const EnhanceCommand> EnhanceCommands()
{
    return kEnhanceCommands;
}

const EnhanceCommand* FindEnhanceCommand(QLatin1String name)
{
    for (const EnhanceCommand& command : kEnhanceCommands) {
        if (name == QLatin1String(command.name)) {
            return &command;
        }
    }
    return nullptr;
}

void RunEnhanceCommand(const EnhanceCommand& command, const EngineInstance& LEAD1,
                       EngineInstance& LEAD2, const CommandRoad& road)
{
    if (command.undo) {
        LEAD2.SetBitmap(LEAD1.Bitmap());
    }
    const CommandValues values =
        command.dialog == CommandDialog::None ? command.start : road.ask(command);
    if (command.work) {
        road.run([&](EngineInstance& lead) { command.work(lead, values); });
    }
}

void UndoLast(EngineInstance& LEAD1, const EngineInstance& LEAD2)
{
    LEAD1.SetBitmap(LEAD2.Bitmap());
}

QString UniqueColorsText(qint64 colours)
{
    return QStringLiteral("Bitmap contains %1 unique colors").arg(colours);
}

} // namespace quillane
