#include "browser/ui/folder_views.h"

#include "core/paths.h"

#include <QTimer>
#include <algorithm>

namespace quillane {

namespace {

constexpr int kRowBatch = 250;
constexpr int kLookAhead = 3; // screens of thumbnails made before they are seen
constexpr int kLabelHeight = 22;

} // namespace

FolderViews::FolderViews(Session& session, UiLoop& loop, const QString& thumbnailCache,
                         QWidget* parent)
    : QWidget(parent)
    , mSession(session)
    , mLoop(loop)
    , mGrid(new ThumbnailGrid(this))
    , mList(new FileListView(this))
    , mChanged(new QLabel(this))
    , mPool(thumbnailCache)
{
    setObjectName(QStringLiteral("picTileParent"));
    mGrid->setObjectName(QStringLiteral("LEADImgList1"));
    mGrid->setAccessibleName(tr("Thumbnails"));
    mList->setAccessibleName(tr("Files"));
    mChanged->setObjectName(QStringLiteral("lblFolderChanged"));
    mChanged->setText(tr("This folder has changed.  <a href=\"refresh\">Refresh (F5)</a>"));
    mChanged->setAccessibleName(tr("This folder has changed. Refresh (F5)"));
    mChanged->setAlignment(Qt::AlignCenter);
    mChanged->setAutoFillBackground(true);
    mChanged->setBackgroundRole(QPalette::ToolTipBase);
    mChanged->setForegroundRole(QPalette::ToolTipText);
    mChanged->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    mChanged->hide();
    connect(mChanged, &QLabel::linkActivated, this, [this] { Q_EMIT RefreshWanted(); });
}

} // namespace quillane
