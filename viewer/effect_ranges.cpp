#include "viewer/effect_ranges.h"
#include "imaging/processing/colour.h"
#include "imaging/processing/contour.h"
#include "imaging/processing/depth.h"
#include "imaging/processing/filters.h"
#include "imaging/processing/geometry.h"
#include "imaging/processing/halftone.h"
#include "imaging/processing/neighbourhood.h"
#include "imaging/processing/noise.h"
#include "imaging/processing/tone.h"
#include "imaging/resize.h"
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

constexpr quint32 kEffectFlagBits = 0x3FFFFFFF; // of a flag word, without its high bit
constexpr quint32 kPreviewSeed = 1;             // the same noise at every look
constexpr qint32 kEffectLeast = -processing::kMostValue;
constexpr qint32 kEffectMost = processing::kMostValue;
constexpr qint32 kEffectMostTile = 500; // pixels
constexpr qint32 kDotsRepeat = 9000;    // a screen of dots turned by a quarter is the same
constexpr double kDotsVanish = 1.9;     // reduction from which on single dots are not seen
constexpr qint32 kEffectGreyBits = 8;
constexpr qint32 kNearMargin = 2; // filters of three by three, and one to spare

Bitmap ApplySharpen(const EffectInput& input, qint32 value)
{
    // A smooth slope bends more from pixel to pixel the fewer of them there are.
    const auto weaker = qint32(std::lround(value / (input.reduction * input.reduction)));
    return processing::Sharpen(input.picture, input.region, weaker);
}

Bitmap ApplyBrightness(const EffectInput& input, qint32 value)
{
    return processing::Brightness(input.picture, input.region, value);
}

Bitmap ApplyContrast(const EffectInput& input, qint32 value)
{
    return processing::Contrast(input.picture, input.region, value);
}

Bitmap ApplySaturation(const EffectInput& input, qint32 value)
{
    return processing::Saturation(input.picture, input.region, value);
}

Bitmap ApplyHistogramContrast(const EffectInput& input, qint32 value)
{
    if (!input.whole) {
        return processing::HistogramContrast(input.picture, input.region, value);
    }
    const double mean = processing::MeanIntensity(*input.whole, input.wholeRegion);
    return processing::ContrastAround(input.picture, input.region, value, mean);
}

Bitmap ApplyHue(const EffectInput& input, qint32 value)
{
    return processing::Hue(input.picture, input.region, value);
}

Bitmap ApplyHalftone(const EffectInput& input, qint32 value)
{
    // On a copy that small the dots would stand too far apart; from afar they are grey.
    if (input.reduction >= kDotsVanish) {
        return processing::Grayscale(input.picture, input.region, kEffectGreyBits);
    }
    return processing::Halftone(input.picture, input.region, processing::HalftoneType::Dots, value);
}

Bitmap ApplyPosterize(const EffectInput& input, qint32 value)
{
    return processing::Posterize(input.picture, input.region, value);
}

Bitmap ApplyMosaic(const EffectInput& input, qint32 value)
{
    return processing::Mosaic(input.picture, input.region, ReducedSize(value, input.reduction));
}

Bitmap ApplyAverage(const EffectInput& input, qint32 value)
{
    return processing::Average(input.picture, input.region, ReducedSize(value, input.reduction));
}

Bitmap ApplyMedian(const EffectInput& input, qint32 value)
{
    return processing::Median(input.picture, input.region, ReducedSize(value, input.reduction));
}

qint32 NearMargin(qint32)
{
    return kNearMargin;
}

qint32 HalfMargin(qint32 size)
{
    return size / 2 + 1;
}

constexpr EffectRange ThousandRange(const char* label)
{
    return {"Value", label, kEffectLeast, kEffectMost, 10, 100, 1, ""};
}

constexpr EffectRange PixelRange(qint32 most)
{
    return {"Value", "&Size:", 0, most, 1, 10, 1, " px"};
}

