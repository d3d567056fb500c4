// What the menus of the album window offer, when, and by which keys.
#include "gui/album_window_fixture.h"

namespace quillane {

namespace {

constexpr const char* kNeedRows[] = {"mnuSend", "mnuTileImages", "mnuClearALL", "mnuSave",
                                     "mnuRemoveSelected"};

QString CaptionsOf(const QMenu& menu)
{
    QStringList captions;
    for (const QAction* action : menu.actions()) {
        captions.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    return captions.join(u'|');
}

} // namespace

TEST_F(AlbumWindowTest, MenusReadAsTheyShould)
{
    Open();
    EXPECT_EQ(CaptionsOf(*Part<QMenu>("mnuFile")),
              "&Open|&Save|-|&Print|&P&rinter Setup|Send...|-|P&aste|&Tile Images in Browser|-|"
              "Remove Selected...|Clear ALL|-|&Exit");
    EXPECT_EQ(CaptionsOf(*Part<QMenu>("mnuView")), "Images by Thumbnails|Images by Filename");
}

TEST_F(AlbumWindowTest, EntriesThatNeedRowsAreEnabledExactlyIfThereIsOne)
{
    Open();
    OpenFileMenu();
    for (const char* name : kNeedRows) {
        EXPECT_FALSE(Menu(name)->isEnabled()) << name;
    }
    album->OpenImageListFile(AlbumOf({Small()}));
    ASSERT_TRUE(Rest());
    OpenFileMenu();
    for (const char* name : kNeedRows) {
        EXPECT_TRUE(Menu(name)->isEnabled()) << name;
    }
    ClickRow(0);
    Menu("mnuRemoveSelected")->trigger();
    OpenFileMenu();
    for (const char* name : kNeedRows) {
        EXPECT_FALSE(Menu(name)->isEnabled()) << name;
    }
    EXPECT_TRUE(Menu("mnuOpen")->isEnabled());
    EXPECT_TRUE(Menu("mnuExit")->isEnabled());
}

TEST_F(AlbumWindowTest, RowsWithoutFilesCountForTheMenu)
{
    Open();
    album->OpenImageListFile(Album("#\r\nc\r\n#\r\n/nowhere/none.png\r\n"));
    ASSERT_TRUE(Rest());
    OpenFileMenu();
    for (const char* name : kNeedRows) {
        EXPECT_TRUE(Menu(name)->isEnabled()) << name;
    }
}

TEST_F(AlbumWindowTest, PasteIsOfferedExactlyIfTheClipboardHoldsAFileList)
{
    const auto offered = [this](QMimeData* data) {
        QApplication::clipboard()->setMimeData(data);
        OpenFileMenu();
        return Menu("mnuPaste")->isEnabled();
    };
    const auto holding = [](const char* kind, const QByteArray& bytes) {
        auto* data = new QMimeData;
        data->setData(QLatin1String(kind), bytes);
        return data;
    };
    Open();
    QApplication::clipboard()->clear();
    OpenFileMenu();
    EXPECT_FALSE(Menu("mnuPaste")->isEnabled());
    EXPECT_TRUE(offered(FileListMimeData({QStringLiteral("/a.jpg")})));
    EXPECT_TRUE(offered(holding("text/uri-list", "file:///a.jpg\r\n")));
    EXPECT_TRUE(offered(holding("text/uri-list", "https://far.example/a.jpg\r\n")));
    EXPECT_TRUE(offered(holding("text/uri-list", "")));
    EXPECT_TRUE(offered(holding("x-special/gnome-copied-files", "copy\nfile:///a.jpg")));
    EXPECT_TRUE(offered(holding("text/plain", "/p/a.jpg\n/p/b.jpg")));
    EXPECT_FALSE(offered(holding("text/plain", "a walk in the rain")));
    EXPECT_FALSE(offered(holding("image/png", "no list")));
}

TEST_F(AlbumWindowTest, LoadedWindowKnowsWhetherThereIsAListToPaste)
{
    QApplication::clipboard()->setText(QStringLiteral("a walk in the rain"));
    Open();
    EXPECT_FALSE(Menu("mnuPaste")->isEnabled());
    QApplication::clipboard()->setMimeData(FileListMimeData({QStringLiteral("/a.jpg")}));
    Open();
    EXPECT_TRUE(Menu("mnuPaste")->isEnabled());
}

TEST_F(AlbumWindowTest, ViewEntriesCheckThemselvesAndUncheckTheOther)
{
    session.lbExportList = {Small()};
    Open();
    const auto shows = [this](bool thumbnails) {
        EXPECT_EQ(Menu("mnuViewThumbnails")->isChecked(), thumbnails);
        EXPECT_EQ(Menu("nmuViewFilename")->isChecked(), !thumbnails);
        EXPECT_EQ(Grid()->isVisible(), thumbnails);
        EXPECT_EQ(List()->isVisible(), !thumbnails);
    };
    shows(false);
    // The same entry twice: it stays checked.
    for (const bool thumbnails : {true, true, false, false}) {
        Menu(thumbnails ? "mnuViewThumbnails" : "nmuViewFilename")->trigger();
        ASSERT_TRUE(Rest());
        shows(thumbnails);
    }
}

TEST_F(AlbumWindowTest, StoredViewOptionsDecideWhatIsShown)
{
    const struct {
        const char *names, *thumbnails;
        bool grid;
    } rows[] = {{"True", "False", false},
                {"False", "True", true},
                {"True", "True", false},
                {"False", "False", true},
                {"rubbish", "rubbish", false}};
    session.lbExportList = {Small()};
    for (const auto& row : rows) {
        store.SaveSetting(QStringLiteral("PhotoAlbum"), QStringLiteral("nmuViewFilename.CHECKED"),
                          QLatin1String(row.names));
        store.SaveSetting(QStringLiteral("PhotoAlbum"), QStringLiteral("mnuViewThumbnails.CHECKED"),
                          QLatin1String(row.thumbnails));
        Open();
        ASSERT_TRUE(Rest());
        EXPECT_EQ(Grid()->isVisible(), row.grid) << row.names << ' ' << row.thumbnails;
        EXPECT_EQ(List()->isVisible(), !row.grid) << row.names << ' ' << row.thumbnails;
        EXPECT_EQ(Grid()->Count(), row.grid ? 1 : 0);
    }
}

TEST_F(AlbumWindowTest, ViewOptionsAreWrittenAtTheEndAlone)
{
    Open();
    Menu("mnuViewThumbnails")->trigger();
    EXPECT_FALSE(Stored("mnuViewThumbnails.CHECKED"));
    EXPECT_TRUE(Stored("nmuViewFilename.CHECKED"));
    album->close();
    EXPECT_TRUE(Stored("mnuViewThumbnails.CHECKED"));
    EXPECT_FALSE(Stored("nmuViewFilename.CHECKED"));
}

TEST_F(AlbumWindowTest, KeysRunTheirCommands)
{
    session.lbExportList = {Small(QStringLiteral("a.bmp")), Small(QStringLiteral("b.bmp"))};
    const QString second = session.lbExportList.at(1);
    Open();
    album->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return album->isActiveWindow(); }, kWait));
    ASSERT_TRUE(Rest());
    QTest::keyClick(album.get(), Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(Grid()->isVisible());
    QTest::keyClick(album.get(), Qt::Key_2, Qt::ControlModifier);
    EXPECT_TRUE(List()->isVisible());
    ClickRow(0);
    QTest::keyClick(List(), Qt::Key_Delete);
    EXPECT_EQ(session.lbExportList, QList<QString>{second});
    QTest::keyClick(album.get(), Qt::Key_O, Qt::ControlModifier);
    QTest::keyClick(album.get(), Qt::Key_S, Qt::ControlModifier);
    ASSERT_EQ(fakes.dialogs.FileDialogs().size(), 2);
    EXPECT_EQ(fakes.dialogs.FileDialogs().at(0).title, "Open Photo Album");
    EXPECT_EQ(fakes.dialogs.FileDialogs().at(1).title, "Save Photo Album");
    QApplication::clipboard()->setMimeData(FileListMimeData({second}));
    ASSERT_TRUE(QTest::qWaitFor([this] { return Menu("mnuPaste")->isEnabled(); }, kWait));
    QTest::keyClick(List(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(session.lbExportList, (QList<QString>{second, second}));
    QTest::keyClick(album.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(album->isVisible());
}

TEST_F(AlbumWindowTest, KeysInTheCommentBelongToTheComment)
{
    session.lbExportList = {Small()};
    Open();
    album->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return album->isActiveWindow(); }, kWait));
    ASSERT_TRUE(Rest());
    ClickRow(0);
    auto* comment = Part<QPlainTextEdit>("rtbComment");
    comment->setFocus();
    QTest::keyClicks(comment, QStringLiteral("abc"));
    QTest::keyClick(comment, Qt::Key_Home);
    QTest::keyClick(comment, Qt::Key_Delete);
    EXPECT_EQ(Comment(), "bc");
    QApplication::clipboard()->setText(QStringLiteral("x"));
    QTest::keyClick(comment, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Comment(), "xbc");
    EXPECT_EQ(Total(), "1");
    EXPECT_EQ(session.lbExportList.size(), 1);
}

