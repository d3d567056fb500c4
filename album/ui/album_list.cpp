// The album of the window: how it is read, written, looked at and shown.
#include "album/ui/frmBrowserImageFileList.h"

#include "core/failure.h"
#include "core/paths.h"
#include "platform/run_aside.h"

#include <QPointer>
#include <QStatusBar>
#include <utility>

namespace quillane {

namespace {

constexpr int kFirstLooks = 60; // milliseconds of looking at files before the album is shown
constexpr int kFewFiles = 256;  // looked at in one go
constexpr int kLooks = 40;      // milliseconds of looking in one go

} // namespace

std::optional<QString> frmBrowserImageFileList::Aside(const std::function<void()>& work)
{
    const QPointer<frmBrowserImageFileList> self(this);
    UiLoop& loop = mPlatform.loop;
    ++mBusy;
    UpdateFileMenu();
    QString failed;
    {
        const Hourglass busy(loop);
        try {
            RunAside(loop, work);
        } catch (const Failure& failure) {
            failed = failure.Description();
        }
    }
    if (!self) {
        return {};
    }
    --mBusy;
    UpdateFileMenu();
    return failed;
}

void frmBrowserImageFileList::OpenImageListFile(const QString& path)
{
    if (!mFormLoaded) {
        LoadForm();
    }
    ReadAlbumFile(path);
}

void frmBrowserImageFileList::ReadAlbumFile(const QString& path)
{
    if (path.isEmpty()) {
        ShowView();
        return;
    }
    if (mReading) {
        mWanted = path;
        return;
    }
    ClearAlbum();
    ShowTotal();
    auto album = std::make_shared<AlbumReading>();
    mReading = true;
    auto rows = std::make_shared<std::vector<AlbumModel::Row>>();
    const auto failed = Aside([album, rows, path] {
        *album = ReadAlbum(path, kFirstLooks);
        *rows = AlbumModel::RowsOfFile(std::move(album->text.paths));
    });
    if (!failed) {
        return;
    }
    mReading = false;
    if (!mWanted.isEmpty()) {
        ReadAlbumFile(std::exchange(mWanted, {}));
        return;
    }
    statusBar()->clearMessage();
    mPartlyRead->Note(path, album->file, album->holdsMore);
    mModel.Append(std::move(*rows));
    mModel.Settle(album->facts);
    if (album->complete) {
        mComment->setPlainText(album->text.comment);
        SelectRow(0);
        if (mModel.Count() > 0) {
            PreviewRow(0);
        } else {
            mPreview->ShowNotFound();
        }
        ShowView();
    } else {
        mGrid->show();
        mRows->hide();
    }
    ShowTotal();
    if (!failed->isEmpty() || !album->trouble.isEmpty()) {
        Tell(failed->isEmpty() ? album->trouble : *failed);
    }
    LookAtNext();
}

void frmBrowserImageFileList::WriteAlbumFile(const QString& path)
{
    if (path.isEmpty() || mModel.Count() < 1 || mBusy > 0) {
        return;
    }
    const QList<QString> paths = mModel.Paths();
    auto written = std::make_shared<FileStat>();
    const auto failed =
        Aside([path, paths, written, comment = mComment->toPlainText(), partly = *mPartlyRead] {
            const bool keep = partly.Has(path, StatPath(path));
            quillane::WriteAlbumFile(path, comment, paths, keep);
            *written = StatPath(path);
        });
    if (!failed) {
        return;
    }
    if (!failed->isEmpty()) {
        Tell(tr("The album was not saved. %1").arg(*failed));
    } else {
        mPartlyRead->Note(path, *written, false);
        const qsizetype broken = PathsWithLineEnds(paths);
        Tell(broken == 0 ? tr("%1 saved.").arg(LeafName(path))
                         : tr("%1 saved, but for %2 names that hold a line end.")
                               .arg(LeafName(path))
                               .arg(broken));
    }
    if (mCloseWanted && !mModel.IsWaiting()) {
        close();
    }
}

void frmBrowserImageFileList::ClearAlbum()
{
    ++mLookTicket;
    mLooking = false;
    mShowing = true;
    mModel.Clear();
    mShowing = false;
    mComment->clear();
    mSession.gsComments.clear();
    mPreview->Blank();
    mPool.Clear();
    mGrid->Clear();
    mGridEmpty = true;
}

void frmBrowserImageFileList::RebuildRows()
{
    mShowing = true;
    mModel.ClearRows();
    mModel.Append(mSession.lbExportList, AlbumFeed::List);
    mShowing = false;
    SelectRow(0);
    PreviewExports();
}

void frmBrowserImageFileList::TakeNewExports()
{
    if (mModel.TakeNewExports()) {
        ShowTotal();
        LookAtNext();
    }
}

void frmBrowserImageFileList::ShowView()
{
    const bool names = mMenus.IsChecked(QStringLiteral("nmuViewFilename"));
    const QWidget* focused = focusWidget();
    const bool takesFocus = !focused || focused == mRows || focused == mGrid;
    mRows->setVisible(names);
    mGrid->setVisible(!names);
    if (takesFocus) {
        names ? mRows->setFocus() : mGrid->setFocus();
    }
    if (names) {
        // What is selected is what is seen.
        mGrid->SelectAll(false);
        mPool.Clear();
    } else {
        FillGrid();
    }
}

void frmBrowserImageFileList::SelectRow(int row)
{
    if (row < 0 || row >= mModel.Count()) {
        return;
    }
    mShowing = true;
    mRows->selectRow(row);
    mShowing = false;
}

void frmBrowserImageFileList::SelectRowsOfCells()
{
    QItemSelection rows;
    const QVector<int> cells = mGrid->SelectedIndexes();
    for (qsizetype i = 0; i < cells.size() && cells.at(i) < mModel.Count();) {
        qsizetype end = i + 1; // behind the cells that stand side by side
        while (end < cells.size() && cells.at(end) == cells.at(end - 1) + 1
               && cells.at(end) < mModel.Count()) {
            ++end;
        }
        rows.select(mModel.index(cells.at(i), 0),
                    mModel.index(cells.at(end - 1), AlbumModel::kColumns - 1));
        i = end;
    }
    mShowing = true;
    mRows->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect);
    mShowing = false;
}

