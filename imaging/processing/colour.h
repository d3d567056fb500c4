#pragma once
// Operations on the colours of a picture. All accept every picture; black and white becomes grey
// of 8 bits, a palette full colour and CMYK RGB. With a region (not null) only the pixels in it
// change. Arguments beyond their range are taken as its end. Failure kFailureGeneral without a
// picture, kFailureLimit without memory.
#include "imaging/bitmap.h"
#include "imaging/region.h"

namespace quillane::processing {

/// Turns the hue by hundredths of a degree, from red over yellow to green: any number, full turns
/// count for nothing. The largest and the least of a pixel's three colours stay as they are.
Bitmap Hue(const Bitmap& picture, const Region* region, qint32 angle);
/// Moves the colours away from the grey of their intensity by value / 1000: -1000 gives grey,
/// 1000 doubles the distance.
Bitmap Saturation(const Bitmap& picture, const Region* region, qint32 value);
/// The intensities alone, at 8 or 16 bits of grey; transparent parts as on white paper. In a
/// region the picture keeps its depth and colours around it. Failure kFailureGeneral for other
/// numbers of bits.
Bitmap Grayscale(const Bitmap& picture, const Region* region, qint32 bits);
/// Every pixel gets the colour, without transparency. A grey picture and a grey colour stay grey.
Bitmap FillColor(const Bitmap& picture, const Region* region, QRgb colour);

/// A colour as the system's numbers have it: red in the low byte, then green and blue.
constexpr QRgb RgbOfColour(qint32 colour)
{
    const auto bits = quint32(colour);
    return 0xff000000u | (bits & 0xff) << 16 | (bits & 0xff00) | ((bits >> 16) & 0xff);
}

} // namespace quillane::processing
