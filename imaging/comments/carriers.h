#pragma once
// How each kind of file carries its comment slots. Every function adds what it finds to `set`
// and leaves a slot that is filled already as it is; damage ends it with what was found so far.
#include "imaging/byte_source.h"
#include "imaging/comments/comment_set.h"

namespace quillane {

/// Exif block of a JPEG; a JPEG without one has its first comment marker as description.
void ReadJpegComments(ByteSource& source, CommentSet& set);
/// First directory of a TIFF with its Exif and GPS directories, also of a BigTIFF.
void ReadTiffComments(ByteSource& source, CommentSet& set);
/// Text chunks, wherever they stand, and what only the Exif chunk tells.
void ReadPngComments(ByteSource& source, CommentSet& set);
/// The first comment extension is the description.
void ReadGifComments(ByteSource& source, CommentSet& set);

} // namespace quillane
