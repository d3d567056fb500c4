#pragma once
// Exchanging a file's content without exchanging the file, for one that has several names.
#include "core/save_journal.h"

namespace quillane {

/// How an exchange ended that was asked for or found halfway.
struct InPlaceResult {
    int error = 0;         ///< of the system; 0 when the new content stands
    bool restored = false; ///< with an error: the old content stands as it was
};
/// Writes the content of `fresh` over that of `target`, an open file; `backup` holds the old one.
/// When that fails, puts the old one back.
InPlaceResult ExchangeContent(const SaveCalls& calls, int target, int fresh, int backup);

/// Whether a file's content is what an exchange leaves that is cut short: each byte that of the
/// old or of the new content. False also when one of them cannot be read.
bool IsHalfExchanged(int target, int backup, int fresh);
/// Whether two files hold the same bytes.
bool SameContent(int one, int other);

} // namespace quillane
