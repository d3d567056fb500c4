#pragma once
#include "imaging/bitmap.h"
#include "imaging/region.h"
#include <array>

namespace quillane::processing {

/// What a histogram counts.
enum class HistogramChannel : qint32 { Master = 0, Red = 1, Green = 2, Blue = 3 };
/// Pixels of each of 256 levels.
using HistogramTable = std::array<qint64, 256>;

/// How many pixels of the picture, or of the region (not null), have each intensity (Master) or
/// each value of a colour; 16 bits a channel count by their upper half. The levels sum to the
/// number of pixels. CMYK counts as RGB. Failure kFailureGeneral without a picture.
HistogramTable Histogram(const Bitmap& picture, const Region* region, HistogramChannel channel);

/// How many different colours the picture or the region has, exactly: values of grey, of red,
/// green and blue (alpha aside), or of the four inks; colours of a palette that are used. Failure
/// kFailureGeneral without a picture.
qint64 UniqueColors(const Bitmap& picture, const Region* region);

} // namespace quillane::processing
