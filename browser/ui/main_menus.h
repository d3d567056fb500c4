#pragma once
#include "browser/menu_table.h"
#include "widgets/ui/menu_set.h"

namespace quillane {

/// The main window's menu bar and its pop-up menu mnuPopUp.
class MainMenus : public MenuSet {
public:
    /// Fills the bar and makes the pop-up menu; all belong to `owner`.
    MainMenus(QMenuBar* bar, QWidget* owner) : MenuSet(MainMenu(), bar, owner)
    {
        AddPopup("mnuPopUp", PopupMenu(), owner);
    }
    QMenu* Popup() const { return Menu(QStringLiteral("mnuPopUp")); }
};

} // namespace quillane
