#pragma once
// The values that the dialogs ask: one table of each kind, with words, ranges and the operation.
#include "viewer/effect_preview.h"
#include <span>

namespace quillane {

/// A number that a dialog asks, in the operation's own units.
struct EffectRange {
    const char* name;  ///< of the controls: "Value" makes ValueSlider and ValueBox
    const char* label; ///< with its mnemonic
    qint32 least, most;
    qint32 step, page;  ///< of an arrow key and of a page key
    qint32 divisor = 1; ///< the shown number is the value divided by it: 1, 10 or 100
    const char* unit = "";
};
/// The nearest value that the range has.
qint32 IntoRange(const EffectRange& range, qint32 value);

/// An effect of one value.
struct ValueEffect {
    quint32 flag;      ///< a ValueFlag
    const char* title; ///< as its menu entry names it
    EffectRange range;
    EffectReach reach;
    Bitmap (*apply)(const EffectInput& input, qint32 value);
    /// Sizes in pixels: what the operation looks at around a part.
    qint32 (*margin)(qint32 value) = nullptr;
    bool tiles = false; ///< works on squares as large as the value
};
/// All of them, by rising flag.
std::span<const ValueEffect> ValueEffects();
/// By a flag word, whose high bit does not count; nullptr for an unknown one.
const ValueEffect* FindValueEffect(quint32 flags);
/// The effect with a value, to be tried.
EffectWish WishOf(const ValueEffect& effect, qint32 value);

/// A family of filters.
struct FilterGroup {
    quint32 flag;      ///< a FilterFlag
    const char* title; ///< as its menu entry names it
};
/// All of them, by rising flag.
std::span<const FilterGroup> FilterGroups();
/// By a flag word, whose high bit does not count; nullptr for an unknown one.
const FilterGroup* FindFilterGroup(quint32 flags);
/// Whether the family's codes are those of BinaryFilter.
bool IsBinaryGroup(const FilterGroup& group);
/// One filter of a family.
struct FilterEntry {
    qint32 code;
    const char* name;
};
/// Those of a family, in the order of their codes.
std::vector<FilterEntry> FiltersOf(const FilterGroup& group);
/// The filter to be tried.
EffectWish FilterWish(const FilterGroup& group, qint32 code);

inline constexpr EffectRange kNoiseRange{"Range", "&Amount:", 0, 1000, 5, 50, 10, " %"};
inline constexpr EffectRange kEmbossDepth{"Depth", "&Depth:", 0, 1000, 10, 100};
inline constexpr EffectRange kGammaRange{"Gamma", "&Gamma:", 10, 500, 1, 10, 100};
inline constexpr EffectRange kIntensityLow{"Low", "&Low:", 0, 255, 1, 16};
inline constexpr EffectRange kIntensityHigh{"High", "&High:", 0, 255, 1, 16};
inline constexpr EffectRange kContourThreshold{"Threshold", "&Threshold:", 0, 255, 1, 16};
inline constexpr EffectRange kContourInterval{"Interval", "&Interval:", 1, 255, 1, 16};
inline constexpr EffectRange kContourSmoothing{"Smoothing", "&Smoothing:", 0, 50, 1, 5, 1, " px"};
inline constexpr EffectRange kRotateAngle{"Angle", "&Angle:", -18000, 18000, 100, 1500, 100, "°"};
inline constexpr EffectRange kShearAngle{"Angle", "&Angle:", -4500, 4500, 100, 500, 100, "°"};

/// The gamma that changes nothing.
inline constexpr qint32 kGammaNeutral = 100;
/// What the gamma dialog shows at first: a gamma below the range is none, so it changes nothing.
qint32 GammaStart(qint32 gamma);

EffectWish NoiseWish(qint32 range, qint32 channel);    ///< see processing::AddNoise
EffectWish EmbossWish(qint32 direction, qint32 depth); ///< see processing::Emboss
EffectWish GammaWish(qint32 gamma);                    ///< see processing::GammaCorrect
EffectWish IntensityWish(qint32 low, qint32 high);     ///< see processing::IntensityDetect
EffectWish DepthWish(qint32 bits, qint32 palette, qint32 dither); ///< see processing::ToDepth
/// See processing::ContourFilter.
EffectWish ContourWish(qint32 threshold, qint32 interval, qint32 smoothing, qint32 option);
/// See processing::Rotate; fill has red in its low byte.
EffectWish RotateWish(qint32 angle, bool resize, qint32 fill);
/// See processing::Shear; fill has red in its low byte.
EffectWish ShearWish(qint32 angle, bool horizontal, qint32 fill);

/// A depth that ColorDepthDialog offers.
struct DepthEntry {
    qint32 bits;
    const char* words;
    bool hasPalette; ///< the palette is of use
    bool hasDither;  ///< dithering is of use
};
/// All of them, by rising depth.
std::span<const DepthEntry> DepthEntries();

/// Words of what the contour operation draws, by the number of its option.
std::span<const char* const> ContourOptions();

} // namespace quillane
