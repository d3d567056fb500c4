#pragma once
// Pictures of few colours, by the library for colour reduction; for imaging/processing/ alone.
#include "imaging/bitmap.h"
#include "imaging/processing/depth.h"
#include <optional>

namespace quillane::processing {

/// The picture (RGB32 or ARGB32) with a palette of all its colours, sorted; nothing where it has
/// more than `most` (at most 256).
std::optional<QImage> ExactPalette(const QImage& pixels, int most);
/// The picture (RGB32 or ARGB32) with a palette of at most so many colours (2..256): those that
/// suit it, or of the given ones.
QImage ReducedPalette(const QImage& pixels, int most, const QList<QRgb>& given,
                      DitherChoice dither);
/// Levels of red, green and blue evenly spread, at most 16 or 256 colours together.
QList<QRgb> FixedColours(int most);
/// Greys evenly spread from black to white.
QList<QRgb> GreyColours(int most);
/// Black and white from grey of 8 bits.
QImage BlackAndWhite(const QImage& grey, DitherChoice dither);

} // namespace quillane::processing
