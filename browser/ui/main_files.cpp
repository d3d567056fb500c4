// File operations of the main window: what they ask of it, and the list of files that is copied.
#include "browser/ui/frmBrowserMain.h"

#include "browser/enabling.h"
#include "browser/ui/frmRename.h"
#include "browser/ui/input_hold.h"
#include "platform/file_list_mime.h"
#include "platform/run_aside.h"
#include "widgets/ui/frmBrowse.h"

#include <QApplication>
#include <QClipboard>
#include <QTimer>

namespace quillane {

namespace {

constexpr int kWalkTick = 100; // milliseconds between two looks at how far a walk is

} // namespace

void frmBrowserMain::UpdateFileMenu()
{
    const bool any = FileEntriesEnabled(mSession);
    for (const char* name : {"mnuEmailImages", "mnuDelete", "mnuCopy", "mnuMove", "mnuRename",
                             "mnuMainFilePageSetup"}) {
        mMenus.SetEnabled(QLatin1String(name), any);
    }
}

void frmBrowserMain::CopyFileList()
{
    QStringList paths;
    const QVector<WalkFile> files =
        SelectedFiles(mSession.lbFilTiffs, SelectedFlags(), mSession.gsPath);
    paths.reserve(files.size());
    for (const WalkFile& file : files) {
        paths.append(file.path);
    }
    if (!paths.isEmpty()) {
        QApplication::clipboard()->setMimeData(FileListMimeData(paths));
    }
}

void frmBrowserMain::PickFolder(const QString& caption)
{
    frmBrowse browse(mSession, mPlatform.dialogs, mPlatform.places.Home(), this);
    browse.setWindowTitle(caption);
    browse.exec();
}

void frmBrowserMain::PickProgram(const QString& caption)
{
    // Above the window that asks for it.
    QWidget* const asking = QApplication::activeModalWidget();
    frmBrowse browse(mSession, mPlatform.dialogs, mPlatform.places.Home(), asking ? asking : this);
    browse.setWindowTitle(caption);
    browse.PickFiles(mSession.exePath);
    browse.exec();
}

void frmBrowserMain::AskNewName()
{
    frmRename(mSession, this).exec();
}

void frmBrowserMain::RunAlone(const std::function<void()>& work, const std::function<void()>& tick)
{
    const InputHold hold;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, tick);
    timer.start(kWalkTick);
    RunAside(mPlatform.loop, work);
}

void frmBrowserMain::FileRenamed(int position, const QString& path)
{
    const QString shown = mViews->Grid()->TextAt(position);
    mViews->Grid()->SetPath(position, path, shown);
    const bool largeIcons = mMenus.IsChecked(QStringLiteral("mnuMainViewTileBoxTileFilename"));
    mViews->List()->Rename(position, path,
                           largeIcons ? QString() : mViews->List()->TextAt(position, kColumnName));
}

void frmBrowserMain::MakeFileCurrent(int position)
{
    const QSignalBlocker quiet(mViews);
    if (mViews->ThumbnailsShown()) {
        mViews->Grid()->SelectAll(false);
        mViews->Grid()->SetSelected(position, true);
        mViews->Grid()->MakeCurrent(position);
    } else {
        mViews->List()->MakeCurrent(position);
    }
    PickFile(position);
}

} // namespace quillane
