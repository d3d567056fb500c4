#pragma once
#include "imaging/carry/comment_changes.h"
#include <QByteArray>
#include <span>

namespace quillane {

/// Bytes that the Exif block of a JPEG can have: a segment without its length and its mark.
inline constexpr qint64 kMaxJpegExifBytes = 65'535 - 2 - 6;
/// Bytes that the Exif chunk of a PNG may have here.
inline constexpr qint64 kMaxPngExifBytes = 64 << 20;

/// What an Exif block is to say of its picture beside the comment slots.
struct ExifFacts {
    enum class Preview { Keep, Replace, Remove };
    qint32 width = 0, height = 0; ///< pixels; 0: what the block says stays
    bool upright = false;         ///< the orientation becomes 1
    Preview preview = Preview::Keep;
    QByteArray previewJpeg; ///< for Preview::Replace
    // What only a new block states.
    qint32 xResolution = 0, yResolution = 0; ///< dots per inch; 0: 72, as for an unknown one
    bool otherColours = false;               ///< the picture has a profile of its own
};

/// An Exif block (from its byte-order mark on) with changed fields. All bytes that belong to no
/// changed field keep their place, MakerNotes above all; what no longer fits its place goes to
/// the end, into the room of an earlier change where there is one; what nobody owns any more is
/// zeroed. Beyond `maxBytes` the preview goes; then Failure kFailureLimit. Failure
/// kFailureUnreadable for a block without a first directory, and for one that is damaged so that
/// a change would alter other fields.
QByteArray PatchExifBlock(const QByteArray& block, std::span<const CommentChange> changes,
                          const ExifFacts& facts, qint64 maxBytes);
/// A new block with these fields and what the standard asks for besides (version, components,
/// colour space, resolution, dimensions where known), lowest byte first.
QByteArray NewExifBlock(std::span<const CommentChange> changes, const ExifFacts& facts,
                        qint64 maxBytes);

} // namespace quillane
