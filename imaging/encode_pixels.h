#pragma once
// Brings a picture to what a variant stores.
#include "imaging/encode.h"

namespace quillane {

/// The picture at `bits` (one of the variant's depths) in its colours, in these layouts:
/// 1 Format_Mono with two colours; 2 to 8 Indexed8 with at most so many colours as the bits tell
/// apart, or Grayscale8 of 8 bits; 16 Grayscale16, RGB32 (kColourIn16) or ARGB32 of greys
/// (kBlendedGrey); 24 RGB32; 32 ARGB32, RGBA64 of greys (kBlendedGrey) or CMYK; 48 RGBX64;
/// 64 RGBA64. Clears `icc` where it does not belong to the pixels any more. Failure kFailureLimit
/// for want of memory.
Bitmap PixelsFor(const SaveVariant& variant, const Bitmap& picture, qint32 bits, QByteArray& icc);

/// Colours as ink without a profile: black is what red, green and blue have in common; showing it
/// again gives the same colours. `pixels` is RGB32; the answer is laid out as ColourModel::Cmyk.
QImage PlainSrgbToCmyk(const QImage& pixels);

} // namespace quillane
