#pragma once
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QVector>

namespace quillane {

/// Places of equal cells in a scrolled area; arithmetic alone, O(1) in the number of cells.
/// Content coordinates have their origin at the top left of the scrolled content.
class GridLayout {
public:
    enum class Flow {
        Rows,    ///< along lines from the leading side, scrolled vertically
        Columns, ///< down columns, then the next column, scrolled horizontally
        Lines,   ///< one cell a line, as wide as the content
    };
    enum class Move { Left, Right, Up, Down, PageUp, PageDown, Home, End };
    struct Range {
        int first = 0, last = -1; ///< both included; empty when last < first
        bool IsEmpty() const { return last < first; }
        bool operator==(const Range&) const = default;
    };
    struct Metrics {
        QSize cell{100, 100}; ///< whole cell; the width is not used by Lines
        int spacing = 4;      ///< least distance between cells and around them
        bool spread = true;   ///< Rows: what is left of a line widens the gaps
    };

    void SetFlow(Flow flow) { mFlow = flow; }
    void SetMetrics(const Metrics& metrics) { mMetrics = metrics; }
    void SetCount(int count) { mCount = count; }
    void SetViewport(QSize viewport) { mViewport = viewport; }
    void SetLineWidth(int width) { mLineWidth = width; } ///< of Lines; never below the viewport's
    void SetRightToLeft(bool rightToLeft) { mRightToLeft = rightToLeft; }

    Flow CurrentFlow() const { return mFlow; }
    int Count() const { return mCount; }
    int CellsPerLine() const; ///< cells of one row, or of one column; at least 1
    QSize ContentSize() const;
    /// How far one line of cells is from the next, in pixels.
    int LineStep() const;

    QRect CellRect(int index) const;    ///< content coordinates; empty when out of range
    int IndexAt(QPoint position) const; ///< -1 between the cells and behind the last
    /// Cells that touch an area of the content.
    Range Touching(const QRect& area) const;
    /// Cells that a rubber band touches: ranges in ascending order.
    QVector<Range> BandRanges(const QRect& band) const;
    /// Where a key leads from a cell; the same cell where there is no way. From -1 it is the first
    /// cell, or the last for End; -1 without cells.
    int Moved(int from, Move move) const;
    /// The scroll position, near `scroll`, at which a cell is seen whole.
    QPoint ScrolledTo(int index, QPoint scroll) const;

private:
    /// Along a line of cells (u) and across the lines (v), before mirroring.
    struct Axes {
        int cellU = 1, gapU = 0;
        int cellV = 1, gapV = 0;
        int perLine = 1;
    };
    Axes CurrentAxes() const;
    int LineCount(const Axes& axes) const;
    /// A rectangle of content coordinates in u (left, width) and v (top, height), or back.
    QRect ToLogical(const QRect& area) const;
    QRect FromLogical(const QRect& area) const;
    QRect Mirrored(const QRect& area) const;
    int WholeLinesInView(const Axes& axes) const;

    Flow mFlow = Flow::Rows;
    Metrics mMetrics;
    int mCount = 0;
    QSize mViewport;
    int mLineWidth = 0;
    bool mRightToLeft = false;
};

} // namespace quillane
