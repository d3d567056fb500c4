#include "widgets/grid_layout.h"

#include <algorithm>

namespace quillane {

namespace {

int FloorDivided(int value, int divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

/// Cells of one axis that touch [from, end): the i-th takes [gap + i * step, ... + cell).
GridLayout::Range TouchedOnAxis(int from, int end, int cell, int gap, int count)
{
    const int step = cell + gap;
    const int first = FloorDivided(from - gap - cell, step) + 1;
    const int last = FloorDivided(end - gap - 1, step);
    return {std::max(first, 0), std::min(last, count - 1)};
}

} // namespace

GridLayout::Axes GridLayout::CurrentAxes() const
{
    Axes axes;
    const int spacing = mMetrics.spacing;
    switch (mFlow) {
    case Flow::Rows: {
        axes.cellU = std::max(1, mMetrics.cell.width());
        axes.cellV = std::max(1, mMetrics.cell.height());
        axes.perLine = std::max(1, (mViewport.width() - spacing) / (axes.cellU + spacing));
        axes.gapU = axes.gapV = spacing;
        if (mMetrics.spread) {
            const int rest = mViewport.width() - axes.perLine * axes.cellU;
            axes.gapU = std::max(spacing, rest / (axes.perLine + 1));
        }
        break;
    }
    case Flow::Columns:
        axes.cellU = std::max(1, mMetrics.cell.height());
        axes.cellV = std::max(1, mMetrics.cell.width());
        axes.perLine = std::max(1, (mViewport.height() - spacing) / (axes.cellU + spacing));
        axes.gapU = axes.gapV = spacing;
        break;
    case Flow::Lines:
        axes.cellU = std::max({1, mLineWidth, mViewport.width()});
        axes.cellV = std::max(1, mMetrics.cell.height());
        break;
    }
    return axes;
}

int GridLayout::LineCount(const Axes& axes) const
{
    return (mCount + axes.perLine - 1) / axes.perLine;
}

int GridLayout::CellsPerLine() const
{
    return CurrentAxes().perLine;
}

int GridLayout::LineStep() const
{
    const Axes axes = CurrentAxes();
    return axes.cellV + axes.gapV;
}

QSize GridLayout::ContentSize() const
{
    const Axes axes = CurrentAxes();
    const int lines = LineCount(axes);
    const int across = lines == 0 ? 0 : axes.gapV + lines * (axes.cellV + axes.gapV);
    switch (mFlow) {
    case Flow::Rows:
        return {mViewport.width(), across};
    case Flow::Columns:
        return {across, mViewport.height()};
    case Flow::Lines:
        break;
    }
    return {axes.cellU, across};
}

QRect GridLayout::Mirrored(const QRect& area) const
{
    if (!mRightToLeft) {
        return area;
    }
    const int width = std::max(ContentSize().width(), mViewport.width());
    return QRect(width - area.x() - area.width(), area.y(), area.width(), area.height());
}

QRect GridLayout::ToLogical(const QRect& area) const
{
    const QRect straight = Mirrored(area);
    return mFlow == Flow::Columns
        ? QRect(straight.y(), straight.x(), straight.height(), straight.width())
        : straight;
}

QRect GridLayout::FromLogical(const QRect& area) const
{
    return Mirrored(mFlow == Flow::Columns ? QRect(area.y(), area.x(), area.height(), area.width())
                                           : area);
}

QRect GridLayout::CellRect(int index) const
{
    if (index < 0 || index >= mCount) {
        return {};
    }
    const Axes axes = CurrentAxes();
    const int line = index / axes.perLine;
    const int place = index % axes.perLine;
    return FromLogical(QRect(axes.gapU + place * (axes.cellU + axes.gapU),
                             axes.gapV + line * (axes.cellV + axes.gapV), axes.cellU, axes.cellV));
}

int GridLayout::IndexAt(QPoint position) const
{
    const QVector<Range> touched = BandRanges(QRect(position, QSize(1, 1)));
    return touched.isEmpty() ? -1 : touched.first().first;
}

GridLayout::Range GridLayout::Touching(const QRect& area) const
{
    const Axes axes = CurrentAxes();
    const QRect logical = ToLogical(area);
    const Range lines = TouchedOnAxis(logical.y(), logical.y() + logical.height(), axes.cellV,
                                      axes.gapV, LineCount(axes));
    if (lines.IsEmpty()) {
        return {};
    }
    return {lines.first * axes.perLine, std::min(mCount, (lines.last + 1) * axes.perLine) - 1};
}

QVector<GridLayout::Range> GridLayout::BandRanges(const QRect& band) const
{
    const Axes axes = CurrentAxes();
    const QRect logical = ToLogical(band);
    const Range lines = TouchedOnAxis(logical.y(), logical.y() + logical.height(), axes.cellV,
                                      axes.gapV, LineCount(axes));
    const Range places = TouchedOnAxis(logical.x(), logical.x() + logical.width(), axes.cellU,
                                       axes.gapU, axes.perLine);
    QVector<Range> ranges;
    if (places.IsEmpty()) {
        return ranges;
    }
    for (int line = lines.first; line <= lines.last; ++line) {
        const Range range{line * axes.perLine + places.first,
                          std::min(mCount - 1, line * axes.perLine + places.last)};
        if (range.IsEmpty()) {
            continue;
        }
        if (!ranges.isEmpty() && ranges.last().last + 1 == range.first) {
            ranges.last().last = range.last;
        } else {
            ranges.append(range);
        }
    }
    return ranges;
}

int GridLayout::WholeLinesInView(const Axes& axes) const
{
    const int extent = mFlow == Flow::Columns ? mViewport.width() : mViewport.height();
    return std::max(1, extent / (axes.cellV + axes.gapV));
}

int GridLayout::Moved(int from, Move move) const
{
    if (mCount == 0) {
        return -1;
    }
    if (move == Move::Home || move == Move::End || from < 0 || from >= mCount) {
        return move == Move::End ? mCount - 1 : 0;
    }
    const Axes axes = CurrentAxes();
    if (mRightToLeft && (move == Move::Left || move == Move::Right)) {
        move = move == Move::Left ? Move::Right : Move::Left;
    }

    const auto along = [&](int step) { return std::clamp(from + step, 0, mCount - 1); };
    // Across the lines the place in the line stays; a last line that is shorter is entered at its
    // end.
    const auto across = [&](int lines) {
        const int last = LineCount(axes) - 1;
        const int line = std::clamp(from / axes.perLine + lines, 0, last);
        return std::min(mCount - 1, line * axes.perLine + from % axes.perLine);
    };
    const int page = WholeLinesInView(axes);
    switch (move) {
    case Move::PageUp:
        return across(-page);
    case Move::PageDown:
        return across(page);
    case Move::Left:
        return mFlow == Flow::Rows ? along(-1) : mFlow == Flow::Columns ? across(-1) : from;
    case Move::Right:
        return mFlow == Flow::Rows ? along(1) : mFlow == Flow::Columns ? across(1) : from;
    case Move::Up:
        return mFlow == Flow::Columns ? along(-1) : across(-1);
    case Move::Down:
        return mFlow == Flow::Columns ? along(1) : across(1);
    default:
        return from;
    }
}

QPoint GridLayout::ScrolledTo(int index, QPoint scroll) const
{
    const QRect cell = CellRect(index);
    if (cell.isEmpty()) {
        return scroll;
    }
    const auto fitted = [](int position, int from, int length, int margin, int view) {
        const int start = from - margin;
        const int end = from + length + margin;
        return start < position || end - start > view ? start
            : end > position + view                   ? end - view
                                                      : position;
    };
    const int margin = mFlow == Flow::Lines ? 0 : mMetrics.spacing;
    if (mFlow == Flow::Columns) {
        scroll.setX(fitted(scroll.x(), cell.x(), cell.width(), margin, mViewport.width()));
    } else {
        scroll.setY(fitted(scroll.y(), cell.y(), cell.height(), margin, mViewport.height()));
    }
    return scroll;
}

} // namespace quillane
