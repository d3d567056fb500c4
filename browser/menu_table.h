#pragma once
// Menus, pop-up menu and tool bar of the main window.
#include "widgets/menu_entry.h"
#include <span>

namespace quillane {

/// The main menu, menu by menu, in order.
std::span<const MenuEntry> MainMenu();
/// The pop-up menu mnuPopUp.
std::span<const MenuEntry> PopupMenu();

/// The ten buttons in their order, separators among them.
std::span<const ToolButton> FixedToolButtons();

/// Placeholders behind the fixed buttons, with their widths in pixels.
inline constexpr int kComboPlaceholderWidth = 300;
inline constexpr int kProgressPlaceholderWidth = 150;

struct ViewEntry {
    const char* name;
    const char16_t* caption;
    int style;    ///< of the list view; -1 for the grid
    int scanMode; ///< of BrowseImages
};
/// The five entries of the View menu that choose the view.
std::span<const ViewEntry> ViewEntries();

} // namespace quillane
