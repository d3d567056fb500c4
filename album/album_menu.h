#pragma once
#include "widgets/menu_entry.h"
#include <span>

namespace quillane {

/// The menus of the album window.
std::span<const MenuEntry> AlbumMenu();

} // namespace quillane
