#pragma once
#include "imaging/saving/save_plan.h"

namespace quillane {

/// The bytes of the new file: pixels as they lie in the loaded one where they may stay, else
/// encoded, and the metadata of both. Failure of codecs and carriers.
QByteArray SaveContent(const SaveJob& job, const SavePlan& plan);

} // namespace quillane
