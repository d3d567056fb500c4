#include "gui/widgets_support.h"
#include "platform/file_list_mime.h"
#include "widgets/ui/file_cells.h"
#include "widgets/ui/file_list_view.h"

#include <QAccessible>
#include <QHeaderView>
#include <QScrollBar>

namespace quillane {

namespace {

class FileListViewTest : public testing::Test {
protected:
    FileListViewTest()
    {
        QVector<FileRow> rows;
        for (int i = 0; i < 60; ++i) {
            rows.append({QStringLiteral("/p/img%1.jpg").arg(i),
                         (i * 37) % 60 * 100,
                         1'000'000'000 + i * 86'400,
                         {}});
        }
        mList.AddRows(rows);
        mList.SetCaptions({"Place", "Event", "Person", "Keywords"});
        mList.SetDateText([](const QDateTime& when) {
            return when.toUTC().toString(QStringLiteral("yyyy-MM-dd"));
        });
        ShowAndWait(mList, QSize(900, 400));
        QObject::connect(&mList, &FileListView::rowsReordered, [this](const QVector<int>& order) {
            QStringList moved;
            for (const int from : order) {
                moved.append(mTruth.value(from));
            }
            mTruth = moved;
        });
        for (int i = 0; i < 60; ++i) {
            mTruth.append(mList.PathAt(i));
        }
    }
    void ClickHeading(int column)
    {
        QHeaderView* headings = mList.Headings();
        const QPoint at(headings->sectionViewportPosition(column)
                            + headings->sectionSize(column) / 2,
                        headings->height() / 2);
        QTest::mouseClick(headings->viewport(), Qt::LeftButton, {}, at);
    }
    void ClickRow(int row, Qt::KeyboardModifiers modifiers = {},
                  Qt::MouseButton button = Qt::LeftButton)
    {
        FileCells& cells = *mList.Cells();
        const QPoint at = cells.CellRect(row).topLeft() + QPoint(30, 8);
        QTest::mouseClick(cells.viewport(), button, modifiers, at);
    }
    /// Rows and the owner's list say the same.
    void ExpectOneTruth() const
    {
        for (int row = 0; row < mList.Count(); ++row) {
            ASSERT_EQ(mList.PathAt(row), mTruth.value(row)) << row;
        }
    }

