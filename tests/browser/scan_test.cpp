#include "browser/scan_fixture.h"

#include <QImage>

namespace quillane {

TEST_F(ScanTest, AFolderWithOneFileHasAProgressMaximumOfOne)
{
    Picture(QStringLiteral("a.bmp"));
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.progressMaximum, 1);
    scan.BrowseImages(kListMode);
    EXPECT_EQ(view.progressMaximum, 1);
    EXPECT_FALSE(view.progressShown);
}

TEST_F(ScanTest, ProgressRunsToTheCountLessOne)
{
    for (int i = 0; i < 4; ++i) {
        Picture(QStringLiteral("%1.bmp").arg(i));
    }
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.progressMaximum, 3);
    EXPECT_EQ(view.progress, (QVector<int>{0, 1, 2, 3}));
}

TEST_F(ScanTest, AFlashPixFileHasTwoCellsAndOneRow)
{
    Picture(QStringLiteral("a.fpx"));
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.CellNames(), (QStringList{QStringLiteral("a.fpx"), QStringLiteral("a.fpx")}));
    EXPECT_EQ(session.lbFilTiffs.size(), 2);
    scan.BrowseImages(kListMode);
    EXPECT_EQ(view.RowNames(), QStringList{QStringLiteral("a.fpx")});
}

TEST_F(ScanTest, CellsAreGroupedByTheMaskAndRowsByName)
{
    Picture(QStringLiteral("b.tif.bmp"));
    Picture(QStringLiteral("A.TIF"));
    Picture(QStringLiteral("c.jpg"));
    Picture(QStringLiteral("B.jpg"));
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.CellNames(),
              (QStringList{QStringLiteral("b.tif.bmp"), QStringLiteral("B.jpg"),
                           QStringLiteral("c.jpg"), QStringLiteral("A.TIF")}));
    scan.BrowseImages(kListMode);
    EXPECT_EQ(view.RowNames(),
              (QStringList{QStringLiteral("A.TIF"), QStringLiteral("B.jpg"),
                           QStringLiteral("b.tif.bmp"), QStringLiteral("c.jpg")}));
}

TEST_F(ScanTest, AnAlbumAndAPrintSettingFileHaveStockCells)
{
    Text(QStringLiteral("x.ifl"));
    Text(QStringLiteral("y.LY2"));
    scan.BrowseImages(kThumbnailMode);
    ASSERT_EQ(view.cells.size(), 2);
    EXPECT_EQ(view.cells.at(0).stock, 13);
    EXPECT_EQ(view.cells.at(1).stock, 20);
    EXPECT_EQ(session.gImagesAdded, 2);
    EXPECT_EQ(session.gFilesSeen, 2);
}

TEST_F(ScanTest, AFileThatCannotBeReadHasNoCellButARow)
{
    Text(QStringLiteral("broken.jpg"), "no picture");
    Picture(QStringLiteral("good.bmp"));
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.CellNames(), QStringList{QStringLiteral("good.bmp")});
    EXPECT_EQ(view.panels.at(3), QStringLiteral("Total Images = 1"));
    scan.BrowseImages(kListMode);
    EXPECT_EQ(view.RowNames().size(), 2);
}

TEST_F(ScanTest, PanelsTellTheStateBeforeAndAfter)
{
    Text(QStringLiteral("broken.jpg"), "no picture");
    Picture(QStringLiteral("good.bmp"));
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(
        view.panelHistory.at(3),
        (QStringList{QStringLiteral("Total Images = 2"), QStringLiteral("Total Images = 1")}));
    EXPECT_EQ(view.panels.at(1), QString());
    EXPECT_EQ(view.panels.at(4), session.gsPath);
}

TEST_F(ScanTest, AnyOtherModeSetsThePanelsAlone)
{
    Picture(QStringLiteral("good.bmp"));
    scan.BrowseImages(7);
    EXPECT_EQ(
        view.panelHistory.at(3),
        (QStringList{QStringLiteral("Total Images = 1"), QStringLiteral("Total Images = 0")}));
    EXPECT_TRUE(view.cells.isEmpty());
    EXPECT_TRUE(view.rows.isEmpty());
}

