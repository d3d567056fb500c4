#pragma once

namespace quillane {

/// Waits up to `ms` milliseconds for an event of this thread and handles what is waiting then.
/// Anything posted to the thread, from other threads too, ends the wait.
void WaitForThreadEvents(int ms);

} // namespace quillane
