#pragma once
// The rows of the album window, and how they keep lbExportList.
#include "album/album_look.h"
#include <QAbstractTableModel>
#include <QDateTime>
#include <functional>
#include <vector>

namespace quillane {

/// Where rows come from, which decides what becomes of lbExportList.
enum class AlbumFeed : quint8 {
    File,  ///< an album file: a path joins the list once it has been found
    List,  ///< the list itself
    Added, ///< clipboard and drops: a path joins the list whether it is there or not
};

/// Rows of paths with size and date. Files are looked at from the first row to the last; what has
/// not been looked at yet shows nothing but its path.
class AlbumModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column : int { kFilename, kSize, kModified, kColumns };

    /// When a path joins lbExportList: never, once found, or once looked at.
    enum class Joins : quint8 { No, WhenFound, Yes };
    struct Row {
        QString path;
        qint64 size = 0, modifiedSeconds = 0;
        AlbumFileState state = AlbumFileState::Unknown;
        Joins joins = Joins::No;
    };
    /// Rows of an album file, for Append. Any thread: to make very many takes a while.
    static std::vector<Row> RowsOfFile(QList<QString> paths);

    /// lbExportList is the session's; it outlives the model.
    explicit AlbumModel(QList<QString>& lbExportList, QObject* parent = nullptr);
    /// How times are written; at first nothing is.
    void SetDateText(std::function<QString(const QDateTime& when)> dateText);

    int Count() const { return int(mRows.size()); }
    QString Path(int row) const; ///< empty when out of range
    QList<QString> Paths() const;
    AlbumFileState State(int row) const; ///< Unknown when out of range
    QList<QString> FoundPaths() const;   ///< those looked at and found, in order

    void Clear();     ///< no rows; lbExportList is emptied too
    void ClearRows(); ///< no rows; lbExportList stays
    void Append(const QList<QString>& paths, AlbumFeed feed);
    void Append(std::vector<Row> rowsOfFile);
    /// The first row that has not been looked at; Count() when all have.
    int Settled() const { return mSettled; }
    /// The next rows to look at, at most so many.
    QList<QString> Unsettled(int most) const;
    /// What was found of the rows from Settled() on.
    void Settle(const QVector<AlbumFileFacts>& facts);
    /// Whether rows that may join lbExportList have not been looked at.
    bool IsWaiting() const { return mWaiting > 0; }
    /// Takes what others have put at the end of lbExportList as rows. Whether there was any.
    bool TakeNewExports();
    /// Removes, one after the other, the row at each position and the entry of lbExportList at the
    /// same position; a position without one passes.
    void RemoveSteps(const QVector<int>& positions);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override { return Qt::CopyAction; }

private:
    /// Empties the rows; very many are freed on another thread.
    void LetGoOfRows();
    /// RemoveSteps of positions that get smaller with each step, in one walk.
    void RemoveMany(const QVector<int>& positions);
    bool Has(int row) const { return row >= 0 && row < Count(); }

    QList<QString>& mExports;
    std::function<QString(const QDateTime& when)> mDateText;
    std::vector<Row> mRows;
    int mSettled = 0;
    qsizetype mKnownExports = 0; ///< entries of lbExportList that rows stand for
    int mWaiting = 0;            ///< rows that have not been looked at and may join lbExportList
};

/// The positions at which rows go, in the order of their going, when these rows and these cells of
/// the grid are selected. From the last row to the first: a selected row takes the cell and the
/// list's entry at its position along; then the cell that stands there now is looked at, and a row
/// whose cell is selected goes likewise.
QVector<int> AlbumRemovalSteps(const QVector<bool>& rows, const QVector<bool>& cells);

/// A path for the eye: what no system takes for a path has its middle left out, and line ends and
/// their like are seen to be there.
QString ShortPath(const QString& path);

} // namespace quillane
