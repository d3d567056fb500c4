#pragma once
// What the system's stat says, in this program's terms.
#include "core/native_path.h"
#include <sys/stat.h>

namespace quillane {

/// The kind of file that the bits of st_mode tell.
FileType TypeOfMode(mode_t mode);
/// A FileStat of what the system found.
FileStat FileStatFromSystem(const struct stat& found);

} // namespace quillane
