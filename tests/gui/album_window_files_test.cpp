// Albums and pictures that are not as they should be.
#include "gui/album_window_fixture.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"

#include <QDir>
#include <QStyledItemDelegate>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

TEST_F(AlbumFilesTest, ClickOnACellBehindAMissingFileShowsTheRowOfItsNumber)
{
    OpenAlbum(AlbumOf(OneOfThreeMissing()));
    ShowThumbnails();
    ClickCell(1); // c.bmp, whose row is the third
    ASSERT_TRUE(Rest());
    EXPECT_EQ(session.gImageListIndex, 1);
    EXPECT_EQ(SelectedRows(), QList<int>{1});
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
    EXPECT_EQ(Box("txtImageFormat"), "");
    EXPECT_FALSE(LeadShown());
}

TEST_F(AlbumFilesTest, RemovingACellBehindAMissingFileTakesRowEntryAndCellOfItsNumber)
{
    const QList<QString> paths = OneOfThreeMissing();
    OpenAlbum(AlbumOf(paths));
    ShowThumbnails();
    ClickCell(1);
    Menu("mnuRemoveSelected")->trigger();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(album->Rows().Paths(), (QList<QString>{paths.at(0), paths.at(2)}));
    EXPECT_EQ(session.lbExportList, QList<QString>{paths.at(0)});
    EXPECT_EQ(Grid()->Count(), 1);
    EXPECT_EQ(Total(), "2");
}

TEST_F(AlbumFilesTest, ManyRowsAndTheirCellsGoTogether)
{
    QList<QString> paths, kept;
    for (int i = 0; i < 120; ++i) {
        paths.append(Small(QStringLiteral("p%1.bmp").arg(i)));
    }
    session.lbExportList = paths;
    Open();
    ShowThumbnails();
    Grid()->SelectAll();
    for (const int cell : {0, 60, 119}) {
        ClickCell(cell, Qt::ControlModifier);
        kept.append(paths.at(cell));
        Grid()->EnsureVisible(cell == 0 ? 60 : 119);
    }
    Menu("mnuRemoveSelected")->trigger();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(album->Rows().Paths(), kept);
    EXPECT_EQ(session.lbExportList, kept);
    ASSERT_EQ(Grid()->Count(), 3);
    for (int cell = 0; cell < 3; ++cell) {
        EXPECT_EQ(Grid()->PathAt(cell), kept.at(cell));
    }
    EXPECT_EQ(Total(), "3");
}

TEST_F(AlbumFilesTest, SelectedRowsAreRemovedFromTheLastToTheFirst)
{
    const QList<QString> paths{Small(QStringLiteral("a.bmp")), Small(QStringLiteral("b.bmp")),
                               Small(QStringLiteral("c.bmp")), Small(QStringLiteral("d.bmp"))};
    session.lbExportList = paths;
    Open();
    ASSERT_TRUE(Rest());
    ClickRow(0);
    ClickRow(2, Qt::ControlModifier);
    Menu("mnuRemoveSelected")->trigger();
    EXPECT_EQ(session.lbExportList, (QList<QString>{paths.at(1), paths.at(3)}));
    EXPECT_EQ(album->Rows().Paths(), session.lbExportList);
    EXPECT_EQ(Total(), "2");
}

TEST_F(AlbumFilesTest, RemoveWithNothingSelectedRemovesNothing)
{
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    List()->clearSelection();
    Menu("mnuRemoveSelected")->trigger();
    EXPECT_EQ(Total(), "1");
    EXPECT_EQ(session.lbExportList.size(), 1);
}

TEST_F(AlbumFilesTest, FilledGridMakesItsFirstCellCurrentAndPreviewsTheFirstRow)
{
    const QString there = Small();
    OpenAlbum(AlbumOf({QStringLiteral("/nowhere/none.png"), there}, QStringLiteral("c")));
    ClickRow(1);
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(LeadShown());
    ShowThumbnails();
    ASSERT_EQ(Grid()->Count(), 1);
    EXPECT_EQ(Grid()->Current(), 0);
    EXPECT_EQ(Grid()->PathAt(0), there);
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
    EXPECT_FALSE(LeadShown());
}

TEST_F(AlbumFilesTest, GridOfAnAlbumWithoutFilesIsEmptyAndShowsNoPicture)
{
    OpenAlbum(AlbumOf({QStringLiteral("/nowhere/none.png")}, QStringLiteral("c")));
    ShowThumbnails();
    EXPECT_EQ(Grid()->Count(), 0);
    EXPECT_EQ(Total(), "1");
    EXPECT_FALSE(LeadShown());
    Menu("mnuTileImages")->trigger();
    EXPECT_TRUE(albumHost.shown.isEmpty());
    EXPECT_EQ(albumHost.panels[3], "Total Images = 1");
}

