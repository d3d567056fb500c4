// Scans with the search on.
#include "browser/scan_fixture.h"
#include "core/failure.h"
#include "core/unprivileged.h"
#include "imaging/comments/comment_set.h"
#include "search/tagged_gif.h"

#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

TEST_F(ScanTest, ASearchKeepsImageFilesThatPassAndCountsThem)
{
    Picture(QStringLiteral("a.bmp"));
    Text(QStringLiteral("b.gif"), TaggedGif("ISO=401\r\n"));
    Text(QStringLiteral("c.gif"), TaggedGif("ISO=400\r\n"));
    Text(QStringLiteral("d.gif"), TaggedGif({}));
    Text(QStringLiteral("e.ifl"));
    Search(QStringLiteral("ISO"), 100, 400);
    for (const int mode : {kThumbnailMode, kListMode}) {
        scan.BrowseImages(mode);
        EXPECT_EQ(session.lbFilTiffs, QList<QString>{Path(QStringLiteral("c.gif"))});
        EXPECT_EQ(view.panels.at(1), QStringLiteral("Search = ON"));
        EXPECT_TRUE(view.panelHistory.at(3).contains(QStringLiteral("Searching...")));
        EXPECT_EQ(view.panels.at(3), QStringLiteral("1 of 5 Files"));
        EXPECT_EQ(view.shown.last(), Path(QStringLiteral("c.gif")));
    }
    EXPECT_EQ(view.CellNames(), QStringList{QStringLiteral("c.gif")});
    EXPECT_EQ(view.RowNames(), QStringList{QStringLiteral("c.gif")});
}

TEST_F(ScanTest, FilesThatFailTheSearchMoveTheProgressAndOthersAreNotCounted)
{
    Picture(QStringLiteral("a.bmp"));
    Text(QStringLiteral("b.gif"), TaggedGif("ISO=50\r\n"));
    Text(QStringLiteral("c.gif"), TaggedGif("ISO=200\r\n"));
    Text(QStringLiteral("d.gif"), TaggedGif("ISO=60\r\n"));
    Search(QStringLiteral("ISO"), 100, 400);
    scan.BrowseImages(kThumbnailMode);
    // b is seen, c is added at the progress before it, d is seen.
    EXPECT_EQ(view.progress, (QVector<int>{1, 1, 3}));
    EXPECT_EQ(session.gFilesSeen, 3);
    EXPECT_EQ(session.gImagesAdded, 1);
}

TEST_F(ScanTest, ASearchWithoutACriterionKeepsEveryImageFileAndNoOther)
{
    Picture(QStringLiteral("a.bmp"));
    Picture(QStringLiteral("b.jpg"));
    Text(QStringLiteral("c.gif"), TaggedGif("Name=Ann"));
    Text(QStringLiteral("d.ifl"));
    scan.SetSearchOn(true);
    for (const int mode : {kThumbnailMode, kListMode}) {
        scan.BrowseImages(mode);
        EXPECT_EQ(view.panels.at(3), QStringLiteral("2 of 4 Files"));
    }
}

TEST_F(ScanTest, MatchesOfASearchStandInTheOrderOfTheScan)
{
    for (int i = 0; i < 300; ++i) {
        Text(QStringLiteral("%1.gif").arg(i, 3, 10, QLatin1Char('0')),
             TaggedGif("ISO=" + QByteArray::number(i)));
    }
    Search(QStringLiteral("ISO"), 100, 199);
    QList<QString> expected;
    for (int i = 100; i < 200; ++i) {
        expected.append(Path(QStringLiteral("%1.gif").arg(i)));
    }
    for (const int mode : {kThumbnailMode, kListMode}) {
        scan.BrowseImages(mode);
        EXPECT_EQ(session.lbFilTiffs, expected);
    }
}