TEST_F(ScanTest, TheFirstFileIsSelectedAndShown)
{
    Picture(QStringLiteral("b.bmp"));
    Picture(QStringLiteral("a.bmp"));
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.current, 0);
    EXPECT_EQ(view.selectedCell, 0);
    EXPECT_EQ(view.finishes, 1);
    EXPECT_EQ(session.gsFileName, Path(QStringLiteral("a.bmp")));
    EXPECT_EQ(view.shown, QStringList{session.gsFileName});
    EXPECT_EQ(session.gImageListIndex, 0);
    scan.BrowseImages(kListMode);
    EXPECT_EQ(view.selectedRow, 0);
}

TEST_F(ScanTest, AnEmptyFolderSelectsNothingAndKeepsTheCurrentFile)
{
    session.gsFileName = QStringLiteral("/elsewhere/a.jpg");
    scan.BrowseImages(kThumbnailMode);
    EXPECT_TRUE(view.shown.isEmpty());
    EXPECT_EQ(session.gsFileName, QStringLiteral("/elsewhere/a.jpg"));
    EXPECT_EQ(view.panels.at(3), QStringLiteral("Total Images = 0"));
    scan.BrowseImages(kListMode);
    EXPECT_TRUE(view.shown.isEmpty());
}

TEST_F(ScanTest, AVanishedFolderIsEmpty)
{
    session.gsPath = root.path() + QStringLiteral("/gone/");
    scan.BrowseImages(kThumbnailMode);
    scan.BrowseImages(kListMode);
    EXPECT_TRUE(session.lbFilTiffs.isEmpty());
}

TEST_F(ScanTest, RowsHaveSizeTimeAndCaptions)
{
    Text(QStringLiteral("a.ifl"), QByteArray(1234, 'x'));
    session.gsFileKeyword = {QStringLiteral("Name"), QStringLiteral("City"), {}, {}};
    scan.BrowseImages(kListMode);
    ASSERT_EQ(view.rows.size(), 1);
    EXPECT_EQ(view.rows.first().size, 1234);
    EXPECT_EQ(view.rows.first().modifiedSeconds,
              StatPath(Path(QStringLiteral("a.ifl"))).modifiedSeconds);
    EXPECT_EQ(view.captions, session.gsFileKeyword);
}

/// A GIF whose comment carries tags.
QByteArray GifWithTags(const QByteArray& comment)
{
    QByteArray gif("GIF89a\x01\x00\x01\x00\x80\x00\x00\x00\x00\x00\xff\xff\xff", 19);
    gif += QByteArray("\x21\xfe", 2) + char(comment.size()) + comment + char(0);
    gif += QByteArray("\x2c\x00\x00\x00\x00\x01\x00\x01\x00\x00\x02\x02\x44\x01\x00\x3b", 16);
    return gif;
}

TEST_F(ScanTest, TagColumnsHoldTheValuesOfImageFiles)
{
    Text(QStringLiteral("a.gif"), GifWithTags("Name=Ann\r\nCity=Rome\r\n"));
    Picture(QStringLiteral("b.bmp"));
    session.gsFileKeyword = {
        QStringLiteral("city"), QStringLiteral("Name"), QStringLiteral("Missing"), {}};
    scan.BrowseImages(kListMode);
    ASSERT_EQ(view.tags.size(), 2);
    EXPECT_EQ(view.tags.at(0)[0], QStringLiteral("Rome"));
    EXPECT_EQ(view.tags.at(0)[1], QStringLiteral("Ann"));
    EXPECT_EQ(view.tags.at(0)[2], QString());
    EXPECT_EQ(view.tags.at(1)[0], QString());
}

