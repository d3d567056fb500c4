#pragma once
#include "imaging/bitmap.h"

namespace quillane {

/// The picture at another, smaller size as it looks on the screen: every pixel the mean of the area
/// it covers. Takes little memory beyond the result, however large the picture is: colours are
/// converted after the reduction, or a few rows at a time. Any thread; null when there is no memory.
QImage ShrunkForDisplay(const Bitmap& bitmap, QSize size);

} // namespace quillane