TEST_F(ScanTest, AFileOfASearchThatCannotBeReadEndsTheListScanAndLeavesNoEntries)
{
    Text(QStringLiteral("a.gif"), TaggedGif("ISO=200"));
    Text(QStringLiteral("c.gif"), TaggedGif("ISO=200"));
    scan.SetSearchOn(true);
    // It vanishes when the folder is listed and the search has not begun.
    const auto vanish = [&] {
        Text(QStringLiteral("b.gif"), TaggedGif("ISO=200"));
        scan.SetSearchSource([&] {
            unlink(BytesFromPath(Path(QStringLiteral("b.gif"))).constData());
            SearchQuestion question;
            question.criteria.searchNumeric[0] = {100, 400, QStringLiteral("ISO"), {}, kTrue};
            return question;
        });
    };
    vanish();
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.CellNames(), (QStringList{QStringLiteral("a.gif"), QStringLiteral("c.gif")}));
    view.shown.clear();
    vanish();
    EXPECT_THROW(scan.BrowseImages(kListMode), Failure);
    EXPECT_TRUE(session.lbFilTiffs.isEmpty());
    EXPECT_TRUE(view.rows.isEmpty());
    EXPECT_TRUE(view.shown.isEmpty());
    EXPECT_FALSE(scan.IsScanning());
}

TEST_F(ScanTest, ASearchThatIsSwitchedInTheMiddleOfAScanAsksTheSameOfEveryFile)
{
    for (int i = 0; i < 20; ++i) {
        Text(QStringLiteral("%1.gif").arg(i), TaggedGif(i % 2 == 0 ? "ISO=200" : "ISO=50"));
    }
    for (const int mode : {kThumbnailMode, kListMode}) {
        Search(QStringLiteral("ISO"), 100, 400);
        fakes.loop.OnYield([&] {
            if (view.panels.at(3) == QStringLiteral("Searching...")) {
                scan.SetSearchOn(false);
            }
        });
        scan.BrowseImages(mode);
        EXPECT_EQ(view.panels.at(3), QStringLiteral("10 of 20 Files"));
    }
}

TEST_F(ScanTest, TheSearchIsAskedForOncePerScanAndOnlyWhileItIsOn)
{
    Text(QStringLiteral("a.gif"), TaggedGif("ISO=200"));
    int asked = 0;
    scan.SetSearchSource([&] {
        ++asked;
        return SearchQuestion();
    });
    scan.BrowseImages(kThumbnailMode);
    scan.BrowseImages(kListMode);
    EXPECT_EQ(asked, 0);
    scan.SetSearchOn(true);
    scan.BrowseImages(kThumbnailMode);
    scan.BrowseImages(kListMode);
    EXPECT_EQ(asked, 2);
}

TEST_F(ScanTest, OfAFileThatFailsTheSearchNothingButItsDescriptionIsRead)
{
    // Its description fails the search, and its picture is past reading.
    Text(QStringLiteral("a.gif"), TaggedGif("ISO=50").left(40));
    Text(QStringLiteral("b.gif"), TaggedGif("ISO=200"));
    Search(QStringLiteral("ISO"), 100, 400);
    const qint64 before = CommentParseCount();
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(CommentParseCount() - before, 2);
    EXPECT_EQ(session.gFilesSeen, 2);
    EXPECT_EQ(view.CellNames(), QStringList{QStringLiteral("b.gif")});
}

TEST_F(ScanTest, AFileThatMayNotBeReadIsTestedAsOneWithoutADescriptionInTheGrid)
{
    const Unprivileged unprivileged;
    Text(QStringLiteral("a.gif"), TaggedGif("ISO=200"));
    Text(QStringLiteral("b.gif"), TaggedGif("ISO=200"));
    ASSERT_EQ(chmod(BytesFromPath(Path(QStringLiteral("a.gif"))).constData(), 0), 0);
    Search(QStringLiteral("ISO"), 100, 400);
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.CellNames(), QStringList{QStringLiteral("b.gif")});
    EXPECT_EQ(session.gFilesSeen, 2); // it has failed the test, and counts
    // Where an empty description passes, the scanner's own look leaves it out uncounted.
    Search(QStringLiteral("ISO"), -1, 400);
    scan.BrowseImages(kThumbnailMode);
    EXPECT_EQ(view.CellNames(), QStringList{QStringLiteral("b.gif")});
    EXPECT_EQ(session.gFilesSeen, 1);
    EXPECT_THROW(scan.BrowseImages(kListMode), Failure);
}

