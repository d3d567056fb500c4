#pragma once
// Metadata of a save: what was in the loaded file goes over into the encoded one, with the changed
// comments, by one function for each kind of file that holds any.
#include "imaging/byte_source.h"
#include "imaging/carry/comment_changes.h"
#include "imaging/comments/comment_set.h"
#include "imaging/encode.h"
#include <span>

namespace quillane {

struct CarryPlan {
    /// The file that the picture was loaded from, of the same carrier; nullptr when there is none
    /// or it is of another kind.
    ByteSource* original = nullptr;
    const CommentSet* before =
        nullptr;                  ///< what the original's slots hold; nullptr with no original
    CommentSet wanted;            ///< what the slots of the new file are to hold
    qint32 width = 0, height = 0; ///< of the new picture, upright
    /// A JPEG to embed as preview; empty: the original's is renewed from this picture's pixels by
    /// the caller, who then passes it here, or there is none.
    QByteArray preview;
    /// The new file is of a kind with an Exif block. A JPEG that is not has its description in a
    /// comment marker, an uncompressed TIFF in RGB or YCbCr that is not has no Exif directory, and
    /// both drop what has no place; other kinds of file hold whatever is needed.
    bool exif = true;
    /// The pixels are unchanged and lay upright: the original's own preview stays.
    bool keepPreview = false;
};

/// `encoded` (EncodePicture's) with the plan's metadata: everything of the original that no slot
/// names stays as it is, byte for byte (MakerNotes at their own offsets), the orientation says
/// upright, dimensions are the picture's. Failure when something cannot be carried, in words that
/// name it; never a silent loss of what no slot names.
QByteArray CarryIntoJpeg(const QByteArray& encoded, const CarryPlan& plan);
QByteArray CarryIntoTiff(const QByteArray& encoded, const CarryPlan& plan);
QByteArray CarryIntoPng(const QByteArray& encoded, const CarryPlan& plan);
QByteArray CarryIntoGif(const QByteArray& encoded, const CarryPlan& plan);

/// Whether a JPEG or TIFF has an embedded preview that a change of its pixels makes stale, so that
/// the caller renews it (CarryPlan::preview).
bool HoldsPreview(ByteSource& original);

/// The original with changed comments and its pixels as they lie in the file: for a TIFF appended
/// at the end, for a PNG or GIF with other text chunks or comment extensions. Changes of slots
/// that the kind of file has no place for are passed over.
QByteArray ReplaceCommentsInTiff(ByteSource& original, std::span<const CommentChange> changes);
QByteArray ReplaceCommentsInPng(ByteSource& original, std::span<const CommentChange> changes);
QByteArray ReplaceCommentsInGif(ByteSource& original, std::span<const CommentChange> changes);

} // namespace quillane
