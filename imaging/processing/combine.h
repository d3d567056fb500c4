#pragma once
#include "imaging/bitmap.h"
#include "imaging/region.h"

namespace quillane::processing {

/// The one way of combining that is in use, as callers name it. A source without alpha is added,
/// clamped: a filter's edges brighten the picture that they were found in, and black leaves it as
/// it is. A source with alpha on a picture without is a cut-out: it is laid over the picture as
/// its alpha says. Where both have alpha, the source is added, weighed with its own; the picture's
/// alpha stays.
inline constexpr qint32 kCombineAdd = 768;

/// Writes into the rectangle `at` of the picture what it makes there with the source, whose pixel
/// `from` lies on the upper left corner of `at`. What of the rectangle lies beside the picture or
/// beside the source stays as it is, and so do pixels outside the region (not null). The source is
/// brought to the picture's depth. A grey picture becomes RGB for a source in colour, black and
/// white grey of 8 bits, a palette full colour and CMYK RGB. Failure kFailureGeneral for other
/// flags or where one of the pictures is missing; kFailureLimit without memory.
Bitmap Combine(const Bitmap& picture, const Region* region, QRect at, const Bitmap& source,
               QPoint from, qint32 flags);

} // namespace quillane::processing
