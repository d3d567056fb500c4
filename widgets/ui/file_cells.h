#pragma once
#include "widgets/file_rows.h"
#include "widgets/ui/cell_view.h"
#include <QDateTime>
#include <QHash>
#include <QHeaderView>
#include <QIcon>
#include <functional>

namespace quillane {

/// The scrolled rows of the file list in one of its styles. Shows the rows it is given and owns
/// none.
class FileCells : public CellView {
    Q_OBJECT
public:
    /// header: the headings of the details, nullptr for names and icons.
    FileCells(const FileRows& rows, QHeaderView* header, QWidget* parent);

    enum class Shape { LargeIcons, SmallIcons, List, Details };
    void SetShape(Shape shape); ///< how the rows are laid out
    void SetGridLines(bool on); ///< drawn in the details alone
    /// Icons by their keys; an empty function restores the desktop's.
    void SetIconProvider(std::function<QIcon(const QString& key)> provider);
    /// How times are written; an empty function restores the system's short form.
    void SetDateText(std::function<QString(const QDateTime& when)> dateText);
    /// Text of a column, as shown.
    QString ColumnText(int row, int column) const;

    /// Room for the headings above the rows, in logical pixels.
    void PlaceHeader();
    /// Names may have another width now.
    void WidthsChanged();

    // What the list does to its rows.
    using CellView::CellsAppended;
    using CellView::CellsCleared;
    using CellView::CellsInserted;
    using CellView::CellsPermuted;
    using CellView::CellsRemoved;
    using CellView::Invalidate;
    using CellView::SelectOnly;
    using CellView::UpdateCell;
    /// Takes over selection and current row of another one over the same rows.
    void TakeSelection(const FileCells& other);

    QString PathAt(int index) const override;
    QString TextAt(int index) const override;
    QString ToolTipAt(int index) const override;
    QString SpokenText(int index) const override;

protected:
    void PaintCell(QPainter& painter, const QRect& rect, int index,
                   const CellState& state) override;
    void PaintBackground(QPainter& painter, const QRect& rect) override;
    QPixmap DragPicture(int index) const override;
    void UpdateMetrics() override;
    bool StartsDrag(int index, const QPoint& position) const override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    const QIcon& IconOf(int row, bool big) const;
    void PaintDetails(QPainter& painter, const QRect& rect, int row, const QColor& colour);

    const FileRows& mRows;
    QHeaderView* mHeader;
    Shape mShape = Shape::Details;
    bool mGridLines = false;
    std::function<QIcon(const QString& key)> mProvider;
    std::function<QString(const QDateTime& when)> mDateText;
    mutable QHash<QString, QIcon> mIcons;
    int mLongestName = 0; ///< pixels, of the rows measured so far
    int mMeasured = 0;    ///< rows measured
};

} // namespace quillane
