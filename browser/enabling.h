#pragma once
// Which menu entries can be used, decided when a menu opens.
#include "core/session.h"

namespace quillane {

/// mnuEmailImages, mnuDelete, mnuCopy, mnuMove, mnuRename and mnuMainFilePageSetup: exactly if
/// the view holds at least one file.
bool FileEntriesEnabled(const Session& session);

struct PopupRules {
    bool setWallpaper; ///< mnuPopSetWallpaper
    bool editTags;     ///< mnuPopEditTags
    bool showAlbum;    ///< mnuPopShow
};
/// Which pop-up entries the current file and the album allow.
PopupRules UpdatePopupMenu(const Session& session);

} // namespace quillane