TEST_F(AlbumFilesTest, FolderThatDisappearsInTheMiddleLeavesRowsAndBrokenCells)
{
    ASSERT_TRUE(MakeFolder(Path(QStringLiteral("stick"))));
    QList<QString> paths;
    for (int i = 0; i < 5; ++i) {
        paths.append(Small(QStringLiteral("stick/p%1.bmp").arg(i)));
    }
    OpenAlbum(AlbumOf(paths));
    ASSERT_TRUE(QDir(Path(QStringLiteral("stick"))).removeRecursively());
    ShowThumbnails();
    ASSERT_EQ(Grid()->Count(), 5);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !Grid()->FailureAt(4).isEmpty(); }, kWait));
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
    EXPECT_EQ(session.lbExportList, paths);
    Menu("mnuTileImages")->trigger();
    EXPECT_TRUE(albumHost.shown.isEmpty());
    EXPECT_EQ(albumHost.panels[3], "Total Images = 5");
}

TEST_F(AlbumFilesTest, FactsAreThoseOfTheFileItself)
{
    session.lbExportList = {Copy(QStringLiteral("chart.gif"))};
    Open();
    ASSERT_TRUE(Rest());
    const ImageFacts facts = ProbeFile(session.lbExportList.first());
    EXPECT_LE(facts.bits, 8);
    EXPECT_EQ(Box("txtImageSize"),
              QStringLiteral("Image Size: %1 X %2 X %3")
                  .arg(facts.width)
                  .arg(facts.height)
                  .arg(facts.bits));
    EXPECT_EQ(Box("txtImageFormat"), QStringLiteral("Format: ") + FormatDescription(facts.format));
}

TEST_F(AlbumFilesTest, RubbishBehindAPictureNameIsToldAndHasNoFacts)
{
    const QString rubbish = Path(QStringLiteral("a.jpg"));
    WriteWholeFile(rubbish, "no picture");
    session.lbExportList = {rubbish};
    Open();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Box("txtImageSize") + Box("txtImageFormat"), "");
    EXPECT_FALSE(LeadShown());
    EXPECT_FALSE(Told().isEmpty());
    ShowThumbnails();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !Grid()->FailureAt(0).isEmpty(); }, kWait));
}

TEST_F(AlbumFilesTest, BlankLineIsARowOfAMissingFile)
{
    OpenAlbum(Album("#\r\nc\r\n#\r\n\r\n" + BytesFromPath(Small()) + "\r\n"));
    EXPECT_EQ(Total(), "2");
    EXPECT_EQ(Cell(0, 0), "");
    EXPECT_EQ(Cell(0, 1), "    ");
    EXPECT_EQ(Cell(0, 2), "File Not Found");
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
    EXPECT_EQ(session.lbExportList.size(), 1);
}

TEST_F(AlbumFilesTest, FileThatGoesMeanwhileIsNotFoundAndComesBack)
{
    const QString file = Small();
    session.lbExportList = {file};
    Open();
    ASSERT_TRUE(Rest());
    ClickRow(0);
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(LeadShown());
    const QByteArray content = Bytes(file);
    ASSERT_TRUE(RemoveFile(file));
    ClickRow(0);
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
    EXPECT_FALSE(LeadShown());
    WriteWholeFile(file, content);
    ClickRow(0);
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(LeadShown());
    EXPECT_EQ(Total(), "1");
}

TEST_F(AlbumFilesTest, FileThatGoesBeforeTheGridIsFilledStaysAsABrokenCell)
{
    const QString file = Small();
    session.lbExportList = {file};
    Open();
    ASSERT_TRUE(Rest());
    ASSERT_TRUE(RemoveFile(file));
    ShowThumbnails();
    ASSERT_EQ(Grid()->Count(), 1);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !Grid()->FailureAt(0).isEmpty(); }, kWait));
}

