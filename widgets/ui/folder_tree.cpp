#include "widgets/ui/folder_tree.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "widgets/new_folder.h"
#include "widgets/ui/file_icons.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QStyledItemDelegate>
#include <algorithm>
#include <memory>

namespace quillane {

namespace {

/// Icons by the names the model gives, made once; the name selected when editing begins.
class FolderDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void setEditorData(QWidget* editor, const QModelIndex& index) const override
    {
        // Once: news of the folder must not overwrite what is being typed.
        constexpr const char* kFilled = "filled";
        if (!editor->property(kFilled).toBool()) {
            editor->setProperty(kFilled, true);
            QStyledItemDelegate::setEditorData(editor, index);
        }
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const QString name = index.data(FolderTreeModel::kIconNameRole).toString();
        auto icon = mIcons.find(name);
        if (icon == mIcons.end()) {
            icon = mIcons.insert(name, PlaceIcon(name));
        }
        option->icon = *icon;
        option->features |= QStyleOptionViewItem::HasDecoration;
        option->textElideMode = Qt::ElideMiddle;
    }

private:
    mutable QHash<QString, QIcon> mIcons;
};

} // namespace

FolderTree::FolderTree(Dialogs& dialogs, QWidget* parent)
    : QTreeView(parent),
      mDialogs(dialogs),
      mModel(new FolderTreeModel(this))
{
    setObjectName(QStringLiteral("tvExplore"));
    setAccessibleName(tr("Folders"));
    mModel->SetPlaces(FolderTreeModel::SystemPlaces());
    // Before the base class hears of it, which would select a neighbour.
    connect(mModel, &FolderTreeModel::rowsAboutToBeRemoved, this, &FolderTree::RowsGoing);
    setModel(mModel);
    setItemDelegate(new FolderDelegate(this));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setAnimated(false);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTextElideMode(Qt::ElideMiddle);
    setExpandsOnDoubleClick(true);
    // Long names may be scrolled to instead of being squeezed.
    header()->setStretchLastSection(true);
    connect(this, &QTreeView::expanded, this, &FolderTree::FitColumn);
    connect(this, &QTreeView::collapsed, this, &FolderTree::FitColumn);
    connect(mModel, &FolderTreeModel::renameWanted, this, &FolderTree::Renamed);
    connect(mModel, &FolderTreeModel::folderRead, this, &FolderTree::FolderRead);
}

FolderTree::~FolderTree() = default;

QSize FolderTree::sizeHint() const
{
    return {240, 320};
}

void FolderTree::Select(const QString& path)
{
    mEditNext = false;
    Locate(path);
}

void FolderTree::Locate(const QString& path)
{
    const quint64 ticket = ++mTickets;
    mSelecting = ticket;
    const auto located = std::make_shared<LocatedPath>();
    mModel->Jobs().Run([located, path, files = ShowFiles()] { *located = LocatePath(path, files); },
                       [this, located, ticket] { Located(ticket, *located); });
}

void FolderTree::Located(quint64 ticket, const LocatedPath& located)
{
    if (ticket != mSelecting) {
        return;
    }
    mSelecting = 0;
    QModelIndex index;
    if (!located.path.isEmpty()) {
        index = mModel->MakeNode(located.path, located.isFolder, currentIndex());
    }
    if (!index.isValid()) {
        mEditNext = false;
        return;
    }
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
        expand(above);
    }
    mQuiet = true;
    setCurrentIndex(index);
    mQuiet = false;
    BringInSight(index);
    mKeepInSight = true;
    const QPersistentModelIndex node(index);
    const bool name = std::exchange(mEditNext, false);
    const QPointer<FolderTree> alive(this);
    TellSelected(index);
    if (name && alive && node.isValid()) {
        mModel->SetEditable(node);
        setFocus();
        edit(node);
    }
}

QString FolderTree::SelectedPath() const
{
    return mModel->Path(currentIndex());
}

void FolderTree::SetShowFiles(bool on)
{
    mModel->SetShowFiles(on);
}

bool FolderTree::ShowFiles() const
{
    return mModel->ShowFiles();
}