// clang-format off
constexpr ValueEffect kValueEffects[] = {
    {   1, "Sharpen",            ThousandRange("&Sharpness:"),  EffectReach::Near,  ApplySharpen, NearMargin},
    {   2, "Brightness",         ThousandRange("Bri&ghtness:"), EffectReach::Own,   ApplyBrightness},
    {   4, "Contrast",           ThousandRange("Con&trast:"),   EffectReach::Own,   ApplyContrast},
    {   8, "Saturation",         ThousandRange("&Saturation:"), EffectReach::Own,   ApplySaturation},
    {  16, "Histogram Contrast", ThousandRange("Con&trast:"),   EffectReach::Whole, ApplyHistogramContrast},
    {  32, "Hue",       {"Value", "&Angle:", -18000, 18000, 100, 1500, 100, "°"},   EffectReach::Own,  ApplyHue},
    {  64, "Halftone",  {"Value", "&Angle:", 0, kDotsRepeat, 100, 1500, 100, "°"},  EffectReach::Near, ApplyHalftone},
    { 128, "Posterize", {"Value", "&Levels:", 2, 256, 1, 8, 1, ""},                 EffectReach::Own,  ApplyPosterize},
    { 256, "Mosaic",    PixelRange(kEffectMostTile),                   EffectReach::Own, ApplyMosaic,  nullptr, true},
    { 512, "Average",   PixelRange(processing::kMostNeighbours), EffectReach::Own, ApplyAverage, HalfMargin},
    {1024, "Median",    PixelRange(processing::kMostNeighbours), EffectReach::Own, ApplyMedian,  HalfMargin},
};

constexpr FilterGroup kFilterGroups[] = {
    {  1, "Gradiant"},
    {  2, "Laplacian"},
    {  4, "Sobel"},
    {  8, "Prewitt"},
    { 16, "Shift and Difference"},
    { 32, "Line Segment"},
    { 64, "Erosion"},
    {128, "Dilation"},
};

constexpr DepthEntry kDepthEntries[] = {
    { 1, "1 bit: black and white",                  false, true },
    { 4, "4 bits: at most 16 colors",               true,  true },
    { 8, "8 bits: at most 256 colors",              true,  true },
    {16, "16 bits: 65,536 grays",                   false, false},
    {24, "24 bits: full color",                     false, false},
    {32, "32 bits: full color and transparency",    false, false},
    {48, "48 bits: deep color",                     false, false},
    {64, "64 bits: deep color and transparency",    false, false},
};

constexpr const char* kContourOptionWords[] = {
    "Black lines on white",
    "White lines on black",
    "Black lines on the picture",
    "Filled steps",
    "Filled steps with lines",
};
// clang-format on

/// The part that is looked at with the whole picture below it, so that both have one palette.
Bitmap DepthOfPart(const EffectInput& input, qint32 bits, const processing::DepthChoice& choice)
{
    const Bitmap& part = input.picture;
    const QImage shown = part.ToDisplay();
    const QImage whole =
        Resized(*input.whole, {part.Width(), input.whole->Height()}, ResizeWay::Resample)
            .ToDisplay();
    QImage both(shown.width(), shown.height() + whole.height(), shown.format());
    if (both.isNull()) {
        return processing::ToDepth(part, bits, choice);
    }
    both.fill(Qt::white);
    {
        QPainter painter(&both);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(0, 0, shown);
        painter.drawImage(0, shown.height(), whole);
    }
    const bool alpha = both.hasAlphaChannel();
    const Bitmap joined(both.convertToFormat(alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32),
                        ColourModel::Rgb, alpha ? 32 : 24);
    return processing::Trim(processing::ToDepth(joined, bits, choice), shown.rect());
}

} // namespace

qint32 IntoRange(const EffectRange& range, qint32 value)
{
    return std::clamp(value, range.least, range.most);
}

std::span<const ValueEffect> ValueEffects()
{
    return kValueEffects;
}

const ValueEffect* FindValueEffect(quint32 flags)
{
    const auto* const found =
        std::find_if(std::begin(kValueEffects), std::end(kValueEffects),
                     [&](const ValueEffect& row) { return row.flag == (flags & kEffectFlagBits); });
    return found == std::end(kValueEffects) ? nullptr : found;
}

EffectWish WishOf(const ValueEffect& effect, qint32 value)
{
    EffectWish wish;
    wish.work = [&effect, value](const EffectInput& input) { return effect.apply(input, value); };
    wish.reach = effect.reach;
    wish.margin = effect.margin ? effect.margin(value) : 0;
    wish.grid = effect.tiles ? std::max(1, value) : 1;
    return wish;
}

std::span<const FilterGroup> FilterGroups()
{
    return kFilterGroups;
}

const FilterGroup* FindFilterGroup(quint32 flags)
{
    const auto* const found =
        std::find_if(std::begin(kFilterGroups), std::end(kFilterGroups),
                     [&](const FilterGroup& row) { return row.flag == (flags & kEffectFlagBits); });
    return found == std::end(kFilterGroups) ? nullptr : found;
}

bool IsBinaryGroup(const FilterGroup& group)
{
    return group.flag >= quint32(processing::FilterFamily::Erosion);
}

