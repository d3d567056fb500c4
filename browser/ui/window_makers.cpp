#include "browser/ui/window_makers.h"

#include "album/ui/frmBrowserImageFileList.h"
#include "browser/ui/send_album.h"
#include "locator/ui/frmLocate.h"
#include "metadata/ui/frmToolTagEdit.h"
#include "platform/end_program.h"
#include "search/ui/frmBrowserSearch.h"
#include "viewer/ui/frmToolImageDisplay.h"

#include <memory>

namespace quillane {

namespace {

/// Window systems keep a window above its owner when it is a dialog, which need not block it.
template <typename Owned> Owned* StayingAboveOwner(Owned* window)
{
    window->setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                           | Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint);
    return window;
}

} // namespace

void RegisterWindows(WindowRegistry& windows, Session& session, SettingsStore& store,
                     Platform platform, BrowserHost& host, SearchCriteria& criteria, QWidget* owner)
{
    const auto tell = [&](const char* name, const WindowRegistry::Maker& maker) {
        if (!windows.Knows(QLatin1String(name))) {
            windows.Register(QLatin1String(name), maker);
        }
    };
    tell("frmToolTagEdit",
         [&session, platform, owner] { return new frmToolTagEdit(session, platform, owner); });
    tell("frmToolImageDisplay", [&session, &store, platform, &host, owner] {
        return StayingAboveOwner(new frmToolImageDisplay(session, store, platform, &host, owner));
    });
    tell("frmBrowserSearch", [&session, &store, platform, &host, &criteria, owner] {
        return new frmBrowserSearch(session, store, criteria, platform, host, owner);
    });
    const auto partlyRead = std::make_shared<PartlyReadAlbums>();
    tell("frmBrowserImageFileList", [&session, &store, platform, &host, owner, partlyRead] {
        auto* album =
            StayingAboveOwner(new frmBrowserImageFileList(session, store, platform, &host, owner));
        album->SetMailer(SendAlbumByMail(platform, album));
        album->SharePartlyRead(partlyRead);
        return album;
    });
    tell("frmLocate", [&session, platform, owner] {
        return StayingAboveOwner(new frmLocate(session, platform, EndProgramAtOnce, owner));
    });
}

} // namespace quillane