TEST_F(AlbumFilesTest, WhatIsNoOrdinaryFileIsNotFoundAndNotWaitedFor)
{
    MakeFifo(QStringLiteral("fifo.jpg"));
    ASSERT_TRUE(MakeFolder(Path(QStringLiteral("folder.jpg"))));
    const QString there = Small();
    OpenAlbum(AlbumOf({there, Path(QStringLiteral("fifo.jpg")), Path(QStringLiteral("folder.jpg")),
                       QStringLiteral("/dev/zero"), QStringLiteral("/dev/tty")}));
    EXPECT_EQ(Total(), "5");
    EXPECT_EQ(session.lbExportList, QList<QString>{there});
    for (int row = 1; row < 5; ++row) {
        EXPECT_EQ(Cell(row, 2), "File Not Found") << row;
        ClickRow(row);
        ASSERT_TRUE(Rest());
        EXPECT_EQ(Box("txtImageSize"), "File Not Found!") << row;
    }
    ShowThumbnails();
    EXPECT_EQ(Grid()->Count(), 1);
    Menu("mnuTileImages")->trigger();
    EXPECT_EQ(albumHost.shown, QVector<QString>{there});
    EXPECT_EQ(albumHost.panels[3], "Total Images = 5");
}

TEST_F(AlbumFilesTest, FileThatBecomesAFifoIsNotWaitedFor)
{
    const QString file = Small();
    session.lbExportList = {file};
    Open();
    ASSERT_TRUE(Rest());
    ASSERT_TRUE(RemoveFile(file));
    MakeFifo(QStringLiteral("small.bmp"));
    ShowThumbnails();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !Grid()->FailureAt(0).isEmpty(); }, kWait));
    EXPECT_EQ(Box("txtImageSize"), "File Not Found!");
}

TEST_F(AlbumFilesTest, AlbumThatIsNoOrdinaryFileIsRefusedInWords)
{
    MakeFifo(QStringLiteral("fifo.ifl"));
    ASSERT_TRUE(MakeFolder(Path(QStringLiteral("folder.ifl"))));
    for (const QString& path : {Path(QStringLiteral("fifo.ifl")),
                                Path(QStringLiteral("folder.ifl")), QStringLiteral("/dev/zero")}) {
        session.lbExportList = {Small()};
        OpenAlbum(path);
        EXPECT_EQ(Total(), "0") << path.toStdString();
        EXPECT_TRUE(session.lbExportList.isEmpty());
        EXPECT_TRUE(Grid()->isVisible());
        EXPECT_FALSE(List()->isVisible());
        EXPECT_FALSE(Told().isEmpty()) << path.toStdString();
    }
}

TEST_F(AlbumFilesTest, NamesThatDifferInCaseAloneAreTwoFiles)
{
    const QString lower = Small(QStringLiteral("a.bmp"), {10, 10});
    const QString upper = Small(QStringLiteral("A.bmp"), {20, 10});
    OpenAlbum(AlbumOf({lower, upper}));
    EXPECT_EQ(session.lbExportList, (QList<QString>{lower, upper}));
    ClickRow(1);
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(Box("txtImageSize").startsWith(QStringLiteral("Image Size: 20 X 10 X ")));
    Drop({lower, upper});
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Total(), "2");
}

TEST_F(AlbumFilesTest, DuplicatesInAnAlbumStay)
{
    const QString file = Small();
    OpenAlbum(AlbumOf({file, file}));
    EXPECT_EQ(session.lbExportList, (QList<QString>{file, file}));
    ShowThumbnails();
    EXPECT_EQ(Grid()->Count(), 2);
}

TEST_F(AlbumFilesTest, EightBitAlbumFindsItsFilesAndIsSavedInUtf8)
{
    const QString file = Small(QStringLiteral("M\u00fcller.bmp"));
    const QByteArray eightBit = BytesFromPath(file).replace("\xc3\xbc", "\xfc");
    OpenAlbum(Album("#\r\nM\xfcnchen\r\n#\r\n" + eightBit + "\r\n"));
    EXPECT_EQ(Comment(), QStringLiteral("M\u00fcnchen"));
    EXPECT_EQ(session.lbExportList, QList<QString>{file});
    EXPECT_TRUE(LeadShown());
    SaveAs(Path(QStringLiteral("b.ifl")));
    EXPECT_EQ(Bytes(Path(QStringLiteral("b.ifl"))),
              "#\r\nM\xc3\xbcnchen\r\n#\r\n" + BytesFromPath(file) + "\r\n");
}

