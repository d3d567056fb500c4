// What the menus of the album window do.
#include "album/ui/frmBrowserImageFileList.h"

#include "album/album_clip.h"
#include "core/failure.h"
#include "core/paths.h"
#include "platform/file_list_mime.h"
#include "platform/ui/command_connector.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QPointer>
#include <QScopeGuard>
#include <algorithm>
#include <functional>
#include <utility>

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
            &frmBrowserImageFileList::FileMenuOpens);
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
        // Under another name it would be found neither here nor in the browser.
        const QString extension = QStringLiteral(".ifl");
        if (!path.isEmpty() && !path.endsWith(extension, Qt::CaseInsensitive)) {
            path += extension;
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
    const QMimeData* held = QApplication::clipboard()->mimeData();
    if (!held) {
        return;
    }
    auto list = std::make_shared<bool>(false);
    const auto failed = Aside([list, clips = mClipFiles, held = FileListCopy(*held)] {
        *list = clips->GetFiles(*held);
        if (!*list) {
            clips->Clear();
        }
    });
    if (!failed) {
        return;
    }
    QList<QString> files;
    files.reserve(mClipFiles->Count());
    for (const cFileInfo& file : *mClipFiles) {
        files.append(file.Name());
    }
    mModel.Append(files, AlbumFeed::Added);
    ShowTotal();
    PreviewExports();
    ShowView();
    if (files.isEmpty()) {
        Tell(tr("The clipboard holds no files of this computer."));
    }
    LookAtNext();
}

void frmBrowserImageFileList::TakeDropped(const std::shared_ptr<QMimeData>& dropped)
{
    // Of what is dropped only files are taken, and none twice.
    struct Found {
        QStringList paths;
        QVector<AlbumFileFacts> facts;
    };
    auto found = std::make_shared<Found>();
    const auto failed = Aside([found, dropped] {
        found->paths = FilesOfMimeData(*dropped);
        found->facts.reserve(found->paths.size());
        for (const QString& path : std::as_const(found->paths)) {
            found->facts.append(LookAtAlbumFile(path));
        }
    });
    if (!failed) {
        return;
    }
    const QList<QString> old = mModel.Paths();
    QSet<QString> known(old.begin(), old.end());
    QList<QString> fresh;
    for (qsizetype i = 0; i < found->facts.size(); ++i) {
        const QString& path = found->paths.at(i);
        if (found->facts.at(i).state == AlbumFileState::Found && !known.contains(path)) {
            known.insert(path);
            fresh.append(path);
        }
    }
    mModel.Append(fresh, AlbumFeed::Added);
    ShowTotal();
    if (found->paths.isEmpty()) {
        Tell(tr("These are no files of this computer."));
    } else if (fresh.size() < found->paths.size()) {
        Tell(tr("%1 of %2 added; the others are in the album already or are no files.")
                 .arg(fresh.size())
                 .arg(found->paths.size()));
    } else {
        Tell(tr("%n added.", nullptr, int(fresh.size())));
    }
    LookAtNext();
}

void frmBrowserImageFileList::TileImages()
{
    const QList<QString> paths = mModel.Paths();
    auto found = std::make_shared<QVector<QString>>();
    const auto failed = Aside([found, paths] {
        for (const QString& path : paths) {
            const AlbumFileFacts facts = LookAtAlbumFile(path);
            if (facts.state == AlbumFileState::Found) {
                found->append(facts.otherPath.isEmpty() ? path : facts.otherPath);
            }
        }
    });
    if (!failed || !mHost) {
        return;
    }
    // The browser may look at the files while events flow.
    const QPointer<frmBrowserImageFileList> self(this);
    {
        ++mBusy;
        const auto idle = qScopeGuard([self] {
            if (self) {
                --self->mBusy;
            }
        });
        UpdateFileMenu();
        mHost->ShowFiles(*found);
    }
    if (!self) {
        return;
    }
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
        RemoveCells(steps);
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

void frmBrowserImageFileList::RemoveCells(const QVector<int>& steps)
{
    const bool descending =
        std::adjacent_find(steps.begin(), steps.end(), std::less_equal<>()) == steps.end();
    if (descending) {
        // Each cell still stands where it stood before the first step.
        mGrid->RemoveBatch({steps.rbegin(), steps.rend()});
        return;
    }
    for (const int step : steps) {
        mGrid->RemoveAt(step);
    }
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
