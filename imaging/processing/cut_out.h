#pragma once
#include "imaging/bitmap.h"
#include "imaging/region.h"

namespace quillane::processing {

/// The pixels in the region's bounds as a picture of their own, transparent outside its shape; a
/// rectangle keeps the picture's layout, other shapes are RGB with alpha, 8 or 16 bits a channel
/// as the picture. Failure kFailureGeneral without a picture or where the region lies beside it.
Bitmap CutOut(const Bitmap& picture, const Region& region);
/// The picture with the pixels of another one copied into a region of it, alpha too; `place` is
/// where the upper left pixel of the other one lies. The region's pixels that the other one does
/// not reach stay. Both are brought to what they have in common: the layout stays where it is the
/// same, a palette becomes full colour, CMYK RGB, black and white grey of 8 bits, and grey RGB
/// under colours; the depth is the picture's. Failure kFailureGeneral where one is missing.
Bitmap PastedInto(const Bitmap& picture, const Region& region, const Bitmap& pixels, QPoint place);

} // namespace quillane::processing
