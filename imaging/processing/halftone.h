#pragma once
#include "imaging/bitmap.h"
#include "imaging/region.h"

namespace quillane::processing {

/// What the screen of a halftone is made of.
enum class HalftoneType : qint32 { Lines = 0, Dots = 1 };

/// Black and white by a printer's screen of lines or dots eight pixels apart, turned by hundredths
/// of a degree: the darker the picture, the wider they are. Values become none or full; depth and
/// alpha stay (black and white becomes grey of 8 bits, a palette full colour and CMYK RGB). With a
/// region (not null) only the pixels in it change. Failure kFailureGeneral without a picture,
/// kFailureLimit without memory.
Bitmap Halftone(const Bitmap& picture, const Region* region, HalftoneType type, qint32 angle);

} // namespace quillane::processing