std::vector<FilterEntry> FiltersOf(const FilterGroup& group)
{
    std::vector<FilterEntry> entries;
    const auto add = [&](const auto& kernels) {
        entries.reserve(kernels.size());
        for (const auto& kernel : kernels) {
            if (quint32(kernel.family) == group.flag) {
                entries.push_back({kernel.code, kernel.name});
            }
        }
    };
    if (IsBinaryGroup(group)) {
        add(processing::BinaryKernels());
    } else {
        add(processing::SpatialKernels());
    }
    return entries;
}

EffectWish FilterWish(const FilterGroup& group, qint32 code)
{
    EffectWish wish;
    const bool binary = IsBinaryGroup(group);
    wish.work = [binary, code](const EffectInput& input) {
        return binary ? processing::BinaryFilter(input.picture, input.region, code)
                      : processing::SpatialFilter(input.picture, input.region, code);
    };
    wish.reach = EffectReach::Near;
    wish.margin = kNearMargin;
    return wish;
}

qint32 GammaStart(qint32 gamma)
{
    return gamma < kGammaRange.least ? kGammaNeutral : IntoRange(kGammaRange, gamma);
}

EffectWish NoiseWish(qint32 range, qint32 channel)
{
    const auto colours = processing::NoiseChannel(std::clamp(channel, 0, 3));
    EffectWish wish;
    wish.work = [range, colours](const EffectInput& input) {
        // The mean of pixels has less noise than each of them.
        const auto less = qint32(std::lround(range / input.reduction));
        return processing::AddNoise(input.picture, input.region, less, colours, kPreviewSeed);
    };
    wish.reach = EffectReach::Near;
    return wish;
}

EffectWish EmbossWish(qint32 direction, qint32 depth)
{
    EffectWish wish;
    wish.work = [direction, depth](const EffectInput& input) {
        // A slope rises more from pixel to pixel the fewer of them there are.
        const auto lower = qint32(std::lround(depth / input.reduction));
        return processing::Emboss(input.picture, input.region, direction, lower);
    };
    wish.reach = EffectReach::Near;
    wish.margin = kNearMargin;
    return wish;
}

EffectWish GammaWish(qint32 gamma)
{
    EffectWish wish;
    wish.work = [gamma](const EffectInput& input) {
        return processing::GammaCorrect(input.picture, input.region, gamma);
    };
    return wish;
}

EffectWish IntensityWish(qint32 low, qint32 high)
{
    EffectWish wish;
    wish.work = [low, high](const EffectInput& input) {
        return processing::IntensityDetect(input.picture, input.region, low, high);
    };
    return wish;
}

EffectWish DepthWish(qint32 bits, qint32 palette, qint32 dither)
{
    const processing::DepthChoice choice{processing::PaletteChoice(std::clamp(palette, 0, 2)),
                                         processing::DitherChoice(std::clamp(dither, 0, 1))};
    EffectWish wish;
    wish.work = [bits, choice](const EffectInput& input) {
        const bool ownPalette =
            choice.palette == processing::PaletteChoice::Best && (bits == 4 || bits == 8);
        return ownPalette && input.whole ? DepthOfPart(input, bits, choice)
                                         : processing::ToDepth(input.picture, bits, choice);
    };
    wish.reach = EffectReach::Palette;
    return wish;
}

EffectWish ContourWish(qint32 threshold, qint32 interval, qint32 smoothing, qint32 option)
{
    EffectWish wish;
    wish.work = [=](const EffectInput& input) {
        return processing::ContourFilter(input.picture, input.region,
                                         {threshold, interval,
                                          ReducedSize(smoothing, input.reduction),
                                          processing::ContourOption(std::clamp(option, 0, 4))});
    };
    wish.margin = smoothing / 2 + kNearMargin;
    return wish;
}

EffectWish RotateWish(qint32 angle, bool resize, qint32 fill)
{
    EffectWish wish;
    wish.work = [=](const EffectInput& input) {
        return processing::Rotate(input.picture, input.region, angle, resize,
                                  processing::RgbOfColour(fill));
    };
    wish.reach = EffectReach::Turn;
    return wish;
}

EffectWish ShearWish(qint32 angle, bool horizontal, qint32 fill)
{
    EffectWish wish;
    wish.work = [=](const EffectInput& input) {
        return processing::Shear(input.picture, input.region, angle, horizontal,
                                 processing::RgbOfColour(fill));
    };
    wish.reach = EffectReach::Turn;
    return wish;
}

std::span<const DepthEntry> DepthEntries()
{
    return kDepthEntries;
}

std::span<const char* const> ContourOptions()
{
    return kContourOptionWords;
}

} // namespace quillane