TEST_F(ScanTest, TagsGoToTheirFilesWhenTheRowsAreSortedMeanwhile)
{
    constexpr int kFiles = 6;
    for (int i = 0; i < kFiles; ++i) {
        Text(QStringLiteral("%1.gif").arg(i),
             GifWithTags("City=" + QByteArray::number(i) + "\r\n"));
    }
    session.gsFileKeyword = {QStringLiteral("City"), {}, {}, {}};
    // Turned round whenever a row has got its tags.
    int turned = 0;
    view.onTags = [&] {
        QVector<int> order;
        for (int row = kFiles - 1; row >= 0; --row) {
            order.append(row);
        }
        std::reverse(session.lbFilTiffs.begin(), session.lbFilTiffs.end());
        std::reverse(view.rows.begin(), view.rows.end());
        std::reverse(view.tags.begin(), view.tags.end());
        scan.RowsReordered(order);
        ++turned;
    };
    scan.BrowseImages(kListMode);
    EXPECT_EQ(turned, kFiles);
    for (int row = 0; row < kFiles; ++row) {
        EXPECT_EQ(view.tags.at(row)[0], LeafName(view.rows.at(row).path).first(1)) << row;
        EXPECT_EQ(view.rows.at(row).path, session.lbFilTiffs.at(row));
    }
}

TEST_F(ScanTest, EscWhileCollectingShowsItsOwnMessageAndWhatWasFound)
{
    for (int i = 0; i < 5; ++i) {
        Text(QStringLiteral("%1.ifl").arg(i));
    }
    fakes.loop.PressEscAtPoll(3);
    fakes.dialogs.Answer(BoxAnswer::Ok);
    scan.BrowseImages(kListMode);
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes().first().text, QStringLiteral("Browsing Directory Cancaled."));
    EXPECT_EQ(session.lbFilTiffs.size(), 2);
    EXPECT_EQ(view.rows.size(), 2);
}

TEST_F(ScanTest, EscWhileRowsAreAddedKeepsTheRowsAndAllCollectedPaths)
{
    for (int i = 0; i < 5; ++i) {
        Text(QStringLiteral("%1.ifl").arg(i));
    }
    fakes.loop.PressEscAtPoll(5 + 3);
    fakes.dialogs.Answer(BoxAnswer::Ok);
    scan.BrowseImages(kListMode);
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes().first().text, QStringLiteral("Browsing Directory Canceled."));
    EXPECT_EQ(view.rows.size(), 2);
    EXPECT_EQ(session.lbFilTiffs.size(), 5);
    EXPECT_FALSE(view.progressShown);
}

TEST_F(ScanTest, EscInAThumbnailScanHandlesThatFileAndEndsEachPattern)
{
    for (const char* name : {"a.bmp", "b.bmp", "c.bmp", "d.jpg", "e.jpg", "f.tif", "g.tif"}) {
        Picture(QLatin1String(name));
    }
    fakes.loop.PressEscAtPoll(2);
    fakes.dialogs.Answer(BoxAnswer::Ok);
    scan.BrowseImages(kThumbnailMode);
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes().first().text, QStringLiteral("Browsing Directory Canceled."));
    EXPECT_TRUE(session.gBrowseCanceled);
    // The file at which Esc was seen still gets its cell; every later pattern begins and ends
    // with its first file.
    EXPECT_EQ(view.CellNames(),
              (QStringList{QStringLiteral("a.bmp"), QStringLiteral("b.bmp"),
                           QStringLiteral("d.jpg"), QStringLiteral("f.tif")}));
    EXPECT_EQ(session.lbFilTiffs.size(), 4);
}

TEST_F(ScanTest, TheCancelMessageComesOncePerEventWhileTheKeyStaysDown)
{
    for (const char* name : {"a.bmp", "d.jpg", "f.tif"}) {
        Picture(QLatin1String(name));
    }
    for (int poll : {1, 2, 3}) {
        fakes.loop.PressEscAtPoll(poll);
        fakes.dialogs.Answer(BoxAnswer::Ok);
    }
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(fakes.dialogs.Boxes().size(), 3);
}