TEST_F(ScanTest, PipesAndFoldersWithAPicturesNameAreNoPartOfASearch)
{
    Text(QStringLiteral("a.gif"), TaggedGif("ISO=200"));
    ASSERT_EQ(mkfifo(BytesFromPath(Path(QStringLiteral("b.jpg"))).constData(), 0600), 0);
    ASSERT_TRUE(MakeFolder(Path(QStringLiteral("c.jpg"))));
    scan.SetSearchOn(true);
    for (const int mode : {kThumbnailMode, kListMode}) {
        scan.BrowseImages(mode);
        EXPECT_EQ(view.panels.at(3), QStringLiteral("1 of 1 Files"));
    }
}

TEST_F(ScanTest, TheWordsOfASearchGoWithTheFirstScanWithoutIt)
{
    Text(QStringLiteral("a.gif"), TaggedGif("ISO=200"));
    view.panels[2] = QStringLiteral("Search Found:");
    scan.SetSearchOn(true);
    scan.BrowseImages(kListMode);
    EXPECT_EQ(view.panels.at(2), QStringLiteral("Search Found:"));
    scan.SetSearchOn(false);
    EXPECT_EQ(view.panels.at(2), QStringLiteral("Search Found:"));
    scan.BrowseImages(kListMode);
    EXPECT_EQ(view.panels.at(2), QString());
}

TEST_F(ScanTest, ASearchAskedForInTheMiddleOfAnotherTakesItsPlace)
{
    for (int i = 0; i < 50; ++i) {
        Text(QStringLiteral("%1.gif").arg(i, 2, 10, QLatin1Char('0')),
             TaggedGif("ISO=" + QByteArray::number(i)));
    }
    for (const int mode : {kThumbnailMode, kListMode}) {
        Search(QStringLiteral("ISO"), 10, 19);
        int yields = 0;
        fakes.loop.OnYield([&] {
            if (++yields == 30) {
                Search(QStringLiteral("ISO"), 20, 24);
                scan.BrowseImages(mode);
            }
        });
        scan.BrowseImages(mode);
        EXPECT_GE(yields, 30);
        EXPECT_EQ(view.panels.at(3), QStringLiteral("5 of 50 Files"));
        EXPECT_EQ(session.lbFilTiffs.first(), Path(QStringLiteral("20.gif")));
        EXPECT_FALSE(scan.IsScanning());
    }
}

TEST_F(ScanTest, ASearchThatIsAbandonedLeavesAtOnce)
{
    for (int i = 0; i < 50; ++i) {
        Text(QStringLiteral("%1.gif").arg(i), TaggedGif("ISO=200"));
    }
    for (const int mode : {kThumbnailMode, kListMode}) {
        Search(QStringLiteral("ISO"), 100, 400);
        int yields = 0;
        fakes.loop.OnYield([&] {
            if (++yields == 10) {
                scan.Abandon();
            }
        });
        view.shown.clear();
        scan.BrowseImages(mode);
        EXPECT_EQ(yields, 10);
        EXPECT_TRUE(view.shown.isEmpty());
        EXPECT_FALSE(view.progressShown);
    }
}

TEST_F(ScanTest, EscEndsASearchAsItEndsAScan)
{
    for (int i = 0; i < 5; ++i) {
        Text(QStringLiteral("%1.gif").arg(i), TaggedGif("ISO=200"));
    }
    Search(QStringLiteral("ISO"), 100, 400);
    fakes.loop.PressEscAtPoll(3);
    fakes.dialogs.Answer(BoxAnswer::Ok);
    scan.BrowseImages(kListMode);
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes().first().text, QStringLiteral("Browsing Directory Cancaled."));
    EXPECT_EQ(view.panels.at(3), QStringLiteral("2 of 5 Files"));
}

} // namespace quillane
