#include "gui/album_window_fixture.h"

#include <QScreen>

namespace quillane {

TEST_F(AlbumWindowTest, OpensNoLargerThanTheScreen)
{
    Open();
    const QSize room = album->screen()->availableSize();
    EXPECT_LE(album->width(), room.width());
    EXPECT_LT(album->height(), room.height());
}

TEST_F(AlbumWindowTest, BeginsEmptyWithRowsInSight)
{
    session.gsComments = QStringLiteral("from the last time");
    Open();
    EXPECT_EQ(album->windowTitle(), "Quillane  Photo Album");
    EXPECT_TRUE(List()->isVisible());
    EXPECT_TRUE(List()->showGrid());
    EXPECT_FALSE(Grid()->isVisible());
    EXPECT_EQ(Grid()->CellWidth(), 118);
    EXPECT_EQ(Grid()->CellHeight(), 118);
    EXPECT_EQ(Total(), "0");
    EXPECT_EQ(Part<QPlainTextEdit>("rtbComment")->toPlainText(), "from the last time");
    EXPECT_EQ(Part<QLabel>("Label1")->text(), "Image Description Comments/Metadata");
    for (const char* name :
         {"mnuPrint", "mnuSend", "mnuTileImages", "mnuClearALL", "mnuSave", "mnuRemoveSelected"}) {
        EXPECT_FALSE(Menu(name)->isEnabled()) << name;
    }
}

TEST_F(AlbumWindowTest, OpenShowsRowsCommentAndPreview)
{
    const QList<QString> paths = OneOfThreeMissing();
    fakes.dialogs.AnswerFile(AlbumOf(paths, QStringLiteral("Summer")));
    Open();
    Menu("mnuOpen")->trigger();
    ASSERT_TRUE(Rest());
    ASSERT_EQ(fakes.dialogs.FileDialogs().size(), 1);
    const FileDialogSpec& spec = fakes.dialogs.FileDialogs().first();
    EXPECT_EQ(spec.title, "Open Photo Album");
    EXPECT_EQ(spec.filter, "Photo Album (*.ifl)|*.ifl");
    EXPECT_EQ(spec.folder, session.gsPath);
    EXPECT_FALSE(spec.save);
    EXPECT_EQ(Total(), "3");
    EXPECT_EQ(Part<QPlainTextEdit>("rtbComment")->toPlainText(), "Summer");
    EXPECT_EQ(Cell(0, 0), paths.at(0));
    EXPECT_EQ(Cell(0, 1), QString::number(StatPath(paths.at(0)).size));
    EXPECT_EQ(Cell(1, 1), "    ");
    EXPECT_EQ(Cell(1, 2), "File Not Found");
    EXPECT_EQ(session.lbExportList, (QList<QString>{paths.at(0), paths.at(2)}));
    EXPECT_TRUE(LeadShown());
    EXPECT_EQ(Box("txtImageSize"), "Image Size: 200 X 100 X 24");
    EXPECT_TRUE(Box("txtImageFormat").startsWith(QStringLiteral("Format: ")));
    EXPECT_TRUE(Part<QPlainTextEdit>("txtTags")->isVisible());
}

TEST_F(AlbumWindowTest, CancelledOpenChangesNothing)
{
    session.lbExportList = {Small()};
    Open();
    Menu("mnuOpen")->trigger();
    EXPECT_EQ(Total(), "1");
}

TEST_F(AlbumWindowTest, ClickOnAMissingFileShowsTheNotFoundState)
{
    Open();
    album->OpenImageListFile(AlbumOf(OneOfThreeMissing()));
    ASSERT_TRUE(Rest());
    ClickRow(1);
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
    EXPECT_EQ(Box("txtImageFormat"), "");
    EXPECT_FALSE(LeadShown());
    ClickRow(2);
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(LeadShown());
    EXPECT_TRUE(Box("txtImageSize").startsWith(QStringLiteral("Image Size: 30 X 60 X ")));
    // A bitmap carries no description.
    EXPECT_FALSE(Part<QPlainTextEdit>("txtTags")->isVisible());
    EXPECT_FALSE(Part<QLabel>("Label1")->isVisible());
}

TEST_F(AlbumWindowTest, OneMissingOfThreeHasThreeRowsTwoCellsAndTilesTwo)
{
    const QList<QString> paths = OneOfThreeMissing();
    Open();
    album->OpenImageListFile(AlbumOf(paths));
    Menu("mnuViewThumbnails")->trigger();
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(Grid()->isVisible());
    EXPECT_FALSE(List()->isVisible());
    EXPECT_EQ(Total(), "3");
    ASSERT_EQ(Grid()->Count(), 2);
    EXPECT_EQ(Grid()->TextAt(1), "c.bmp");
    Menu("mnuTileImages")->trigger();
    EXPECT_EQ(albumHost.shown, (QVector<QString>{paths.at(0), paths.at(2)}));
    EXPECT_EQ(albumHost.panels[1], "Photo Album");
    EXPECT_EQ(albumHost.panels[3], "Total Images = 3");
    EXPECT_FALSE(album->isVisible());
}

TEST_F(AlbumWindowTest, ClickOnACellSelectsTheRowOfTheSameNumber)
{
    session.lbExportList = {Small(QStringLiteral("a.bmp")), Small(QStringLiteral("b.bmp"))};
    Open();
    Menu("mnuViewThumbnails")->trigger();
    ASSERT_TRUE(Rest());
    ASSERT_EQ(Grid()->Count(), 2);
    EXPECT_EQ(Grid()->Current(), 0);
    ClickCell(1);
    EXPECT_EQ(session.gImageListIndex, 1);
    EXPECT_EQ(List()->selectionModel()->selectedRows().first().row(), 1);
    Menu("mnuRemoveSelected")->trigger();
    EXPECT_EQ(session.lbExportList.size(), 1);
    EXPECT_EQ(Grid()->Count(), 1);
    EXPECT_EQ(Total(), "1");
}

TEST_F(AlbumWindowTest, SelectionOfManyCellsIsRemoved)
{
    for (const char* name : {"a.bmp", "b.bmp", "c.bmp"}) {
        session.lbExportList.append(Small(QLatin1String(name)));
    }
    const QString kept = session.lbExportList.at(1);
    Open();
    Menu("mnuViewThumbnails")->trigger();
    ASSERT_TRUE(Rest());
    ClickCell(0);
    ClickCell(2, Qt::ControlModifier);
    Menu("mnuRemoveSelected")->trigger();
    EXPECT_EQ(session.lbExportList, QList<QString>{kept});
    EXPECT_EQ(Cell(0, 0), kept);
    ASSERT_EQ(Grid()->Count(), 1);
    EXPECT_EQ(Grid()->PathAt(0), kept);
}

TEST_F(AlbumWindowTest, CellThatIsDeselectedAgainIsNotRemovedNorIsWhatTheOtherViewHadSelected)
{
    for (const char* name : {"a.bmp", "b.bmp", "c.bmp"}) {
        session.lbExportList.append(Small(QLatin1String(name)));
    }
    const QList<QString> before = session.lbExportList;
    Open();
    ASSERT_TRUE(Rest());
    ClickRow(2);
    Menu("mnuViewThumbnails")->trigger();
    ASSERT_TRUE(Rest());
    ClickCell(0);
    ClickCell(1, Qt::ControlModifier);
    ClickCell(1, Qt::ControlModifier);
    Menu("nmuViewFilename")->trigger();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(List()->selectionModel()->selectedRows().size(), 1);
    Menu("mnuRemoveSelected")->trigger();
    EXPECT_EQ(session.lbExportList, before.mid(1));
}

TEST_F(AlbumWindowTest, MissingFirstFileStopsTheReadAndSavingKeepsTheOldAlbum)
{
    const QByteArray content =
        BytesFromPath(Path(QStringLiteral("none.png"))) + "\r\n" + BytesFromPath(Small()) + "\r\n";
    const QString file = Album(content);
    Open();
    album->OpenImageListFile(file);
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Total(), "1");
    EXPECT_TRUE(session.lbExportList.isEmpty());
    EXPECT_TRUE(Grid()->isVisible());
    EXPECT_FALSE(List()->isVisible());
    EXPECT_FALSE(album->statusBar()->currentMessage().isEmpty());
    fakes.dialogs.AnswerFile(file);
    Menu("mnuSave")->trigger();
    EXPECT_EQ(Bytes(file + u'~'), content);
    EXPECT_EQ(Bytes(file).count('\n'), 1);
}

