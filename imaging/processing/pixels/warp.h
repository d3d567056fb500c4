#pragma once
// Pixels taken from other places, mixed from the four nearest; for imaging/processing/ alone.
#include "imaging/processing/pixels/pixel_work.h"

namespace quillane::processing {

/// Where a pixel of the result comes from: (xx x + xy y + x0, yx x + yy y + y0), pixels counted
/// from their middles.
struct WarpMap {
    double xx, xy, x0;
    double yx, yy, y0;
};

/// A picture in form Full at another size, each pixel from the place that the map says; what lies
/// outside has the colour `fill`.
Bitmap Warped(const Bitmap& picture, QSize size, QRgb fill, const WarpMap& map);
/// The same in the bounds of a region, of which only the region's own pixels are written.
Bitmap WarpedInside(const Bitmap& picture, const Region& region, QRgb fill,
                    const std::function<WarpMap(QSize from, QSize to)>& mapping);

/// Colours weighed with their alpha, so that mixing does not bring up those of transparent
/// pixels; layouts without alpha stay.
QImage WithWeighedColours(const QImage& pixels);
/// Lowers colours that are above the alpha they are weighed with, which no picture has.
void CapByAlpha(cv::Mat& weighed);
/// Back from weighed colours.
QImage WithPlainColours(QImage pixels, QImage::Format format);

} // namespace quillane::processing
