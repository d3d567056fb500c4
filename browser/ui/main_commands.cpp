// Commands of the main window: menus, tool bar, views, keys.
#include "browser/ui/frmBrowserMain.h"

#include "browser/enabling.h"
#include "browser/open_road.h"
#include "browser/tree_node.h"
#include "browser/ui/frmBrowserAbout.h"
#include "core/export_list.h"
#include "core/file_kinds.h"
#include "core/paths.h"
#include "platform/run_aside.h"
#include "platform/ui/command_connector.h"
#include "widgets/ui/scan_source_dialog.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPointer>
#include <QShortcut>
#include <memory>
#include <utility>

namespace quillane {

void frmBrowserMain::Command(const char* name, const std::function<void()>& command)
{
    QAction* action = mMenus.Action(QLatin1String(name));
    ConnectCommand(action, &QAction::triggered, this, mPlatform.dialogs, command);
}

void frmBrowserMain::ConnectMenus()
{
    Command("nnuNewFolder", [this] { mTree->NewFolder(true); });
    Command("mnuMainFileOpen", [this] { OpenImage(); });
    Command("mnuAcquireTwain", [this] { Acquire(); });
    Command("mnuSelectTwainSource", [this] { SelectTwainSource(); });
    Command("mnuClearFileHistory", [this] { ClearHistory(); });
    Command("mnuMainFIleExit", [this] { Exit(); });
    Command("mnuShowAll",
            [this] { mTree->SetShowFiles(mMenus.IsChecked(QStringLiteral("mnuShowAll"))); });
    Command("mnuRefreshTree", [this] { mTree->Refresh(); });
    Command("mnuRefresh", [this] { RefreshFiles(); });
    Command("mnuSearchSettings", [this] { SearchSettings(); });
    Command("mnuSearchOn", [this] { SwitchSearch(); });
    for (const ViewEntry& view : ViewEntries()) {
        Command(view.name, [this, &view] { ChooseView(view); });
    }
    for (const ToolRow& tool : ImageTools()) {
        Command(tool.menu, [this, &tool] { SetImageTool(tool.number); });
        Command(tool.popup, [this, &tool] {
            ImageTool(tool.number);
            if (mViews->ThumbnailsShown()) {
                UpdateImageInImageList();
            }
        });
    }
    Command("mnuFileFiles", [this] {
        if (auto* locator = qobject_cast<QWidget*>(mWindows.Get(QStringLiteral("frmLocate")))) {
            locator->show();
            locator->raise();
            locator->activateWindow();
        }
    });
    ConnectLaunching();
    Command("mnuPopSelect", [this] { mViews->Grid()->SelectAll(); });
    Command("mnuPopAdd", [this] { AddSelectedToAlbum(); });
    Command("mnuPopShow", [this] { ShowAlbum(); });
    Command("mnuShowEditImageFileList", [this] { ShowAlbum(); });
    const std::pair<const char*, FileOperationCode> operations[] = {
        {"mnuDelete", kDeleteFiles}, {"mnuPopDelete", kDeleteFiles}, {"mnuCopy", kCopyFiles},
        {"mnuPopCopy", kCopyFiles},  {"mnuMove", kMoveFiles},        {"mnuPopMove", kMoveFiles},
        {"mnuRename", kRenameFile}};
    for (const auto& [name, code] : operations) {
        Command(name, [this, op = code] { FileOperation(op); });
    }
    Command("mnuPopRename", [this] {
        FileOperation(kRenameFile);
        if (mViews->ThumbnailsShown()) {
            UpdateImageInImageList();
        }
    });
    Command("mnuHelpAbout", [this] { ShowAbout(); });

    connect(mMenus.Menu(QStringLiteral("mnuMainFile")), &QMenu::aboutToShow, this,
            &frmBrowserMain::UpdateFileMenu);
    connect(mMenus.Popup(), &QMenu::aboutToShow, this, &frmBrowserMain::UpdatePopup);
    if (QAction* capture = findChild<QAction*>(QStringLiteral("Toolbar1_7"))) {
        // A program of its own, which may stand beside this one.
        capture->setEnabled(
            FileExists(mPlatform.places.ApplicationFolder() + QStringLiteral("VideoCapture"))
            == kTrue);
        if (!capture->isEnabled()) {
            capture->setToolTip(capture->toolTip() + u'\n'
                                + tr("The program VideoCapture is not installed."));
        }
    }
}

void frmBrowserMain::ConnectViews()
{
    ConnectCommand(mTree, &FolderTree::nodeSelected, this, mPlatform.dialogs,
                   [this](const QString& name, const QString& path) { NodeSelected(name, path); });
    ConnectCommand(
        mTree, &FolderTree::nodeDoubleClicked, this, mPlatform.dialogs, [this](const QString&) {
            if (mMenus.IsChecked(QStringLiteral("mnuShowAll")) && LooksLikeFile(mSession.gsPath)) {
                mSession.gsFileName = mSession.gsPath;
                ImageTool(mSession.gsImageTool);
            }
        });
    ConnectCommand(mViews, &FolderViews::Picked, this, mPlatform.dialogs,
                   [this](int position) { PickFile(position); });
    ConnectCommand(mViews, &FolderViews::Activated, this, mPlatform.dialogs, [this](int position) {
        PickFile(position);
        OpenCurrent();
    });
    ConnectCommand(mViews, &FolderViews::EnterPressed, this, mPlatform.dialogs,
                   [this](int) { ImageTool(mSession.gsImageTool); });
    ConnectCommand(mViews, &FolderViews::PopupWanted, this, mPlatform.dialogs,
                   [this](int position, const QPoint& at) {
                       if (position >= 0) {
                           PickFile(position);
                       }
                       UpdatePopup();
                       mMenus.Popup()->popup(at);
                   });
    ConnectCommand(mViews, &FolderViews::RefreshWanted, this, mPlatform.dialogs,
                   [this] { RefreshFiles(); });
    ConnectCommand(mViews, &FolderViews::Reordered, this, mPlatform.dialogs,
                   [this](const QVector<int>& order) {
                       QList<QString> paths;
                       paths.reserve(mSession.lbFilTiffs.size());
                       for (const int from : order) {
                           paths.append(mSession.lbFilTiffs.value(from));
                       }
                       // A scan that goes on, or was ended, has more of them than rows.
                       mSession.lbFilTiffs = paths + mSession.lbFilTiffs.mid(paths.size());
                       mScan.RowsReordered(order);
                       mSession.gImageListIndex = qint32(paths.indexOf(mSession.gsFileName));
                   });
    connect(&mLoader, &PreviewLoader::FactsReady, this, &frmBrowserMain::ShowFactsOf);
    connect(&mLoader, &PreviewLoader::PictureReady, this, &frmBrowserMain::ShowPictureOf);
    mPlatform.watch.OnChange([this] { mViews->ShowChanged(true); });

    ConnectCommand(mDirPath, &QComboBox::activated, this, mPlatform.dialogs,
                   [this](int index) { GoTo(mDirPath->itemText(index)); });
    ConnectCommand(mDirPath->lineEdit(), &QLineEdit::returnPressed, this, mPlatform.dialogs,
                   [this] { GoTo(mDirPath->currentText()); });
}

void frmBrowserMain::ConnectKeys()
{
    const auto key = [this](const QKeySequence& sequence, auto&& command) {
        auto* shortcut = new QShortcut(sequence, this);
        ConnectCommand(shortcut, &QShortcut::activated, this, mPlatform.dialogs, command);
    };
    key(QKeySequence(Qt::ALT | Qt::Key_Left), [this] {
        if (const QString folder = mTrail.Back(); !folder.isEmpty()) {
            mTree->Select(folder);
        }
    });
    key(QKeySequence(Qt::ALT | Qt::Key_Right), [this] {
        if (const QString folder = mTrail.Forward(); !folder.isEmpty()) {
            mTree->Select(folder);
        }
    });
    key(QKeySequence(Qt::ALT | Qt::Key_Up), [this] {
        const QString parent = FolderOf(WithoutSeparator(mSession.gsPath));
        if (!parent.isEmpty()) {
            mTree->Select(parent);
        }
    });
    auto* selectAll = new QShortcut(QKeySequence::SelectAll, mViews);
    selectAll->setContext(Qt::WidgetWithChildrenShortcut);
    connect(selectAll, &QShortcut::activated, mViews, &FolderViews::SelectAllVisible);
    auto* copy = new QShortcut(QKeySequence::Copy, mViews);
    copy->setContext(Qt::WidgetWithChildrenShortcut);
    connect(copy, &QShortcut::activated, this, &frmBrowserMain::CopyFileList);
    // Where the files have the keyboard alone: the tree and the text boxes have their own.
    auto* trash = new QShortcut(QKeySequence(Qt::Key_Delete), mViews);
    trash->setContext(Qt::WidgetWithChildrenShortcut);
    ConnectCommand(trash, &QShortcut::activated, this, mPlatform.dialogs,
                   [this] { mFiles.TrashSelected(); });
    key(QKeySequence::Undo, [this] { mFiles.BringBack(); });
    key(QKeySequence(Qt::CTRL | Qt::Key_D), [this] { mDirPath->setFocus(); });
}

void frmBrowserMain::UpdatePopup()
{
    const PopupRules rules = UpdatePopupMenu(mSession);
    mMenus.SetEnabled(QStringLiteral("mnuPopSetWallpaper"), rules.setWallpaper);
    mMenus.SetEnabled(QStringLiteral("mnuPopEditTags"), rules.editTags);
    mMenus.SetEnabled(QStringLiteral("mnuPopShow"), rules.showAlbum);
}

void frmBrowserMain::SetImageTool(qint32 tool)
{
    mSession.gsImageTool = tool;
    for (const ToolRow& row : ImageTools()) {
        mMenus.SetChecked(QLatin1String(row.menu), row.number == tool);
    }
}

void frmBrowserMain::ImageTool(qint32 tool)
{
    if (tool == kSystemTool) {
        SystemOpen(mSession.gsFileName);
        return;
    }
    if (tool >= kFirstCustomTool && tool <= kLastCustomTool) {
        RunSlot(mSlots.tools[size_t(tool - kFirstCustomTool)]);
        return;
    }
    for (const ToolRow& row : ImageTools()) {
        if (row.number == tool && row.window) {
            QObject* const window = mWindows.Get(QLatin1String(row.window));
            if (auto* dialog = qobject_cast<QDialog*>(window)) {
                dialog->exec();
            } else if (window) {
                QMetaObject::invokeMethod(window, "show");
            } else {
                Tell(NotYetTip(QString::fromUtf16(row.caption)));
            }
        }
    }
}

void frmBrowserMain::OpenImage()
{
    // A dialog that is cancelled ends the command, and so does any other failure.
    ResumeNext([&] {
        FileDialogSpec spec;
        spec.title = QStringLiteral("Open File");
        spec.folder = mSession.gsPath;
        mSession.gsFileName = mPlatform.dialogs.File(spec);
        ImageTool(mSession.gsImageTool);
    });
}

void frmBrowserMain::ShowAbout()
{
    frmBrowserAbout about(mSession.gsAppTitle, mPlatform.launcher, this);
    about.exec();
}

void frmBrowserMain::SelectTwainSource()
{
    ChooseScanSource(mPlatform.scanner, this);
}

void frmBrowserMain::Acquire()
{
    const QPointer<QObject> viewer(mWindows.Get(QStringLiteral("frmToolImageDisplay")));
    if (viewer) {
        QMetaObject::invokeMethod(viewer, "show");
    }
    if (viewer) {
        QMetaObject::invokeMethod(viewer, "AcquireTwain");
    }
}

void frmBrowserMain::ClearHistory()
{
    mHistory.Clear();
    for (int i = 0; i < mDirPath->count(); ++i) {
        mDirPath->setItemText(i, {});
    }
}

void frmBrowserMain::AddSelectedToAlbum()
{
    const QStringList selected = mViews->SelectedPaths();
    const qsizetype before = mSession.lbExportList.size();
    AddNewPaths(mSession.lbExportList, selected);
    const qsizetype added = mSession.lbExportList.size() - before;
    if (!selected.isEmpty()) {
        Tell(tr("%1 of %2 selected added to the photo album, which holds %3 now.")
                 .arg(added)
                 .arg(selected.size())
                 .arg(mSession.lbExportList.size()));
    }
}

QObject* frmBrowserMain::ShowAlbum()
{
    QObject* const album = mWindows.Get(QStringLiteral("frmBrowserImageFileList"));
    if (auto* window = qobject_cast<QWidget*>(album)) {
        window->show();
        window->raise();
        window->activateWindow();
    }
    return album;
}

QVector<bool> frmBrowserMain::SelectedFlags() const
{
    return mViews->SelectedFlags();
}

int frmBrowserMain::ViewMode() const
{
    return mMenus.IsChecked(QStringLiteral("mnuMainViewTileBoxTileImage")) ? kThumbnailMode
                                                                           : kListMode;
}

void frmBrowserMain::RefreshFiles()
{
    if (mClosing) {
        return; // nobody will see it
    }
    const Hourglass busy(mPlatform.loop);
    BrowseImages(ViewMode());
}

void frmBrowserMain::BrowseImages(int mode)
{
    mViews->ShowChanged(false);
    mPlatform.watch.Watch(mSession.gsPath);
    mScan.BrowseImages(mode);
}

void frmBrowserMain::ShowFiles(const QVector<QString>& paths)
{
    mScan.Abandon();
    // What happens in the folder does not concern them.
    mPlatform.watch.Watch({});
    mViews->ShowChanged(false);
    mSession.lbFilTiffs = paths;
    if (mViews->ThumbnailsShown()) {
        mViews->ClearGrid(mSession.gThumbnailWidth, mSession.gThumbnailHeight);
        for (const QString& path : paths) {
            mViews->AddCell(path, {});
        }
        mViews->FinishGrid();
        UpdateFileMenu();
        return;
    }
    mViews->ClearRows(mSession.gsFileKeyword);
    // They may lie on slow volumes. Meanwhile a folder may be chosen, or the window may go.
    auto rows = std::make_shared<QVector<ScanRow>>();
    const QPointer<frmBrowserMain> self(this);
    RunAside(mPlatform.loop, [rows, paths] {
        rows->reserve(paths.size());
        for (const QString& path : paths) {
            const FileStat stat = StatPath(path);
            const bool there = stat.type != FileType::Missing;
            rows->append({path, stat.size, there ? stat.modifiedSeconds : -1});
        }
    });
    if (!self || mSession.lbFilTiffs != paths) {
        return;
    }
    for (const ScanRow& row : std::as_const(*rows)) {
        mViews->AddRow(row);
    }
    FinishRows();
}

void frmBrowserMain::ChooseView(const ViewEntry& view)
{
    const Hourglass busy(mPlatform.loop);
    CheckView(view.style);
    mViews->ShowView(view.style);
    BrowseImages(view.scanMode);
}

void frmBrowserMain::PickFile(int position)
{
    mSession.gImageListIndex = position;
    if (position < 0 || position >= mSession.lbFilTiffs.size()) {
        return;
    }
    const QString path = mSession.lbFilTiffs.at(position);
    mSession.gsFileName = path;
    ShowFile(path);
}

void frmBrowserMain::OpenCurrent()
{
    switch (RoadFor(mSession.gsFileName, mSession.gsVideoTool)) {
    case OpenRoad::Album:
        QMetaObject::invokeMethod(ShowAlbum(), "OpenImageListFile",
                                  Q_ARG(QString, mSession.gsFileName));
        break;
    case OpenRoad::OwnPlayer:
        Tell(NotYetTip(tr("Media Player")));
        break;
    case OpenRoad::SystemOpen:
        SystemOpen(mSession.gsFileName);
        break;
    case OpenRoad::PrintSettings:
        Tell(NotYetTip(tr("Print")));
        break;
    case OpenRoad::Tool:
        ImageTool(mSession.gsImageTool);
        if (mViews->ThumbnailsShown()) {
            UpdateImageInImageList();
        } else {
            ShowFile(mSession.gsFileName);
        }
        break;
    }
}

void frmBrowserMain::GoTo(const QString& folder)
{
    mSession.gsPath = folder;
    mTree->Select(folder);
}

void frmBrowserMain::RecordHistory(const QString& folder)
{
    const int selected = mDirPath->currentIndex();
    mDirPath->setEditText(folder);
    const int at = mHistory.Record(folder, selected);
    if (at >= 0) {
        mDirPath->insertItem(at, folder);
        mDirPath->setCurrentIndex(selected < 0 ? -1 : selected);
        mDirPath->setEditText(folder);
    }
    mTrail.Visit(folder);
}

void frmBrowserMain::NodeSelected(const QString& name, const QString& path)
{
    constexpr int kFolderPicture = 16;
    const Hourglass busy(mPlatform.loop);
    mLoader.Cancel();
    mPreview->ShowBanner(LeafName(name), kFolderPicture);
    const bool showAll = mMenus.IsChecked(QStringLiteral("mnuShowAll"));
    const TreeNodeChoice choice = ChooseTreeNode(path, showAll);
    mSession.gsPath = choice.path;
    try {
        RecordHistory(choice.path);
        if (choice.isFile) {
            SetPanel(4, QStringLiteral("File: ") + choice.path);
            mSession.gsFileName = choice.path;
            ShowFile(choice.path);
        } else {
            SetPanel(4, choice.path);
            BrowseImages(ViewMode());
        }
    } catch (const Failure& failure) {
        Tell(failure.Description());
    }
    HideProgress();
}

} // namespace quillane
