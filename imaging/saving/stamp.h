#pragma once
#include "imaging/bitmap.h"
#include <QSizeF>

namespace quillane {

/// A small JPEG of the picture to embed: it fits the box with its shape kept, is never larger than
/// the picture, and is grey at 8 bits, else in colours. At most 48 KB, so that it fits an Exif
/// block: made smaller in steps until it does. Failure when there is no picture or no box.
QByteArray MakeStamp(const Bitmap& picture, QSizeF box, qint32 bits);

} // namespace quillane
