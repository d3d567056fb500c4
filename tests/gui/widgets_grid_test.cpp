#include "gui/widgets_support.h"
#include "widgets/file_list_mime.h"
#include "widgets/ui/file_icons.h"
#include "widgets/ui/thumbnail_grid.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>

namespace quillane {

namespace {

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

TEST_F(ThumbnailGridTest, AClickMakesACellCurrentAndSelectsItAlone)
{
    QSignalSpy picked(&mGrid, &CellView::picked);
    QSignalSpy current(&mGrid, &CellView::currentChanged);
    QSignalSpy clicked(&mGrid, &CellView::clicked);
    ClickCell(mGrid, 5);
    EXPECT_EQ(mGrid.Current(), 5);
    EXPECT_EQ(Rows(), QVector<int>{5});
    ClickCell(mGrid, 5);
    ASSERT_EQ(picked.size(), 2) << "once for each click, also on the same cell";
    EXPECT_EQ(current.size(), 1);
    ASSERT_EQ(clicked.size(), 2);
    EXPECT_EQ(clicked[0][0].toInt(), 5);
    EXPECT_EQ(clicked[0][3].toPoint(), mGrid.viewport()->mapToGlobal(mGrid.CellRect(5).center()));
}

TEST_F(ThumbnailGridTest, AClickBesideTheCellsTellsMinusOne)
{
    ClickCell(mGrid, 2);
    QSignalSpy picked(&mGrid, &CellView::picked);
    QTest::mouseClick(mGrid.viewport(), Qt::LeftButton, {}, Gap());
    ASSERT_EQ(picked.size(), 1);
    EXPECT_EQ(picked[0][0].toInt(), -1);
    EXPECT_TRUE(Rows().isEmpty());
    EXPECT_EQ(mGrid.Current(), 2);
}

TEST_F(ThumbnailGridTest, ControlAndShiftExtendTheSelection)
{
    ClickCell(mGrid, 1);
    ClickCell(mGrid, 6, Qt::ControlModifier);
    EXPECT_EQ(Rows(), (QVector<int>{1, 6}));
    ClickCell(mGrid, 9, Qt::ShiftModifier);
    EXPECT_EQ(Rows(), (QVector<int>{6, 7, 8, 9}));
    EXPECT_EQ(mGrid.SelectedFlags().size(), 40);
    EXPECT_TRUE(mGrid.SelectedFlags().at(8));
}

TEST_F(ThumbnailGridTest, HitTestFindsCellsAndGaps)
{
    EXPECT_EQ(mGrid.HitTest(mGrid.CellRect(6).center()), 6);
    EXPECT_EQ(mGrid.HitTest(Gap()), -1);
    EXPECT_EQ(mGrid.HitTest(-10, 20), -1);
    EXPECT_EQ(mGrid.HitTest(20, 5000), -1);
    mGrid.verticalScrollBar()->setValue(mGrid.verticalScrollBar()->maximum());
    EXPECT_EQ(mGrid.HitTest(mGrid.CellRect(38).center()), 38);
}

TEST_F(ThumbnailGridTest, ARubberBandSelectsWhatItTouches)
{
    DragOver(mGrid, {Gap(), mGrid.CellRect(6).center()});
    EXPECT_EQ(Rows(), (QVector<int>{1, 2, 5, 6}));
    ClickCell(mGrid, 0);
    DragOver(mGrid, {Gap(), mGrid.CellRect(1).center()}, Qt::ShiftModifier);
    EXPECT_EQ(Rows(), (QVector<int>{0, 1}));
    DragOver(mGrid, {Gap(), mGrid.CellRect(2).center()}, Qt::ControlModifier);
    EXPECT_EQ(Rows(), (QVector<int>{0, 2}));
}

TEST_F(ThumbnailGridTest, EscapeTakesTheRubberBandBack)
{
    ClickCell(mGrid, 0);
    DragOver(mGrid, {Gap(), mGrid.CellRect(6).center()}, Qt::ShiftModifier, false);
    EXPECT_GT(Rows().size(), 1);
    Key(Qt::Key_Escape);
    EXPECT_EQ(Rows(), QVector<int>{0});
    QTest::mouseRelease(mGrid.viewport(), Qt::LeftButton, {}, mGrid.CellRect(6).center());
    EXPECT_EQ(Rows(), QVector<int>{0});
}

TEST_F(ThumbnailGridTest, ARubberBandBelowTheViewScrollsAndGoesOnSelecting)
{
    const QPoint below(Gap().x() + 60, mGrid.viewport()->height() + 80);
    DragOver(mGrid, {Gap(), below}, {}, false);
    QScrollBar* bar = mGrid.verticalScrollBar();
    Until([&] { return bar->value() == bar->maximum(); });
    Until([&] { return mGrid.IsSelected(37); });
    QTest::mouseRelease(mGrid.viewport(), Qt::LeftButton, {}, below);
    EXPECT_EQ(Rows().size(), 10);
}

TEST_F(ThumbnailGridTest, ADragTakesTheSelectionAlongInOrder)
{
    QStringList files;
    mGrid.SetDragHandler([&](QMimeData& data, const QPixmap& picture) {
        files = FilesOfMimeData(data);
        EXPECT_FALSE(picture.isNull());
    });
    ClickCell(mGrid, 6);
    ClickCell(mGrid, 2, Qt::ControlModifier);
    const QPoint from = mGrid.CellRect(6).center();
    DragOver(mGrid, {from, from + QPoint(60, 0)});
    EXPECT_EQ(files, (QStringList{"/p/IMG_0002.jpg", "/p/IMG_0006.jpg"}));
    EXPECT_EQ(Rows(), (QVector<int>{2, 6})) << "a drag keeps the selection";
    const QPoint other = mGrid.CellRect(9).center();
    DragOver(mGrid, {other, other + QPoint(60, 0)});
    EXPECT_EQ(files, QStringList{"/p/IMG_0009.jpg"});
}

TEST_F(ThumbnailGridTest, AClickWithoutADragSelectsOneOfSeveral)
{
    ClickCell(mGrid, 2);
    ClickCell(mGrid, 5, Qt::ShiftModifier);
    const QPoint at = mGrid.CellRect(3).center();
    QTest::mousePress(mGrid.viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(Rows().size(), 4);
    QTest::mouseRelease(mGrid.viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(Rows(), QVector<int>{3});
}

TEST_F(ThumbnailGridTest, TheKeyboardMovesSelectsAndTells)
{
    QSignalSpy picked(&mGrid, &CellView::picked);
    Key(Qt::Key_Down);
    EXPECT_EQ(mGrid.Current(), 0);
    Key(Qt::Key_Down);
    EXPECT_EQ(mGrid.Current(), 4);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(Rows(), (QVector<int>{4, 5, 6}));
    Key(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(mGrid.Current(), 10);
    EXPECT_EQ(Rows(), (QVector<int>{4, 5, 6}));
    Key(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(Rows(), (QVector<int>{4, 5, 6, 10}));
    Key(Qt::Key_End);
    EXPECT_EQ(Rows(), QVector<int>{39});
    EXPECT_TRUE(mGrid.viewport()->rect().contains(mGrid.CellRect(39)));
    Key(Qt::Key_Home);
    EXPECT_EQ(Rows(), QVector<int>{0});
    Key(Qt::Key_PageDown);
    EXPECT_GE(mGrid.Current(), 8);
    Key(Qt::Key_PageUp);
    EXPECT_EQ(mGrid.Current(), 0);
    EXPECT_EQ(picked.size(), 9);
    Key(Qt::Key_Home);
    EXPECT_EQ(picked.size(), 9) << "no move, nothing to tell";
}

TEST_F(ThumbnailGridTest, ControlASelectsEveryCell)
{
    QSignalSpy changed(&mGrid, &CellView::selectionChanged);
    Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(mGrid.SelectedCount(), 40);
    EXPECT_EQ(changed.size(), 1);
    mGrid.SelectAll(false);
    EXPECT_EQ(mGrid.SelectedCount(), 0);
}

TEST_F(ThumbnailGridTest, TypingGoesToAName)
{
    QTest::keyClicks(&mGrid, "img_002");
    EXPECT_EQ(mGrid.Current(), 20);
    EXPECT_EQ(Rows(), QVector<int>{20});
}

TEST_F(ThumbnailGridTest, EnterAndDoubleClickAreTold)
{
    QSignalSpy enter(&mGrid, &CellView::enterPressed);
    QSignalSpy doubled(&mGrid, &CellView::doubleClicked);
    Key(Qt::Key_Return);
    EXPECT_EQ(enter.size(), 0) << "no cell is current";
    ClickCell(mGrid, 7);
    Key(Qt::Key_Return);
    Key(Qt::Key_Enter);
    ASSERT_EQ(enter.size(), 2);
    EXPECT_EQ(enter[0][0].toInt(), 7);
    QTest::mouseDClick(mGrid.viewport(), Qt::LeftButton, {}, mGrid.CellRect(7).center());
    ASSERT_EQ(doubled.size(), 1);
    EXPECT_EQ(doubled[0][0].toInt(), 7);
    QTest::mouseDClick(mGrid.viewport(), Qt::LeftButton, {}, Gap());
    EXPECT_EQ(doubled.size(), 1);
}

TEST_F(ThumbnailGridTest, TheRightButtonSelectsAndAsksForTheMenu)
{
    QSignalSpy menu(&mGrid, &CellView::contextMenuWanted);
    ClickCell(mGrid, 3, {}, Qt::RightButton);
    ASSERT_EQ(menu.size(), 1);
    EXPECT_EQ(menu[0][0].toInt(), 3);
    EXPECT_EQ(Rows(), QVector<int>{3});
    ClickCell(mGrid, 4, Qt::ShiftModifier);
    ClickCell(mGrid, 3, {}, Qt::RightButton);
    EXPECT_EQ(Rows(), (QVector<int>{3, 4})) << "a selection stays";
    QTest::mouseClick(mGrid.viewport(), Qt::RightButton, {}, Gap());
    ASSERT_EQ(menu.size(), 3);
    EXPECT_EQ(menu[2][0].toInt(), -1);
}

TEST_F(ThumbnailGridTest, TheMenuKeyAsksOnceAtTheCurrentCell)
{
    ClickCell(mGrid, 3);
    QSignalSpy menu(&mGrid, &CellView::contextMenuWanted);
    Key(Qt::Key_Menu);
    Key(Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_EQ(menu.size(), 2);
    EXPECT_EQ(menu[0][0].toInt(), 3);
    EXPECT_EQ(menu[0][1].toPoint(), mGrid.viewport()->mapToGlobal(mGrid.CellRect(3).center()));
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

TEST_F(ThumbnailGridTest, PartsOfWheelStepsAddUp)
{
    QScrollBar* bar = mGrid.verticalScrollBar();
    const auto wheel = [&](int units, Qt::KeyboardModifiers modifiers = {}) {
        const QPointF at(50, 50);
        QWheelEvent event(at, mGrid.viewport()->mapToGlobal(at), {}, {0, units}, Qt::NoButton,
                          modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(mGrid.viewport(), &event);
        return event.isAccepted();
    };
    wheel(-120);
    const int notch = bar->value();
    EXPECT_GT(notch, 0);
    bar->setValue(0);
    for (int part = 0; part < 120; ++part) {
        wheel(-1);
    }
    EXPECT_EQ(bar->value(), notch);
    EXPECT_FALSE(wheel(-120, Qt::ControlModifier)) << "zooming is the owner's";
    EXPECT_EQ(bar->value(), notch);
}

TEST_F(ThumbnailGridTest, ANarrowerViewKeepsTheCurrentCellInSight)
{
    mGrid.MakeCurrent(30);
    mGrid.resize(260, 420);
    QCoreApplication::processEvents();
    EXPECT_TRUE(mGrid.viewport()->rect().intersects(mGrid.CellRect(30)));
}

TEST_F(ThumbnailGridTest, RightToLeftBeginsAtTheRight)
{
    mGrid.setLayoutDirection(Qt::RightToLeft);
    EXPECT_GT(mGrid.CellRect(0).x(), mGrid.CellRect(1).x());
    ClickCell(mGrid, 0);
    Key(Qt::Key_Left);
    EXPECT_EQ(mGrid.Current(), 1);
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
