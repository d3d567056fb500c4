#include "widgets/ui/cell_view_accessible.h"

#include "widgets/ui/cell_view.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

namespace quillane {

namespace {

/// One cell. It stands for a position: what is there may change.
class CellAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    CellAccessible(CellView* view, int index) : mView(view), mIndex(index) { }

    int Index() const { return mIndex; }
    bool isValid() const override { return mView && mIndex < mView->Count(); }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessibleInterface* parent() const override
    {
        return QAccessible::queryAccessibleInterface(mView.data());
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void setText(QAccessible::Text, const QString&) override { }

    QString text(QAccessible::Text kind) const override
    {
        if (!isValid()) {
            return {};
        }
        switch (kind) {
        case QAccessible::Name:
            return mView->SpokenText(mIndex);
        case QAccessible::Description:
            return mView->ToolTipAt(mIndex);
        default:
            return {};
        }
    }

    QRect rect() const override
    {
        if (!isValid()) {
            return {};
        }
        const QRect cell = mView->CellRect(mIndex);
        return QRect(mView->viewport()->mapToGlobal(cell.topLeft()), cell.size());
    }

    QAccessible::Role role() const override { return QAccessible::ListItem; }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.selectable = state.multiSelectable = state.extSelectable = true;
        state.focusable = true;
        state.selected = mView->IsSelected(mIndex);
        state.focused = mView->Current() == mIndex && mView->hasFocus();
        state.offscreen = !mView->CellRect(mIndex).intersects(mView->viewport()->rect());
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    QStringList actionNames() const override { return {setFocusAction(), toggleAction()}; }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }
    void doAction(const QString& action) override
    {
        if (!isValid()) {
            return;
        }
        if (action == setFocusAction()) {
            mView->setFocus();
            mView->MakeCurrent(mIndex);
        } else if (action == toggleAction()) {
            mView->SetSelected(mIndex, !mView->IsSelected(mIndex));
        }
    }

private:
    QPointer<CellView> mView;
    int mIndex;
};

class CellViewAccessible : public QAccessibleWidget {
public:
    explicit CellViewAccessible(CellView* view) : QAccessibleWidget(view, QAccessible::List) { }

    ~CellViewAccessible() override
    {
        for (const QAccessible::Id id : std::as_const(mCells)) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

    int childCount() const override { return View()->Count(); }

    QAccessibleInterface* child(int index) const override
    {
        if (index < 0 || index >= View()->Count()) {
            return nullptr;
        }
        // Only the cells that were asked for are made.
        QAccessible::Id& id = mCells[index];
        if (id == 0) {
            id = QAccessible::registerAccessibleInterface(new CellAccessible(View(), index));
        }
        return QAccessible::accessibleInterface(id);
    }

    int indexOfChild(const QAccessibleInterface* child) const override
    {
        const auto* cell = dynamic_cast<const CellAccessible*>(child);
        return cell ? cell->Index() : -1;
    }

    QAccessibleInterface* childAt(int x, int y) const override
    {
        return child(View()->HitTest(View()->viewport()->mapFromGlobal(QPoint(x, y))));
    }

    QAccessibleInterface* focusChild() const override { return child(View()->Current()); }

private:
    CellView* View() const { return static_cast<CellView*>(widget()); }

    mutable QHash<int, QAccessible::Id> mCells;
};

QAccessibleInterface* MakeCellViewAccessible(const QString&, QObject* object)
{
    auto* view = qobject_cast<CellView*>(object);
    return view ? new CellViewAccessible(view) : nullptr;
}

} // namespace

void InstallCellViewAccessible()
{
    static const bool once = [] {
        QAccessible::installFactory(MakeCellViewAccessible);
        return true;
    }();
    Q_UNUSED(once)
}

} // namespace quillane
