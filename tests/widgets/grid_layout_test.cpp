#include "widgets/grid_layout.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

using Flow = GridLayout::Flow;
using Move = GridLayout::Move;
using Range = GridLayout::Range;

GridLayout Grid(int count, Flow flow = Flow::Rows, bool rightToLeft = false)
{
    GridLayout grid;
    grid.SetFlow(flow);
    grid.SetMetrics({QSize(100, 120), 10, false});
    grid.SetViewport(QSize(450, 400)); // four in a row, three in a column
    grid.SetCount(count);
    grid.SetRightToLeft(rightToLeft);
    return grid;
}

TEST(GridLayout, AsManyColumnsAsFitWithTheirSpacing)
{
    GridLayout grid = Grid(10);
    EXPECT_EQ(grid.CellsPerLine(), 4);
    grid.SetViewport(QSize(449, 400));
    EXPECT_EQ(grid.CellsPerLine(), 3);
    grid.SetViewport(QSize(20, 400));
    EXPECT_EQ(grid.CellsPerLine(), 1);
    EXPECT_EQ(Grid(10, Flow::Columns).CellsPerLine(), 3);
    EXPECT_EQ(Grid(10, Flow::Lines).CellsPerLine(), 1);
}

TEST(GridLayout, CellsStandInRowsFromTheLeadingSide)
{
    const GridLayout grid = Grid(10);
    EXPECT_EQ(grid.CellRect(0), QRect(10, 10, 100, 120));
    EXPECT_EQ(grid.CellRect(3), QRect(340, 10, 100, 120));
    EXPECT_EQ(grid.CellRect(4), QRect(10, 140, 100, 120));
    EXPECT_TRUE(grid.CellRect(10).isNull());
    EXPECT_TRUE(grid.CellRect(-1).isNull());
    EXPECT_EQ(grid.ContentSize(), QSize(450, 400));
    const GridLayout mirrored = Grid(10, Flow::Rows, true);
    EXPECT_EQ(mirrored.CellRect(0), QRect(340, 10, 100, 120));
    EXPECT_EQ(mirrored.CellRect(3), QRect(10, 10, 100, 120));
}

TEST(GridLayout, CellsStandInColumnsThatGoOnSideways)
{
    const GridLayout grid = Grid(10, Flow::Columns);
    EXPECT_EQ(grid.CellRect(2), QRect(10, 270, 100, 120));
    EXPECT_EQ(grid.CellRect(3), QRect(120, 10, 100, 120));
    EXPECT_EQ(grid.ContentSize(), QSize(450, 400));
    EXPECT_EQ(Grid(13, Flow::Columns).ContentSize(), QSize(560, 400));
    EXPECT_EQ(Grid(13, Flow::Columns, true).CellRect(0), QRect(450, 10, 100, 120));
}

TEST(GridLayout, SpreadWidensTheGapsEvenly)
{
    GridLayout grid = Grid(10);
    grid.SetMetrics({QSize(100, 120), 10, true});
    grid.SetViewport(QSize(500, 400));
    EXPECT_EQ(grid.CellRect(0).x(), 20);
    EXPECT_EQ(grid.CellRect(1).x(), 140);
    EXPECT_EQ(grid.CellRect(3).x(), 380);
}

TEST(GridLayout, HitsTheCellUnderAPointAndNoGap)
{
    for (const Flow flow : {Flow::Rows, Flow::Columns, Flow::Lines}) {
        for (const bool rightToLeft : {false, true}) {
            const GridLayout grid = Grid(11, flow, rightToLeft);
            for (int index = 0; index < 11; ++index) {
                const QRect cell = grid.CellRect(index);
                EXPECT_EQ(grid.IndexAt(cell.center()), index);
                EXPECT_EQ(grid.IndexAt(cell.topLeft()), index);
                EXPECT_EQ(grid.IndexAt(cell.bottomRight()), index);
            }
        }
    }
    const GridLayout grid = Grid(10);
    EXPECT_EQ(grid.IndexAt({5, 5}), -1);
    EXPECT_EQ(grid.IndexAt({110, 50}), -1);  // between two cells
    EXPECT_EQ(grid.IndexAt({50, 135}), -1);  // between two rows
    EXPECT_EQ(grid.IndexAt({300, 300}), -1); // behind the last
    EXPECT_EQ(grid.IndexAt({-5, 50}), -1);
    EXPECT_EQ(grid.IndexAt({50, 5000}), -1);
    EXPECT_EQ(Grid(0).IndexAt({50, 50}), -1);
}

TEST(GridLayout, TellsWhatAnAreaTouches)
{
    const GridLayout grid = Grid(100);
    EXPECT_EQ(grid.Touching(QRect(0, 0, 450, 400)), (Range{0, 11}));
    EXPECT_EQ(grid.Touching(QRect(0, 129, 450, 400)), (Range{0, 15}));
    EXPECT_EQ(grid.Touching(QRect(0, 130, 450, 400)), (Range{4, 15}));
    EXPECT_EQ(grid.Touching(QRect(0, 130, 450, 5)), (Range{})) << "a gap";
    EXPECT_EQ(grid.Touching(QRect(0, 3130, 450, 400)), (Range{96, 99}));
    EXPECT_TRUE(grid.Touching(QRect(0, 9000, 450, 400)).IsEmpty());
    EXPECT_TRUE(Grid(0).Touching(QRect(0, 0, 450, 400)).IsEmpty());
    EXPECT_EQ(Grid(100, Flow::Columns).Touching(QRect(120, 0, 100, 400)), (Range{3, 5}));
}

