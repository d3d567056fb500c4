#pragma once
#include "core/failure.h"
#include <functional>
#include <optional>

namespace quillane {

/// How something that another program does for this one has ended: nothing when it is done, else
/// why not. Called once at most, on the window thread; never when the program ends before.
using ServiceEnded = std::function<void(const std::optional<Failure>& failure)>;

} // namespace quillane
