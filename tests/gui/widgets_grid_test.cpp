#include "gui/widgets_grid_fixture.h"
#include "widgets/ui/file_icons.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QScrollBar>
#include <QToolTip>

namespace quillane {

namespace {

TEST_F(ThumbnailGridTest, ACellCarriesItsPathAndShowsTheLeafName)
{
    EXPECT_EQ(mGrid.Count(), 40);
    EXPECT_EQ(mGrid.PathAt(3), "/p/IMG_0003.jpg");
    EXPECT_EQ(mGrid.TextAt(3), "IMG_0003.jpg");
    EXPECT_EQ(mGrid.PathAt(40), "");
    EXPECT_EQ(mGrid.TextAt(-1), "");
}

TEST_F(ThumbnailGridTest, CellSizeIsAHundredByAHundredAtFirst)
{
    EXPECT_EQ(mGrid.CellWidth(), 100);
    EXPECT_EQ(mGrid.CellHeight(), 100);
    mGrid.SetCellSize(160, 120);
    EXPECT_EQ(mGrid.CellWidth(), 160);
    EXPECT_EQ(mGrid.ThumbnailBox(), QSize(160, 120) * mGrid.devicePixelRatio());
    EXPECT_GT(mGrid.CellRect(0).width(), 160);
}

TEST_F(ThumbnailGridTest, MakingACellCurrentShowsItAndKeepsTheSelection)
{
    mGrid.SetSelected(0, true);
    mGrid.MakeCurrent(39);
    EXPECT_EQ(mGrid.Current(), 39);
    EXPECT_EQ(Rows(), QVector<int>{0});
    EXPECT_TRUE(mGrid.viewport()->rect().contains(mGrid.CellRect(39)));
    mGrid.EnsureVisible(0);
    EXPECT_TRUE(mGrid.viewport()->rect().contains(mGrid.CellRect(0)));
}

TEST_F(ThumbnailGridTest, InsertingAndRemovingKeepsSelectionAndCurrentWithTheirFiles)
{
    ClickCell(mGrid, 5);
    mGrid.InsertBefore(2, "/p/new.jpg", Picture({100, 50}));
    EXPECT_EQ(mGrid.PathAt(2), "/p/new.jpg");
    EXPECT_TRUE(mGrid.HasThumbnail(2));
    EXPECT_EQ(mGrid.Current(), 6);
    EXPECT_EQ(Rows(), QVector<int>{6});
    QSignalSpy current(&mGrid, &CellView::currentChanged);
    mGrid.RemoveAt(6);
    EXPECT_EQ(mGrid.Current(), -1);
    EXPECT_TRUE(Rows().isEmpty());
    EXPECT_EQ(current.size(), 1);
    EXPECT_EQ(mGrid.Count(), 40);
    mGrid.InsertBefore(mGrid.Count(), "/p/last.jpg");
    EXPECT_EQ(mGrid.PathAt(40), "/p/last.jpg");
    mGrid.RemoveAt(99);
    EXPECT_EQ(mGrid.Count(), 41);
}

TEST_F(ThumbnailGridTest, ManyAreRemovedAtOnceAndTheOthersKeepTheirOrderAndState)
{
    ClickCell(mGrid, 5);
    mGrid.SetSelected(8, true);
    mGrid.SetThumbnail(8, Picture({100, 50}));
    const QString current = mGrid.PathAt(5), pictured = mGrid.PathAt(8);
    QVector<int> gone{0, 3, 4, 39, 99};
    QVector<QString> kept;
    for (int i = 0; i < 40; ++i) {
        if (!gone.contains(i)) {
            kept.append(mGrid.PathAt(i));
        }
    }
    mGrid.RemoveBatch(gone);
    ASSERT_EQ(mGrid.Count(), kept.size());
    for (int i = 0; i < kept.size(); ++i) {
        EXPECT_EQ(mGrid.PathAt(i), kept.at(i));
    }
    EXPECT_EQ(mGrid.PathAt(mGrid.Current()), current);
    EXPECT_EQ(Rows(), (QVector<int>{2, 5}));
    EXPECT_EQ(mGrid.PathAt(5), pictured);
    EXPECT_TRUE(mGrid.HasThumbnail(5));
    mGrid.RemoveBatch({});
    EXPECT_EQ(mGrid.Count(), kept.size());
    mGrid.RemoveBatch({2});
    EXPECT_EQ(mGrid.Current(), -1);
}

TEST_F(ThumbnailGridTest, AReorderTakesPicturesAndSelectionAlong)
{
    mGrid.SetThumbnail(0, Picture({100, 100}));
    ClickCell(mGrid, 0);
    QVector<int> order(40);
    for (int i = 0; i < 40; ++i) {
        order[i] = 39 - i;
    }
    mGrid.Reorder(order);
    EXPECT_EQ(mGrid.PathAt(39), "/p/IMG_0000.jpg");
    EXPECT_TRUE(mGrid.HasThumbnail(39));
    EXPECT_EQ(mGrid.Current(), 39);
    EXPECT_EQ(Rows(), QVector<int>{39});
}

TEST_F(ThumbnailGridTest, ClearLeavesNothing)
{
    ClickCell(mGrid, 5);
    mGrid.SetFailure(3, "broken");
    QSignalSpy current(&mGrid, &CellView::currentChanged);
    mGrid.Clear();
    EXPECT_EQ(mGrid.Count(), 0);
    EXPECT_EQ(mGrid.Current(), -1);
    EXPECT_EQ(mGrid.SelectedFlags().size(), 0);
    ASSERT_EQ(current.size(), 1);
    EXPECT_EQ(current[0][0].toInt(), -1);
    EXPECT_TRUE(mGrid.WantedPaths().isEmpty());
    Fill(3);
    EXPECT_EQ(mGrid.FailureAt(2), "");
}

TEST_F(ThumbnailGridTest, PicturesInSightAreWantedFirst)
{
    const GridLayout::Range seen = mGrid.VisibleRange();
    const QVector<QString> wanted = mGrid.WantedPaths(1);
    ASSERT_GT(wanted.size(), seen.last + 1);
    for (int index = seen.first; index <= seen.last; ++index) {
        EXPECT_EQ(wanted[index - seen.first], mGrid.PathAt(index));
    }
    EXPECT_EQ(wanted[seen.last + 1], mGrid.PathAt(seen.last + 1));
}

TEST_F(ThumbnailGridTest, APictureThatCameIsNotWantedAnyMore)
{
    ASSERT_TRUE(mGrid.WantedPaths().contains("/p/IMG_0001.jpg"));
    mGrid.ThumbnailDone("/p/IMG_0001.jpg", Picture({100, 75}), {});
    mGrid.ThumbnailDone("/p/IMG_0002.jpg", {}, "The file is cut short.");
    mGrid.SetStockPicture(3, FileIcon("iflBig"));
    EXPECT_TRUE(mGrid.HasThumbnail(1));
    EXPECT_EQ(mGrid.FailureAt(2), "The file is cut short.");
    const QVector<QString> wanted = mGrid.WantedPaths();
    for (const char* path : {"/p/IMG_0001.jpg", "/p/IMG_0002.jpg", "/p/IMG_0003.jpg"}) {
        EXPECT_FALSE(wanted.contains(path)) << path;
    }
    mGrid.ForgetThumbnail(1);
    EXPECT_TRUE(mGrid.WantedPaths().contains("/p/IMG_0001.jpg"));
}

TEST_F(ThumbnailGridTest, AFileThatIsThereTwiceGetsItsPictureTwice)
{
    mGrid.InsertBefore(0, "/p/IMG_0001.jpg");
    mGrid.WantedPaths();
    mGrid.ThumbnailDone("/p/IMG_0001.jpg", Picture({100, 75}), {});
    EXPECT_TRUE(mGrid.HasThumbnail(0));
    EXPECT_TRUE(mGrid.HasThumbnail(2));
}

TEST_F(ThumbnailGridTest, ScrollingTellsWhatIsInSightAndWantsItsPictures)
{
    QCoreApplication::processEvents();
    QSignalSpy seen(&mGrid, &CellView::visibleRangeChanged);
    QSignalSpy wanted(&mGrid, &ThumbnailGrid::thumbnailsWanted);
    mGrid.verticalScrollBar()->setValue(mGrid.verticalScrollBar()->maximum());
    Until([&] { return !seen.isEmpty() && !wanted.isEmpty(); });
    EXPECT_EQ(seen.last()[1].toInt(), 39);
    EXPECT_EQ(wanted.size(), 1);
    EXPECT_EQ(mGrid.WantedPaths().first(), mGrid.PathAt(mGrid.VisibleRange().first));
}

TEST_F(ThumbnailGridTest, MemoryForPicturesIsBoundedAndDroppedOnesAreWantedAgain)
{
    const qint64 room = 20 * 100 * 100 * 4;
    mGrid.SetThumbnailBudget(room);
    mGrid.WantedPaths();
    for (int index = 0; index < 40; ++index) {
        mGrid.SetThumbnail(index, Picture({100, 100}));
    }
    int kept = 0;
    for (int index = 0; index < 40; ++index) {
        kept += mGrid.HasThumbnail(index) ? 1 : 0;
    }
    const GridLayout::Range seen = mGrid.VisibleRange();
    EXPECT_GE(kept, 20);
    EXPECT_LE(kept, std::max(20, 2 * (seen.last - seen.first + 1)));
    QSignalSpy wanted(&mGrid, &ThumbnailGrid::thumbnailsWanted);
    mGrid.viewport()->repaint();
    Until([&] { return !wanted.isEmpty(); });
    EXPECT_TRUE(mGrid.WantedPaths().contains(mGrid.PathAt(0)));
}

TEST_F(ThumbnailGridTest, ThumbnailsStandCentredPixelForPixel)
{
    mGrid.SetThumbnail(0, Picture({60, 40}, QColor(1, 200, 3)));
    const QImage shown = Grabbed(*mGrid.viewport());
    const QRect cell = mGrid.CellRect(0);
    QRect found;
    for (int y = cell.top(); y <= cell.bottom(); ++y) {
        for (int x = cell.left(); x <= cell.right(); ++x) {
            if (shown.pixelColor(x, y) == QColor(1, 200, 3)) {
                found |= QRect(x, y, 1, 1);
            }
        }
    }
    EXPECT_EQ(found.size(), QSize(60, 40));
    EXPECT_LE(std::abs(found.center().x() - cell.center().x()), 1);
}

TEST_F(ThumbnailGridTest, PendingBrokenAndStockCellsLookDifferent)
{
    mGrid.SetFailure(1, "broken");
    mGrid.SetStockPicture(2, FileIcon("PrintSetupBig"));
    const QImage shown = Grabbed(*mGrid.viewport());
    const auto picture = [&](int index) {
        return shown.copy(QRect(mGrid.CellRect(index).topLeft(), QSize(100, 100)));
    };
    EXPECT_NE(picture(0), picture(1));
    EXPECT_NE(picture(0), picture(2));
    EXPECT_NE(picture(1), picture(2));
    EXPECT_EQ(picture(0), picture(3)) << "pending ones look alike";
}

TEST_F(ThumbnailGridTest, ToolTipsTellTheNameAndTheReason)
{
    mGrid.SetFailure(1, "The file is cut short.");
    const QPoint at = mGrid.CellRect(1).center();
    QHelpEvent help(QEvent::ToolTip, at, mGrid.viewport()->mapToGlobal(at));
    QApplication::sendEvent(mGrid.viewport(), &help);
    EXPECT_TRUE(QToolTip::text().contains("IMG_0001.jpg"));
    EXPECT_TRUE(QToolTip::text().contains("The file is cut short."));
    EXPECT_TRUE(QToolTip::text().contains(QStringLiteral("400 \u00d7 300")));
    QToolTip::hideText();
}

TEST_F(ThumbnailGridTest, ScreenReadersSeeTheCells)
{
    QAccessibleInterface* grid = QAccessible::queryAccessibleInterface(&mGrid);
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(grid->text(QAccessible::Name), "Thumbnails");
    EXPECT_EQ(grid->role(), QAccessible::List);
    ASSERT_EQ(grid->childCount(), 40);
    ClickCell(mGrid, 3);
    QAccessibleInterface* cell = grid->child(3);
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->text(QAccessible::Name), "IMG_0003.jpg");
    EXPECT_EQ(cell->role(), QAccessible::ListItem);
    EXPECT_TRUE(cell->state().selected);
    EXPECT_TRUE(cell->state().focused);
    EXPECT_EQ(cell->parent(), grid);
    EXPECT_EQ(grid->indexOfChild(cell), 3);
    const QPoint centre = cell->rect().center();
    EXPECT_EQ(grid->childAt(centre.x(), centre.y()), cell);
    cell->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(mGrid.IsSelected(3));
    mGrid.Clear();
    EXPECT_EQ(grid->childCount(), 0);
    EXPECT_FALSE(cell->isValid());
    EXPECT_EQ(cell->text(QAccessible::Name), "");
}

TEST_F(ThumbnailGridTest, ANarrowerViewKeepsTheCurrentCellInSight)
{
    mGrid.MakeCurrent(30);
    mGrid.resize(260, 420);
    QCoreApplication::processEvents();
    EXPECT_TRUE(mGrid.viewport()->rect().intersects(mGrid.CellRect(30)));
}

TEST(ThumbnailGrid, AHundredAndTenThousandCellsAreAppendedWithoutALayoutEach)
{
    ThumbnailGrid grid;
    ShowAndWait(grid, QSize(800, 600));
    QSignalSpy seen(&grid, &CellView::visibleRangeChanged);
    const int before = grid.LayoutCount();
    for (int i = 0; i < 110'000; ++i) {
        grid.Add(QStringLiteral("/p/%1.jpg").arg(i));
        if (i % 1000 == 0) {
            QCoreApplication::processEvents();
        }
    }
    grid.FinalRefresh();
    EXPECT_EQ(grid.Count(), 110'000);
    EXPECT_LE(grid.LayoutCount() - before, 3 * 112);
    EXPECT_LE(seen.size(), 4) << "cells out of sight change nothing that is seen";
    grid.MakeCurrent(109'999);
    EXPECT_TRUE(grid.viewport()->rect().contains(grid.CellRect(109'999)));
    QTest::keyClick(&grid, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(grid.SelectedCount(), 110'000);
    EXPECT_LT(grid.WantedPaths().size(), 1000);
}

TEST(ThumbnailGrid, ABatchIsOneStep)
{
    ThumbnailGrid grid;
    ShowAndWait(grid, QSize(800, 600));
    const int before = grid.LayoutCount();
    grid.AddBatch(QVector<QString>(5000, QStringLiteral("/p/a.jpg")));
    grid.FinalRefresh();
    EXPECT_EQ(grid.Count(), 5000);
    EXPECT_LE(grid.LayoutCount() - before, 3);
}

TEST(ThumbnailGrid, ACellMadeCurrentBeforeTheViewIsShownIsInSightAfterwards)
{
    ThumbnailGrid grid;
    grid.AddBatch(QVector<QString>(500, QStringLiteral("/p/a.jpg")));
    grid.MakeCurrent(450);
    ShowAndWait(grid, QSize(800, 600));
    EXPECT_TRUE(grid.viewport()->rect().contains(grid.CellRect(450)));
}

} // namespace

} // namespace quillane
