#pragma once
// Menus and tool bar of the viewer.
#include "widgets/menu_entry.h"
#include <span>

namespace quillane {

/// The menus, menu by menu; those of the image commands follow the table of the commands.
std::span<const MenuEntry> ViewerMenu();
/// The buttons of Toolbar1, separators among them; the last two are hidden.
std::span<const ToolButton> ViewerToolButtons();
/// Positions of the buttons that are never shown.
inline constexpr int kDrawTextButton = 21, kDrawButton = 22;

} // namespace quillane