TEST(GridLayout, ABandTouchesPartsOfLines)
{
    const GridLayout grid = Grid(10);
    EXPECT_EQ(grid.BandRanges(QRect(150, 50, 150, 150)), (QVector<Range>{{1, 2}, {5, 6}}));
    EXPECT_EQ(grid.BandRanges(QRect(0, 0, 450, 1000)), (QVector<Range>{{0, 9}}));
    EXPECT_EQ(grid.BandRanges(QRect(300, 200, 150, 1000)), (QVector<Range>{{6, 7}}));
    EXPECT_TRUE(grid.BandRanges(QRect(111, 0, 8, 1000)).isEmpty());
    EXPECT_EQ(Grid(10, Flow::Lines).BandRanges(QRect(200, 130, 5, 100)), (QVector<Range>{{1, 1}}));
}

TEST(GridLayout, ABandAgreesWithEachCellsRectangle)
{
    for (const Flow flow : {Flow::Rows, Flow::Columns, Flow::Lines}) {
        for (const bool rightToLeft : {false, true}) {
            const GridLayout grid = Grid(23, flow, rightToLeft);
            for (int step = 0; step < 400; ++step) {
                const QRect band(step * 7 % 500 - 30, step * 13 % 900 - 30, 1 + step % 260,
                                 1 + step * 3 % 310);
                QVector<int> wanted, found;
                for (int index = 0; index < 23; ++index) {
                    if (grid.CellRect(index).intersects(band)) {
                        wanted.append(index);
                    }
                }
                for (const Range& range : grid.BandRanges(band)) {
                    for (int index = range.first; index <= range.last; ++index) {
                        found.append(index);
                    }
                }
                ASSERT_EQ(found, wanted) << step;
            }
        }
    }
}

struct MoveRow {
    Flow flow;
    bool rightToLeft;
    int from;
    Move move;
    int to;
};
// Ten cells: rows of four, columns of three.
constexpr MoveRow kMoveRows[] = {
    {Flow::Rows, false, 0, Move::Right, 1},    {Flow::Rows, false, 3, Move::Right, 4},
    {Flow::Rows, false, 4, Move::Left, 3},     {Flow::Rows, false, 0, Move::Left, 0},
    {Flow::Rows, false, 9, Move::Right, 9},    {Flow::Rows, false, 1, Move::Down, 5},
    {Flow::Rows, false, 6, Move::Down, 9},     {Flow::Rows, false, 8, Move::Down, 8},
    {Flow::Rows, false, 2, Move::Up, 2},       {Flow::Rows, false, 9, Move::Up, 5},
    {Flow::Rows, false, 0, Move::PageDown, 8}, {Flow::Rows, false, 9, Move::PageUp, 1},
    {Flow::Rows, false, 5, Move::Home, 0},     {Flow::Rows, false, 5, Move::End, 9},
    {Flow::Rows, false, -1, Move::Right, 0},   {Flow::Rows, false, -1, Move::End, 9},
    {Flow::Rows, true, 1, Move::Right, 0},     {Flow::Rows, true, 1, Move::Left, 2},
    {Flow::Columns, false, 0, Move::Down, 1},  {Flow::Columns, false, 2, Move::Down, 3},
    {Flow::Columns, false, 1, Move::Right, 4}, {Flow::Columns, false, 7, Move::Right, 9},
    {Flow::Columns, false, 9, Move::Left, 6},  {Flow::Columns, false, 2, Move::Left, 2},
    {Flow::Columns, true, 4, Move::Right, 1},  {Flow::Columns, false, 0, Move::PageDown, 9},
    {Flow::Lines, false, 4, Move::Down, 5},    {Flow::Lines, false, 4, Move::Up, 3},
    {Flow::Lines, false, 4, Move::Right, 4},   {Flow::Lines, false, 0, Move::PageDown, 3},
};

TEST(GridLayout, KeysLeadWhereTheyPoint)
{
    for (const MoveRow& row : kMoveRows) {
        EXPECT_EQ(Grid(10, row.flow, row.rightToLeft).Moved(row.from, row.move), row.to)
            << "from " << row.from << " by " << int(row.move) << " in " << int(row.flow);
    }
    EXPECT_EQ(Grid(0).Moved(-1, Move::Down), -1);
}

TEST(GridLayout, ScrollsAsLittleAsIsNeeded)
{
    const GridLayout grid = Grid(100);
    EXPECT_EQ(grid.ScrolledTo(0, {0, 0}), QPoint(0, 0));
    EXPECT_EQ(grid.ScrolledTo(8, {0, 0}), QPoint(0, 0));
    EXPECT_EQ(grid.ScrolledTo(12, {0, 0}), QPoint(0, 130));
    EXPECT_EQ(grid.ScrolledTo(12, {0, 1000}), QPoint(0, 390));
    EXPECT_EQ(grid.ScrolledTo(100, {0, 77}), QPoint(0, 77));
    EXPECT_EQ(Grid(100, Flow::Columns).ScrolledTo(12, {0, 0}), QPoint(110, 0));
}

TEST(GridLayout, AHundredThousandCellsAreArithmetic)
{
    const GridLayout grid = Grid(110'000);
    const QRect last = grid.CellRect(109'999);
    EXPECT_EQ(grid.IndexAt(last.center()), 109'999);
    EXPECT_EQ(grid.ContentSize().height(), 10 + 27'500 * 130);
    const Range seen = grid.Touching(QRect(0, last.y(), 450, 400));
    EXPECT_EQ(seen.last, 109'999);
}

} // namespace

} // namespace quillane
