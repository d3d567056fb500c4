#pragma once
#include "core/browser_host.h"
#include "core/session.h"
#include "core/settings_store.h"
#include "imaging/engine.h"
#include "platform/platform.h"
#include "viewer/command_table.h"
#include "viewer/load_road.h"
#include "viewer/save_road.h"
#include "viewer/ui/metadata_page.h"
#include "viewer/ui/region_tools.h"
#include "viewer/viewer_settings.h"
#include "widgets/background_jobs.h"
#include "widgets/ui/engine_view.h"
#include "widgets/ui/menu_set.h"
#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QProgressBar>
#include <QTabWidget>
#include <QTimer>
#include <atomic>
#include <functional>
#include <memory>

namespace quillane {

/// The window View/Enhance: one picture at a time, changed in memory and written by Save alone.
/// What computes or waits runs on another thread while events are handled; meanwhile no command
/// begins, and a window that is closed goes when the work has ended.
class frmToolImageDisplay : public QMainWindow {
    Q_OBJECT
public:
    /// host: the main window, whose thumbnail is renewed after a save; may be nullptr.
    frmToolImageDisplay(Session& session, SettingsStore& store, Platform platform,
                        BrowserHost* host, QWidget* parent = nullptr);
    ~frmToolImageDisplay() override;

    /// The first time loads the form and gsFileName; later brings the window to the front and loads
    /// gsFileName if that is another file now, or this one has changed.
    void setVisible(bool visible) override;

    /// Loads the viewer's file and fills the whole window. A file that cannot be loaded leaves the
    /// picture empty and a line in the status bar.
    void LoadImage();
    void OpenImage();   ///< asks for a file and loads it
    void SaveImage();   ///< saves over the viewer's file
    void SaveImageAs(); ///< asks for name and format and saves
    /// Brings a page from the scanner into the window.
    Q_INVOKABLE void AcquireTwain();
    /// Sets the display scale from the checked zoom item.
    void ApplyZoom();

    /// Whether a load or a command is under way.
    bool IsBusy() const { return mBusy > 0; }
    const EngineInstance& Picture() const { return LEAD1; }  ///< LEAD1
    const EngineInstance& UndoCopy() const { return LEAD2; } ///< LEAD2
    /// The viewer's file.
    const QString& File() const { return mHeld.file; }
    /// Whether picture or texts differ from what was loaded or saved last.
    bool IsChanged() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Marks the window as busy as long as it lives; outlives the window.
    class BusyScope {
    public:
        explicit BusyScope(frmToolImageDisplay& window);
        ~BusyScope();
        BusyScope(const BusyScope&) = delete;
        BusyScope& operator=(const BusyScope&) = delete;

    private:
        QPointer<frmToolImageDisplay> mWindow;
        Hourglass mHourglass;
    };

    // Building.
    void Build();
    void BuildStatusBar();
    void BuildToolBar();
    void Command(const char* name, const std::function<void()>& command);
    void ConnectFileMenu();
    void ConnectEditMenu();
    void ConnectViewMenu();
    void ConnectCommands();
    void ConnectTools();
    void ToolPressed(int position);

    // The form's life.
    void LoadForm();
    void ReadSettings();
    void WriteSettings();
    void Unload();
    void Reopen();
    void Begin();
    void End();
    void ShowBusy(bool busy);

    // Commands.
    void Begun(const std::function<void()>& command);
    void Try(const std::function<void()>& command);
    void Run(const EnhanceCommand& command);
    void OnCopy(const std::function<void(EngineInstance&)>& work);
    void AddDateStamp();
    void CountUniqueColors();
    void TakeUndoCopy() { LEAD2.SetBitmap(LEAD1.Bitmap()); }
    void Undo();
    void Copy();
    void Paste();
    void Cut();
    void Print();
    void SelectTwainSource();
    void ChooseZoom(const QString& name);
    void ZoomBy(qint32 step);
    bool MayLeave();
    bool TrySave();
    bool TrySaveAs();
    void Saving(const std::function<void(EngineInstance&, ViewerPicture&)>& work);
    void AfterSave(const QString& file);
    void GatherTexts();

    // What is shown.
    void Adopt(const ViewedFile& viewed);
    void ShowPicture();
    void ShowFacts();
    void ShowTool();
    void CountAsSaved();
    void Tell(const QString& line);

    Session& mSession;
    SettingsStore& mStore;
    Platform mPlatform;
    BrowserHost* mHost;
    ViewerSettings mSettings;
    ViewerPicture mHeld; ///< the viewer's file and what was noted of it
    FileStat mStat;      ///< of the file as it was loaded or saved
    EngineInstance LEAD1;
    EngineInstance LEAD2;

    MenuSet mMenus;
    QToolBar* Toolbar1;
    QTabWidget* SSTab1;
    EngineView* mView; ///< shows LEAD1
    MetadataPage* mPage;
    RegionTools* mTools;
    QLabel* mFacts;
    QLabel* mZoomLabel;
    QProgressBar* mProgress;
    QTimer mSlow; ///< tells when work takes so long that it shall be seen
    BackgroundJobs mLooks{1};

    qint64 mCleanPixels = 0; ///< names the picture as it was loaded or saved last
    int mBusy = 0;
    bool mLoading = false;
    std::shared_ptr<std::atomic<bool>> mCancelLoad;
    bool mFormLoaded = false;
    bool mCloseWanted = false;
    bool mReopenWanted = false;
    bool mAcquireWanted = false;
};

} // namespace quillane
