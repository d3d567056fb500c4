#pragma once
#include "browser/menu_table.h"
#include <QAction>
#include <QHash>
#include <QMenu>
#include <QMenuBar>
#include <QString>

namespace quillane {

/// The actions and menus of the main window, made from the tables and found by their names.
class MainMenus {
public:
    /// Fills the bar and makes the pop-up menu mnuPopUp; all belong to `owner`.
    MainMenus(QMenuBar* bar, QWidget* owner);

    QAction* Action(const QString& name) const { return mActions.value(name); }
    QMenu* Menu(const QString& name) const { return mMenus.value(name); }
    QMenu* Popup() const { return Menu(QStringLiteral("mnuPopUp")); }
    /// Whether what the entry opens is part of this version.
    bool IsBuilt(const QString& name) const { return !mNotYet.contains(name); }
    /// Enables an entry if its rule allows it and what it opens is there.
    void SetEnabled(const QString& name, bool allowed);
    void SetChecked(const QString& name, bool checked);
    bool IsChecked(const QString& name) const;

private:
    void AddEntry(const MenuEntry& entry, QWidget* owner);

    QMenuBar* mBar;
    QHash<QString, QAction*> mActions;
    QHash<QString, QMenu*> mMenus;
    QHash<QString, bool> mNotYet;
};

} // namespace quillane
