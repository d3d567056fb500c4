#include "browser/ui/main_menus.h"

#include <QIcon>
#include <QKeySequence>
#include <QStringList>

namespace quillane {

MainMenus::MainMenus(QMenuBar* bar, QWidget* owner) : mBar(bar)
{
    for (const MenuEntry& entry : MainMenu()) {
        AddEntry(entry, owner);
    }
    auto* popup = new QMenu(owner);
    popup->setObjectName(QStringLiteral("mnuPopUp"));
    popup->setToolTipsVisible(true);
    mMenus.insert(popup->objectName(), popup);
    for (const MenuEntry& entry : PopupMenu()) {
        AddEntry(entry, owner);
    }
}

void MainMenus::AddEntry(const MenuEntry& entry, QWidget* owner)
{
    const QString parentName = QLatin1String(entry.menu);
    const QString name = QLatin1String(entry.name);
    const QString caption = QString::fromUtf16(entry.caption);
    QMenu* parent = mMenus.value(parentName);
    if (entry.kind == EntryKind::Menu) {
        QMenu* menu = parent ? parent->addMenu(caption) : mBar->addMenu(caption);
        menu->setObjectName(name);
        menu->setToolTipsVisible(true);
        mMenus.insert(name, menu);
        return;
    }
    if (entry.kind == EntryKind::Separator) {
        parent->addSeparator();
        return;
    }
    auto* action = new QAction(caption, owner);
    action->setObjectName(name);
    action->setCheckable(entry.kind == EntryKind::Check);
    action->setMenuRole(QAction::NoRole);
    QList<QKeySequence> keys;
    for (const QString& key : QString::fromLatin1(entry.shortcut).split(u' ', Qt::SkipEmptyParts)) {
        keys.append(QKeySequence(key, QKeySequence::PortableText));
    }
    action->setShortcuts(keys);
    if (entry.icon[0] != '\0') {
        action->setIcon(QIcon::fromTheme(QLatin1String(entry.icon)));
    }
    if (entry.state == EntryState::NotYet) {
        mNotYet.insert(name, true);
        action->setEnabled(false);
        action->setToolTip(NotYetTip(caption));
        action->setStatusTip(NotYetTip(caption));
    } else {
        action->setToolTip(PlainCaption(caption));
    }
    parent->addAction(action);
    mActions.insert(name, action);
}

void MainMenus::SetEnabled(const QString& name, bool allowed)
{
    if (QAction* action = Action(name)) {
        action->setEnabled(allowed && IsBuilt(name));
    }
}

void MainMenus::SetChecked(const QString& name, bool checked)
{
    if (QAction* action = Action(name)) {
        action->setChecked(checked);
    }
}

bool MainMenus::IsChecked(const QString& name) const
{
    const QAction* action = Action(name);
    return action && action->isChecked();
}

} // namespace quillane
