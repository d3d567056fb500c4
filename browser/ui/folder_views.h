#pragma once
#include "browser/scan_view.h"
#include "core/session.h"
#include "imaging/thumbs/thumbnail_pool.h"
#include "platform/ui_loop.h"
#include "widgets/ui/file_list_view.h"
#include "widgets/ui/thumbnail_grid.h"
#include <QLabel>
#include <QWidget>

namespace quillane {

/// The right pane picTileParent: the thumbnail grid or the file list, never both, over the
/// one truth lbFilTiffs; and the quiet line that tells of a changed folder.
class FolderViews : public QWidget {
    Q_OBJECT
public:
    FolderViews(Session& session, UiLoop& loop, const QString& thumbnailCache,
                QWidget* parent = nullptr);

    ThumbnailGrid* Grid() const { return mGrid; }
    FileListView* List() const { return mList; }
    /// Shows the grid (style -1) or the list in a style 0 to 3.
    void ShowView(int style);
    bool ThumbnailsShown() const { return mThumbnails; }
    /// Selected flags of the visible view, one for each file.
    QVector<bool> SelectedFlags() const;
    /// Paths of the selected files, in view order.
    QStringList SelectedPaths() const;
    void SelectAllVisible();
    /// Gives the keyboard to the visible view.
    void FocusView();

    // What a scan fills; see ScanView.
    /// Removes all cells and drops the thumbnails being made for them.
    void ClearGrid(qint16 cellWidth, qint16 cellHeight);
    /// Appends a cell whose thumbnail comes when it is seen.
    void AddCell(const QString& path, const ImageFacts& facts);
    /// Appends a cell with the picture of an album or a print-setting file.
    void AddStockCell(const QString& path, StockPicture picture);
    /// Shows what was added, now.
    void FinishGrid();
    /// Removes all rows and sets the captions of columns 4 to 7.
    void ClearRows(const std::array<QString, 4>& captions);
    /// Gathers a row; rows appear in batches.
    void AddRow(const ScanRow& row);
    /// Rows gathered so far appear.
    void FinishRows();

    /// The line that says the folder has changed.
    void ShowChanged(bool changed);

Q_SIGNALS:
    /// A cell or row became current by mouse or keyboard, or was clicked again; -1: a click
    /// beside them all.
    void Picked(int position);
    void PopupWanted(int position, const QPoint& globalPosition);
    void Activated(int position);    ///< double click
    void EnterPressed(int position); ///< Enter in the grid
    void RefreshWanted();
    /// A heading was clicked: entry i is now what entry order[i] was.
    void Reordered(const QVector<int>& order);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void WantVisible();
    void Place();

    Session& mSession;
    ThumbnailGrid* mGrid;
    FileListView* mList;
    QLabel* mChanged; ///< the "Refresh (F5)" line
    ThumbnailPool mPool;
    bool mThumbnails = true;
    QVector<FileRow> mPendingRows;
};

} // namespace quillane
