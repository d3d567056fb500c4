#pragma once
// Operations that move pixels. Failure kFailureGeneral without a picture, kFailureLimit where
// the result is larger than a picture may be.
#include "imaging/bitmap.h"
#include "imaging/region.h"

namespace quillane::processing {

/// Upside down. Any layout stays as it is; in a region black and white becomes grey of 8 bits. In
/// a region the rows of its bounds change places, and only its own pixels are written.
Bitmap Flip(const Bitmap& picture, const Region* region);
/// Mirrored left to right; as Flip otherwise.
Bitmap Reverse(const Bitmap& picture, const Region* region);
/// Turned to the right by hundredths of a degree (any number). With `resize` the result holds the
/// whole turned picture, else it is as large as before, seen from the middle. What the picture
/// does not cover gets the colour `fill`. Quarter turns that need no fill keep every layout and
/// every pixel; other turns mix neighbours, for which black and white becomes grey of 8 bits, a
/// palette full colour and CMYK RGB (grey RGB too when `fill` has a colour). In a region, what
/// lies in its bounds turns around their middle and only its own pixels are written.
Bitmap Rotate(const Bitmap& picture, const Region* region, qint32 angle, bool resize, QRgb fill);
/// Slanted by hundredths of a degree, -4500..4500: rows move right the further down they stand, or
/// (not `horizontal`) columns move down the further right. The result holds the whole picture; in
/// a region its bounds stay. Layouts as with Rotate.
Bitmap Shear(const Bitmap& picture, const Region* region, qint32 angle, bool horizontal, QRgb fill);
/// What lies in the rectangle, in any layout; what of it lies beside the picture is left out.
/// Failure kFailureGeneral where nothing remains.
Bitmap Trim(const Bitmap& picture, QRect part);

} // namespace quillane::processing
