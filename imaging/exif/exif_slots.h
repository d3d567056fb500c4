#pragma once
#include "imaging/carry/comment_changes.h"
#include "imaging/exif/tiff_editor.h"
#include <span>

namespace quillane::exif {

/// Writes the changes of slots that a TIFF structure holds into its directories; the others are
/// passed over. A directory that has to be made gets the version that the standard asks for.
/// Failure as StoredForm.
void SetSlots(TiffEditor& editor, std::span<const CommentChange> changes);
/// Removes fields of slots whose value lies beyond the end: when the end moves, they would show
/// what now lies there. Returns whether there was one.
bool RemoveDanglingSlots(TiffEditor& editor);
/// Whether a slot has a field in a TIFF structure.
bool IsExifSlot(qint16 slot);
/// Failure kFailureUnreadable when a slot of `after` does not hold what `before` and the changes
/// say: fields of a damaged structure may lie across each other.
void CheckSlots(const QByteArray& before, const QByteArray& after,
                std::span<const CommentChange> changes);

} // namespace quillane::exif
