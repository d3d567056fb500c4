#pragma once
// Menus and tool bars as tables: names, captions, order, keys. Each window has tables of its own.
#include <QString>

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

struct ToolButton {
    int index;        ///< from 1; separators count
    const char* name; ///< object name; empty for a separator
    const char16_t* toolTip;
    const char* icon; ///< bundled icon name
    EntryState state = EntryState::Built;
};

/// Tool tip of an entry whose window is not part of this version.
QString NotYetTip(const QString& caption);
/// The caption without its mnemonic mark and dots.
QString PlainCaption(const QString& caption);

} // namespace quillane