TEST_F(AlbumFilesTest, AlbumsWithEveryKindOfLineEndAreRead)
{
    const QByteArray one = BytesFromPath(Small(QStringLiteral("a.bmp")));
    const QByteArray two = BytesFromPath(Small(QStringLiteral("b.bmp")));
    for (const QByteArray& content :
         {one + "\r\n" + two + "\r\n", one + "\n" + two, one + "\r\n" + two,
          one + "\r" + two + "\r", "\xef\xbb\xbf" + one + "\n" + two + "\r\n",
          "#\n#\n" + one + "\r\n" + two + "\n"}) {
        OpenAlbum(Album(content));
        EXPECT_EQ(session.lbExportList, (QList<QString>{PathFromBytes(one), PathFromBytes(two)}))
            << content.constData();
    }
}

TEST_F(AlbumFilesTest, LineOfMegabytesEndsTheReadingInWordsAndTheOldAlbumIsKept)
{
    const QByteArray content =
        BytesFromPath(Small()) + "\r\n" + QByteArray(4 << 20, 'x') + "\r\n/p/last.jpg\r\n";
    const QString file = Album(content);
    OpenAlbum(file);
    EXPECT_EQ(Total(), "1");
    EXPECT_TRUE(Told().contains(QStringLiteral("not read to its end"))) << Told().toStdString();
    SaveAs(file);
    EXPECT_EQ(Bytes(file + u'~'), content);
    EXPECT_EQ(Bytes(file), BytesFromPath(session.lbExportList.first()) + "\r\n");
    // The second time nothing is lost any more.
    SaveAs(file);
    EXPECT_EQ(StatPath(file + QStringLiteral("~~")).type, FileType::Missing);
}

TEST_F(AlbumFilesTest, AlbumReadInPartIsKnownByItsOtherNamesAndInALaterWindow)
{
    const auto partly = std::make_shared<PartlyReadAlbums>();
    const QByteArray content = "/nowhere/none.png\r\n" + BytesFromPath(Small()) + "\r\n";
    const QString file = Album(content), link = Path(QStringLiteral("link.ifl"));
    ASSERT_EQ(symlink(BytesFromPath(file).constData(), BytesFromPath(link).constData()), 0);
    Open();
    album->SharePartlyRead(partly);
    album->OpenImageListFile(link);
    ASSERT_TRUE(Rest());
    album->close();
    session.lbExportList = {Small()};
    Open();
    album->SharePartlyRead(partly);
    ASSERT_TRUE(Rest());
    SaveAs(file);
    EXPECT_EQ(Bytes(file + u'~'), content);
    EXPECT_EQ(Bytes(file), BytesFromPath(Small()) + "\r\n");
}

TEST_F(AlbumFilesTest, RowsWithoutFilesArePale)
{
    OpenAlbum(AlbumOf(OneOfThreeMissing()));
    const auto colour = [this](int row) {
        const QVariant brush = Index(row).data(Qt::ForegroundRole);
        return brush.isValid() ? qvariant_cast<QBrush>(brush).color() : QColor();
    };
    EXPECT_FALSE(colour(0).isValid());
    EXPECT_EQ(colour(1), QApplication::palette().placeholderText().color());
}

TEST_F(AlbumFilesTest, EmptyAlbumSaysHowToFillIt)
{
    Open();
    EXPECT_TRUE(Part<QLabel>("lblEmptyAlbum")->isVisible());
    album->OpenImageListFile(AlbumOf({Small()}));
    EXPECT_FALSE(Part<QLabel>("lblEmptyAlbum")->isVisible());
    Menu("mnuClearALL")->trigger();
    EXPECT_TRUE(Part<QLabel>("lblEmptyAlbum")->isVisible());
}