TEST_F(AlbumWindowTest, RowsAreWalkedByTheKeyboardWithTheirPreview)
{
    session.lbExportList = {Small(QStringLiteral("a.bmp"), {40, 30}),
                            Small(QStringLiteral("b.bmp"), {50, 30})};
    Open();
    album->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return album->isActiveWindow(); }, kWait));
    ASSERT_TRUE(Rest());
    List()->setFocus();
    QTest::keyClick(List(), Qt::Key_Down);
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(Box("txtImageSize").startsWith(QStringLiteral("Image Size: 50 X 30 X ")));
}

TEST_F(AlbumWindowTest, KeyboardFollowsFromOneViewToTheOther)
{
    session.lbExportList = {Small()};
    Open();
    album->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return album->isActiveWindow(); }, kWait));
    EXPECT_TRUE(List()->hasFocus());
    ShowThumbnails();
    EXPECT_TRUE(Grid()->hasFocus());
    Part<QPlainTextEdit>("rtbComment")->setFocus();
    Menu("nmuViewFilename")->trigger();
    EXPECT_TRUE(Part<QPlainTextEdit>("rtbComment")->hasFocus());
}

TEST_F(AlbumWindowTest, CellsAreWalkedByTheKeyboardWithTheirPreview)
{
    session.lbExportList = {Small(QStringLiteral("a.bmp"), {40, 30}),
                            Small(QStringLiteral("b.bmp"), {50, 30})};
    Open();
    ShowThumbnails();
    album->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return album->isActiveWindow(); }, kWait));
    Grid()->setFocus();
    QTest::keyClick(Grid(), Qt::Key_Right);
    ASSERT_TRUE(Rest());
    EXPECT_EQ(session.gImageListIndex, 1);
    EXPECT_EQ(SelectedRows(), QList<int>{1});
    EXPECT_TRUE(Box("txtImageSize").startsWith(QStringLiteral("Image Size: 50 X 30 X ")));
}

} // namespace quillane
