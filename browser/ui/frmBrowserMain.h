#pragma once
#include "browser/file_operation.h"
#include "browser/folder_history.h"
#include "browser/folder_trail.h"
#include "browser/preview_loader.h"
#include "browser/scan.h"
#include "browser/ui/cVSplitter.h"
#include "browser/ui/folder_views.h"
#include "browser/ui/main_menus.h"
#include "browser/ui/preview_panel.h"
#include "browser/ui/status_panels.h"
#include "core/browser_host.h"
#include "core/custom_slots.h"
#include "core/session.h"
#include "core/settings_store.h"
#include "core/settings_table.h"
#include "core/window_registry.h"
#include "imaging/engine.h"
#include "platform/platform.h"
#include "widgets/ui/folder_tree.h"
#include <QComboBox>
#include <QMainWindow>
#include <QProgressBar>
#include <QToolBar>
#include <functional>
#include <memory>

namespace quillane {

/// The program's one top-level window: loading it starts the system, unloading it ends it.
/// Here is the wiring alone; what a command does stands in the classes it holds.
class frmBrowserMain : public QMainWindow,
                       public BrowserHost,
                       private ScanView,
                       private FileOperationView {
    Q_OBJECT
public:
    frmBrowserMain(Session& session, SettingsStore& store, Platform platform,
                   WindowRegistry& windows);
    ~frmBrowserMain() override;

    /// Starts the system: settings, defaults, layout, caption, tool bar, splitter, welcome
    /// picture, default tool, show, first selection in the tree.
    void Load();

    // What other windows ask of this one.
    QVector<bool> SelectedFlags() const override;
    void RefreshFiles() override;
    void UpdateImageInImageList() override;
    void SetPanel(int panel, const QString& text) override;
    QString Panel(int panel) const override;
    bool SearchOn() const override;
    void SetSearchOn(bool on) override;
    void ShowFiles(const QVector<QString>& paths) override;

    /// Makes a tool the default: checks its entry among the seven. A number of 7 or more leaves
    /// all unchecked.
    void SetImageTool(qint32 tool);
    /// Opens gsFileName with a tool; a number of 7 or more does nothing.
    void ImageTool(qint32 tool);
    /// Scans gsPath: 1 into the grid, 0 into the list.
    void BrowseImages(int mode);
    /// Paints the banner with a name and hides the description.
    void ShowFileBanner(const QString& fileName);
    /// Composes the preview of a file; what takes long follows when it is read.
    void ShowImageDescription(const QString& fileName);
    /// Runs a file operation; see FileOperations.
    QString FileOperation(qint16 op) { return mFiles.FileOperation(op); }

    /// Shows one quiet line in the status bar for some seconds.
    void Tell(const QString& line) override { mPanels.Tell(line); }

    MainMenus& Menus() { return mMenus; }
    cVSplitter& Splitter() { return mSplitter; }
    EngineInstance& Lead2() { return mLead2; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Startup and shutdown.
    void LoadSettings();
    void SaveSettings();
    void InitBrowserDefaults();
    void ArrangeMainWindow();
    void BuildToolBar();
    void BuildPanes();
    void ArrangeLeftPane();
    void Exit();

    // Wiring of menus and buttons to commands.
    void Command(const char* name, const std::function<void()>& command);
    void ConnectMenus();
    void ConnectViews();
    void ConnectKeys();
    void Tool(int index);
    void UpdateFileMenu();
    void UpdatePopup();
    void ApplyCustomTools();

    // Commands.
    void OpenImage();
    void SearchSettings();
    void SwitchSearch();
    void ShowAbout();
    void SelectTwainSource();
    void Acquire();
    void ClearHistory();
    void AddSelectedToAlbum();
    QObject* ShowAlbum();
    void ConnectLaunching();
    void RunSlot(const CustomSlot& slot);
    void ShowOnMap();
    void SendImages();
    void ShowPreferences();
    void CheckView(int style);
    void ChooseView(const ViewEntry& view);
    void OpenCurrent();
    void PickFile(int position);
    void CopyFileList();
    void GoTo(const QString& folder);
    void NodeSelected(const QString& name, const QString& path);
    void RecordHistory(const QString& folder);
    void SystemOpen(const QString& path);
    int ViewMode() const;
    void ShowFactsOf(const PreviewFacts& facts);
    void ShowPictureOf(const PreviewPicture& picture);

    // What the file operations ask for.
    void PickFolder(const QString& caption) override;
    void PickProgram(const QString& caption) override;
    void AskNewName() override;
    void RunAlone(const std::function<void()>& work, const std::function<void()>& tick) override;
    void FileRenamed(int position, const QString& path) override;
    void MakeFileCurrent(int position) override;

    // What the scan fills.
    void ShowProgress(int maximum) override;
    void SetProgress(int value) override;
    void HideProgress() override;
    void ClearGrid(qint16 cellWidth, qint16 cellHeight) override;
    void AddCell(const QString& path, const ImageFacts& facts) override;
    void AddStockCell(const QString& path, StockPicture picture) override;
    void FinishGrid() override;
    int CellCount() const override;
    QString CellPath(int cell) const override;
    void MakeCellCurrent(int cell) override;
    void MarkCellSelected(int cell) override;
    void ClearRows(const std::array<QString, 4>& captions) override;
    void AddRow(const ScanRow& row) override;
    void SetRowTags(int row, const std::array<QString, 4>& tags) override;
    void FinishRows() override;
    int RowCount() const override;
    void SelectRow(int row) override;
    void ShowFile(const QString& path) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

    Session& mSession;
    SettingsStore& mStore;
    Platform mPlatform;
    WindowRegistry& mWindows;
    MainWindowSettings mSettings;
    CustomSlots mSlots;
    FolderHistory mHistory;
    FolderTrail mTrail;
    EngineInstance mLead2;
    SearchCriteria mCriteria;

    MainMenus mMenus;
    StatusPanels mPanels;
    QToolBar* mToolBar;
    QComboBox* mDirPath;     ///< cboDirPath
    QProgressBar* mProgress; ///< proTile
    QWidget* mClient;        ///< what the splitter divides
    QWidget* mLeftPane;      ///< picTreeView
    QFrame* mBar;            ///< fraSplitter
    FolderTree* mTree;       ///< tvExplore
    PreviewPanel* mPreview;  ///< picPreview
    FolderViews* mViews;     ///< picTileParent
    cVSplitter mSplitter;
    PreviewLoader mLoader;
    FolderScan mScan;
    FileOperations mFiles;
    bool mClosing = false;
};

} // namespace quillane
