#include "browser/ui/window_makers.h"

#include "metadata/ui/frmToolTagEdit.h"

namespace quillane {

void RegisterWindows(WindowRegistry& windows, Session& session, Platform platform, QWidget* owner)
{
    const auto tell = [&](const char* name, const WindowRegistry::Maker& maker) {
        if (!windows.Knows(QLatin1String(name))) {
            windows.Register(QLatin1String(name), maker);
        }
    };
    tell("frmToolTagEdit",
         [&session, platform, owner] { return new frmToolTagEdit(session, platform, owner); });
}

} // namespace quillane