TEST_F(ScanTest, SubfoldersAreScannedIntoTheGridWhenTheSwitchIsOn)
{
    ASSERT_TRUE(MakeFolder(Path(QStringLiteral("sub"))));
    Picture(QStringLiteral("a.bmp"));
    Picture(QStringLiteral("sub/b.bmp"));
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(session.lbFilTiffs.size(), 1);
    scan.SetIncludeSubDirectories(true);
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(session.lbFilTiffs,
              (QList<QString>{Path(QStringLiteral("a.bmp")), Path(QStringLiteral("sub/b.bmp"))}));
    scan.BrowseImages(kListMode);
    EXPECT_EQ(session.lbFilTiffs.size(), 1);
}

TEST_F(ScanTest, ABareFolderPathIsJoinedToNamesAsItStands)
{
    Picture(QStringLiteral("a.bmp"));
    session.gsPath = root.path();
    scan.BrowseImages(kListMode);
    EXPECT_EQ(session.lbFilTiffs, QList<QString>{root.path() + QStringLiteral("a.bmp")});
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(session.lbFilTiffs, QList<QString>{root.path() + QStringLiteral("a.bmp")});
    EXPECT_EQ(view.panels.at(4), root.path());
}

TEST_F(ScanTest, CellsHaveTheSizeOfTheGlobals)
{
    session.gThumbnailWidth = 120;
    session.gThumbnailHeight = 80;
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.cellWidth, 120);
    EXPECT_EQ(view.cellHeight, 80);
}

TEST_F(ScanTest, ARequestDuringAScanEndsItAndScansTheNewestInItsPlace)
{
    Picture(QStringLiteral("a.bmp"));
    Picture(QStringLiteral("b.bmp"));
    const QTemporaryDir other;
    QImage image(4, 4, QImage::Format_RGB32);
    ASSERT_TRUE(image.save(other.filePath(QStringLiteral("new.bmp")), "BMP"));
    bool asked = false;
    fakes.loop.OnYield([&] {
        if (!asked) {
            asked = true;
            session.gsPath = other.path() + u'/';
            scan.BrowseImages(kThumbnailMode);
            EXPECT_TRUE(scan.IsScanning());
        }
    });
    scan.BrowseImages(kThumbnailMode);
    EXPECT_TRUE(asked);
    EXPECT_FALSE(scan.IsScanning());
    EXPECT_EQ(view.CellNames(), QStringList{QStringLiteral("new.bmp")});
    // The older scan ended without its last steps: only the newer one showed a file.
    EXPECT_EQ(view.shown.size(), 1);
    EXPECT_EQ(view.panels.at(4), session.gsPath);
}

TEST_F(ScanTest, AnAbandonedScanEndsAndNothingFollows)
{
    for (int i = 0; i < 4; ++i) {
        Picture(QStringLiteral("%1.bmp").arg(i));
    }
    fakes.loop.OnYield([&] { scan.Abandon(); });
    scan.BrowseImages(kThumbnailMode);
    EXPECT_TRUE(view.shown.isEmpty());
    EXPECT_FALSE(scan.IsScanning());
    EXPECT_FALSE(view.progressShown);
}

TEST_F(ScanTest, StrangeNamesAreListedLikeAnyOther)
{
    const QList<QByteArray> names = {"blank in name.bmp", "\xce\xb1\xce\xb2.bmp",
                                     "\xd7\x90\xd7\x91.bmp", "bad\xff\xfe.bmp", "new\nline.bmp"};
    Picture(QStringLiteral("model.bmp"));
    const QByteArray content = ReadWholeFile(Path(QStringLiteral("model.bmp")), 1 << 20);
    for (const QByteArray& name : names) {
        WriteWholeFile(session.gsPath + PathFromBytes(name), content);
    }
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.cells.size(), names.size() + 1);
    for (const QByteArray& name : names) {
        EXPECT_TRUE(session.lbFilTiffs.contains(session.gsPath + PathFromBytes(name)));
    }
}

} // namespace quillane
