#pragma once
// The custom tools and applications a person adds to the menus.
#include "core/globals.h"
#include <QString>

namespace quillane {

class SettingsStore;

struct CustomSlot {
    qint16 active = 0; ///< 1 on, 0 off; any other value counts as off
    QString caption;   ///< of the menu entry
    QString path;      ///< of the program
};

/// The one place in memory for the four tool slots and four application slots. The preferences
/// edit it, the menus follow it.
struct CustomSlots {
    Four<CustomSlot> tools; ///< image tools 2 to 5
    Four<CustomSlot> apps;

    /// Reads all slots; what is absent or cannot be converted takes its default.
    void Load(const SettingsStore& store);
    /// Hands all slots to the store; they reach the disk with its Flush.
    void Save(SettingsStore& store) const;
};

/// What becomes of one menu entry, and for a tool of its twin in the pop-up menu.
struct CustomSlotEntry {
    bool enabled = false;
    bool visible = false;
    QString caption; ///< to be set only where the entry is visible
};
struct CustomSlotEntries {
    Four<CustomSlotEntry> tools, apps;
};
/// The state of all entries: a slot whose active value is 1 is enabled, visible and has its
/// caption; any other is neither.
CustomSlotEntries ApplyCustomTools(const CustomSlots& customSlots);

} // namespace quillane
