#pragma once
#include "core/browser_host.h"
#include "core/session.h"
#include "core/settings_store.h"
#include "core/window_registry.h"
#include "platform/platform.h"
#include "search/criteria.h"
#include <QWidget>

namespace quillane {

/// Tells the registry how each window of the program is made; `owner` is the main window, `host`
/// what the others ask of it, `criteria` what the search asks for. Names that it knows already
/// stay.
void RegisterWindows(WindowRegistry& windows, Session& session, SettingsStore& store,
                     Platform platform, BrowserHost& host, SearchCriteria& criteria,
                     QWidget* owner);

} // namespace quillane
