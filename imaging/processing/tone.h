#pragma once
// Operations that give each value another one: the same for all three colours, alpha kept.
// All accept every picture; black and white becomes grey of 8 bits, a palette full colour and CMYK
// RGB. With a region (not null) only the pixels in it change. Arguments beyond their range are
// taken as its end. Failure kFailureGeneral without a picture, kFailureLimit without memory.
#include "imaging/bitmap.h"
#include "imaging/region.h"

namespace quillane::processing {

/// Range of brightness, contrast, saturation and their like.
inline constexpr qint32 kMostValue = 1000;

/// Adds value / 1000 of the full range: -1000 gives black, 1000 white.
Bitmap Brightness(const Bitmap& picture, const Region* region, qint32 value);
/// Steepens the values around middle grey by tan((1 + value / 1000) * 45 degrees): -1000 gives
/// plain grey, 0 the same picture, 1000 only the darkest and the brightest of each colour.
Bitmap Contrast(const Bitmap& picture, const Region* region, qint32 value);
/// As Contrast, around the mean intensity of the picture or of the region instead of middle grey,
/// so that its brightness as a whole stays.
Bitmap HistogramContrast(const Bitmap& picture, const Region* region, qint32 value);
/// What HistogramContrast goes around, 0..1; 0 for a region beside the picture.
double MeanIntensity(const Bitmap& picture, const Region* region);
/// HistogramContrast around a mean that is known: that of a larger picture whose part this is.
Bitmap ContrastAround(const Bitmap& picture, const Region* region, qint32 value, double mean);
/// Raises values v of 0..1 to the power 100 / gamma: above 100 brightens. gamma 1..10000.
Bitmap GammaCorrect(const Bitmap& picture, const Region* region, qint32 gamma);
/// The negative.
Bitmap Invert(const Bitmap& picture, const Region* region);
/// Leaves so many levels of each colour, evenly spread from none to full: 2..256.
Bitmap Posterize(const Bitmap& picture, const Region* region, qint32 levels);
/// Spreads the values between the least and the largest of any colour over the full range.
Bitmap StretchIntensity(const Bitmap& picture, const Region* region);
/// Spreads the intensities so that each range of them holds as many pixels; the three colours of
/// a pixel are raised or lowered by the same amount.
Bitmap HistogramEqualize(const Bitmap& picture, const Region* region);
/// White where the intensity lies within low..high of 0..255, the ends included; else black.
Bitmap IntensityDetect(const Bitmap& picture, const Region* region, qint32 low, qint32 high);

} // namespace quillane::processing
