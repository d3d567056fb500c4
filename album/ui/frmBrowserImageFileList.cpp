// The album window's controls, its load and its end.
#include "album/ui/frmBrowserImageFileList.h"
#include "platform/ui/window_room.h"

#include "album/album_clip.h"
#include "album/album_menu.h"
#include "core/settings_table.h"
#include "platform/file_list_mime.h"
#include "platform/ui/command_connector.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QMenuBar>
#include <QMimeData>
#include <QSplitter>
#include <QStatusBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <utility>

namespace quillane {

namespace {

constexpr QSize kAlbumWindowSize(900, 640); // logical pixels
constexpr int kAlbumCell = 118;
constexpr int kAlbumCommentHeight = 110;
constexpr int kColumnMargin = 24;

/// Takes text that is dropped, while files fall through to the window.
class AlbumCommentBox : public QPlainTextEdit {
protected:
    bool canInsertFromMimeData(const QMimeData* source) const override
    {
        return !source->hasUrls() && QPlainTextEdit::canInsertFromMimeData(source);
    }
};

/// Shows rows as they are, but for paths that no system would take: to lay out a hundred thousand
/// characters takes too long.
class AlbumRowDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QString displayText(const QVariant& value, const QLocale&) const override
    {
        return ShortPath(value.toString());
    }
};

const SettingKey& AlbumSetting(const char* key)
{
    return SettingRow(QLatin1String("PhotoAlbum"), QLatin1String(key));
}

} // namespace

