#pragma once
#include "core/session.h"
#include "core/window_registry.h"
#include "platform/platform.h"
#include <QWidget>

namespace quillane {

/// Tells the registry how each window of the program is made; `owner` is the main window. Names
/// that it knows already stay.
void RegisterWindows(WindowRegistry& windows, Session& session, Platform platform, QWidget* owner);

} // namespace quillane
