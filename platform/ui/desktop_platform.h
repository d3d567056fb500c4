#pragma once
#include "platform/desktop/desktop_launcher.h"
#include "platform/desktop/desktop_loop.h"
#include "platform/desktop/desktop_mail.h"
#include "platform/desktop/desktop_places.h"
#include "platform/desktop/desktop_scanner.h"
#include "platform/desktop/desktop_wallpaper.h"
#include "platform/desktop/desktop_watch.h"
#include "platform/desktop/file_service.h"
#include "platform/platform.h"
#include "platform/ui/desktop_dialogs.h"

namespace quillane {

/// The real services of the outside. Needs the application object.
struct DesktopPlatform {
    /// All of them, as the windows are handed them.
    Platform Services()
    {
        return {dialogs, loop, launcher, places, watch, scanner, wallpaper, mail, files};
    }

    DesktopDialogs dialogs;
    DesktopLoop loop;
    DesktopLauncher launcher;
    DesktopPlaces places;
    DesktopWatch watch;
    DesktopScanner scanner{places.ScanHelper()};
    DesktopWallpaper wallpaper;
    DesktopMail mail;
    DesktopFileService files;
};

} // namespace quillane
