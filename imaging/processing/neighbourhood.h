#pragma once
// Operations that make a pixel from those around it, each channel for itself, alpha kept. All
// accept every picture; black and white becomes grey of 8 bits, a palette full colour and CMYK
// RGB. Beyond its sides the picture is taken as going on. With a region (not null) only the pixels
// in it change, made from those around it too. Arguments beyond their range are taken as its end.
// Failure kFailureGeneral without a picture or for an unknown filter, kFailureLimit without memory.
#include "imaging/bitmap.h"
#include "imaging/region.h"

namespace quillane::processing {

/// The widest neighbourhood of Average and Median in pixels.
inline constexpr qint32 kMostNeighbours = 255;

/// The mean of a square of so many pixels a side, 0..255; up to 1 changes nothing.
Bitmap Average(const Bitmap& picture, const Region* region, qint32 size);
/// The middle one of the values in such a square; an even size counts as the next odd one.
Bitmap Median(const Bitmap& picture, const Region* region, qint32 size);
/// Adds value / 1000 of the difference to the eight neighbours, each weighed alike; below 0 the
/// pixel goes towards the mean of the nine instead. -1000..1000.
Bitmap Sharpen(const Bitmap& picture, const Region* region, qint32 value);
/// A relief in middle grey: the difference across the pixel in the direction that the light comes
/// from, 0 north, 1 north east and so on clockwise to 7, times depth / 1000 of 0..1000.
Bitmap Emboss(const Bitmap& picture, const Region* region, qint32 direction, qint32 depth);
/// A filter of SpatialKernels() by its code.
Bitmap SpatialFilter(const Bitmap& picture, const Region* region, qint32 code);
/// A filter of BinaryKernels() by its code: erosion takes the darkest, dilation the brightest.
Bitmap BinaryFilter(const Bitmap& picture, const Region* region, qint32 code);
/// Squares of so many pixels a side, from the upper left corner, each filled with its mean. Up to
/// 1 changes nothing.
Bitmap Mosaic(const Bitmap& picture, const Region* region, qint32 size);

} // namespace quillane::processing
