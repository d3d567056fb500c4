#pragma once
// Menus, pop-up menu and tool bar as tables: names, captions, order, keys.
#include <QString>
#include <span>

namespace quillane {

enum class EntryKind : quint8 { Menu, Entry, Check, Separator };
/// Whether what an entry opens is part of this version.
enum class EntryState : quint8 { Built, NotYet };

struct MenuEntry {
    const char* menu; ///< name of the menu it stands in; "" is the menu bar
    const char* name; ///< object name; empty for a separator
    const char16_t* caption;
    EntryKind kind = EntryKind::Entry;
    EntryState state = EntryState::Built;
    const char* shortcut = ""; ///< portable key sequences divided by blanks
    const char* icon = "";     ///< icon theme name, optional
};

/// The main menu, menu by menu, in order.
std::span<const MenuEntry> MainMenu();
/// The pop-up menu mnuPopUp.
std::span<const MenuEntry> PopupMenu();

/// Tool tip of an entry whose window is not part of this version.
QString NotYetTip(const QString& caption);
/// The caption without its mnemonic mark and dots.
QString PlainCaption(const QString& caption);

struct ToolButton {
    int index; ///< from 1; 4 and 8 are separators
    const char* name;
    const char16_t* toolTip;
    const char* icon; ///< bundled icon name
    EntryState state = EntryState::Built;
};
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
