#pragma once
#include "imaging/bitmap.h"
#include "imaging/region.h"

namespace quillane::processing {

/// Which colours get noise.
enum class NoiseChannel : qint32 { All = 0, Red = 1, Green = 2, Blue = 3 };

/// Adds to each value a random one of -range / 1000 to range / 1000 of the full range, 0..1000;
/// each colour its own, clamped, alpha kept. The same seed gives the same noise. A grey picture
/// has noise of all channels at once, whichever is asked for. Black and white becomes grey of 8
/// bits, a palette full colour and CMYK RGB. With a region (not null) only the pixels in it
/// change. Failure kFailureGeneral without a picture, kFailureLimit without memory.
Bitmap AddNoise(const Bitmap& picture, const Region* region, qint32 range, NoiseChannel channel,
                quint32 seed);

} // namespace quillane::processing
