#pragma once
#include "imaging/comments/comment_value.h"
#include "imaging/comments/slots.h"
#include "imaging/exif/tiff_structure.h"

namespace quillane::exif {

/// A value as a directory stores it.
struct StoredField {
    quint16 type = 0;
    QByteArray value; ///< in the structure's byte order
};

/// A slot's value in the type that the standards (TIFF 6.0, Exif 2.3) give its field: text as
/// UTF-8 with a zero behind it, rationals as two 32-bit numbers (the nearest that fit), bytes of
/// wider numbers lowest first. Failure kFailureType for a value of another shape,
/// kFailureOverflow for a number that the field cannot hold, kFailureLimit for a text beyond
/// limits::kMaxTextBytes; the words name the field.
StoredField StoredForm(const CommentSlot& slot, const CommentValue& value,
                       const TiffStructure& structure);

} // namespace quillane::exif
