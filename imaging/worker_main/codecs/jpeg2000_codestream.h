#pragma once
#include "imaging/worker_main/service/sample_rows.h"

namespace quillane::worker {

/// Appends the picture's samples as a JPEG 2000 codestream: without loss with kBestQuality. Takes
/// every row. Kinds of 8 and 16 bits. Failure kFailureLimit when there is no memory.
void WriteJpeg2000Codestream(PictureRows& picture, SampleKind kind, qint32 quality, FileSink& file);

/// Decodes a codestream (or a file with boxes) of exactly that shape into samples that lie packed
/// behind one another, of 8 bits or of 16 in the machine's order. Failure for another shape or
/// damage; false when some of it was missing.
bool ReadJpeg2000Samples(ByteSource& source, qint32 width, qint32 height, int samples, int bits,
                         uchar* to);

} // namespace quillane::worker
