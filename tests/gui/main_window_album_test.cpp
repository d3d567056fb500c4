#include "album/ui/frmBrowserImageFileList.h"
#include "gui/main_window_fixture.h"

#include <QLabel>
#include <QMenu>
#include <QStatusBar>
#include <QTableView>

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
    template <typename Kind> Kind* Part(const char* name) const
    {
        Kind* found = Album()->findChild<Kind*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    void CloseAlbum()
    {
        Part<QAction>("mnuExit")->trigger();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !Album(); }, kWait));
    }
    void ClickAlbumRow(int row, Qt::KeyboardModifiers modifiers = {}) const
    {
        auto* list = Part<QTableView>("lvImageFileList");
        QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers,
                          list->visualRect(list->model()->index(row, 0)).center());
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

TEST_F(MainWindowAlbumTest, OwnedWindowsStayAboveTheBrowserAndDoNotBlockIt)
{
    Start();
    for (const char* name : {"frmBrowserImageFileList", "frmLocate", "frmToolImageDisplay"}) {
        const auto* window = qobject_cast<QWidget*>(windows.Get(QLatin1String(name)));
        ASSERT_NE(window, nullptr) << name;
        EXPECT_EQ(window->parentWidget(), main.get()) << name;
        EXPECT_EQ(window->windowType(), Qt::Dialog) << name;
        EXPECT_FALSE(window->isModal()) << name;
        EXPECT_TRUE(window->windowFlags().testFlag(Qt::WindowMinMaxButtonsHint)) << name;
    }
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

TEST_F(MainWindowAlbumTest, TiledAlbumIsNotCalledAFolderThatChanged)
{
    Pictures(3);
    Start();
    session.lbExportList = {folder + QStringLiteral("p2.bmp")};
    Click("mnuPopShow");
    ASSERT_TRUE(AlbumHas(1));
    fakes.watch.Fire();
    ASSERT_TRUE(Find<QLabel>("lblFolderChanged")->isVisible());
    Album()->findChild<QAction*>(QStringLiteral("mnuTileImages"))->trigger();
    EXPECT_FALSE(Find<QLabel>("lblFolderChanged")->isVisible());
    EXPECT_EQ(fakes.watch.folder, QString());
    Click("mnuRefresh"); // shows the folder again
    EXPECT_EQ(session.lbFilTiffs.size(), 3);
    EXPECT_EQ(fakes.watch.folder, folder);
}

TEST_F(MainWindowAlbumTest, OpenedTwiceItShowsTheSameRowsInTheSameOrder)
{
    Pictures(3);
    Start();
    session.lbExportList = {folder + QStringLiteral("p2.bmp"), folder + QStringLiteral("p0.bmp"),
                            folder + QStringLiteral("p1.bmp")};
    const QList<QString> rows = session.lbExportList;
    Click("mnuPopShow");
    ASSERT_TRUE(AlbumHas(3));
    EXPECT_EQ(Album()->Rows().Paths(), rows);
    Part<QPlainTextEdit>("rtbComment")->setPlainText(QStringLiteral("kept"));
    CloseAlbum();
    EXPECT_EQ(session.gsComments, "kept");
    EXPECT_EQ(session.lbExportList, rows);
    Find<QAction>("Toolbar1_10")->trigger();
    ASSERT_TRUE(AlbumHas(3));
    EXPECT_EQ(Album()->Rows().Paths(), rows);
    EXPECT_EQ(Part<QPlainTextEdit>("rtbComment")->toPlainText(), "kept");
}

TEST_F(MainWindowAlbumTest, CommentOutlivesTheProgramAndTheAlbumDoesNot)
{
    Pictures(1);
    Start();
    session.lbExportList = {folder + QStringLiteral("p0.bmp")};
    Click("mnuPopShow");
    ASSERT_TRUE(AlbumHas(1));
    Part<QPlainTextEdit>("rtbComment")->setPlainText(QStringLiteral("kept"));
    CloseAlbum();
    main->close();
    EXPECT_EQ(store.GetSetting(QStringLiteral("Globals"), QStringLiteral("gsComments"), {}),
              "kept");
    EXPECT_FALSE(ReadWholeFile(root.path() + QStringLiteral("/s.ini"), 1 << 20).contains("p0.bmp"));
}

TEST_F(MainWindowAlbumTest, SendComposesAMailOfTheSelectedRows)
{
    Pictures(3);
    Start();
    session.lbExportList = {folder + QStringLiteral("p2.bmp"), folder + QStringLiteral("p0.bmp"),
                            folder + QStringLiteral("p1.bmp")};
    Click("mnuPopShow");
    ASSERT_TRUE(AlbumHas(3));
    ClickAlbumRow(2);
    ClickAlbumRow(0, Qt::ControlModifier);
    Q_EMIT Part<QMenu>("mnuFile")->aboutToShow();
    ASSERT_TRUE(Part<QAction>("mnuSend")->isEnabled());
    Part<QAction>("mnuSend")->trigger();
    EXPECT_EQ(fakes.mail.composed,
              (QVector<QStringList>{
                  {folder + QStringLiteral("p2.bmp"), folder + QStringLiteral("p1.bmp")}}));
    fakes.dialogs.Answer(BoxAnswer::Ok);
    fakes.mail.ended[0](Failure(kFailureGeneral, QStringLiteral("no mail program")));
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_TRUE(fakes.dialogs.Boxes()[0].text.startsWith(QStringLiteral("no mail program")));
}

TEST_F(MainWindowAlbumTest, SendFromTheGridTakesTheSelectedCells)
{
    Pictures(2);
    Start();
    session.lbExportList = {folder + QStringLiteral("p1.bmp"), folder + QStringLiteral("p0.bmp")};
    Click("mnuPopShow");
    ASSERT_TRUE(AlbumHas(2));
    Part<QAction>("mnuViewThumbnails")->trigger();
    auto* grid = Part<ThumbnailGrid>("LEADImgList1");
    ASSERT_TRUE(QTest::qWaitFor([&] { return grid->Count() == 2; }, kWait));
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->CellRect(1).center());
    Part<QAction>("mnuSend")->trigger();
    EXPECT_EQ(fakes.mail.composed, (QVector<QStringList>{{folder + QStringLiteral("p0.bmp")}}));
}

