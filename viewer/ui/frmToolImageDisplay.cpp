#include "viewer/ui/frmToolImageDisplay.h"

#include "core/numbers.h"
#include "core/paths.h"
#include "platform/run_aside.h"
#include "platform/ui/command_connector.h"
#include "viewer/menu_table.h"

#include <QAbstractSpinBox>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QStatusBar>
#include <QTextEdit>
#include <QVBoxLayout>

namespace quillane {

namespace {

constexpr int kSlowWork = 500;       // milliseconds after which work is seen
constexpr int kTransientLine = 8000; // milliseconds that a line stays
constexpr QSize kSmallestWindow(420, 320);

bool IsTextControl(const QWidget* widget)
{
    return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QPlainTextEdit*>(widget)
        || qobject_cast<const QTextEdit*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget);
}

bool IsUnloadKey(const QKeyEvent& event)
{
    const bool plain = !(event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
    return plain
        && (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter
            || event.text() == QLatin1String("x"));
}

bool SameFile(const FileStat& one, const FileStat& other)
{
    return one.type == other.type && one.size == other.size && one.inode == other.inode
        && one.device == other.device && one.modifiedSeconds == other.modifiedSeconds
        && one.modifiedNanos == other.modifiedNanos;
}

} // namespace

frmToolImageDisplay::BusyScope::BusyScope(frmToolImageDisplay& window)
    : mWindow(&window),
      mHourglass(window.mPlatform.loop)
{
    window.Begin();
}

frmToolImageDisplay::BusyScope::~BusyScope()
{
    if (mWindow) {
        mWindow->End();
    }
}

frmToolImageDisplay::frmToolImageDisplay(Session& session, SettingsStore& store, Platform platform,
                                         BrowserHost* host, QWidget* parent)
    : QMainWindow(parent),
      mSession(session),
      mStore(store),
      mPlatform(platform),
      mHost(host),
      mMenus(ViewerMenu(), menuBar(), this),
      Toolbar1(new QToolBar(tr("Tool Bar"), this)),
      SSTab1(new QTabWidget),
      mView(new EngineView),
      mPage(new MetadataPage),
      mTools(nullptr),
      mFacts(new QLabel),
      mZoomLabel(new QLabel),
      mProgress(new QProgressBar)
{
    setObjectName(QStringLiteral("frmToolImageDisplay"));
    setAttribute(Qt::WA_DeleteOnClose);
    Build();
    BuildStatusBar();
    BuildToolBar();
    mTools = new RegionTools(*mView, LEAD1, this);
    mTools->SetWorker([this](const auto& work) { OnCopy(work); });
    ConnectFileMenu();
    ConnectEditMenu();
    ConnectViewMenu();
    ConnectCommands();
    ConnectTools();
    // While a command runs the mouse touches nothing; this filter is asked before the tools.
    mView->viewport()->installEventFilter(this);
    mView->installEventFilter(this);
    for (QTreeWidget* list : mPage->findChildren<QTreeWidget*>()) {
        list->installEventFilter(this); // lists would search for typed letters
    }
    mSlow.setSingleShot(true);
    mSlow.setInterval(kSlowWork);
    connect(&mSlow, &QTimer::timeout, this, [this] { ShowBusy(mBusy > 0); });
}

frmToolImageDisplay::~frmToolImageDisplay()
{
    if (mCancelLoad) {
        *mCancelLoad = true;
    }
}

void frmToolImageDisplay::Build()
{
    mView->setObjectName(QStringLiteral("LEAD1"));
    mView->setAccessibleName(tr("Picture"));
    SSTab1->setObjectName(QStringLiteral("SSTab1"));
    SSTab1->setAccessibleName(tr("Pages"));
    SSTab1->setDocumentMode(true);
    SSTab1->addTab(mView, tr("Photo"));
    SSTab1->addTab(mPage, QStringLiteral("Photo Information/Metadata"));
    setCentralWidget(SSTab1);
    setMinimumSize(kSmallestWindow);
}

void frmToolImageDisplay::BuildStatusBar()
{
    mFacts->setObjectName(QStringLiteral("lblFacts"));
    mZoomLabel->setObjectName(QStringLiteral("lblZoom"));
    mProgress->setObjectName(QStringLiteral("proBusy"));
    mProgress->setAccessibleName(tr("Working"));
    mProgress->setRange(0, 0);
    mProgress->setMaximumWidth(120);
    mProgress->setTextVisible(false);
    mProgress->hide();
    statusBar()->setObjectName(QStringLiteral("StatusBar1"));
    const int gap = fontMetrics().averageCharWidth();
    mFacts->setContentsMargins(gap, 0, gap, 0);
    mZoomLabel->setContentsMargins(gap, 0, gap, 0);
    statusBar()->addPermanentWidget(mProgress);
    statusBar()->addPermanentWidget(mFacts);
    statusBar()->addPermanentWidget(mZoomLabel);
}

void frmToolImageDisplay::setVisible(bool visible)
{
    if (!visible) {
        QMainWindow::setVisible(false);
        return;
    }
    mCloseWanted = false;
    const bool first = !mFormLoaded;
    if (first) {
        mFormLoaded = true;
        RunCommand(mPlatform.dialogs, [this] { LoadForm(); });
    }
    QMainWindow::setVisible(true);
    if (!first) {
        raise();
        activateWindow();
    }
    Try([this, first] {
        if (!first) {
            Reopen();
            return;
        }
        LoadImage();
        TakeUndoCopy();
    });
}

void frmToolImageDisplay::LoadForm()
{
    setWindowTitle(mSession.gsAppTitle + QStringLiteral("  View/Enhance Photo"));
    mHeld = {};
    mHeld.file = mSession.gsFileName;
    mHeld.quality = mSession.jpegQuality;
    mHeld.appTitle = mSession.gsAppTitle;
    mMenus.SetEnabled(QStringLiteral("mnuCrop"), false);
    ReadSettings();
    mView->SetAutoScroll(true);
    ApplyZoom();
    ShowTool();
}

void frmToolImageDisplay::ReadSettings()
{
    mSettings = LoadViewerSettings(mStore);
    const QRect room = screen()->availableGeometry();
    FitToScreen(mSettings, QSizeF(room.size()) * kTwipsPerPixel);
    const auto pixels = [](float twips) { return ToInt32(double(twips) / kTwipsPerPixel); };
    resize(pixels(mSettings.width), pixels(mSettings.height));
    move(room.topLeft() + QPoint(pixels(mSettings.left), pixels(mSettings.top)));
    for (size_t i = 0; i < kZoomItemCount; ++i) {
        mMenus.SetChecked(QLatin1String(kZoomItems[i].name), mSettings.zoom[i]);
    }
    mMenus.SetChecked(QLatin1String(kZoomFit.name), mSettings.zoomFit);
    mView->SetPaintSizeMode(mSettings.paintSizeMode);
}

void frmToolImageDisplay::WriteSettings()
{
    const QRect room = screen()->availableGeometry();
    const bool usual = !isMaximized() && !isMinimized() && !isFullScreen();
    const QSize size = usual ? this->size() : normalGeometry().size();
    const QPoint place = (usual ? pos() : normalGeometry().topLeft()) - room.topLeft();
    mSettings.top = float(place.y() * kTwipsPerPixel);
    mSettings.left = float(place.x() * kTwipsPerPixel);
    mSettings.height = float(size.height() * kTwipsPerPixel);
    mSettings.width = float(size.width() * kTwipsPerPixel);
    for (size_t i = 0; i < kZoomItemCount; ++i) {
        mSettings.zoom[i] = mMenus.IsChecked(QLatin1String(kZoomItems[i].name));
    }
    mSettings.zoomFit = mMenus.IsChecked(QLatin1String(kZoomFit.name));
    mSettings.paintSizeMode = mView->PaintSizeMode();
    SaveViewerSettings(mStore, mSettings);
    mStore.Flush();
}

void frmToolImageDisplay::Unload()
{
    WriteSettings();
    mTools->SetMagnifier(false);
    mTools->Cancel();
    LEAD1.SetBitmap({});
    LEAD2.SetBitmap({});
    mView->Clear();
    mFormLoaded = false;
}

void frmToolImageDisplay::closeEvent(QCloseEvent* event)
{
    if (mBusy > 0) {
        // Nothing that runs is pulled from under; the window goes when it has ended.
        mCloseWanted = true;
        if (mCancelLoad) {
            *mCancelLoad = true;
        }
        hide();
        event->ignore();
        return;
    }
    if (mFormLoaded) {
        Unload();
    }
    event->accept();
}

void frmToolImageDisplay::Begin()
{
    if (mBusy++ == 0) {
        mTools->Cancel();
        mPage->SetReadOnly(true);
        mSlow.start();
    }
}

void frmToolImageDisplay::End()
{
    if (--mBusy > 0) {
        return;
    }
    mSlow.stop();
    ShowBusy(false);
    mPage->SetReadOnly(false);
    if (mCloseWanted) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (mCloseWanted) {
                    close();
                }
            },
            Qt::QueuedConnection);
        return;
    }
    if (mReopenWanted) {
        mReopenWanted = false;
        QMetaObject::invokeMethod(
            this, [this] { Try([this] { Reopen(); }); }, Qt::QueuedConnection);
    }
    if (mAcquireWanted) {
        mAcquireWanted = false;
        QMetaObject::invokeMethod(this, &frmToolImageDisplay::AcquireTwain, Qt::QueuedConnection);
    }
}