void frmBrowserImageFileList::PreviewRow(int row)
{
    mPreview->Preview(mModel.Path(row));
}

void frmBrowserImageFileList::PreviewExports()
{
    if (mSession.lbExportList.isEmpty()) {
        mPreview->ShowNotFound();
    } else {
        mPreview->Preview(mSession.lbExportList.first());
    }
}

void frmBrowserImageFileList::FillGrid()
{
    mPreview->HidePicture();
    mPool.Clear();
    mGrid->Clear();
    mGridEmpty = true;
    AddCells(mModel.FoundPaths());
    mGrid->FinalRefresh();
}

void frmBrowserImageFileList::AddCells(const QList<QString>& paths)
{
    if (paths.isEmpty()) {
        return;
    }
    mGrid->AddBatch(paths);
    if (mGridEmpty) {
        mGridEmpty = false;
        mGrid->MakeCurrent(0);
        mGrid->SetSelected(0, true);
        SelectRow(0);
        PreviewRow(0);
    }
}

void frmBrowserImageFileList::LookAgain()
{
    ++mLookTicket;
    mLooking = false;
    LookAtNext();
}

void frmBrowserImageFileList::LookAtNext()
{
    if (mLooking) {
        return;
    }
    const QList<QString> paths = mModel.Unsettled(kFewFiles);
    if (paths.isEmpty()) {
        if (mCloseWanted && mBusy == 0) {
            close();
        }
        return;
    }
    mLooking = true;
    auto facts = std::make_shared<QVector<AlbumFileFacts>>();
    mJobs.Run([facts, paths] { *facts = LookAtAlbumFiles(paths, kLooks); },
              [this, facts, ticket = mLookTicket] {
                  if (ticket != mLookTicket) {
                      return;
                  }
                  mLooking = false;
                  const int first = mModel.Settled();
                  mModel.Settle(*facts);
                  if (ThumbnailsShown()) {
                      QList<QString> found;
                      for (int row = first; row < mModel.Settled(); ++row) {
                          if (mModel.State(row) == AlbumFileState::Found) {
                              found.append(mModel.Path(row));
                          }
                      }
                      AddCells(found);
                  }
                  LookAtNext();
              });
}

} // namespace quillane