frmBrowserImageFileList::frmBrowserImageFileList(Session& session, SettingsStore& store,
                                                 Platform platform, BrowserHost* host,
                                                 QWidget* parent)
    : QMainWindow(parent),
      mSession(session),
      mStore(store),
      mPlatform(platform),
      mHost(host),
      mModel(session.lbExportList),
      mMenus(AlbumMenu(), menuBar(), this),
      mRows(new QTableView),
      mGrid(new ThumbnailGrid),
      mPreview(new AlbumPreviewPane),
      mComment(new AlbumCommentBox),
      mTotal(new QLabel),
      mHint(new QLabel),
      mPool(platform.places.ThumbnailCache()),
      mJobs(2) // one look that hangs does not stop those after another album was opened
{
    mPartlyRead = std::make_shared<PartlyReadAlbums>();
    setObjectName(QStringLiteral("frmBrowserImageFileList"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptDrops(true);
    Build();
    ConnectMenus();
    ConnectViews();
}

frmBrowserImageFileList::~frmBrowserImageFileList()
{
    // The widgets go after what their signals lead to.
    for (QObject* child : findChildren<QObject*>()) {
        child->disconnect(this);
    }
    mRows->selectionModel()->disconnect(this);
    mRows->setModel(nullptr);
}

void frmBrowserImageFileList::Build()
{
    BuildRows();
    mGrid->setObjectName(QStringLiteral("LEADImgList1"));
    mGrid->setAccessibleName(tr("Thumbnails"));
    mComment->setObjectName(QStringLiteral("rtbComment"));
    mComment->setAccessibleName(QStringLiteral("Photo Album Comments"));
    mComment->setTabChangesFocus(true);
    mTotal->setObjectName(QStringLiteral("lblTotalFiles"));
    mTotal->setAccessibleName(tr("Total files"));

    auto* files = new QWidget;
    auto* filesLayout = new QGridLayout(files);
    filesLayout->setContentsMargins(0, 0, 0, 0);
    filesLayout->addWidget(mRows, 0, 0);
    filesLayout->addWidget(mGrid, 0, 0);
    filesLayout->addWidget(mHint, 0, 0);
    BuildHint();
    auto* halves = new QSplitter;
    halves->setChildrenCollapsible(false);
    halves->addWidget(files);
    halves->addWidget(mPreview);
    halves->setStretchFactor(0, 1);
    halves->setSizes({kAlbumWindowSize.width() * 3 / 5, kAlbumWindowSize.width() * 2 / 5});

    auto* comments = new QGroupBox(QStringLiteral("Photo Album Comments"));
    auto* commentLayout = new QVBoxLayout(comments);
    commentLayout->addWidget(mComment);
    auto* parts = new QSplitter(Qt::Vertical);
    parts->setChildrenCollapsible(false);
    parts->addWidget(halves);
    parts->addWidget(comments);
    parts->setStretchFactor(0, 1);
    parts->setSizes({kAlbumWindowSize.height() - kAlbumCommentHeight, kAlbumCommentHeight});

    auto* all = new QWidget;
    auto* layout = new QVBoxLayout(all);
    layout->addWidget(parts);
    setCentralWidget(all);
    statusBar()->setObjectName(QStringLiteral("StatusBar1"));
    statusBar()->addPermanentWidget(new QLabel(tr("Total files:")));
    statusBar()->addPermanentWidget(mTotal);
    resize(kAlbumWindowSize.boundedTo(WindowRoom(*this)));
}

void frmBrowserImageFileList::BuildHint()
{
    constexpr int kHintMargin = 40;
    mHint->setObjectName(QStringLiteral("lblEmptyAlbum"));
    mHint->setText(tr("This album is empty.\n\nDrop photos here, paste them, or choose "
                      "\u201cAdd File(s) to Photo Album\u201d from the menu of the right mouse "
                      "button in the browser."));
    mHint->setAlignment(Qt::AlignCenter);
    mHint->setWordWrap(true);
    mHint->setMargin(kHintMargin);
    mHint->setForegroundRole(QPalette::PlaceholderText);
    mHint->setAttribute(Qt::WA_TransparentForMouseEvents);
}

void frmBrowserImageFileList::BuildRows()
{
    mModel.SetDateText(
        [loop = &mPlatform.loop](const QDateTime& when) { return loop->SystemDateText(when); });
    mRows->setObjectName(QStringLiteral("lvImageFileList"));
    mRows->setAccessibleName(tr("Files of the album"));
    mRows->setModel(&mModel);
    mRows->setItemDelegate(new AlbumRowDelegate(mRows));
    mRows->setSelectionBehavior(QAbstractItemView::SelectRows);
    mRows->setSelectionMode(QAbstractItemView::ExtendedSelection);
    mRows->setEditTriggers(QAbstractItemView::NoEditTriggers);
    mRows->setDragDropMode(QAbstractItemView::DragOnly);
    mRows->setTabKeyNavigation(false);
    mRows->setTextElideMode(Qt::ElideLeft); // the name of the file is at the end
    mRows->setWordWrap(false);
    mRows->setCornerButtonEnabled(false);
    QHeaderView* lines = mRows->verticalHeader();
    lines->hide();
    lines->setSectionResizeMode(QHeaderView::Fixed);
    lines->setDefaultSectionSize(fontMetrics().height() + fontMetrics().height() / 2);
    QHeaderView* headings = mRows->horizontalHeader();
    headings->setHighlightSections(false);
    headings->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    headings->setSectionResizeMode(AlbumModel::kFilename, QHeaderView::Stretch);
    const QFontMetrics metrics = mRows->fontMetrics();
    const QString date = mPlatform.loop.SystemDateText(mPlatform.loop.Now());
    mRows->setColumnWidth(AlbumModel::kSize,
                          metrics.horizontalAdvance(QStringLiteral("000000000")) + kColumnMargin);
    mRows->setColumnWidth(AlbumModel::kModified,
                          std::max(metrics.horizontalAdvance(date),
                                   metrics.horizontalAdvance(QStringLiteral("File Not Found")))
                              + kColumnMargin);
}

void frmBrowserImageFileList::ConnectViews()
{
    connect(mRows->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (!mShowing && current.isValid()) {
                    PreviewRow(current.row());
                    mPressPreviewed = QGuiApplication::mouseButtons() != Qt::NoButton;
                }
            });
    // A click on the row that is current looks at its file once more.
    connect(mRows, &QTableView::pressed, this, [this](const QModelIndex& row) {
        if (!std::exchange(mPressPreviewed, false)) {
            PreviewRow(row.row());
        }
    });
    connect(mGrid, &ThumbnailGrid::picked, this, [this](int cell) {
        mSession.gImageListIndex = cell;
        if (cell >= 0 && cell < mModel.Count()) {
            SelectRow(cell);
            SelectRowsOfCells();
            PreviewRow(cell);
        }
    });
    connect(mGrid, &ThumbnailGrid::selectionChanged, this, [this] {
        if (ThumbnailsShown()) {
            SelectRowsOfCells();
        }
    });
    connect(mGrid, &ThumbnailGrid::thumbnailsWanted, this, [this] {
        if (ThumbnailsShown()) {
            mPool.Want(mGrid->WantedPaths(), mGrid->ThumbnailBox());
        }
    });
    mPool.OnDone([this](const QString& path, const Thumbnail& thumbnail) {
        mGrid->ThumbnailDone(path, thumbnail.image, thumbnail.failure);
    });
    connect(mPreview, &AlbumPreviewPane::Unreadable, this, &frmBrowserImageFileList::Tell);
    connect(QApplication::clipboard(), &QClipboard::dataChanged, this,
            &frmBrowserImageFileList::ClipboardChanged);
}

void frmBrowserImageFileList::setVisible(bool visible)
{
    if (visible) {
        mCloseWanted = false;
        if (!mFormLoaded) {
            LoadForm();
        }
        TakeNewExports();
    }
    QMainWindow::setVisible(visible);
}

void frmBrowserImageFileList::LoadForm()
{
    mFormLoaded = true;
    if (!mClipFiles) {
        mClipFiles = std::make_shared<cClipFiles>();
    }
    setWindowTitle(mSession.gsAppTitle + QStringLiteral("  Photo Album"));
    mRows->setShowGrid(true);
    mMenus.SetChecked(QStringLiteral("nmuViewFilename"),
                      ReadBool(mStore, AlbumSetting("nmuViewFilename.CHECKED")));
    mMenus.SetChecked(QStringLiteral("mnuViewThumbnails"),
                      ReadBool(mStore, AlbumSetting("mnuViewThumbnails.CHECKED")));
    FileMenuOpens();
    mGrid->Clear();
    mGrid->SetCellSize(kAlbumCell, kAlbumCell);
    mPreview->Blank();
    mComment->setPlainText(mSession.gsComments);
    if (!mSession.lbExportList.isEmpty()) {
        RebuildRows();
    }
    ShowView();
    ShowTotal();
    LookAtNext();
}

void frmBrowserImageFileList::Unload()
{
    mFormLoaded = false;
    mSession.gsComments = mComment->toPlainText();
    WriteBool(mStore, AlbumSetting("nmuViewFilename.CHECKED"),
              mMenus.IsChecked(QStringLiteral("nmuViewFilename")));
    WriteBool(mStore, AlbumSetting("mnuViewThumbnails.CHECKED"),
              mMenus.IsChecked(QStringLiteral("mnuViewThumbnails")));
    mStore.Flush();
}

void frmBrowserImageFileList::closeEvent(QCloseEvent* event)
{
    if (mBusy > 0 || mModel.IsWaiting()) {
        // What is being read or written, and the list of those that are there, is completed first.
        mCloseWanted = true;
        hide();
        event->ignore();
        return;
    }
    if (mFormLoaded) {
        Unload();
    }
    event->accept();
}

void frmBrowserImageFileList::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && mFormLoaded) {
        TakeNewExports();
        UpdateFileMenu();
    }
    QMainWindow::changeEvent(event);
}

