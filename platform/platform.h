#pragma once
#include "platform/dialogs.h"
#include "platform/file_service.h"
#include "platform/fixed_places.h"
#include "platform/folder_watch.h"
#include "platform/launcher.h"
#include "platform/mail.h"
#include "platform/scanner.h"
#include "platform/ui_loop.h"
#include "platform/wallpaper.h"

namespace quillane {

/// The services of the outside, handed down from main (or from a test).
struct Platform {
    Dialogs& dialogs;
    UiLoop& loop;
    Launcher& launcher;
    FixedPlaces& places;
    FolderWatch& watch;
    Scanner& scanner;
    WallpaperService& wallpaper;
    MailService& mail;
    FileService& files;
};

} // namespace quillane
