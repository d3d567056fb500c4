#pragma once
#include "imaging/carry/jpeg_parts.h"

namespace quillane::carry {

/// Whether a segment is the table of a file of several pictures (CIPA DC-007).
bool IsPictureTable(const JpegPart& part);

/// Where the first picture and its table lay, and where they lie now.
struct PictureMove {
    qint64 tableBefore = 0, tableAfter = 0; ///< first byte of the segment's content
    qint64 endBefore = 0, endAfter = 0;     ///< behind the mark of the first picture's end
};

/// The table's content with sizes and places of the pictures as they are after the move: those
/// that lay behind the first picture still do.
QByteArray MovePictureTable(const QByteArray& content, const PictureMove& move);

} // namespace quillane::carry
