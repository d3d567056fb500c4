#pragma once
#include "imaging/worker_main/codecs/tiff_tags.h"

namespace quillane::worker {

/// Looks at the sizes that JBIG strips tell of themselves (ITU-T T.82, 6.2) before the library
/// asks for the memory they name, and ends the process when there is none. Failure
/// kFailureUnreadable for one that is not as wide as the page. Pages that are coded in other ways
/// are left alone.
void CheckTiffJbig(TiffFile& file, const TiffTags& tags);

} // namespace quillane::worker
