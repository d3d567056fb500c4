#include "core/custom_slots.h"
#include "core/settings_store.h"
#include "core/settings_table.h"

namespace quillane {

namespace {

// The rows of the three values of a slot.
struct SlotRows {
    const SettingKey& active;
    const SettingKey& caption;
    const SettingKey& path;
};

const SettingKey& CustomRow(const char* key)
{
    return SettingRow(QLatin1String("CustomToolPrefs"), QLatin1String(key));
}

SlotRows ToolRows()
{
    return {CustomRow("chkCustomTool(#).value"), CustomRow("txtCustomTool(#).Text"),
            CustomRow("txtCustomToolPath(#).Text")};
}

SlotRows AppRows()
{
    return {CustomRow("chkCustomApp(#).value"), CustomRow("txtCustomApp(#).Text"),
            CustomRow("txtCustomAppPath(#).Text")};
}

void LoadSlots(const SettingsStore& store, const SlotRows& rows, Four<CustomSlot>& four)
{
    for (int i = 0; i < int(four.size()); ++i) {
        CustomSlot& slot = four[size_t(i)];
        slot.active = ReadInt16(store, rows.active, i);
        slot.caption = ReadText(store, rows.caption, i);
        slot.path = ReadText(store, rows.path, i);
    }
}

void SaveSlots(SettingsStore& store, const SlotRows& rows, const Four<CustomSlot>& four)
{
    for (int i = 0; i < int(four.size()); ++i) {
        const CustomSlot& slot = four[size_t(i)];
        WriteInt(store, rows.active, slot.active, i);
        WriteText(store, rows.caption, slot.caption, i);
        WriteText(store, rows.path, slot.path, i);
    }
}

void ApplySlots(const Four<CustomSlot>& four, Four<CustomSlotEntry>& entries)
{
    for (size_t i = 0; i < four.size(); ++i) {
        if (four[i].active == 1)
            entries[i] = {true, true, four[i].caption};
    }
}

} // namespace

void CustomSlots::Load(const SettingsStore& store)
{
    LoadSlots(store, ToolRows(), tools);
    LoadSlots(store, AppRows(), apps);
}

void CustomSlots::Save(SettingsStore& store) const
{
    SaveSlots(store, ToolRows(), tools);
    SaveSlots(store, AppRows(), apps);
}

CustomSlotEntries ApplyCustomTools(const CustomSlots& customSlots)
{
    CustomSlotEntries entries;
    ApplySlots(customSlots.tools, entries.tools);
    ApplySlots(customSlots.apps, entries.apps);
    return entries;
}

} // namespace quillane
