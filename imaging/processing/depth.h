#pragma once
// Changes of the number of bits per pixel.
#include "imaging/bitmap.h"

namespace quillane::processing {

/// Which colours a picture of few may have.
enum class PaletteChoice : qint32 {
    Best = 0,  ///< those that suit the picture
    Fixed = 1, ///< the same for every picture: levels of red, green and blue evenly spread
    Grey = 2,  ///< greys evenly spread
};
/// How colours that the palette lacks are shown.
enum class DitherChoice : qint32 {
    None = 0,           ///< by the nearest one
    FloydSteinberg = 1, ///< by a mixture of near ones
};
struct DepthChoice {
    PaletteChoice palette = PaletteChoice::Best;
    DitherChoice dither = DitherChoice::FloydSteinberg;
};

/// The picture at so many bits per pixel:
///   1   black and white
///   4   at most 16 colours, 8 at most 256, both stored one byte a pixel. A picture that has no
///       more colours keeps them exactly with the palette Best. Grey at 8 bits stays grey with it
///   16  grey of 16 bits
///   24  RGB, 32 RGB with alpha, 48 and 64 the same with 16 bits a channel
/// Where the result has no alpha, transparent parts become as on white paper; palettes keep it.
/// CMYK is brought to RGB first. Failure kFailureGeneral for another depth or no picture.
Bitmap ToDepth(const Bitmap& picture, qint32 bits, const DepthChoice& choice = {});

} // namespace quillane::processing
