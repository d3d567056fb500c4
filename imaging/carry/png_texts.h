#pragma once
#include "imaging/carry/carry_support.h"
#include "imaging/carry/png_parts.h"

namespace quillane::carry {

/// Writes changed slots into the texts of a PNG and, for what only that can hold, into its Exif
/// chunk; a field that stands in both is changed in both. A text of several chunks with one
/// keyword is the first that says anything; clearing the slot removes them all. XMP is kept in
/// step.
void PutPngComments(PngParts& parts, std::span<const CommentChange> changes, const ExifFacts& facts,
                    const XmpWishes& wishes);

} // namespace quillane::carry
