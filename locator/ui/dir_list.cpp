#include "locator/ui/dir_list.h"

#include "core/paths.h"

#include <QHeaderView>
#include <QStyle>
#include <memory>

namespace quillane {

namespace {

constexpr int kDirThreads = 4;
constexpr int kDirPath = Qt::UserRole;
constexpr QSize kDirListSize(240, 200); // logical pixels

QIcon DirIcon(const QWidget& widget, bool open)
{
    return QIcon::fromTheme(
        open ? QStringLiteral("folder-open") : QStringLiteral("folder"),
        widget.style()->standardIcon(open ? QStyle::SP_DirOpenIcon : QStyle::SP_DirIcon));
}

} // namespace

DirList::DirList(QWidget* parent) : QTreeWidget(parent), mJobs(kDirThreads)
{
    setHeaderHidden(true);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setExpandsOnDoubleClick(false);
    setUniformRowHeights(true);
    setIndentation(indentation() * 3 / 4);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setStretchLastSection(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    connect(this, &QTreeWidget::itemActivated, this, [this](const QTreeWidgetItem* item) {
        const QString path = item->data(0, kDirPath).toString();
        if (!path.isEmpty()) {
            SetPath(path);
        }
    });
}

void DirList::SetPath(const QString& path)
{
    const QString wanted = path.isEmpty() ? QString(NativeSeparator()) : WithoutSeparator(path);
    const bool changed = wanted != mPath;
    mPath = wanted;
    ShowAncestors();
    mReading = true;
    const quint64 ticket = ++mTicket;
    const auto content = std::make_shared<FolderContent>();
    mJobs.Run([wanted, content] { *content = ReadFolder(wanted, false); },
              [this, ticket, content] {
                  if (ticket == mTicket) {
                      mReading = false;
                      ShowContent(*content);
                  }
              });
    if (changed) {
        Q_EMIT pathChanged(mPath);
    }
}

void DirList::ShowAncestors()
{
    clear();
    QStringList chain;
    for (QString path = mPath; !path.isEmpty();) {
        chain.prepend(path);
        const QString above = WithoutSeparator(FolderOf(path));
        path = above == path ? QString() : above;
    }
    mOpen = nullptr;
    for (const QString& path : std::as_const(chain)) {
        const QString leaf = LeafName(path);
        auto* item = new QTreeWidgetItem({leaf.isEmpty() ? path : leaf});
        item->setData(0, kDirPath, path);
        item->setIcon(0, DirIcon(*this, true));
        item->setToolTip(0, path);
        if (mOpen) {
            mOpen->addChild(item);
        } else {
            addTopLevelItem(item);
        }
        item->setExpanded(true);
        mOpen = item;
    }
    setCurrentItem(mOpen);
}

void DirList::ShowContent(const FolderContent& content)
{
    const QIcon icon = DirIcon(*this, false);
    QList<QTreeWidgetItem*> items;
    items.reserve(content.entries.size() + 1);
    for (const FolderEntry& entry : content.entries) {
        auto* item = new QTreeWidgetItem({entry.name});
        item->setData(0, kDirPath, WithSeparator(mPath) + entry.name);
        item->setIcon(0, icon);
        items.append(item);
    }
    if (!content.readable) {
        auto* item = new QTreeWidgetItem({content.failure});
        item->setFlags(Qt::NoItemFlags);
        item->setToolTip(0, content.failure);
        items.append(item);
    }
    mOpen->addChildren(items);
    mOpen->setExpanded(true);
    scrollToItem(mOpen, QAbstractItemView::PositionAtTop);
    // The path above stays in sight where there is room for it.
    if (mOpen->parent() && items.size() < 4) {
        scrollToItem(mOpen);
    }
}

void DirList::resizeEvent(QResizeEvent* event)
{
    QTreeWidget::resizeEvent(event);
    // A row reaches to the edge, however short its name.
    header()->setMinimumSectionSize(viewport()->width());
}

QSize DirList::sizeHint() const
{
    return kDirListSize;
}

} // namespace quillane
