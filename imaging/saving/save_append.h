#pragma once
#include "imaging/saving/save_plan.h"

namespace quillane {

/// Whether the job is to add a page to a file that is there.
bool AppendsToAFile(const SaveJob& job);
/// Adds the picture as the last page of the TIFF file that is there: a new file takes its place
/// at once, in which the old pages lie as they lay. Returns what SavePicture does. Failure, with
/// the file untouched: a format or a file that takes no further page, damaged pages, and what
/// SavePicture tells.
std::shared_ptr<const LoadedFile> AppendPicture(const SaveJob& job, const SavePlan& plan);

} // namespace quillane
