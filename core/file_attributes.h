#pragma once
// What a file has beside its content and its times.
#include "core/save_calls.h"
#include <sys/stat.h>

namespace quillane {

/// Gives an open file the owner and group (as far as allowed), the permissions, the access list
/// and the extended attributes of the file at `from`, of which `old` tells. Where the owner cannot
/// be kept, set-id bits fall away; where the group cannot, its permissions are no more than those
/// of everybody. Returns 0 or the error number of what the user would lose.
int KeepAttributes(const SaveCalls& calls, const QByteArray& from, const struct stat& old, int to);

} // namespace quillane
