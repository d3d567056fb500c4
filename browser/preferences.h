#pragma once
// What the preferences window holds in its controls, and how it gets there and back.
#include "core/custom_slots.h"
#include "core/session.h"

namespace quillane {

/// What the preferences read and change in the main window.
class PreferencesTarget {
public:
    virtual ~PreferencesTarget() = default;
    virtual bool GridLines() const = 0; ///< of lvSelected
    virtual void SetGridLines(bool on) = 0;
    virtual bool Sorted() const = 0; ///< whether lvSelected is sorted
    virtual void SetSorted(bool on) = 0;
    virtual int ListStyle() const = 0; ///< of lvSelected, 0 to 3
    virtual void SetListStyle(int style) = 0;
    virtual bool IncludeSubDirectories() const = 0; ///< of LEADThumb1
    virtual void SetIncludeSubDirectories(bool on) = 0;
    /// The slots as they are stored.
    virtual CustomSlots LoadCustomToolPrefs() const = 0;
    /// Stores the slots and applies them to the menus.
    virtual void SaveCustomToolPrefs(const CustomSlots& customSlots) = 0;
};

/// The texts and checks of the window.
struct PreferencesForm {
    Four<QString> txtKeyword;
    QString txtThumbX, txtThumbY, txtJPEGValue;
    bool chkGridlines = false, chkSorted = false, chkSubDirectory = false;
    Four<bool> optFileOptions{};
    int optVideoTool = 0; ///< the option that is on: 0 or 1
    CustomSlots customSlots;
};

/// "Quillane  Preferences", with two blanks.
QString PreferencesCaption(const QString& appTitle);
/// What the window shows when it loads.
PreferencesForm LoadPreferences(const Session& session, const PreferencesTarget& target);
/// Applies a form, in this order: keywords, grid lines, sorting, list style, sub-folders, cell
/// width, cell height, quality, slots. A text that is no number is Failure kFailureType, one out
/// of range kFailureOverflow; what stands before it in the order is applied, what follows is not.
/// The video tool is not among them: a click on it takes effect at once.
void ApplyPreferences(const PreferencesForm& form, Session& session, PreferencesTarget& target);

} // namespace quillane
