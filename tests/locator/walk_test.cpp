#include "locator/walk.h"

#include "core/deep_folder.h"
#include "core/failure.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"

#include <functional>
#include <gtest/gtest.h>

namespace quillane {
namespace {

/// Keeps what it is told.
class KeepingSink : public FindSink {
public:
    QStringList shown, rows, exact;
    std::vector<FoundFile> files;
    bool deep = true, stopped = false;
    std::function<void(const QString&)> onFolder;

    void ShowFolder(const QString& folder) override
    {
        shown.append(folder);
        if (onFolder) {
            onFolder(folder);
        }
    }
    void AddFound(const QString& folder, std::vector<FoundFile>&& found) override
    {
        for (const FoundFile& file : found) {
            rows.append(folder + file.name);
            if (file.exact) {
                exact.append(folder + file.name);
            }
            files.push_back(file);
        }
    }
    bool IncludesSubfolders() override { return deep; }
    bool SearchStopped() override { return stopped; }
};

class FindFilesTest : public testing::Test {
protected:
    FindResult Find(const QByteArray& searchString)
    {
        return FindFiles(folder.Path(), Dirs, QString::fromUtf8(searchString), sink);
    }
    /// Full paths of names.
    QStringList Paths(const QList<QByteArray>& names) const
    {
        QStringList paths;
        for (const QByteArray& name : names) {
            paths.append(folder.Path(name));
        }
        return paths;
    }

