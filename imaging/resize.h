#pragma once
#include "imaging/bitmap.h"
#include <QSize>

namespace quillane {

/// The picture at another size. Plain keeps depth and colours and takes the nearest pixel; smooth
/// mixes the pixels that fall together, for which a black-and-white picture becomes grey and one
/// with a palette gets its colours in full. Failure kFailureLimit for more memory than a picture
/// may take.
Bitmap Resized(const Bitmap& bitmap, QSize size, bool smooth);

/// The picture at 1, 8, 16, 24 or 32 bits per pixel in memory; the same one where it is so already.
/// CMYK is brought to RGB first. Failure kFailureGeneral for any other depth.
Bitmap AtDepth(const Bitmap& bitmap, qint32 bits);

} // namespace quillane