void frmBrowserImageFileList::dragEnterEvent(QDragEnterEvent* event)
{
    const auto* source = qobject_cast<QWidget*>(event->source());
    const bool own = source && (source == this || isAncestorOf(source));
    if (!own && mBusy == 0 && HoldsFileList(*event->mimeData())) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void frmBrowserImageFileList::dropEvent(QDropEvent* event)
{
    if (mBusy > 0) {
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    // Who dropped waits for the end of this call: the files are looked at afterwards.
    ++mBusy;
    QMetaObject::invokeMethod(
        this,
        [this, dropped = FileListCopy(*event->mimeData())] {
            --mBusy;
            RunCommand(mPlatform.dialogs, [&] { TakeDropped(dropped); });
        },
        Qt::QueuedConnection);
}

void frmBrowserImageFileList::FileMenuOpens()
{
    const QMimeData* held = QApplication::clipboard()->mimeData();
    mCanPaste = held && HoldsFileList(*held);
    UpdateFileMenu();
}

void frmBrowserImageFileList::ClipboardChanged()
{
    // The exact answer comes with the menu; until then the key is not in the way.
    const QMimeData* held = QApplication::clipboard()->mimeData();
    mCanPaste = held && MayHoldFileList(*held);
    UpdateFileMenu();
}

void frmBrowserImageFileList::UpdateFileMenu()
{
    const bool idle = mBusy == 0;
    const bool any = idle && mModel.Count() > 0;
    mMenus.SetEnabled(QStringLiteral("mnuOpen"), idle);
    mMenus.SetEnabled(QStringLiteral("mnuPaste"), idle && mCanPaste);
    for (const char* name :
         {"mnuPrint", "mnuSend", "mnuTileImages", "mnuClearALL", "mnuSave", "mnuRemoveSelected"}) {
        mMenus.SetEnabled(QLatin1String(name), any);
    }
}

bool frmBrowserImageFileList::ThumbnailsShown() const
{
    return mGrid->isVisibleTo(mGrid->parentWidget());
}

void frmBrowserImageFileList::ShowTotal()
{
    mTotal->setText(QString::number(mModel.Count()));
    mHint->setVisible(mModel.Count() == 0);
    mHint->raise();
    UpdateFileMenu();
}

void frmBrowserImageFileList::Tell(const QString& words)
{
    constexpr int kToldFor = 10'000; // milliseconds
    statusBar()->showMessage(words, kToldFor);
}

} // namespace quillane
