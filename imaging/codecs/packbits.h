#pragma once
#include "imaging/codecs/encode_support.h"

namespace quillane::codecs {

/// Appends bytes packed by PackBits, which MacPaint, Photoshop, TIFF and (as ByteRun1) interchange
/// files share: 0 to 127 is followed by so many bytes and one more, 129 to 255 by one byte that
/// stands 257 minus so many times.
void PutPackBits(ByteWriter& to, const uchar* from, qint64 count);

} // namespace quillane::codecs
