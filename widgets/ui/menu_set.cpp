#include "widgets/ui/menu_set.h"

#include <QIcon>
#include <QKeySequence>
#include <QStringList>

namespace quillane {

MenuSet::MenuSet(std::span<const MenuEntry> table, QMenuBar* bar, QWidget* owner) : mBar(bar)
{
    for (const MenuEntry& entry : table) {
        AddEntry(entry, owner);
    }
}

QMenu* MenuSet::AddPopup(const char* name, std::span<const MenuEntry> table, QWidget* owner)
{
    auto* popup = new QMenu(owner);
    popup->setObjectName(QLatin1String(name));
    popup->setToolTipsVisible(true);
    mMenus.insert(popup->objectName(), popup);
    for (const MenuEntry& entry : table) {
        AddEntry(entry, owner);
    }
    return popup;
}

void MenuSet::AddEntry(const MenuEntry& entry, QWidget* owner)
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

void MenuSet::SetEnabled(const QString& name, bool allowed)
{
    if (QAction* action = Action(name)) {
        action->setEnabled(allowed && IsBuilt(name));
    }
}

void MenuSet::SetChecked(const QString& name, bool checked)
{
    if (QAction* action = Action(name)) {
        action->setChecked(checked);
    }
}

bool MenuSet::IsChecked(const QString& name) const
{
    const QAction* action = Action(name);
    return action && action->isChecked();
}

QAction* AddToolButton(QToolBar* bar, const ToolButton& button)
{
    if (button.name[0] == '\0') {
        bar->addSeparator();
        return nullptr;
    }
    const QString tip = QString::fromUtf16(button.toolTip);
    auto* action =
        new QAction(QIcon(QStringLiteral(":/icons/toolbar/%1.svg").arg(QLatin1String(button.icon))),
                    PlainCaption(tip), bar->window());
    action->setObjectName(QLatin1String(button.name));
    action->setToolTip(tip);
    if (button.state == EntryState::NotYet) {
        action->setEnabled(false);
        action->setToolTip(tip + u'\n' + NotYetTip(tip));
    }
    bar->addAction(action);
    QWidget* widget = bar->widgetForAction(action);
    widget->setObjectName(QLatin1String(button.name) + QStringLiteral("Button"));
    widget->setAccessibleName(PlainCaption(tip));
    return action;
}

} // namespace quillane
