#pragma once
#include <dcmtk/config/osconfig.h>

#include <dcmtk/dcmdata/dcdatset.h>

namespace quillane::worker {

/// Looks at the headers of run-length coded frames (PS3.5, annex G.5) before the library does,
/// which trusts them. Failure kFailureUnreadable for one that points outside its frame. Other
/// transfer syntaxes are left alone.
void CheckDicomRuns(DcmDataset& dataset);

} // namespace quillane::worker
