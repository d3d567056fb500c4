#include "browser/ui/main_preferences.h"

namespace quillane {

void MainPreferences::SetListStyle(int style)
{
    mParts.views.List()->SetStyle(style);
    mParts.styleChanged(style);
}

void MainPreferences::SaveCustomToolPrefs(const CustomSlots& customSlots)
{
    mParts.customSlots = customSlots;
    mParts.customSlots.Save(mParts.store);
    mParts.store.Flush();
    mParts.applyCustomTools();
}

} // namespace quillane