TEST_F(AlbumWindowTest, AlbumThatCannotBeOpenedLeavesAnEmptyOne)
{
    session.lbExportList = {Small()};
    Open();
    album->OpenImageListFile(Path(QStringLiteral("none.ifl")));
    EXPECT_EQ(Total(), "0");
    EXPECT_TRUE(session.lbExportList.isEmpty());
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
    EXPECT_FALSE(album->statusBar()->currentMessage().isEmpty());
}

TEST_F(AlbumWindowTest, CommentAloneGivesAnEmptyListAndTheComment)
{
    Open();
    album->OpenImageListFile(Album("#\r\nSummer\r\n#\r\n"));
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Total(), "0");
    EXPECT_EQ(Part<QPlainTextEdit>("rtbComment")->toPlainText(), "Summer");
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
}

TEST_F(AlbumWindowTest, SaveWritesCommentAndRows)
{
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    Part<QPlainTextEdit>("rtbComment")->setPlainText(QStringLiteral("one\ntwo"));
    const QString file = Path(QStringLiteral("new"));
    fakes.dialogs.AnswerFile(file);
    Menu("mnuSave")->trigger();
    EXPECT_EQ(fakes.dialogs.FileDialogs().last().title, "Save Photo Album");
    EXPECT_TRUE(fakes.dialogs.FileDialogs().last().save);
    EXPECT_EQ(Bytes(file + QStringLiteral(".ifl")),
              "#\r\none\r\ntwo\r\n#\r\n" + BytesFromPath(session.lbExportList.first()) + "\r\n");
}

