#pragma once
#include "gui/widgets_support.h"
#include "widgets/ui/thumbnail_grid.h"

namespace quillane {

/// Forty cells, four in a row, shown and with the keyboard.
class ThumbnailGridTest : public testing::Test {
protected:
    explicit ThumbnailGridTest(int cells = 40)
    {
        Fill(cells);
        // Four cells in a row.
        ShowAndWait(mGrid, QSize(520, 420));
        EXPECT_EQ(mGrid.CellRect(0).y(), mGrid.CellRect(3).y());
        EXPECT_GT(mGrid.CellRect(4).y(), mGrid.CellRect(3).y());
    }
    void Fill(int cells)
    {
        for (int i = 0; i < cells; ++i) {
            mGrid.Add(QStringLiteral("/p/IMG_%1.jpg").arg(i, 4, 10, QLatin1Char('0')),
                      QSize(400, 300));
        }
    }
    QVector<int> Rows() const { return mGrid.SelectedIndexes(); }
    void Key(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&mGrid, Qt::Key(key), modifiers);
    }
    /// A point beside the cells, between the first two columns.
    QPoint Gap() { return QPoint(mGrid.CellRect(0).right() + 2, mGrid.CellRect(0).center().y()); }

    ThumbnailGrid mGrid;
};

} // namespace quillane
