#include "browser/ui/folder_views.h"

#include <QIcon>

namespace quillane {

namespace {

constexpr int kSmallestCell = 16, kLargestCell = 1024; // pixels
constexpr int kRowBatch = 250;                         // rows that come into the list at once

QIcon KindIcon(const QString& key)
{
    QString name = key;
    if (name.endsWith(QStringLiteral("Big"))) {
        name.chop(3);
    }
    return QIcon(QStringLiteral(":/kinds/%1.svg").arg(name));
}

} // namespace

FolderViews::FolderViews(Session& session, UiLoop& loop, const QString& thumbnailCache,
                         QWidget* parent)
    : QWidget(parent),
      mSession(session),
      mGrid(new ThumbnailGrid(this)),
      mList(new FileListView(this)),
      mChanged(new QLabel(this)),
      mPool(thumbnailCache)
{
    setObjectName(QStringLiteral("picTileParent"));
    mGrid->setObjectName(QStringLiteral("LEADImgList1"));
    mGrid->setAccessibleName(tr("Thumbnails"));
    mList->setObjectName(QStringLiteral("lvSelected"));
    mList->setAccessibleName(tr("Files"));
    mList->hide();
    mList->SetIconProvider(KindIcon);
    mList->SetDateText([&loop](const QDateTime& when) { return loop.SystemDateText(when); });

    mChanged->setObjectName(QStringLiteral("lblFolderChanged"));
    mChanged->setText(tr("This folder has changed.  <a href=\"refresh\">Refresh (F5)</a>"));
    mChanged->setAccessibleName(tr("This folder has changed. Refresh (F5)"));
    mChanged->setAlignment(Qt::AlignCenter);
    mChanged->setAutoFillBackground(true);
    mChanged->setBackgroundRole(QPalette::AlternateBase);
    mChanged->setFrameShape(QFrame::StyledPanel);
    mChanged->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    mChanged->hide();
    connect(mChanged, &QLabel::linkActivated, this, [this] { Q_EMIT RefreshWanted(); });

    connect(mGrid, &ThumbnailGrid::thumbnailsWanted, this, &FolderViews::WantVisible);
    mPool.OnDone([this](const QString& path, const Thumbnail& thumbnail) {
        mGrid->ThumbnailDone(path, thumbnail.image, thumbnail.failure);
    });
    connect(mGrid, &ThumbnailGrid::picked, this, &FolderViews::Picked);
    connect(mGrid, &ThumbnailGrid::doubleClicked, this, &FolderViews::Activated);
    connect(mGrid, &ThumbnailGrid::enterPressed, this, &FolderViews::EnterPressed);
    connect(mGrid, &ThumbnailGrid::contextMenuWanted, this,
            [this](int, const QPoint& at) { Q_EMIT PopupWanted(-1, at); });
    connect(mList, &FileListView::picked, this, &FolderViews::Picked);
    connect(mList, &FileListView::doubleClicked, this, &FolderViews::Activated);
    connect(mList, &FileListView::contextMenuWanted, this, &FolderViews::PopupWanted);
    connect(mList, &FileListView::rowsReordered, this, &FolderViews::Reordered);
}

void FolderViews::ShowView(int style)
{
    mThumbnails = style < 0;
    if (!mThumbnails) {
        mList->SetStyle(style);
    }
    mGrid->setVisible(mThumbnails);
    mList->setVisible(!mThumbnails);
    if (!mThumbnails) {
        mPool.Clear();
    }
    Place();
}

QVector<bool> FolderViews::SelectedFlags() const
{
    return mThumbnails ? mGrid->SelectedFlags() : mList->SelectedFlags();
}

QStringList FolderViews::SelectedPaths() const
{
    QStringList paths;
    const QVector<int> selected = mThumbnails ? mGrid->SelectedIndexes() : mList->SelectedIndexes();
    for (const int index : selected) {
        if (index < mSession.lbFilTiffs.size()) {
            paths.append(mSession.lbFilTiffs.at(index));
        }
    }
    return paths;
}

void FolderViews::SelectAllVisible()
{
    if (mThumbnails) {
        mGrid->SelectAll();
    } else {
        mList->SelectAll();
    }
}

void FolderViews::FocusView()
{
    if (mThumbnails) {
        mGrid->setFocus();
    } else {
        mList->setFocus();
    }
}

void FolderViews::ClearGrid(qint16 cellWidth, qint16 cellHeight)
{
    mPool.Clear();
    mGrid->Clear();
    // Stored sizes that make no sense would make cells that cannot be seen.
    mGrid->SetCellSize(qBound(kSmallestCell, int(cellWidth), kLargestCell),
                       qBound(kSmallestCell, int(cellHeight), kLargestCell));
}

void FolderViews::AddCell(const QString& path, const ImageFacts& facts)
{
    mGrid->Add(path, QSize(facts.width, facts.height));
}

void FolderViews::AddStockCell(const QString& path, StockPicture picture)
{
    const int cell = mGrid->Add(path);
    mGrid->SetStockPicture(cell, QIcon(QStringLiteral(":/stock/%1.svg").arg(int(picture))));
}

void FolderViews::FinishGrid()
{
    mGrid->FinalRefresh();
}

void FolderViews::ClearRows(const std::array<QString, 4>& captions)
{
    mPendingRows.clear();
    mList->Clear();
    mList->SetCaptions(captions);
}

void FolderViews::AddRow(const ScanRow& row)
{
    mPendingRows.append({row.path, row.size, row.modifiedSeconds, {}});
    if (mPendingRows.size() >= kRowBatch) {
        FinishRows();
    }
}

void FolderViews::FinishRows()
{
    mList->AddRows(mPendingRows);
    mPendingRows.clear();
}

void FolderViews::ShowChanged(bool changed)
{
    if (mChanged->isVisibleTo(this) != changed) {
        mChanged->setVisible(changed);
        Place();
    }
}

void FolderViews::WantVisible()
{
    if (mThumbnails) {
        mPool.Want(mGrid->WantedPaths(), mGrid->ThumbnailBox());
    }
}

void FolderViews::Place()
{
    QRect views = rect();
    if (mChanged->isVisibleTo(this)) {
        const int height = mChanged->sizeHint().height() + 6;
        mChanged->setGeometry(0, 0, width(), height);
        views.setTop(height);
    }
    mGrid->setGeometry(views);
    mList->setGeometry(views);
}

void FolderViews::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Place();
}

} // namespace quillane