TEST_F(AlbumFilesTest, PathsLongerThanAnyAreShownInShort)
{
    OpenAlbum(Album("#\r\nc\r\n#\r\n/" + QByteArray(60'000, 'x') + "\r\n"));
    EXPECT_EQ(Total(), "1");
    EXPECT_EQ(album->Rows().Path(0).size(), 60'001);
    EXPECT_EQ(Cell(0, 0).size(), 60'001);
    const QString shown =
        qobject_cast<QStyledItemDelegate*>(List()->itemDelegate())->displayText(Cell(0, 0), {});
    EXPECT_LT(shown.size(), 5000);
    EXPECT_TRUE(shown.contains(QChar(0x2026)));
    EXPECT_LT(Index(0).data(Qt::ToolTipRole).toString().size(), 5000);
}

TEST_F(AlbumFilesTest, RubbishIsRowsWithoutFiles)
{
    QByteArray rubbish = "#\n#\n";
    quint32 state = 3;
    for (int i = 0; i < 20'000; ++i) {
        state = state * 1664525 + 1013904223;
        rubbish.append(char(state >> 24));
    }
    OpenAlbum(Album(rubbish));
    EXPECT_GT(Total().toInt(), 20);
    EXPECT_TRUE(session.lbExportList.isEmpty());
    for (int row = 0; row < album->Rows().Count(); ++row) {
        EXPECT_EQ(Cell(row, 2), "File Not Found");
    }
    // What was read is what is written.
    SaveAs(Path(QStringLiteral("b.ifl")));
    EXPECT_EQ(Bytes(Path(QStringLiteral("b.ifl"))).count('\n'), Total().toInt());
}

TEST_F(AlbumFilesTest, OpeningAnotherAlbumReplacesEverything)
{
    OpenAlbum(AlbumOf(OneOfThreeMissing(), QStringLiteral("Summer")));
    ShowThumbnails();
    const QString other = Small(QStringLiteral("other.bmp"));
    const QString file = Path(QStringLiteral("other.ifl"));
    WriteWholeFile(file, BytesFromPath(other) + "\r\n");
    fakes.dialogs.AnswerFile(file);
    Menu("mnuOpen")->trigger();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(album->Rows().Paths(), QList<QString>{other});
    EXPECT_EQ(session.lbExportList, QList<QString>{other});
    EXPECT_EQ(Comment(), "");
    EXPECT_EQ(Total(), "1");
    ASSERT_EQ(Grid()->Count(), 1);
    EXPECT_EQ(Grid()->PathAt(0), other);
}

TEST_F(AlbumFilesTest, ReadingAnEmptyPathShowsTheAlbumThatIsThere)
{
    session.lbExportList = {Small()};
    Open();
    ASSERT_TRUE(Rest());
    album->ReadAlbumFile({});
    EXPECT_EQ(Total(), "1");
    EXPECT_TRUE(List()->isVisible());
    EXPECT_EQ(session.lbExportList.size(), 1);
}

TEST_F(AlbumFilesTest, PreviewHasTheWordsAndTheDescription)
{
    const QString photo = Copy(QStringLiteral("AST_0101.JPG"));
    session.lbExportList = {photo};
    Open();
    ASSERT_TRUE(Rest());
    EXPECT_TRUE(LeadShown());
    EXPECT_TRUE(Box("txtImageSize").startsWith(QStringLiteral("Image Size: ")));
    const LoadedImage image = LoadFile(photo, {});
    EXPECT_EQ(
        Box("txtImageSize"),
        QStringLiteral("Image Size: %1 X %2 X 24").arg(image.facts.width).arg(image.facts.height));
    EXPECT_EQ(Box("txtImageFormat"),
              QStringLiteral("Format: ") + FormatDescription(image.facts.format));
    EXPECT_TRUE(Part<QLabel>("Label1")->isVisible());
    EXPECT_TRUE(Part<QPlainTextEdit>("txtTags")->isVisible());
    // Each of the lines of the description on a line of its own.
    EXPECT_EQ(Part<QPlainTextEdit>("txtTags")->toPlainText().section(u'\n', 0, 2),
              "Name=Tarn at noon\nLocation=Furka road\nEvent=Summer walk");
}

TEST_F(AlbumFilesTest, SwitchingTheViewWhileFilesAreLookedForShowsEachOnce)
{
    const QString there = Small();
    QList<QString> paths;
    for (int i = 0; i < 5000; ++i) {
        paths.append(i % 2 ? QStringLiteral("/nowhere/%1").arg(i) : there);
    }
    Open();
    album->OpenImageListFile(AlbumOf(paths));
    for (int i = 0; i < 6; ++i) {
        Menu(i % 2 ? "nmuViewFilename" : "mnuViewThumbnails")->trigger();
        QApplication::processEvents();
    }
    Menu("mnuViewThumbnails")->trigger();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Grid()->Count(), 2500);
    EXPECT_EQ(session.lbExportList.size(), 2500);
    EXPECT_EQ(Total(), "5000");
}

TEST_F(AlbumFilesTest, RemovingWhileFilesAreLookedForKeepsListAndRowsInStep)
{
    const QString there = Small();
    Open();
    album->OpenImageListFile(AlbumOf(QList<QString>(5000, there)));
    List()->selectAll();
    ClickRow(0, Qt::ControlModifier);
    Menu("mnuRemoveSelected")->trigger();
    ASSERT_TRUE(Rest());
    EXPECT_EQ(Total(), "1");
    EXPECT_EQ(session.lbExportList, QList<QString>{there});
}

} // namespace quillane