void FolderTree::Refresh()
{
    mModel->Refresh();
}

void FolderTree::NewFolder(bool edit)
{
    QModelIndex above = currentIndex();
    if (above.isValid() && !mModel->IsFolder(above)) {
        above = above.parent();
    }
    if (!above.isValid()) {
        return;
    }
    try {
        const QString made = MakeNewFolder(mModel->Path(above));
        mEditNext = edit;
        Locate(made);
    } catch (const Failure& failure) {
        mDialogs.Box(failure.Description(), tr("New Folder"), BoxIcon::Warning);
    }
}

void FolderTree::Renamed(const QModelIndex& index, const QString& name)
{
    mModel->SetEditable({});
    const QString from = mModel->Path(index);
    if (name == LeafName(from)) {
        return;
    }
    try {
        RenameFolder(from, name);
    } catch (const Failure& failure) {
        mDialogs.Box(failure.Description(), tr("New Folder"), BoxIcon::Warning);
        return;
    }
    const QPersistentModelIndex node(index);
    mModel->SetName(index, name);
    if (node == currentIndex()) {
        scrollTo(node);
        TellSelected(node);
    }
}

void FolderTree::TellSelected(const QModelIndex& index)
{
    const QString name = index.data(Qt::EditRole).toString();
    Q_EMIT nodeSelected(name, mModel->Path(index));
}

void FolderTree::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTreeView::currentChanged(current, previous);
    if (mQuiet || !current.isValid()) {
        return;
    }
    // What a person chose takes the place of a selection that is still on its way.
    mSelecting = 0;
    mEditNext = false;
    mKeepInSight = false;
    TellSelected(current);
}

void FolderTree::RowsGoing(const QModelIndex& parent, int first, int last)
{
    // The selected folder, or one above it, is no more: nothing is selected by chance instead.
    for (QModelIndex node = currentIndex(); node.isValid(); node = node.parent()) {
        if (node.parent() == parent && node.row() >= first && node.row() <= last) {
            const QString path = SelectedPath();
            mQuiet = true;
            setCurrentIndex(parent);
            mQuiet = false;
            Locate(path);
            return;
        }
    }
}

void FolderTree::BringInSight(const QModelIndex& index)
{
    const QRect place = visualRect(index);
    const bool seen = !place.isEmpty() && place.top() >= 0 && place.bottom() < viewport()->height();
    scrollTo(index, seen ? EnsureVisible : PositionAtCenter);
}

void FolderTree::FitColumn()
{
    // As wide as the view, or wider where a name needs it.
    header()->setMinimumSectionSize(std::max(1, sizeHintForColumn(0)));
}

void FolderTree::FolderRead(const QString&)
{
    FitColumn();
    // What was read above the node just selected pushes it down.
    if (mKeepInSight) {
        mKeepInSight = mModel->IsReading();
        BringInSight(currentIndex());
    }
}

void FolderTree::focusInEvent(QFocusEvent* event)
{
    // The base class would make the first node current, as if a person had chosen it.
    if (currentIndex().isValid()) {
        QTreeView::focusInEvent(event);
    } else {
        QAbstractScrollArea::focusInEvent(event);
        viewport()->update();
    }
}

void FolderTree::wheelEvent(QWheelEvent* event)
{
    mKeepInSight = false;
    QTreeView::wheelEvent(event);
}

void FolderTree::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPersistentModelIndex index(indexAt(event->position().toPoint()));
    const QPointer<FolderTree> alive(this);
    QTreeView::mouseDoubleClickEvent(event);
    if (alive && event->button() == Qt::LeftButton && index.isValid()) {
        Q_EMIT nodeDoubleClicked(mModel->Path(index));
    }
}

void FolderTree::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && state() != EditingState && !mEnterOpens) {
        event->ignore();
        return;
    }
    if (enter && state() != EditingState && currentIndex().isValid()) {
        setExpanded(currentIndex(), !isExpanded(currentIndex()));
        event->accept();
        return;
    }
    QTreeView::keyPressEvent(event);
}

} // namespace quillane
