#pragma once
#include "album/album_model.h"
#include "album/partly_read.h"
#include "album/ui/album_preview_pane.h"
#include "core/browser_host.h"
#include "core/session.h"
#include "core/settings_store.h"
#include "imaging/thumbs/thumbnail_pool.h"
#include "platform/clip_files.h"
#include "platform/platform.h"
#include "widgets/background_jobs.h"
#include "widgets/ui/menu_set.h"
#include "widgets/ui/thumbnail_grid.h"
#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTableView>
#include <functional>
#include <memory>
#include <optional>

namespace quillane {

/// The photo album window: the album of the session as rows or thumbnails, with a preview of the
/// current file and the album's comment.
class frmBrowserImageFileList : public QMainWindow {
    Q_OBJECT
public:
    frmBrowserImageFileList(Session& session, SettingsStore& store, Platform platform,
                            BrowserHost* host, QWidget* parent = nullptr);
    ~frmBrowserImageFileList() override;

    /// Loads the window's controls, then the album. Failures are told in the status bar.
    Q_INVOKABLE void OpenImageListFile(const QString& path);
    /// Replaces the album by what the file holds; an empty path shows the album that is there.
    void ReadAlbumFile(const QString& path);
    /// Writes the album; an empty one or an empty path does nothing.
    void WriteAlbumFile(const QString& path);
    /// Composes a mail with these files attached; without one "Send..." says that it cannot.
    using Mailer = std::function<void(const QStringList& attachments)>;
    void SetMailer(Mailer mailer) { mMailer = std::move(mailer); }

    /// Albums of which not all was read, remembered longer than this window lives.
    void SharePartlyRead(std::shared_ptr<PartlyReadAlbums> albums)
    {
        mPartlyRead = std::move(albums);
    }

    const AlbumModel& Rows() const { return mModel; }
    /// Whether files are being looked at, read or written.
    bool IsWorking() const { return mBusy > 0 || mLooking || mPreview->IsReading(); }

    void setVisible(bool visible) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void Build();
    void BuildRows();
    void BuildHint();
    void ConnectMenus();
    void ConnectViews();
    void LoadForm();
    void Unload();
    void FileMenuOpens();
    void ClipboardChanged();
    void UpdateFileMenu();

    // Commands.
    void Open();
    void Save();
    void Send();
    void Paste();
    void TakeDropped(const std::shared_ptr<QMimeData>& dropped);
    void TileImages();
    void RemoveSelected();
    void RemoveCells(const QVector<int>& steps);
    void ClearALL();
    void ChooseView(bool thumbnails);

    // The album.
    void ClearAlbum();
    void RebuildRows();
    void TakeNewExports();
    void ShowView();
    void ShowTotal();
    void PreviewRow(int row);
    void PreviewExports();
    void SelectRow(int row);
    void SelectRowsOfCells();
    void LookAtNext();
    void LookAgain();
    void FillGrid();
    void AddCells(const QList<QString>& paths);
    /// Runs work on another thread while events flow. Nothing when the window is gone then; else
    /// the words of a failure, empty for none.
    std::optional<QString> Aside(const std::function<void()>& work);
    void Tell(const QString& words);
    bool ThumbnailsShown() const;

    Session& mSession;
    SettingsStore& mStore;
    Platform mPlatform;
    BrowserHost* mHost;
    AlbumModel mModel;
    MenuSet mMenus;
    QTableView* mRows;    ///< lvImageFileList
    ThumbnailGrid* mGrid; ///< LEADImgList1
    AlbumPreviewPane* mPreview;
    QPlainTextEdit* mComment; ///< rtbComment
    QLabel* mTotal;           ///< lblTotalFiles
    QLabel* mHint;            ///< lblEmptyAlbum, over the rows or the grid
    ThumbnailPool mPool;
    Mailer mMailer;
    std::shared_ptr<cClipFiles> mClipFiles; ///< of the clipboard, filled on another thread
    std::shared_ptr<PartlyReadAlbums> mPartlyRead;
    QString mWanted;         ///< an album asked for while another is read
    quint64 mLookTicket = 0; ///< answers to older looks are dropped
    int mBusy = 0;           ///< work aside
    bool mReading = false;
    bool mLooking = false;
    bool mGridEmpty = true; ///< the first cell is still to come
    bool mFormLoaded = false;
    bool mShowing = false; ///< the code changes the current row, not a person
    bool mCloseWanted = false;
    bool mCanPaste = false;       ///< the clipboard holds, or may hold, a list of files
    bool mPressPreviewed = false; ///< the press that goes on has previewed its row
    BackgroundJobs mJobs;
};

} // namespace quillane
