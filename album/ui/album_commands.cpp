// What the menus of the album window do.
#include "album/ui/frmBrowserImageFileList.h"

#include "core/failure.h"
#include "core/paths.h"
#include "platform/ui/command_connector.h"
#include "platform/file_list_mime.h"

#include <QApplication>
#include <QClipboard>
#include <algorithm>

namespace quillane {

namespace {

const QString kAlbumFilter = QStringLiteral("Photo Album (*.ifl)|*.ifl");

QVector<bool> SelectedRowFlags(const QTableView& rows, int count)
{
    QVector<bool> flags(count, false);
    for (const QItemSelectionRange& range : rows.selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom() && row < count; ++row) {
            flags[row] = true;
        }
    }
    return flags;
}

} // namespace

void frmBrowserImageFileList::ConnectMenus()
{
    const auto command = [this](const char* name, const std::function<void()>& run) {
        ConnectCommand(mMenus.Action(QLatin1String(name)), &QAction::triggered, this,
                       mPlatform.dialogs, run);
    };
    command("mnuOpen", [this] { Open(); });
    command("mnuSave", [this] { Save(); });
    command("mnuSend", [this] { Send(); });
    command("mnuPaste", [this] { Paste(); });
    command("mnuTileImages", [this] { TileImages(); });
    command("mnuRemoveSelected", [this] { RemoveSelected(); });
    command("mnuClearALL", [this] { ClearALL(); });
    command("mnuExit", [this] { close(); });
    command("mnuViewThumbnails", [this] { ChooseView(true); });
    command("nmuViewFilename", [this] { ChooseView(false); });
    connect(mMenus.Menu(QStringLiteral("mnuFile")), &QMenu::aboutToShow, this,
            &frmBrowserImageFileList::UpdateFileMenu);
}

void frmBrowserImageFileList::Open()
{
    // A cancelled dialog ends the command.
    ResumeNext([&] {
        FileDialogSpec spec;
        spec.title = QStringLiteral("Open Photo Album");
        spec.folder = mSession.gsPath;
        spec.filter = kAlbumFilter;
        ReadAlbumFile(mPlatform.dialogs.File(spec));
    });
}

void frmBrowserImageFileList::Save()
{
    ResumeNext([&] {
        FileDialogSpec spec;
        spec.title = QStringLiteral("Save Photo Album");
        spec.folder = mSession.gsPath;
        spec.filter = kAlbumFilter;
        spec.save = true;
        QString path = mPlatform.dialogs.File(spec);
        if (!path.isEmpty() && !LeafName(path).contains(u'.')) {
            path += QStringLiteral(".ifl");
            if (StatPath(path).type != FileType::Missing
                && mPlatform.dialogs.Box(
                       tr("\"%1\" is there already. Replace it?").arg(LeafName(path)), spec.title,
                       BoxIcon::Warning, BoxButtons::YesNo)
                    != BoxAnswer::Yes) {
                return;
            }
        }
        WriteAlbumFile(path);
    });
}

void frmBrowserImageFileList::Send()
{
    const QVector<bool> selected = SelectedRowFlags(*mRows, mModel.Count());
    QStringList paths;
    paths.reserve(mModel.Count());
    for (int row = 0; row < mModel.Count(); ++row) {
        if (selected[row]) {
            paths.append(mModel.Path(row));
        }
    }
    if (mMailer) {
        mMailer(paths);
    } else {
        Tell(tr("There is no mail program to send with."));
    }
}

void frmBrowserImageFileList::Paste()
{
    const QMimeData* files = QApplication::clipboard()->mimeData();
    const QStringList paths = files ? FilesOfMimeData(*files) : QStringList();
    if (!paths.isEmpty()) {
        AddFiles(paths, true);
    }
    ShowTotal();
    PreviewExports();
    ShowView();
}

void frmBrowserImageFileList::AddFiles(const QStringList& paths, bool duplicates)
{
    if (duplicates) {
        mModel.Append(paths, AlbumFeed::Added);
        ShowTotal();
        LookAtNext();
        return;
    }
    // Of what is dropped only files are taken.
    auto facts = std::make_shared<QVector<AlbumFileFacts>>();
    const auto failed = Aside([facts, paths] {
        facts->reserve(paths.size());
        for (const QString& path : paths) {
            facts->append(LookAtAlbumFile(path));
        }
    });
    if (!failed) {
        return;
    }
    const QList<QString> old = mModel.Paths();
    QSet<QString> known(old.begin(), old.end());
    QList<QString> fresh;
    for (qsizetype i = 0; i < facts->size(); ++i) {
        if (facts->at(i).state == AlbumFileState::Found && !known.contains(paths.at(i))) {
            known.insert(paths.at(i));
            fresh.append(paths.at(i));
        }
    }
    mModel.Append(fresh, AlbumFeed::Added);
    ShowTotal();
    LookAtNext();
    if (fresh.size() < paths.size()) {
        Tell(tr("%1 of %2 added; the others are in the album already or are no files.")
                 .arg(fresh.size())
                 .arg(paths.size()));
    }
}

void frmBrowserImageFileList::TileImages()
{
    const QList<QString> paths = mModel.Paths();
    auto found = std::make_shared<QVector<QString>>();
    const auto failed = Aside([found, paths] {
        for (const QString& path : paths) {
            if (LookAtAlbumFile(path).state == AlbumFileState::Found) {
                found->append(path);
            }
        }
    });
    if (!failed || !mHost) {
        return;
    }
    mHost->ShowFiles(*found);
    mHost->SetPanel(1, QStringLiteral("Photo Album"));
    mHost->SetPanel(3, QStringLiteral("Total Images = %1").arg(paths.size()));
    close();
}

void frmBrowserImageFileList::RemoveSelected()
{
    const QVector<int> steps =
        AlbumRemovalSteps(SelectedRowFlags(*mRows, mModel.Count()), mGrid->SelectedFlags());
    if (!steps.isEmpty()) {
        mShowing = true;
        mModel.RemoveSteps(steps);
        mShowing = false;
        for (const int step : steps) {
            if (step < mGrid->Count()) {
                mGrid->RemoveAt(step);
            }
        }
        LookAgain();
        const int current = mRows->currentIndex().row();
        if (current >= 0) {
            PreviewRow(current);
        } else {
            mPreview->Blank();
        }
    }
    ShowTotal();
}

void frmBrowserImageFileList::ClearALL()
{
    ClearAlbum();
    ShowTotal();
}

void frmBrowserImageFileList::ChooseView(bool thumbnails)
{
    mMenus.SetChecked(QStringLiteral("mnuViewThumbnails"), thumbnails);
    mMenus.SetChecked(QStringLiteral("nmuViewFilename"), !thumbnails);
    ShowView();
}

} // namespace quillane