void frmToolImageDisplay::ShowBusy(bool busy)
{
    mProgress->setVisible(busy);
    menuBar()->setEnabled(!busy);
    Toolbar1->setEnabled(!busy);
}

void frmToolImageDisplay::Try(const std::function<void()>& command)
{
    const QPointer<frmToolImageDisplay> self(this);
    try {
        command();
    } catch (const Failure& failure) {
        if (self && failure.Number() != kFailureCancelled) {
            Tell(failure.Description());
        }
    }
}

void frmToolImageDisplay::Reopen()
{
    if (mBusy > 0) {
        mReopenWanted = true;
        if (mLoading && mCancelLoad && mSession.gsFileName != mHeld.file) {
            *mCancelLoad = true;
        }
        return;
    }
    const QString file = mSession.gsFileName;
    if (file.isEmpty() || (file == mHeld.file && SameFile(StatPath(file), mStat))) {
        return;
    }
    if (MayLeave()) {
        mHeld.file = file;
        LoadImage();
    }
}

void frmToolImageDisplay::LoadImage()
{
    SSTab1->setTabEnabled(0, true);
    SSTab1->setTabEnabled(1, true);
    mPage->Empty();
    mTools->Cancel();
    mTools->ClearRegion();
    setWindowTitle(QStringLiteral("Quillane - View/Enhance Image     File: ") + mHeld.file);
    LEAD1.SetBitmap({});
    mView->Clear();
    ShowFacts();

    const QPointer<frmToolImageDisplay> self(this);
    const QString file = mHeld.file;
    const auto cancelled = std::make_shared<std::atomic<bool>>(false);
    const auto viewed = std::make_shared<ViewedFile>();
    const auto lead = std::make_shared<EngineInstance>();
    const auto held = std::make_shared<ViewerPicture>(mHeld);
    bool another = false;
    {
        const BusyScope busy(*this);
        mLoading = true;
        mCancelLoad = cancelled;
        const auto look = std::make_shared<QuickPicture>();
        const QSize box = (QSizeF(mView->viewport()->size()) * devicePixelRatioF()).toSize();
        mLooks.Run([look, file, box, cache = mPlatform.places.ThumbnailCache(),
                    cancelled] { *look = QuickLook(file, box, cache, cancelled.get()); },
                   [this, look, cancelled] {
                       if (mLoading && mCancelLoad == cancelled && !look->image.isNull()) {
                           mView->ShowReduced(look->image, look->whole);
                       }
                   });
        RunAside(mPlatform.loop, [&] {
            *viewed = LoadViewedFile(file, cancelled.get());
            if (viewed->picture) {
                lead->Adopt(std::move(*viewed->picture));
                viewed->picture.reset();
            }
            NoteLoaded(*held, *lead, file);
        });
        if (!self) {
            throw Failure(kFailureCancelled, QStringLiteral("The window is gone."));
        }
        mLoading = false;
        another = mReopenWanted;
        *cancelled = true; // a look that is still under way is not needed any more
    }
    if (!lead->HasBitmap() && another) {
        return; // another file takes its place, soon
    }
    LEAD1 = std::move(*lead);
    mHeld = *held;
    Adopt(*viewed);
}

