#pragma once
#include "browser/launching.h"
#include "platform/platform.h"

namespace quillane {

/// Makes a picture the wallpaper: loads it, saves it as a bitmap file of 24 bits in the fixed
/// place, whatever is there, and tells the desktop. Errors are passed over statement by statement:
/// when the picture cannot be saved the desktop is told the place all the same. One line tells how
/// it ended. Events are handled meanwhile, and `file` must stand through them.
void SetPhotoAsWallpaper(const QString& file, Platform platform, const TellLine& tell);

} // namespace quillane
