#pragma once
#include "imaging/bitmap.h"
#include "imaging/region.h"

namespace quillane::processing {

/// What is drawn of the contours.
enum class ContourOption : qint32 {
    BlackLines = 0,     ///< on white
    WhiteLines = 1,     ///< on black
    LinesOnPicture = 2, ///< black over the picture
    Fill = 3,           ///< the steps between them, each filled with its own grey
    FillAndLines = 4,
};
struct ContourChoice {
    qint32 threshold = 0; ///< the lowest intensity with a line, 0..255
    qint32 interval = 32; ///< from one line to the next, 1..255
    qint32 smoothing = 5; ///< square of pixels averaged beforehand, 0..255; up to 1 none
    ContourOption option = ContourOption::Fill;
};

/// Lines along the places of equal intensity, as on a map of heights, or the steps between them.
/// Depth and alpha stay (black and white becomes grey of 8 bits, a palette full colour and CMYK
/// RGB). With a region (not null) only the pixels in it change. Numbers beyond their range are
/// taken as its end. Failure kFailureGeneral without a picture, kFailureLimit without memory.
Bitmap ContourFilter(const Bitmap& picture, const Region* region, const ContourChoice& choice);

} // namespace quillane::processing