    TempFolder folder;
    KeepingSink sink;
    QStringList Dirs;
};

TEST_F(FindFilesTest, AnEmptySearchStringDoesNothing)
{
    folder.Write("a");
    Dirs = {QStringLiteral("as it was")};
    const FindResult result = Find("");
    EXPECT_TRUE(result.Patterns.empty());
    EXPECT_TRUE(sink.shown.isEmpty());
    EXPECT_TRUE(sink.rows.isEmpty());
    EXPECT_EQ(Dirs, QStringList{QStringLiteral("as it was")});
}

TEST_F(FindFilesTest, TellsSizeAndTimeAndCountsByPattern)
{
    folder.Write("b.JPG", "12345");
    folder.Write("a.jpg", "1");
    folder.Write("c.bmp", "");
    folder.Write("d.txt");
    const FindResult result = Find("*.jpg;*.bmp");
    EXPECT_EQ(sink.rows, Paths({"a.jpg", "b.JPG", "c.bmp"}));
    ASSERT_EQ(sink.files.size(), 3U);
    EXPECT_EQ(sink.files[1].size, 5);
    EXPECT_EQ(sink.files[1].modifiedSeconds, StatPath(folder.Path("b.JPG")).modifiedSeconds);
    EXPECT_EQ(result.HitCount, (std::vector<qint32>{2, 1}));
    EXPECT_EQ(result.rows, 3);
    EXPECT_FALSE(result.stopped);
    EXPECT_TRUE(sink.exact.isEmpty());
}

TEST_F(FindFilesTest, WalksLevelByLevel)
{
    for (const char* name : {"b", "a", "a/deep", "a/deep/deeper", "b/other"}) {
        folder.MakeFolder(name);
    }
    folder.Write("a/deep/deeper/x1");
    folder.Write("a/x2");
    folder.Write("b/other/x3");
    folder.Write("x4");
    Find("x*");
    EXPECT_EQ(Dirs, Paths({"", "a/", "b/", "a/deep/", "b/other/", "a/deep/deeper/"}));
    EXPECT_EQ(sink.shown, Dirs);
    EXPECT_EQ(sink.rows, Paths({"x4", "a/x2", "b/other/x3", "a/deep/deeper/x1"}));
}

TEST_F(FindFilesTest, LeavesFoldersBelowAloneWhenNotAskedForThem)
{
    folder.MakeFolder("a");
    folder.Write("a/x1");
    folder.Write("x2");
    sink.deep = false;
    Find("x*");
    EXPECT_EQ(Dirs, Paths({""}));
    EXPECT_EQ(sink.rows, Paths({"x2"}));
}

TEST_F(FindFilesTest, TheFolderMayBeGivenWithoutItsSeparator)
{
    folder.Write("x1");
    QString start = folder.Path();
    start.chop(1);
    FindFiles(start, Dirs, QStringLiteral("x*"), sink);
    EXPECT_EQ(sink.rows, Paths({"x1"}));
}

TEST_F(FindFilesTest, LinkedFoldersAreNotVisitedButLinkedFilesAreFound)
{
    folder.MakeFolder("real");
    folder.Write("real/x1", "123");
    folder.Link(".", "real/circle");
    folder.Link("real", "linked");
    folder.Link("real/x1", "x2");
    folder.Link("nowhere", "x3");
    Find("x*");
    EXPECT_EQ(Dirs, Paths({"", "real/"}));
    EXPECT_EQ(sink.rows, Paths({"x2", "real/x1"}));
    EXPECT_EQ(sink.files[0].size, 3);
}

TEST_F(FindFilesTest, HiddenFilesAndFoldersAreSearchedAndOtherThingsAreNot)
{
    folder.MakeFolder(".h");
    folder.Write(".h/.x1");
    ASSERT_EQ(mkfifo(folder.Bytes("x-pipe").constData(), 0600), 0);
    Find("*x*");
    EXPECT_EQ(sink.rows, Paths({".h/.x1"}));
}

TEST_F(FindFilesTest, NamesThatAreNoTextAreFound)
{
    folder.Write("x\xFF");
    Find("x*");
    ASSERT_EQ(sink.rows.size(), 1);
    EXPECT_EQ(BytesFromPath(sink.rows[0]), folder.Bytes("x\xFF"));
}

TEST_F(FindFilesTest, AnExactNameIsFoundOnceInAWholeSearch)
{
    folder.MakeFolder("a");
    folder.MakeFolder("b");
    folder.Write("a/abc", "123");
    folder.Write("b/abc");
    const FindResult result = Find("abc");
    EXPECT_EQ(sink.rows, Paths({"a/abc"}));
    EXPECT_EQ(sink.exact, sink.rows);
    EXPECT_EQ(result.HitCount, std::vector<qint32>{1});
    EXPECT_EQ(result.rows, 1);
}

TEST_F(FindFilesTest, AnExactNameIsFoundWhateverItsLetterCase)
{
    folder.Write("ABC");
    folder.Write("aBc");
    folder.Write("longer name");
    Find("abc");
    EXPECT_EQ(sink.rows, Paths({"ABC"}));
    sink.rows.clear();
    Find("aBc");
    EXPECT_EQ(sink.rows, Paths({"aBc"}));
}

TEST_F(FindFilesTest, AnExactNameMayLieInAFolderBelow)
{
    folder.MakeFolder("sub");
    folder.Write("sub/abc");
    folder.Write("other");
    Find("sub/abc");
    EXPECT_EQ(sink.rows, Paths({"sub/abc"}));
}

TEST_F(FindFilesTest, AFolderWithoutAnyFileIsNotAskedForTheExactName)
{
    folder.MakeFolder("sub");
    folder.Write("sub/abc");
    const FindResult result = Find("sub/abc;sub/");
    EXPECT_EQ(sink.rows, QStringList()); // its own folder holds no file, and below it is no "sub"
    EXPECT_EQ(result.HitCount, (std::vector<qint32>{0, 0}));
}

TEST_F(FindFilesTest, AnExactNameOfAFolderIsNoFile)
{
    folder.MakeFolder("abc");
    folder.Write("some other file");
    Find("abc");
    EXPECT_TRUE(sink.rows.isEmpty());
}

TEST_F(FindFilesTest, AStarInTheMiddleIsFoundByTheExactNameAlone)
{
    folder.Write("a*b", "123");
    folder.Write("axb");
    folder.Write("a*bc");
    Find("a*b");
    EXPECT_EQ(sink.rows, Paths({"a*b"}));
    EXPECT_EQ(sink.exact, Paths({"a*b"}));
}

TEST_F(FindFilesTest, AStarAloneFindsAll)
{
    folder.Write("a");
    folder.Write("b.txt");
    EXPECT_EQ(Find("*").rows, 2);
}

TEST_F(FindFilesTest, TheTailMayStandOnePlaceBeforeTheEnd)
{
    folder.Write("ax");
    folder.Write("axy");
    folder.Write("axyz");
    Find("*x");
    EXPECT_EQ(sink.rows, Paths({"ax", "axy"}));
}

TEST_F(FindFilesTest, AShortNameIsNotTestedAgainstLaterPatterns)
{
    folder.Write("a.c");
    EXPECT_EQ(Find("*.jpeg;*.c").rows, 0);
    EXPECT_EQ(Find("*.c;*.jpeg").rows, 1);
}

TEST_F(FindFilesTest, AShortNameKeepsALaterExactNameFromBeingLookedFor)
{
    folder.Write("ab");
    EXPECT_EQ(Find("*.jpeg;ab").rows, 0);
    EXPECT_EQ(Find("ab;*.jpeg").rows, 1);
}

TEST_F(FindFilesTest, AFileIsARowOfTheFirstPatternThatFindsIt)
{
    folder.Write("abc.jpg");
    const FindResult result = Find("*.bmp;*.jpg;abc*");
    EXPECT_EQ(result.HitCount, (std::vector<qint32>{0, 1, 0}));
    EXPECT_EQ(result.rows, 1);
}

TEST_F(FindFilesTest, AnExactNameIsNotLookedForWhereAnEarlierPatternFindsEveryFile)
{
    folder.Write("abc");
    folder.Write("abcd");
    EXPECT_EQ(Find("ab*;abc").HitCount, (std::vector<qint32>{2, 0}));
    folder.Write("a longer one");
    EXPECT_EQ(Find("ab*;abc").HitCount, (std::vector<qint32>{2, 1}));
}

TEST_F(FindFilesTest, AFileMayBeARowByItsExactNameAndByAPattern)
{
    folder.Write("abc", "123");
    folder.Write("a longer one");
    sink.deep = false;
    EXPECT_EQ(Find("zz;abc;*b*").HitCount, (std::vector<qint32>{0, 1, 0}));
    EXPECT_EQ(Find("*longer*;abc").HitCount, (std::vector<qint32>{1, 0}));
    EXPECT_EQ(Find("ab*;abc;*").HitCount, (std::vector<qint32>{1, 1, 1}));
    EXPECT_EQ(sink.rows.last(2), Paths({"a longer one", "abc"}));
    EXPECT_EQ(sink.exact.last(), folder.Path("abc"));
}

TEST_F(FindFilesTest, AnExactNameStandsBeforeTheFileWhoseTurnFirstCameToIt)
{
    for (const char* name : {"a.jpg", "b.jpg", "c.txt", "notes.txt", "z.jpg"}) {
        folder.Write(name);
    }
    Find("*.jpg;notes.txt");
    // The turns of the pictures end at the first pattern; that of "c.txt" comes to the second.
    EXPECT_EQ(sink.rows, Paths({"a.jpg", "b.jpg", "notes.txt", "z.jpg"}));
    EXPECT_EQ(sink.exact, Paths({"notes.txt"}));
    sink.rows.clear();
    Find("notes.txt;a.jpg;*.jpg");
    EXPECT_EQ(sink.rows, Paths({"notes.txt"})); // no name is longer than the first pattern
    sink.rows.clear();
    Find("z.jpg;c.txt;*s.txt*");
    EXPECT_EQ(sink.rows, Paths({"z.jpg", "c.txt", "notes.txt"}));
}

TEST_F(FindFilesTest, AStopTakesEffectAtTheNextFolder)
{
    folder.MakeFolder("a");
    folder.MakeFolder("b");
    folder.Write("x0");
    folder.Write("a/other name");
    folder.Write("b/x2");
    sink.onFolder = [&](const QString& path) { sink.stopped = path.endsWith(u"/a/"); };
    const FindResult result = Find("x*");
    EXPECT_TRUE(result.stopped);
    EXPECT_TRUE(result.Patterns.empty());
    EXPECT_EQ(sink.shown.last(), folder.Path("a/"));
    EXPECT_EQ(sink.rows, Paths({"x0"}));
}

TEST_F(FindFilesTest, AStopTakesEffectWhereEveryFileIsFound)
{
    folder.MakeFolder("a");
    folder.Write("x0");
    folder.Write("a/x1");
    sink.onFolder = [&](const QString&) { sink.stopped = true; };
    EXPECT_TRUE(Find("*").stopped);
    EXPECT_EQ(sink.shown, Paths({""}));
}

TEST_F(FindFilesTest, AFolderThatCannotBeReadEndsTheSearchWithAFailure)
{
    folder.MakeFolder("locked");
    folder.MakeFolder("later");
    folder.Write("x1");
    folder.Chmod("locked", 0);
    {
        const Unprivileged unprivileged;
        EXPECT_THROW(Find("x*"), Failure);
    }
    folder.Chmod("locked", 0755);
    EXPECT_EQ(sink.rows, Paths({"x1"}));
    EXPECT_EQ(sink.shown.last(), folder.Path("locked/"));
}

TEST_F(FindFilesTest, AFolderThatIsNotThereEndsTheSearchWithAFailure)
{
    EXPECT_THROW(FindFiles(folder.Path("none"), Dirs, QStringLiteral("*"), sink), Failure);
    folder.Write("file");
    EXPECT_THROW(FindFiles(folder.Path("file"), Dirs, QStringLiteral("*"), sink), Failure);
    EXPECT_THROW(FindFiles(QString(QChar(0)), Dirs, QStringLiteral("*"), sink), Failure);
}

TEST_F(FindFilesTest, AFolderThatIsGoneWhenItsTurnComesEndsTheSearchWithAFailure)
{
    folder.MakeFolder("a");
    folder.MakeFolder("b");
    folder.Write("a/x1");
    sink.onFolder = [&](const QString& path) {
        if (path.endsWith(u"/a/")) {
            ASSERT_EQ(rmdir(folder.Bytes("b").constData()), 0);
        }
    };
    EXPECT_THROW(Find("x*"), Failure);
    EXPECT_EQ(sink.rows, Paths({"a/x1"}));
}

TEST_F(FindFilesTest, FilesThatVanishInTheMiddleAreNoRows)
{
    folder.Write("x1");
    folder.Write("x2");
    sink.onFolder = [&](const QString&) { ASSERT_TRUE(RemoveFile(folder.Path("x1"))); };
    const FindResult result = Find("x*");
    EXPECT_EQ(sink.rows, Paths({"x2"}));
    EXPECT_EQ(result.HitCount, std::vector<qint32>{1});
}

TEST(FindFilesDeep, FiveThousandFoldersOneInTheOtherAreWalkedToTheLast)
{
    const DeepFolder deep(5000, "d");
    KeepingSink sink;
    QStringList Dirs;
    const FindResult result = FindFiles(deep.Top(), Dirs, QStringLiteral("*bottom*"), sink);
    EXPECT_EQ(sink.rows, QStringList{deep.Path() + QStringLiteral("at the bottom")});
    EXPECT_EQ(Dirs.size(), 5001);
    EXPECT_EQ(result.rows, 1);
}

TEST_F(FindFilesTest, PatternsOfAnyLengthAndNumberAreAnsweredAtOnce)
{
    for (int i = 0; i < 200; ++i) {
        folder.Write("a" + QByteArray(100, 'a') + QByteArray::number(i));
    }
    // What a matcher with stars in the middle would never come to an end of.
    EXPECT_EQ(Find(QByteArray("a*").repeated(5000) + "b").rows, 0);
    EXPECT_EQ(Find("*" + QByteArray("a*").repeated(20) + "b*").rows, 0);
    EXPECT_EQ(Find(QByteArray(30'000, '*')).rows, 200); // all are cut off
    EXPECT_EQ(Find(QByteArray(30'000, ';')).rows, 0);
    EXPECT_EQ(Find("*" + QByteArray(30'000, 'a')).rows, 0);
    const FindResult result = Find(QByteArray("*q;").repeated(8000) + "*");
    EXPECT_EQ(result.HitCount.size(), 8001U);
    EXPECT_EQ(result.HitCount.back(), 200);
}

TEST_F(FindFilesTest, NamesThatDifferInCaseAloneAreFilesOfTheirOwn)
{
    folder.Write("x.JPG");
    folder.Write("X.jpg");
    folder.MakeFolder("Sub");
    folder.MakeFolder("sub");
    folder.Write("Sub/x.jpg");
    folder.Write("sub/x.jpg");
    EXPECT_EQ(Find("*.jpg").rows, 4);
    EXPECT_EQ(sink.rows, Paths({"X.jpg", "x.JPG", "Sub/x.jpg", "sub/x.jpg"}));
}

TEST(AddBackslash, PutsASeparatorBehindAPathThatHasNone)
{
    EXPECT_EQ(AddBackslash(QStringLiteral("/a")), "/a/");
    EXPECT_EQ(AddBackslash(QStringLiteral("/a/")), "/a/");
    EXPECT_EQ(AddBackslash(QStringLiteral("/")), "/");
    EXPECT_EQ(AddBackslash(QStringLiteral("C:\\Pics")), "C:\\Pics\\");
}

} // namespace
} // namespace quillane
