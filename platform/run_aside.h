#pragma once
#include "platform/ui_loop.h"
#include <functional>

namespace quillane {

/// Runs `work` on another thread and handles events of this one until it is done, so that a
/// window stays alive while a picture is loaded or saved. What `work` throws comes out here. The
/// caller sees to it that nothing a person can start meanwhile touches what `work` uses.
void RunAside(UiLoop& loop, const std::function<void()>& work);

} // namespace quillane
