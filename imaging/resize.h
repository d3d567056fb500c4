#pragma once
#include "imaging/bitmap.h"
#include <QSize>

namespace quillane {

/// How the pixels of another size are made.
enum class ResizeWay : quint8 {
    Plain,    ///< the nearest pixel; depth and colours stay
    Resample, ///< the mean of what falls together; between two pixels when enlarged, on a line
    Bicubic,  ///< sharper: on a curve through four pixels each way
};

/// The picture at another size. Where pixels are mixed, a black-and-white picture becomes grey and
/// one with a palette gets its colours in full. Failure kFailureLimit for more memory than a
/// picture may take.
Bitmap Resized(const Bitmap& bitmap, QSize size, ResizeWay way);

/// The picture at 1, 4, 8, 16, 24, 32, 48 or 64 bits per pixel; the same one where it is so
/// already. As processing::ToDepth with the best palette and dithering.
Bitmap AtDepth(const Bitmap& bitmap, qint32 bits);

} // namespace quillane
