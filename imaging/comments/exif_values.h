#pragma once
#include "imaging/comments/comment_set.h"
#include <QByteArray>

namespace quillane {

/// Adds the values of a small TIFF structure (LiftExif) to `set`, each in the shape of its slot;
/// a slot that is filled already stays. A value of a type that cannot be brought into the shape
/// is absent. Bytes made of wider numbers stand lowest first, whatever the order of the file.
void AddExifValues(const QByteArray& block, CommentSet& set);

} // namespace quillane