TEST_F(AlbumWindowTest, EmptyAlbumIsNotSavedThoughTheDialogRuns)
{
    Open();
    const QString file = Album("as it was");
    fakes.dialogs.AnswerFile(file);
    Menu("mnuSave")->setEnabled(true);
    Menu("mnuSave")->trigger();
    EXPECT_EQ(fakes.dialogs.FileDialogs().size(), 1);
    EXPECT_EQ(Bytes(file), "as it was");
}

TEST_F(AlbumWindowTest, FailingSaveIsToldInTheStatusBar)
{
    session.lbExportList = {Small()};
    Open();
    album->WriteAlbumFile(Path(QStringLiteral("no-folder/a.ifl")));
    EXPECT_FALSE(album->statusBar()->currentMessage().isEmpty());
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(AlbumWindowTest, PastedFilesJoinWhetherTheyAreThereOrNot)
{
    const QString file = Small();
    Open();
    EXPECT_FALSE(Menu("mnuPaste")->isEnabled());
    QApplication::clipboard()->setMimeData(
        FileListMimeData({file, file, Path(QStringLiteral("none.png"))}));
    ASSERT_TRUE(QTest::qWaitFor([this] { return Menu("mnuPaste")->isEnabled(); }, kWait));
    Menu("mnuPaste")->trigger();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Total(), "3");
    EXPECT_EQ(session.lbExportList.size(), 3);
    EXPECT_TRUE(LeadShown());
}

TEST_F(AlbumWindowTest, DroppedFilesJoinOnceAndFoldersDoNot)
{
    const QString file = Small();
    Open();
    Drop({file, file, root.path()});
    ASSERT_TRUE(Rest());
    EXPECT_EQ(session.lbExportList, QList<QString>{file});
    EXPECT_EQ(Total(), "1");
    Drop({file});
    EXPECT_EQ(Total(), "1");
}

TEST_F(AlbumWindowTest, ClearAllEmptiesEverything)
{
    session.lbExportList = {Small()};
    session.gsComments = QStringLiteral("c");
    Open();
    Menu("mnuViewThumbnails")->trigger();
    ASSERT_TRUE(Rest());
    Menu("mnuClearALL")->trigger();
    EXPECT_EQ(Total(), "0");
    EXPECT_EQ(Grid()->Count(), 0);
    EXPECT_TRUE(session.lbExportList.isEmpty());
    EXPECT_EQ(session.gsComments, "");
    EXPECT_EQ(Part<QPlainTextEdit>("rtbComment")->toPlainText(), "");
    EXPECT_EQ(Box("txtImageSize") + Box("txtImageFormat"), "");
    EXPECT_FALSE(LeadShown());
    EXPECT_FALSE(Menu("mnuTileImages")->isEnabled());
}