    FileListView mList;
    QStringList mTruth;
};

TEST_F(FileListViewTest, HasSevenColumnsUnderTheirCaptions)
{
    const QStringList captions{"Name", "Size", "Modified", "Place", "Event", "Person", "Keywords"};
    ASSERT_EQ(mList.Headings()->count(), captions.size());
    for (int column = 0; column < captions.size(); ++column) {
        EXPECT_EQ(mList.Headings()->model()->headerData(column, Qt::Horizontal).toString(),
                  captions[column]);
    }
}

TEST_F(FileListViewTest, ColumnsWithoutANameAreNarrowAndKeepAChosenWidthWithOne)
{
    QHeaderView* const header = mList.Headings();
    const int named = header->sectionSize(3);
    mList.SetCaptions({"Place", "", "", ""});
    EXPECT_EQ(header->sectionSize(3), named);
    EXPECT_LT(header->sectionSize(4), named / 2);
    header->resizeSection(3, 77);
    mList.SetCaptions({"Town", "Event", "", ""});
    EXPECT_EQ(header->sectionSize(3), 77);
    EXPECT_EQ(header->sectionSize(4), named);
}

TEST_F(FileListViewTest, ShowsNameSizeInBytesTimeAndTags)
{
    mList.SetTags(1, {"Athens", "", "Maria", ""});
    EXPECT_EQ(mList.TextAt(1, 0), "img1.jpg");
    EXPECT_EQ(mList.TextAt(1, 1), "3700");
    EXPECT_EQ(mList.TextAt(1, 2), "2001-09-10");
    EXPECT_EQ(mList.TextAt(1, 3), "Athens");
    EXPECT_EQ(mList.TextAt(1, 5), "Maria");
    EXPECT_EQ(mList.TextAt(0, 3), "");
    EXPECT_EQ(mList.TextAt(60, 0), "");
}

TEST_F(FileListViewTest, StyleThreeHasHeadingsAndTheOthersNone)
{
    EXPECT_EQ(mList.Style(), FileListView::kDetails);
    EXPECT_TRUE(mList.Headings()->isVisible());
    for (const int style : {0, 1, 2}) {
        mList.SetStyle(style);
        EXPECT_EQ(mList.Style(), style);
        EXPECT_FALSE(mList.Headings()->isVisible());
        EXPECT_TRUE(mList.findChild<QWidget*>("lvSelectedIcons")->isVisible());
        EXPECT_FALSE(mList.findChild<QWidget*>("lvSelectedDetails")->isVisible());
    }
    mList.SetStyle(7);
    EXPECT_EQ(mList.Style(), 2);
    mList.SetStyle(3);
    EXPECT_TRUE(mList.findChild<QWidget*>("lvSelectedDetails")->isVisible());
}

TEST_F(FileListViewTest, StylesLayRowsOutTheirOwnWay)
{
    mList.SetStyle(FileListView::kList);
    EXPECT_EQ(mList.RowRect(0).x(), mList.RowRect(1).x()) << "down first";
    mList.SetStyle(FileListView::kSmallIcons);
    EXPECT_EQ(mList.RowRect(0).y(), mList.RowRect(1).y()) << "along first";
    const int small = mList.RowRect(0).height();
    mList.SetStyle(FileListView::kLargeIcons);
    EXPECT_EQ(mList.RowRect(0).y(), mList.RowRect(1).y());
    EXPECT_GT(mList.RowRect(0).height(), 2 * small);
    mList.SetStyle(FileListView::kDetails);
    EXPECT_GT(mList.RowRect(1).y(), mList.RowRect(0).y());
}

TEST_F(FileListViewTest, SelectionAndCurrentStayThroughTheStyles)
{
    ClickRow(3);
    ClickRow(5, Qt::ControlModifier);
    QSignalSpy changed(&mList, &FileListView::selectionChanged);
    for (const int style : {0, 2, 3, 1}) {
        mList.SetStyle(style);
        EXPECT_EQ(mList.SelectedIndexes(), (QVector<int>{3, 5})) << style;
        EXPECT_EQ(mList.Current(), 5) << style;
    }
    EXPECT_EQ(changed.size(), 0);
}

TEST_F(FileListViewTest, RowAtFindsRowsAndNothingBesideThem)
{
    for (const int style : {3, 0, 1, 2}) {
        mList.SetStyle(style);
        EXPECT_EQ(mList.RowAt(mList.RowRect(4).center()), 4) << style;
        EXPECT_EQ(mList.RowAt({-5, -5}), -1) << style;
    }
    mList.SetStyle(3);
    EXPECT_EQ(mList.RowAt({20, 3}), -1) << "the headings are no row";
}

TEST_F(FileListViewTest, ClicksAreTold)
{
    QSignalSpy picked(&mList, &FileListView::picked);
    QSignalSpy menu(&mList, &FileListView::contextMenuWanted);
    QSignalSpy doubled(&mList, &FileListView::doubleClicked);
    QSignalSpy enter(&mList, &FileListView::enterPressed);
    ClickRow(4);
    ASSERT_EQ(picked.size(), 1);
    EXPECT_EQ(picked[0][0].toInt(), 4);
    ClickRow(6, {}, Qt::RightButton);
    ASSERT_EQ(menu.size(), 1);
    EXPECT_EQ(menu[0][0].toInt(), 6);
    QTest::mouseDClick(mList.Cells()->viewport(), Qt::LeftButton, {},
                       mList.Cells()->CellRect(6).topLeft() + QPoint(30, 8));
    ASSERT_EQ(doubled.size(), 1);
    QTest::keyClick(mList.Cells(), Qt::Key_Return);
    EXPECT_EQ(enter.size(), 1);
    QTest::keyClick(mList.Cells(), Qt::Key_Down);
    EXPECT_EQ(mList.Current(), 7);
    EXPECT_EQ(picked.last()[0].toInt(), 7);
}

TEST_F(FileListViewTest, MakeCurrentSelectsTheRowAlone)
{
    mList.SelectAll();
    EXPECT_EQ(mList.SelectedCount(), 60);
    mList.MakeCurrent(50);
    EXPECT_EQ(mList.SelectedIndexes(), QVector<int>{50});
    EXPECT_EQ(mList.Current(), 50);
    EXPECT_GE(mList.VisibleRange().last, 50);
    mList.MakeCurrent(-1);
    EXPECT_EQ(mList.SelectedCount(), 0);
}

TEST_F(FileListViewTest, AHeadingSortsAndTheOtherWayRoundTheSecondTime)
{
    ClickHeading(kColumnSize);
    EXPECT_EQ(mList.SortColumn(), kColumnSize);
    for (int row = 1; row < mList.Count(); ++row) {
        ASSERT_LE(mList.Row(row - 1).size, mList.Row(row).size);
    }
    ExpectOneTruth();
    ClickHeading(kColumnSize);
    for (int row = 1; row < mList.Count(); ++row) {
        ASSERT_GE(mList.Row(row - 1).size, mList.Row(row).size);
    }
    ExpectOneTruth();
    ClickHeading(kColumnName);
    EXPECT_EQ(mList.SortDirection(), Qt::AscendingOrder);
    EXPECT_EQ(mList.TextAt(10, 0), "img10.jpg") << "numbers by their value";
    ExpectOneTruth();
}

TEST_F(FileListViewTest, AHeadingDoesNothingWhenSortedIsOff)
{
    mList.SetSorted(false);
    QSignalSpy reordered(&mList, &FileListView::rowsReordered);
    ClickHeading(kColumnSize);
    EXPECT_EQ(reordered.size(), 0);
    EXPECT_EQ(mList.SortColumn(), -1);
    ExpectOneTruth();
}

TEST_F(FileListViewTest, SelectionAndCurrentFollowTheirFilesThroughASort)
{
    ClickRow(3);
    ClickRow(8, Qt::ControlModifier);
    const QString current = mList.PathAt(8);
    ClickHeading(kColumnSize);
    QStringList selected;
    for (const int row : mList.SelectedIndexes()) {
        selected.append(mList.PathAt(row));
    }
    selected.sort();
    EXPECT_EQ(selected, (QStringList{"/p/img3.jpg", "/p/img8.jpg"}));
    EXPECT_EQ(mList.PathAt(mList.Current()), current);
    EXPECT_TRUE(mList.SelectedFlags().at(mList.Current()));
}

TEST_F(FileListViewTest, TagsFollowTheirFilesThroughASort)
{
    mList.SetTags(0, {"z", "", "", ""});
    mList.SetTags(59, {"a", "", "", ""});
    ClickHeading(3);
    EXPECT_EQ(mList.TextAt(0, 3), "a");
    EXPECT_EQ(mList.PathAt(0), "/p/img59.jpg");
    EXPECT_EQ(mList.TextAt(1, 3), "z");
    ExpectOneTruth();
}

TEST_F(FileListViewTest, RowsAreInsertedRemovedAndRenamed)
{
    ClickRow(5);
    mList.InsertAt(2, {"/p/new.avi", 1, 1, {}});
    EXPECT_EQ(mList.PathAt(2), "/p/new.avi");
    EXPECT_EQ(mList.Current(), 6);
    mList.RemoveAt(0);
    EXPECT_EQ(mList.Current(), 5);
    EXPECT_EQ(mList.SelectedIndexes(), QVector<int>{5});
    mList.Rename(1, "/p/other.jpg");
    EXPECT_EQ(mList.TextAt(1, 0), "other.jpg");
    EXPECT_EQ(mList.SelectedFlags().size(), 60);
    mList.Clear();
    EXPECT_EQ(mList.Count(), 0);
    EXPECT_EQ(mList.SelectedFlags().size(), 0);
    EXPECT_EQ(mList.Current(), -1);
}

TEST_F(FileListViewTest, ClearForgetsTheOrder)
{
    ClickHeading(kColumnSize);
    EXPECT_TRUE(mList.Headings()->isSortIndicatorShown());
    mList.Clear();
    EXPECT_EQ(mList.SortColumn(), -1);
    EXPECT_FALSE(mList.Headings()->isSortIndicatorShown());
}

TEST_F(FileListViewTest, GridLinesAreDrawnInTheDetailsOnly)
{
    EXPECT_FALSE(mList.GridLines());
    for (const int style : {3, 0, 1, 2}) {
        mList.SetStyle(style);
        mList.SetGridLines(false);
        const QImage without = Grabbed(*mList.Cells()->viewport());
        mList.SetGridLines(true);
        const QImage with = Grabbed(*mList.Cells()->viewport());
        EXPECT_EQ(with != without, style == 3) << style;
    }
}

TEST_F(FileListViewTest, AColumnMadeWiderThanTheViewCanBeScrolledTo)
{
    mList.Headings()->resizeSection(kColumnName, 2000);
    QCoreApplication::processEvents();
    QScrollBar* bar = mList.Cells()->horizontalScrollBar();
    EXPECT_GT(bar->maximum(), 0);
    bar->setValue(bar->maximum());
    EXPECT_EQ(mList.Headings()->offset(), bar->maximum());
}

TEST_F(FileListViewTest, ABandBeginsBesideTheNames)
{
    FileCells& cells = *mList.Cells();
    const int beside = mList.Headings()->sectionViewportPosition(kColumnModified) + 20;
    const auto at = [&](int row) { return QPoint(beside, cells.CellRect(row).center().y()); };
    DragOver(cells, {at(2), at(5)});
    EXPECT_EQ(mList.SelectedIndexes(), (QVector<int>{2, 3, 4, 5}));
    QStringList files;
    cells.SetDragHandler([&](QMimeData& data, const QPixmap&) { files = FilesOfMimeData(data); });
    const QPoint name = cells.CellRect(3).topLeft() + QPoint(30, 8);
    DragOver(cells, {name, name + QPoint(0, 60)});
    EXPECT_EQ(files.size(), 4);
}

TEST_F(FileListViewTest, IconsComeFromTheProviderByTheirKeys)
{
    QStringList keys;
    mList.SetIconProvider([&](const QString& key) {
        keys.append(key);
        return QIcon();
    });
    Grabbed(*mList.Cells()->viewport());
    EXPECT_EQ(keys, QStringList{"color"}) << "asked once for all rows";
    mList.SetStyle(FileListView::kLargeIcons);
    Grabbed(*mList.Cells()->viewport());
    EXPECT_TRUE(keys.contains("colorBig"));
}

TEST_F(FileListViewTest, ScreenReadersHearTheWholeRow)
{
    EXPECT_EQ(mList.accessibleName(), "Files");
    mList.SetTags(2, {"Athens", "", "", ""});
    QAccessibleInterface* rows = QAccessible::queryAccessibleInterface(mList.Cells());
    ASSERT_NE(rows, nullptr);
    ASSERT_EQ(rows->childCount(), 60);
    EXPECT_EQ(rows->child(2)->text(QAccessible::Name), "img2.jpg, 1400, 2001-09-11, Athens");
}

TEST(FileListView, ALargeSetIsSortedAwayFromTheWindowThreadAndRowsThatComeMeanwhileAreInIt)
{
    FileListView list;
    ShowAndWait(list, QSize(900, 400));
    QStringList truth;
    QVector<FileRow> chunk;
    const int before = list.Cells()->LayoutCount();
    for (int i = 0; i < 110'000; ++i) {
        chunk.append({QStringLiteral("/p/%1.jpg").arg((i * 7919) % 110'000), i, i, {}});
        truth.append(chunk.last().path);
        if (chunk.size() == 250) {
            list.AddRows(chunk);
            chunk.clear();
            QCoreApplication::processEvents();
        }
    }
    EXPECT_EQ(list.Count(), 110'000);
    EXPECT_LE(list.Cells()->LayoutCount() - before, 3 * 441) << "at most once for each chunk";
    QObject::connect(&list, &FileListView::rowsReordered, [&](const QVector<int>& order) {
        QStringList moved;
        for (const int from : order) {
            moved.append(truth.value(from));
        }
        truth = moved;
    });
    QSignalSpy reordered(&list, &FileListView::rowsReordered);
    list.SortBy(kColumnName, Qt::AscendingOrder);
    EXPECT_TRUE(list.IsSorting());
    list.AddRows({{"/p/-.jpg", 1, 1, {}}});
    truth.append("/p/-.jpg");
    Until([&] { return !list.IsSorting(); });
    EXPECT_EQ(reordered.size(), 1);
    ASSERT_EQ(list.Count(), 110'001);
    EXPECT_EQ(list.PathAt(0), "/p/-.jpg");
    EXPECT_EQ(list.PathAt(1), "/p/0.jpg");
    EXPECT_EQ(list.PathAt(110'000), "/p/109999.jpg");
    for (int row = 0; row < list.Count(); row += 997) {
        ASSERT_EQ(list.PathAt(row), truth[row]);
    }
}

TEST(FileListView, RowsThatCameBehindASortAreSortedInByTheNext)
{
    FileListView list;
    list.AddRows({{"/p/b.jpg", 1, 1, {}}, {"/p/d.jpg", 1, 1, {}}});
    list.SortRest(); // no heading was clicked
    list.SortBy(kColumnName, Qt::DescendingOrder);
    list.AddRows({{"/p/c.jpg", 1, 1, {}}, {"/p/a.jpg", 1, 1, {}}});
    EXPECT_EQ(list.PathAt(2), "/p/c.jpg");
    list.SortRest();
    EXPECT_EQ(list.PathAt(0), "/p/d.jpg");
    EXPECT_EQ(list.PathAt(1), "/p/c.jpg");
    EXPECT_EQ(list.PathAt(3), "/p/a.jpg");
    list.Clear();
    list.AddRows({{"/p/b.jpg", 1, 1, {}}, {"/p/d.jpg", 1, 1, {}}});
    list.SortRest();
    EXPECT_EQ(list.PathAt(0), "/p/b.jpg");
}

} // namespace

} // namespace quillane
