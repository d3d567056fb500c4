#include "album/ui/frmBrowserImageFileList.h"
#include "gui/main_window_fixture.h"

#include <QStatusBar>

namespace quillane {

namespace {

/// The main window and the album window that it opens.
class MainWindowAlbumTest : public MainWindowTest {
protected:
    frmBrowserImageFileList* Album() const
    {
        return qobject_cast<frmBrowserImageFileList*>(
            windows.Loaded(QStringLiteral("frmBrowserImageFileList")));
    }
    bool AlbumHas(int rows) const
    {
        return QTest::qWaitFor(
            [&] { return Album() && !Album()->IsWorking() && Album()->Rows().Count() == rows; },
            kWait);
    }
};

} // namespace

TEST_F(MainWindowAlbumTest, EachEntryShowsTheOneAlbumWindow)
{
    Pictures(2);
    Start();
    Grid()->SelectAll();
    Click("mnuPopAdd");
    for (const char* name : {"mnuPopShow", "mnuShowEditImageFileList"}) {
        Click(name);
        ASSERT_TRUE(AlbumHas(2)) << name;
        EXPECT_TRUE(Album()->isVisible());
    }
    Find<QAction>("Toolbar1_10")->trigger();
    EXPECT_EQ(windows.LoadedNames().count(QStringLiteral("frmBrowserImageFileList")), 1);
}

TEST_F(MainWindowAlbumTest, DoubleClickOnAnAlbumOpensIt)
{
    Pictures(2);
    WriteWholeFile(folder + QStringLiteral("a.ifl"),
                   BytesFromPath(folder) + "p1.bmp\r\n" + BytesFromPath(folder) + "p0.bmp\r\n");
    Start();
    const int cell = int(session.lbFilTiffs.indexOf(folder + QStringLiteral("a.ifl")));
    ASSERT_GE(cell, 0);
    ClickCell(cell);
    QTest::mouseDClick(Grid()->viewport(), Qt::LeftButton, {}, Grid()->CellRect(cell).center());
    ASSERT_TRUE(AlbumHas(2));
    EXPECT_EQ(
        session.lbExportList,
        (QList<QString>{folder + QStringLiteral("p1.bmp"), folder + QStringLiteral("p0.bmp")}));
}

TEST_F(MainWindowAlbumTest, TiledAlbumFillsTheBrowserAndClosesItsWindow)
{
    Pictures(3);
    Start();
    session.lbExportList = {folder + QStringLiteral("p2.bmp"), folder + QStringLiteral("p0.bmp")};
    Click("mnuPopShow");
    ASSERT_TRUE(AlbumHas(2));
    Album()->findChild<QAction*>(QStringLiteral("mnuTileImages"))->trigger();
    EXPECT_EQ(session.lbFilTiffs, session.lbExportList);
    EXPECT_EQ(Grid()->Count(), 2);
    EXPECT_EQ(main->Panel(1), "Photo Album");
    EXPECT_EQ(main->Panel(3), "Total Images = 2");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !Album(); }, kWait));
}

} // namespace quillane
