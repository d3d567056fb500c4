#pragma once
#include "widgets/thumbnail_store.h"
#include "widgets/ui/cell_view.h"
#include <QHash>
#include <QIcon>
#include <QImage>
#include <QSize>
#include <QStringList>
#include <vector>

namespace quillane {

/// The thumbnail grid LEADImgList1. A cell carries its full path and shows its leaf name; its
/// picture comes when it is wanted and may be dropped and wanted again, so that a folder of a
/// hundred thousand files costs little memory.
class ThumbnailGrid : public CellView {
    Q_OBJECT
public:
    explicit ThumbnailGrid(QWidget* parent = nullptr);
    ~ThumbnailGrid() override;

    void Clear(); ///< no cells, no pictures
    /// Appends a cell and returns its position. `pixels` is the picture's own size, for the tool
    /// tip; empty when it is not known.
    int Add(const QString& path, QSize pixels = {});
    void AddBatch(const QVector<QString>& paths);
    /// A new cell before `index`, or behind the last one for index == Count(). A picture, if given,
    /// is shown at once; else it will be wanted.
    void InsertBefore(int index, const QString& path, const QImage& picture = {},
                      QSize pixels = {});
    void RemoveAt(int index);
    /// Removes the cells at these positions, ascending and each once, in one walk.
    void RemoveBatch(const QVector<int>& indexes);
    /// After a rename: the picture stays. shown: a text to show instead of the new leaf name, empty
    /// for none.
    void SetPath(int index, const QString& path, const QString& shown = {});
    /// Cell i becomes what cell order[i] was; selection and current cell follow their files.
    void Reorder(const QVector<int>& order);

    QString PathAt(int index) const override; ///< full path; empty when out of range
    QString TextAt(int index) const override; ///< leaf name
    QString ToolTipAt(int index) const override;

    /// Size of the pictures in logical pixels, 100 x 100 at first; the label stands below.
    void SetCellSize(int width, int height);
    int CellWidth() const { return mBox.width(); }
    int CellHeight() const { return mBox.height(); }
    /// The largest thumbnail in device pixels of the screen the grid is on.
    QSize ThumbnailBox() const;

    /// Shows this picture; it is dropped like any other when memory gets short.
    void SetThumbnail(int index, const QImage& picture);
    /// Shows the broken-picture mark with the reason as tool tip.
    void SetFailure(int index, const QString& reason);
    QString FailureAt(int index) const; ///< empty when there is none
    /// A fixed picture for an album or a print-setting file: no thumbnail is wanted.
    void SetStockPicture(int index, const QIcon& picture);
    /// Forgets picture and failure of a cell; it is wanted again when it is seen.
    void ForgetThumbnail(int index);
    bool HasThumbnail(int index) const;

    /// Paths of the cells without a picture, most urgent first: those in sight, then those around
    /// them up to so many screens (fewer where memory would not hold them).
    QVector<QString> WantedPaths(int screensAhead = 3);
    /// Hands over what was made for a path of the last WantedPaths: a picture, or the reason why
    /// there is none. A path that is not wanted any more does nothing.
    void ThumbnailDone(const QString& path, const QImage& picture, const QString& failure);

    /// Memory for pictures in bytes, 48 MB at first; what is in sight is always kept.
    void SetThumbnailBudget(qint64 bytes);

Q_SIGNALS:
    /// WantedPaths has changed: cells came into sight, were added there or lost their picture.
    /// At most once in a turn of the message loop.
    void thumbnailsWanted();

protected:
    void PaintCell(QPainter& painter, const QRect& rect, int index,
                   const CellState& state) override;
    QPixmap DragPicture(int index) const override;
    void UpdateMetrics() override;
    void PaintBackground(QPainter& painter, const QRect& rect) override;

private:
    struct Cell {
        QString path;
        quint32 id;
        qint32 width, height; ///< of the picture itself; 0 unknown
    };
    bool Has(int index) const { return index >= 0 && size_t(index) < mCells.size(); }
    bool NeedsThumbnail(const Cell& cell) const;
    void QueueWanted();
    void Forget(const Cell& cell);
    void UpdateCellOf(quint32 id);
    QRect BoxIn(const QRect& cell) const;
    quint32 NewId() { return mNextId++; }

    std::vector<Cell> mCells;
    ThumbnailStore mStore;
    QHash<quint32, QString> mFailures;
    QHash<quint32, QIcon> mStock;
    QHash<quint32, QString> mTexts; ///< of cells that show no leaf name
    QMultiHash<QString, quint32> mWanted;
    QSize mBox{100, 100};
    qint64 mBudget;
    double mShownRatio = 1.0; ///< device pixels a logical one when last painted
    quint32 mNextId = 1;
    bool mWantedQueued = false;
};

} // namespace quillane
