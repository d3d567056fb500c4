// Startup, shutdown, settings.
#include "browser/ui/frmBrowserMain.h"
#include "platform/ui/window_room.h"

#include "browser/about_text.h"
#include "browser/filter.h"
#include "browser/ui/window_makers.h"
#include "core/paths.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QThread>

namespace quillane {

namespace {

constexpr QSize kLeastPreferred{1180, 780}; // pixels
constexpr double kPreferredShare = 0.62;    // of a large screen
constexpr int kLeastWidth = 640;
constexpr int kLeastHeight = 440;
constexpr int kWelcomePicture = 12;

/// A stored position in pixels; one that no screen has counts as the corner.
int PixelsOfTwips(float twips)
{
    constexpr float kFarthest = 1'000'000;
    return twips >= 0 && twips <= kFarthest ? int(twips) / kTwipsPerPixel : 0;
}

} // namespace

frmBrowserMain::frmBrowserMain(Session& session, SettingsStore& store, Platform platform,
                               WindowRegistry& windows)
    : mSession(session),
      mStore(store),
      mPlatform(platform),
      mWindows(windows),
      mMenus(menuBar(), this),
      mPanels(statusBar()),
      mToolBar(nullptr),
      mDirPath(nullptr),
      mProgress(nullptr),
      mClient(nullptr),
      mLeftPane(nullptr),
      mBar(nullptr),
      mTree(nullptr),
      mPreview(nullptr),
      mViews(nullptr),
      mSplitter(platform.dialogs),
      mScan(session, platform, *this),
      mFiles(session, platform, *this)
{
    setObjectName(QStringLiteral("frmBrowserMain"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/quillane.svg")));
    setMinimumSize(kLeastWidth, kLeastHeight);
    statusBar()->setObjectName(QStringLiteral("StatusBar1"));
    RegisterWindows(windows, session, store, platform, *this, mCriteria, this);
    mScan.SetSearchSource([this] {
        return SearchQuestion{mCriteria, {mSession.matchCase, mSession.matchWord}};
    });
    BuildToolBar();
    BuildPanes();
    ConnectMenus();
    ConnectViews();
    ConnectKeys();
}

frmBrowserMain::~frmBrowserMain()
{
    mScan.Abandon();
    mPlatform.watch.OnChange({}); // it outlives the window
    // The widgets go after what their signals lead to, and some tell of their losing the keyboard.
    for (QObject* child : findChildren<QObject*>()) {
        child->disconnect(this);
    }
}

void frmBrowserMain::Load()
{
    const Hourglass busy(mPlatform.loop);
    LoadSettings();
    InitBrowserDefaults();
    ArrangeMainWindow();
    setWindowTitle(MainCaption(mSession.gsAppTitle, mSession.gsSiteName));

    mSplitter.SetControls(mClient, mLeftPane, mViews, mBar);
    mSplitter.SetLeft(mLeftPane->width());
    mSplitter.SetTrackSplit(kTrue);

    mPreview->ShowBanner(mSession.gsAppTitle, kWelcomePicture);
    SetImageTool(mSession.gsImageTool);
    show();
    // The window is on the screen before the first folder is read.
    mPlatform.loop.ProcessEvents();

    if (mMenus.IsChecked(QStringLiteral("mnuMainViewTileBoxTileImage"))) {
        mViews->ShowView(-1);
    } else {
        mViews->ShowView(mSettings.listStyle);
    }
    mViews->FocusView();
    mTree->Select(mSession.gsPath.isEmpty() ? mPlatform.places.Pictures() : mSession.gsPath);
}

void frmBrowserMain::InitBrowserDefaults()
{
    mSession.gsFileName.clear();
    mSession.gsFilter = QString::fromUtf16(kBrowseMask);
    mSession.gsCrLf = QStringLiteral("\r\n");
    mSession.gsTab = QStringLiteral("\t");
    mSession.gsSiteName = SiteName();
    mSession.gsAppTitle = QStringLiteral("Quillane");
}

void frmBrowserMain::LoadSettings()
{
    const SettingFallbacks fallbacks{mPlatform.places.Home(), mPlatform.places.Programs(), {}};
    LoadGlobals(mStore, mSession, fallbacks);
    LoadMainWindowSettings(mStore, mSettings);
    mSlots.Load(mStore);
    mHistory.Load(mStore);

    mScan.SetIncludeSubDirectories(mSettings.includeSubDirectories);
    mViews->List()->SetSorted(mSettings.sorted);
    mViews->List()->SetGridLines(mSettings.gridLines);
    mViews->List()->SetStyle(mSettings.listStyle); // also while the thumbnails are shown
    CheckView(mSettings.thumbnailsChecked ? -1 : mSettings.listStyle);
    mDirPath->clear();
    mDirPath->addItems(mHistory.Entries());
    mDirPath->setCurrentIndex(-1);
    ApplyCustomTools();
}

void frmBrowserMain::SaveSettings()
{
    mSettings.thumbnailsChecked = mMenus.IsChecked(QStringLiteral("mnuMainViewTileBoxTileImage"));
    mSettings.largeIconsChecked =
        mMenus.IsChecked(QStringLiteral("mnuMainViewTileBoxTileFilename"));
    mSettings.searchOn = SearchOn();
    mSettings.includeSubDirectories = mScan.IncludeSubDirectories();
    mSettings.listStyle = mViews->List()->Style();
    mSettings.sorted = mViews->List()->Sorted();
    mSettings.gridLines = mViews->List()->GridLines();
    mSettings.top = float(frameGeometry().top() * kTwipsPerPixel);
    mSettings.left = float(frameGeometry().left() * kTwipsPerPixel);

    SaveGlobals(mStore, mSession);
    SaveMainWindowSettings(mStore, mSettings);
    mSlots.Save(mStore);
    mHistory.Save(mStore);
    mStore.Flush();
}

void frmBrowserMain::ArrangeMainWindow()
{
    const QScreen* onScreen = screen();
    const QRect available = onScreen->availableGeometry();
    const QSize size = (available.size() * kPreferredShare).expandedTo(kLeastPreferred);
    const QRect wanted(PixelsOfTwips(mSettings.left), PixelsOfTwips(mSettings.top), size.width(),
                       size.height() + kWindowTitle);
    const QRect fitted = FitToScreen(wanted, available.size());
    resize(fitted.width(), fitted.height() - kWindowTitle);
    move(fitted.topLeft() + available.topLeft());
    ArrangeLeftPane();
    SetSearchOn(false);
}

bool frmBrowserMain::SearchOn() const
{
    return mMenus.IsChecked(QStringLiteral("mnuSearchOn"));
}

void frmBrowserMain::SetSearchOn(bool on)
{
    mMenus.SetChecked(QStringLiteral("mnuSearchOn"), on);
    mSession.gSearchActive = on;
    mScan.SetSearchOn(on);
}

void frmBrowserMain::Exit()
{
    SaveSettings();
    close();
}

void frmBrowserMain::closeEvent(QCloseEvent* event)
{
    if (!mClosing) {
        mClosing = true;
        SaveSettings();
        // The program ends at once: a scan that runs stops, other windows are not asked.
        mScan.Abandon();
        mLoader.Cancel();
        // Not quit(), which asks every window and stays when one that works does not close.
        QMetaObject::invokeMethod(
            qApp,
            [] {
                if (QThread::currentThread()->loopLevel() > 0) {
                    QCoreApplication::exit(0);
                }
            },
            Qt::QueuedConnection);
    }
    event->accept();
}

} // namespace quillane
