#pragma once
#include "browser/preferences.h"
#include "browser/scan.h"
#include "browser/ui/folder_views.h"
#include "core/settings_store.h"
#include <functional>

namespace quillane {

/// The preferences' way into the views, the scanner and the slots of the main window.
class MainPreferences : public PreferencesTarget {
public:
    struct Parts {
        FolderViews& views;
        FolderScan& scan;
        CustomSlots& customSlots;
        SettingsStore& store;
        std::function<void(int style)> styleChanged; ///< of the list
        std::function<void()> applyCustomTools;      ///< brings the menus up to the slots
    };
    explicit MainPreferences(Parts parts) : mParts(std::move(parts)) { }

    bool GridLines() const override { return mParts.views.List()->GridLines(); }
    void SetGridLines(bool on) override { mParts.views.List()->SetGridLines(on); }
    bool Sorted() const override { return mParts.views.List()->Sorted(); }
    void SetSorted(bool on) override { mParts.views.List()->SetSorted(on); }
    int ListStyle() const override { return mParts.views.List()->Style(); }
    void SetListStyle(int style) override;
    bool IncludeSubDirectories() const override { return mParts.scan.IncludeSubDirectories(); }
    void SetIncludeSubDirectories(bool on) override { mParts.scan.SetIncludeSubDirectories(on); }
    CustomSlots LoadCustomToolPrefs() const override { return mParts.customSlots; }
    void SaveCustomToolPrefs(const CustomSlots& customSlots) override;

private:
    Parts mParts;
};

} // namespace quillane