void frmToolImageDisplay::Adopt(const ViewedFile& viewed)
{
    mStat = viewed.stat;
    ShowPicture();
    setWindowTitle(mSession.gsAppTitle + QStringLiteral("  View/Enhance Image     File: ")
                   + viewed.file);
    TakeUndoCopy();
    mPage->Fill(viewed, mPlatform.loop);
    CountAsSaved();
    mView->SetDragEnabled(true);
    mTools->Pointer();
    if (!viewed.failure.isEmpty() && !viewed.file.isEmpty()) {
        Tell(viewed.failure);
    }
}

bool frmToolImageDisplay::IsChanged() const
{
    return (LEAD1.HasBitmap() && LEAD1.Bitmap().Pixels().cacheKey() != mCleanPixels)
        || mPage->IsChanged();
}

void frmToolImageDisplay::CountAsSaved()
{
    mCleanPixels = LEAD1.Bitmap().Pixels().cacheKey();
    mPage->CountAsSaved();
}

void frmToolImageDisplay::ShowPicture()
{
    mView->Show(LEAD1);
    ShowFacts();
}

void frmToolImageDisplay::ShowFacts()
{
    const bool there = LEAD1.HasBitmap();
    const qint32 bits = LEAD1.BitmapBits();
    mFacts->setText(there ? tr("%1 x %2 pixels, %3")
                                .arg(LEAD1.BitmapWidth())
                                .arg(LEAD1.BitmapHeight())
                                .arg(bits == 1 ? tr("1 bit") : tr("%1 bits").arg(bits))
                          : QString());
    mZoomLabel->setText(there ? tr("%1 %").arg(mView->ZoomPercent(), 0, 'f', 0) : QString());
}

void frmToolImageDisplay::Tell(const QString& line)
{
    statusBar()->showMessage(line, kTransientLine);
}

void frmToolImageDisplay::keyPressEvent(QKeyEvent* event)
{
    if (IsUnloadKey(*event) && !IsTextControl(focusWidget())) {
        close();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

void frmToolImageDisplay::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    ShowFacts();
}

bool frmToolImageDisplay::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (mBusy > 0 && watched == mView->viewport()) {
            return true;
        }
        break;
    case QEvent::Resize:
        if (watched == mView->viewport()) {
            QMetaObject::invokeMethod(
                this, [this] { ShowFacts(); }, Qt::QueuedConnection);
        }
        break;
    case QEvent::KeyPress:
        if (IsUnloadKey(static_cast<const QKeyEvent&>(*event))) {
            close();
            return true;
        }
        break;
    default:
        break;
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace quillane
