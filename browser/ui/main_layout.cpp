// Tool bar and panes of the main window.
#include "browser/ui/frmBrowserMain.h"

#include "platform/ui/command_connector.h"

#include <QEvent>
#include <QFrame>
#include <QLineEdit>
#include <QStyle>
#include <QToolButton>
#include <algorithm>

namespace quillane {

namespace {

constexpr int kStartLeftPane = 300; // pixels
constexpr int kBarWidth = 6;
constexpr int kSmallestTree = 110;
constexpr double kPreviewShare = 0.68; // of the left pane, when it is low

QWidget* Placeholder(QToolBar* bar, const char* key, int width)
{
    auto* place = new QWidget(bar);
    place->setObjectName(QLatin1String(key));
    place->setFixedWidth(width);
    bar->addWidget(place);
    return place;
}

/// Puts a control exactly on its placeholder.
void LayOver(QWidget* control, QWidget* place)
{
    control->setParent(place);
    const int height = std::min(control->sizeHint().height(), std::max(place->height(), 24));
    control->setGeometry(0, (place->height() - height) / 2, place->width(), height);
    control->raise();
}

} // namespace

void frmBrowserMain::BuildToolBar()
{
    mToolBar = new QToolBar(tr("Tool Bar"), this);
    mToolBar->setObjectName(QStringLiteral("Toolbar1"));
    mToolBar->setMovable(false);
    mToolBar->setContextMenuPolicy(Qt::PreventContextMenu);
    addToolBar(mToolBar);
    const int side = style()->pixelMetric(QStyle::PM_ToolBarIconSize, nullptr, this);
    mToolBar->setIconSize({side, side});

    for (const ToolButton& button : FixedToolButtons()) {
        if (QAction* action = AddToolButton(mToolBar, button)) {
            ConnectCommand(action, &QAction::triggered, this, mPlatform.dialogs,
                           [this, index = button.index] { Tool(index); });
        }
    }

    mToolBar->addSeparator();
    QWidget* comboPlace = Placeholder(mToolBar, "combo", kComboPlaceholderWidth);
    mToolBar->addSeparator();
    QWidget* progressPlace = Placeholder(mToolBar, "progress", kProgressPlaceholderWidth);

    mDirPath = new QComboBox(comboPlace);
    mDirPath->setObjectName(QStringLiteral("cboDirPath"));
    mDirPath->setAccessibleName(tr("Folder"));
    mDirPath->setToolTip(
        tr("Folder: choose one of the last folders, or type a path and press Enter"));
    mDirPath->setEditable(true);
    mDirPath->setInsertPolicy(QComboBox::NoInsert);
    mDirPath->setCompleter(nullptr);
    mDirPath->setMaxVisibleItems(20);
    mDirPath->lineEdit()->setPlaceholderText(tr("Folder"));
    mProgress = new QProgressBar(progressPlace);
    mProgress->setObjectName(QStringLiteral("proTile"));
    mProgress->setAccessibleName(tr("Progress"));
    mProgress->setTextVisible(false);
    mProgress->hide();
    for (QWidget* place : {comboPlace, progressPlace}) {
        place->installEventFilter(this);
    }
}

void frmBrowserMain::BuildPanes()
{
    mClient = new QWidget(this);
    mClient->setObjectName(QStringLiteral("client"));
    setCentralWidget(mClient);
    mLeftPane = new QWidget(mClient);
    mLeftPane->setObjectName(QStringLiteral("picTreeView"));
    mLeftPane->resize(kStartLeftPane, 400);
    mLeftPane->installEventFilter(this);
    mTree = new FolderTree(mPlatform.dialogs, mLeftPane);
    mTree->setObjectName(QStringLiteral("tvExplore"));
    mTree->setAccessibleName(tr("Folders"));
    mPreview = new PreviewPanel(mLeftPane);
    mBar = new QFrame(mClient);
    mBar->setObjectName(QStringLiteral("fraSplitter"));
    mBar->setAccessibleName(tr("Splitter"));
    mBar->setToolTip(tr("Drag to give the panes other widths"));
    mBar->resize(kBarWidth, 400);
    mViews = new FolderViews(mSession, mPlatform.loop, mPlatform.places.ThumbnailCache(), mClient);
}

void frmBrowserMain::ArrangeLeftPane()
{
    const QSize pane = mLeftPane->size();
    const int share = int(pane.height() * kPreviewShare);
    const int preview = std::clamp(share, std::min(share, PreviewPanel::WantedHeight() - 200),
                                   std::max(0, pane.height() - kSmallestTree));
    mTree->setGeometry(0, 0, pane.width(), pane.height() - preview);
    mPreview->setGeometry(0, pane.height() - preview, pane.width(), preview);
}

bool frmBrowserMain::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize) {
        if (watched == mLeftPane) {
            ArrangeLeftPane();
        } else if (mDirPath && watched == mDirPath->parentWidget()) {
            LayOver(mDirPath, mDirPath->parentWidget());
        } else if (mProgress && watched == mProgress->parentWidget()) {
            LayOver(mProgress, mProgress->parentWidget());
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace quillane