TEST_F(AlbumWindowTest, OpenedTwiceInASessionShowsTheSameRowsAndRemembersViewAndComment)
{
    const QList<QString> paths{Small(QStringLiteral("b.bmp")), Small(QStringLiteral("a.bmp"))};
    session.lbExportList = paths;
    Open();
    Part<QPlainTextEdit>("rtbComment")->setPlainText(QStringLiteral("kept"));
    Menu("mnuViewThumbnails")->trigger();
    ASSERT_TRUE(Rest());
    Menu("mnuExit")->trigger();
    EXPECT_FALSE(album->isVisible());
    EXPECT_EQ(session.gsComments, "kept");
    EXPECT_TRUE(Stored("mnuViewThumbnails.CHECKED"));
    EXPECT_FALSE(Stored("nmuViewFilename.CHECKED"));
    Open();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(album->Rows().Paths(), paths);
    EXPECT_EQ(session.lbExportList, paths);
    EXPECT_TRUE(Grid()->isVisible());
    EXPECT_EQ(Part<QPlainTextEdit>("rtbComment")->toPlainText(), "kept");
}

TEST_F(AlbumWindowTest, FilesAddedInTheBrowserFollowWhenTheWindowIsShownAgain)
{
    session.lbExportList = {Small(QStringLiteral("a.bmp"))};
    Open();
    session.lbExportList.append(Small(QStringLiteral("b.bmp")));
    album->show();
    EXPECT_EQ(Total(), "2");
    EXPECT_EQ(session.lbExportList.size(), 2);
}

TEST_F(AlbumWindowTest, WindowClosedWhileFilesAreLookedForCompletesTheListFirst)
{
    QList<QString> paths;
    const QString there = Small();
    for (int i = 0; i < 20'000; ++i) {
        paths.append(i % 2 ? Path(QStringLiteral("none%1").arg(i)) : there);
    }
    Open();
    album->OpenImageListFile(AlbumOf(paths));
    album->close();
    ASSERT_TRUE(QTest::qWaitFor([this] { return session.lbExportList.size() == 10'000; }, kWait));
    EXPECT_FALSE(album->isVisible());
}

TEST_F(AlbumWindowTest, WindowThatIsDestroyedInTheMiddleLeavesNothingBehind)
{
    Open();
    album->OpenImageListFile(AlbumOf(QList<QString>(20'000, Small())));
    Menu("mnuViewThumbnails")->trigger();
    album.reset();
    QApplication::processEvents();
}

TEST_F(AlbumWindowTest, SendHandsTheSelectedRowsToTheMailer)
{
    session.lbExportList = {Small(QStringLiteral("a.bmp")), Small(QStringLiteral("b.bmp")),
                            Small(QStringLiteral("c.bmp"))};
    Open();
    ASSERT_TRUE(Rest());
    Menu("mnuSend")->trigger();
    EXPECT_FALSE(album->statusBar()->currentMessage().isEmpty());
    QStringList attached;
    album->SetMailer([&](const QStringList& attachments) { attached = attachments; });
    ClickRow(2);
    ClickRow(0, Qt::ControlModifier);
    Menu("mnuSend")->trigger();
    EXPECT_EQ(attached, (QStringList{session.lbExportList.at(0), session.lbExportList.at(2)}));
}

TEST_F(AlbumWindowTest, EveryControlIsReachedByTabAndSpeaks)
{
    session.lbExportList = {Small(QStringLiteral("a.png"))};
    Open();
    ASSERT_TRUE(Rest());
    QSet<QString> met;
    album->activateWindow();
    List()->setFocus();
    for (int i = 0; i < 20; ++i) {
        QWidget* focus = album->focusWidget();
        ASSERT_NE(focus, nullptr);
        EXPECT_FALSE(focus->accessibleName().isEmpty()) << focus->objectName().toStdString();
        met.insert(focus->objectName());
        QTest::keyClick(focus, Qt::Key_Tab);
    }
    for (const char* name : {"lvImageFileList", "rtbComment", "txtTags", "txtImageSize"}) {
        EXPECT_TRUE(met.contains(QLatin1String(name))) << name;
    }
}

TEST_F(AlbumWindowTest, ThumbnailsAreReachedByTab)
{
    session.lbExportList = {Small(QStringLiteral("a.png"))};
    Open();
    ShowThumbnails();
    album->activateWindow();
    auto* comment = Part<QPlainTextEdit>("rtbComment");
    comment->setFocus();
    QSet<QString> met;
    for (int i = 0; i < 20; ++i) {
        QTest::keyClick(album->focusWidget(), Qt::Key_Tab);
        met.insert(album->focusWidget()->objectName());
    }
    EXPECT_TRUE(met.contains(QStringLiteral("LEADImgList1")));
    EXPECT_FALSE(met.contains(QStringLiteral("lvImageFileList")));
}

} // namespace quillane
