#pragma once
#include "widgets/menu_entry.h"
#include <QAction>
#include <QHash>
#include <QMenu>
#include <QMenuBar>
#include <QString>
#include <QToolBar>
#include <span>

namespace quillane {

/// The actions and menus of a window, made from its tables and found by their names.
class MenuSet {
public:
    /// Fills the bar; everything belongs to `owner`.
    MenuSet(std::span<const MenuEntry> table, QMenuBar* bar, QWidget* owner);
    /// Makes a pop-up menu of that name and fills it from the rows that stand in it.
    QMenu* AddPopup(const char* name, std::span<const MenuEntry> table, QWidget* owner);

    QAction* Action(const QString& name) const { return mActions.value(name); }
    QMenu* Menu(const QString& name) const { return mMenus.value(name); }
    /// Whether what the entry opens is part of this version.
    bool IsBuilt(const QString& name) const { return !mNotYet.contains(name); }
    /// Enables an entry if its rule allows it and what it opens is there.
    void SetEnabled(const QString& name, bool allowed);
    void SetChecked(const QString& name, bool checked); ///< nothing for an unknown name
    bool IsChecked(const QString& name) const;          ///< false for an unknown name

private:
    void AddEntry(const MenuEntry& entry, QWidget* owner);

    QMenuBar* mBar;
    QHash<QString, QAction*> mActions;
    QHash<QString, QMenu*> mMenus;
    QHash<QString, bool> mNotYet;
};

/// The action of a tool button, added to the bar with its icon and tool tip; a row without a name
/// is a separator and gives nullptr. Its widget has the action's name with "Button" behind it.
QAction* AddToolButton(QToolBar* bar, const ToolButton& button);

} // namespace quillane
