#include "locator/ui/dir_list.h"

#include "core/paths.h"
#include "widgets/label_lines.h"

#include <QHeaderView>
#include <QStyle>
#include <algorithm>
#include <memory>
#include <utility>

namespace quillane {

namespace {

constexpr int kDirThreads = 4;
constexpr int kDirPath = Qt::UserRole;
constexpr QSize kDirListSize(240, 200); // logical pixels
constexpr int kMostAncestors = 100;     // that are shown; the nearest, and the root
constexpr qsizetype kFoldersAtOnce = 500;

/// A tool tip of these very words, whatever marks are in them.
QString PlainTip(const QString& words)
{
    return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>")
        .arg(DisplayName(words).toHtmlEscaped());
}

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
    mMore.setInterval(0);
    connect(&mMore, &QTimer::timeout, this, &DirList::ShowMore);
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
    mMore.stop();
    ShowAncestors();
    mReading = true;
    const quint64 ticket = ++mTicket;
    const auto content = std::make_shared<FolderContent>();
    mJobs.Run([wanted, content] { *content = ReadFolder(wanted, false); },
              [this, ticket, content] {
                  if (ticket == mTicket) {
                      ShowContent(std::move(*content));
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
        if (chain.size() == kMostAncestors) {
            chain.first() = QString(SeparatorOf(mPath));
            break;
        }
        const QString above = WithoutSeparator(FolderOf(path));
        path = above == path ? QString() : above;
    }
    mOpen = nullptr;
    for (const QString& path : std::as_const(chain)) {
        const QString leaf = LeafName(path);
        mOpen = AddAncestor(mOpen, leaf.isEmpty() ? path : leaf, path);
        mOpen->setExpanded(true);
    }
    setCurrentItem(mOpen);
}

QTreeWidgetItem* DirList::AddAncestor(QTreeWidgetItem* parent, const QString& name,
                                      const QString& path)
{
    auto* item = new QTreeWidgetItem({DisplayName(name)});
    item->setData(0, kDirPath, path);
    item->setIcon(0, DirIcon(*this, true));
    item->setToolTip(0, PlainTip(path));
    if (parent) {
        parent->addChild(item);
    } else {
        addTopLevelItem(item);
    }
    return item;
}

void DirList::ShowContent(FolderContent&& content)
{
    mContent = std::move(content);
    mShown = 0;
    ShowMore();
    if (!mContent.readable) {
        auto* item = new QTreeWidgetItem({DisplayName(mContent.failure)});
        item->setFlags(Qt::NoItemFlags);
        item->setToolTip(0, PlainTip(mContent.failure));
        mOpen->addChild(item);
    }
    mOpen->setExpanded(true);
    scrollToItem(mOpen, QAbstractItemView::PositionAtTop);
    // The path above stays in sight where there is room for it.
    if (mOpen->parent() && mOpen->childCount() < 4) {
        scrollToItem(mOpen);
    }
}

void DirList::ShowMore()
{
    const qsizetype end = std::min(mShown + kFoldersAtOnce, mContent.entries.size());
    const QIcon icon = DirIcon(*this, false);
    QList<QTreeWidgetItem*> items;
    items.reserve(end - mShown);
    for (; mShown < end; ++mShown) {
        const FolderEntry& entry = mContent.entries.at(mShown);
        auto* item = new QTreeWidgetItem({DisplayName(entry.name)});
        item->setData(0, kDirPath, WithSeparator(mPath) + entry.name);
        item->setIcon(0, icon);
        items.append(item);
    }
    mOpen->addChildren(items);
    mReading = mShown < mContent.entries.size();
    if (mReading) {
        mMore.start();
    } else {
        mMore.stop();
        mContent.entries.clear();
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
