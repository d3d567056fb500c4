#pragma once

namespace quillane {

/// Ends the process here and now: no window is asked, nothing is saved, no destructor runs. What a
/// save has under way is put in order by the next start.
[[noreturn]] void EndProgramAtOnce();

} // namespace quillane