TEST_F(MainWindowAlbumTest, AlbumWithAMissingFileTilesTwoCellsAndTellsThree)
{
    Pictures(2);
    WriteWholeFile(folder + QStringLiteral("a.ifl"),
                   BytesFromPath(folder) + "p1.bmp\r\n" + BytesFromPath(folder) + "none.bmp\r\n"
                       + BytesFromPath(folder) + "p0.bmp\r\n");
    Start();
    session.gsFileName = folder + QStringLiteral("a.ifl");
    Click("mnuPopShow");
    Album()->OpenImageListFile(session.gsFileName);
    ASSERT_TRUE(AlbumHas(3));
    Part<QAction>("mnuTileImages")->trigger();
    EXPECT_EQ(
        session.lbFilTiffs,
        (QList<QString>{folder + QStringLiteral("p1.bmp"), folder + QStringLiteral("p0.bmp")}));
    EXPECT_EQ(Grid()->Count(), 2);
    EXPECT_EQ(Grid()->TextAt(0), "p1.bmp");
    EXPECT_EQ(main->Panel(1), "Photo Album");
    EXPECT_EQ(main->Panel(3), "Total Images = 3");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !Album(); }, kWait));
}

TEST_F(MainWindowAlbumTest, TileFillsTheListWhereThatIsTheViewInSight)
{
    Pictures(2);
    Start();
    Click("mnuMainViewTileBoxTileFilename3");
    ASSERT_TRUE(QTest::qWaitFor([this] { return Rested(); }, kWait));
    session.lbExportList = {folder + QStringLiteral("p1.bmp")};
    Click("mnuPopShow");
    ASSERT_TRUE(AlbumHas(1));
    Part<QAction>("mnuTileImages")->trigger();
    EXPECT_EQ(session.lbFilTiffs, session.lbExportList);
    ASSERT_TRUE(QTest::qWaitFor([this] { return List()->Count() == 1; }, kWait));
    EXPECT_EQ(main->Panel(3), "Total Images = 1");
}

TEST_F(MainWindowAlbumTest, MainWindowThatGoesTakesTheAlbumWindowAlong)
{
    Pictures(1);
    Start();
    session.lbExportList = QList<QString>(5000, folder + QStringLiteral("p0.bmp"));
    Click("mnuPopShow");
    windows.DestroyAll();
    EXPECT_EQ(Album(), nullptr);
    EXPECT_EQ(session.lbExportList.size(), 5000);
}

} // namespace quillane
