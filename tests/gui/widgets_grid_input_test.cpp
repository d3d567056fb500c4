// Mouse and keyboard in the thumbnail grid.
#include "gui/widgets_grid_fixture.h"
#include "platform/file_list_mime.h"

#include <QScrollBar>
#include <QWheelEvent>

namespace quillane {

namespace {

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

TEST_F(ThumbnailGridTest, RightToLeftBeginsAtTheRight)
{
    mGrid.setLayoutDirection(Qt::RightToLeft);
    EXPECT_GT(mGrid.CellRect(0).x(), mGrid.CellRect(1).x());
    ClickCell(mGrid, 0);
    Key(Qt::Key_Left);
    EXPECT_EQ(mGrid.Current(), 1);
}

} // namespace

} // namespace quillane
