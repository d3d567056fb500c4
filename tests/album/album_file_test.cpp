#include "album/album_file.h"
#include "core/atomic_save.h"
#include "core/expect_failure.h"
#include "core/failure.h"
#include "core/temp_folder.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

namespace {

using Paths = QList<QString>;

Paths PathsOf(QByteArrayView content)
{
    return ParseAlbum(content).paths;
}

} // namespace

TEST(WriteAlbumFile, CommentStandsBetweenTwoMarksAndLinesEndInCrLf)
{
    EXPECT_EQ(AlbumBytes(QStringLiteral("Summer trip"),
                         {QStringLiteral("C:\\Pics\\a.jpg"), QStringLiteral("D:\\Scans\\b.tif")}),
              "#\r\nSummer trip\r\n#\r\nC:\\Pics\\a.jpg\r\nD:\\Scans\\b.tif\r\n");
}

TEST(WriteAlbumFile, WithoutACommentHoldsJustThePaths)
{
    EXPECT_EQ(AlbumBytes({}, {QStringLiteral("/p/a.jpg")}), "/p/a.jpg\r\n");
}

TEST(WriteAlbumFile, CommentOfSeveralLinesOccupiesSeveralLines)
{
    EXPECT_EQ(AlbumBytes(QStringLiteral("one\ntwo\r\nthree"), {QStringLiteral("/a")}),
              "#\r\none\r\ntwo\r\nthree\r\n#\r\n/a\r\n");
}

TEST(WriteAlbumFile, EmptyAlbumAndEmptyPathTouchNothing)
{
    const TempFolder folder;
    folder.Write("old.ifl", "as it was");
    EXPECT_FALSE(WriteAlbumFile(folder.Path("old.ifl"), QStringLiteral("comment"), {}));
    EXPECT_EQ(folder.Content("old.ifl"), "as it was");
    EXPECT_FALSE(WriteAlbumFile({}, {}, {QStringLiteral("/a")}));
    EXPECT_EQ(folder.Entries(), QStringList{QStringLiteral("old.ifl")});
}

TEST(WriteAlbumFile, ReplacesWhatWasThere)
{
    const TempFolder folder;
    folder.Write("a.ifl", "old");
    EXPECT_TRUE(WriteAlbumFile(folder.Path("a.ifl"), {}, {QStringLiteral("/new")}));
    EXPECT_EQ(folder.Content("a.ifl"), "/new\r\n");
    EXPECT_EQ(folder.Entries().size(), 1);
}

TEST(WriteAlbumFile, KeepsThePreviousFileAndNeverAnOlderOneInstead)
{
    const TempFolder folder;
    folder.Write("a.ifl", "first");
    WriteAlbumFile(folder.Path("a.ifl"), {}, {QStringLiteral("/second")}, true);
    WriteAlbumFile(folder.Path("a.ifl"), {}, {QStringLiteral("/third")}, true);
    EXPECT_EQ(folder.Content("a.ifl~"), "first");
    EXPECT_EQ(folder.Content("a.ifl~~"), "/second\r\n");
    EXPECT_EQ(folder.Content("a.ifl"), "/third\r\n");
}

TEST(WriteAlbumFile, DiskThatFailsAtAnyStepLeavesTheOldAlbum)
{
    bool failed = true;
    for (int failing = 0; failed; ++failing) {
        const TempFolder folder;
        folder.Write("a.ifl", "as it was");
        int step = 0;
        failed = false;
        bool told = false;
        {
            const SaveProbeScope probe([&](SaveStep, qint64&) {
                const bool now = step++ == failing;
                failed = failed || now;
                return now ? ENOSPC : 0;
            });
            try {
                WriteAlbumFile(folder.Path("a.ifl"), {}, {QStringLiteral("/a")}, true);
            } catch (const Failure& failure) {
                told = true;
                EXPECT_FALSE(failure.Description().isEmpty());
            }
        }
        // What does not matter to the content may fail without the save failing.
        EXPECT_EQ(folder.Content("a.ifl"), told ? "as it was" : "/a\r\n") << failing;
        if (!told) {
            EXPECT_EQ(folder.Content("a.ifl~"), "as it was") << failing;
        }
    }
}

TEST(WriteAlbumFile, BehindALinkTheTargetIsWritten)
{
    const TempFolder folder;
    folder.Write("a.ifl", "as it was");
    folder.Link("a.ifl", "link.ifl");
    WriteAlbumFile(folder.Path("link.ifl"), {}, {QStringLiteral("/a")});
    EXPECT_EQ(folder.Content("a.ifl"), "/a\r\n");
    struct stat found;
    ASSERT_EQ(lstat(folder.Bytes("link.ifl").constData(), &found), 0);
    EXPECT_TRUE(S_ISLNK(found.st_mode));
}

TEST(WriteAlbumFile, TooManyOlderCopiesAreToldAndNoneIsLost)
{
    const TempFolder folder;
    folder.Write("a.ifl", "as it was");
    QByteArray name = "a.ifl";
    for (int i = 0; i < 20; ++i) {
        name += '~';
        folder.Write(name, name);
    }
    EXPECT_EQ(
        FailureOf([&] { WriteAlbumFile(folder.Path("a.ifl"), {}, {QStringLiteral("/a")}, true); }),
        kFailureGeneral);
    EXPECT_EQ(folder.Content("a.ifl"), "as it was");
    EXPECT_EQ(folder.Content("a.ifl~"), "a.ifl~");
}

TEST(WriteAlbumFile, FailureLeavesTheOldAlbum)
{
    const TempFolder folder;
    folder.MakeFolder("a.ifl");
    EXPECT_NE(FailureOf([&] { WriteAlbumFile(folder.Path("a.ifl"), {}, {QStringLiteral("/a")}); }),
              0);
    EXPECT_NE(
        FailureOf([&] { WriteAlbumFile(folder.Path("none/a.ifl"), {}, {QStringLiteral("/a")}); }),
        0);
}

TEST(ReadAlbumFile, EveryPathComesBackByteForByte)
{
    const Paths paths{QStringLiteral("/p/a b.jpg"), PathFromBytes("/p/caf\xc3\xa9.jpg"),
                      PathFromBytes("/p/caf\xe9.jpg"), QStringLiteral("C:\\Pics\\#.jpg")};
    EXPECT_EQ(PathsOf(AlbumBytes({}, paths)), paths);
    EXPECT_EQ(PathsOf(AlbumBytes(QStringLiteral("x"), paths)), paths);
}

TEST(ReadAlbumFile, EmptyCommentMeansTheFirstLineIsAPath)
{
    const AlbumText album = ParseAlbum("/p/a.jpg\r\n#\r\n/p/b.jpg\r\n");
    EXPECT_FALSE(album.hasComment);
    EXPECT_EQ(album.paths,
              (Paths{QStringLiteral("/p/a.jpg"), QStringLiteral("#"), QStringLiteral("/p/b.jpg")}));
}

TEST(ReadAlbumFile, CommentOfTwoLinesIsReadBackAsOne)
{
    const AlbumText album =
        ParseAlbum(AlbumBytes(QStringLiteral("one\ntwo"), {QStringLiteral("/a")}));
    EXPECT_EQ(album.comment, "onetwo");
    EXPECT_EQ(album.paths, Paths{QStringLiteral("/a")});
}

TEST(ReadAlbumFile, CommentLineThatIsAMarkEndsTheComment)
{
    const AlbumText album =
        ParseAlbum(AlbumBytes(QStringLiteral("one\n#\ntwo"), {QStringLiteral("/a")}));
    EXPECT_EQ(album.comment, "one");
    EXPECT_EQ(album.paths,
              (Paths{QStringLiteral("two"), QStringLiteral("#"), QStringLiteral("/a")}));
}

TEST(ReadAlbumFile, OnlyTheCommentBlockGivesAnEmptyList)
{
    for (const char* content :
         {"#\r\nSummer\r\n#\r\n", "#\nSummer\n#", "#\nSummer", "#\nSummer\n"}) {
        const AlbumText album = ParseAlbum(content);
        EXPECT_TRUE(album.hasComment);
        EXPECT_EQ(album.comment, "Summer") << content;
        EXPECT_TRUE(album.paths.isEmpty()) << content;
    }
}

TEST(ReadAlbumFile, MarkIsASingleCharacterAloneOnItsLine)
{
    EXPECT_FALSE(ParseAlbum("# \r\n/a\r\n").hasComment);
    EXPECT_FALSE(ParseAlbum(" #\r\n/a\r\n").hasComment);
    EXPECT_EQ(PathsOf("##\r\n"), Paths{QStringLiteral("##")});
}

TEST(ReadAlbumFile, BlankLineIsARowWithEmptyText)
{
    EXPECT_EQ(PathsOf("/a\r\n\r\n/b\r\n"),
              (Paths{QStringLiteral("/a"), QString(), QStringLiteral("/b")}));
}

TEST(ReadAlbumFile, AcceptsAByteOrderMarkBareLineFeedsAndNoLineEnd)
{
    const AlbumText album = ParseAlbum("\xef\xbb\xbf#\nSummer\n#\n/a\n/b");
    EXPECT_EQ(album.comment, "Summer");
    EXPECT_EQ(album.paths, (Paths{QStringLiteral("/a"), QStringLiteral("/b")}));
}

TEST(ReadAlbumFile, EightBitCommentIsWindows1252)
{
    EXPECT_EQ(ParseAlbum("#\r\nM\xfcnchen \x80\r\n#\r\n").comment, QStringLiteral("München €"));
    EXPECT_EQ(ParseAlbum("#\r\nM\xc3\xbcnchen\r\n#\r\n").comment, QStringLiteral("München"));
}

TEST(ReadAlbumFile, EightBitPathHasASecondReading)
{
    const Paths paths = PathsOf("/p/M\xfcller.jpg\r\n/p/M\xc3\xbcller.jpg\r\n");
    EXPECT_EQ(EightBitReading(paths.at(0)), QStringLiteral("/p/Müller.jpg"));
    EXPECT_EQ(EightBitReading(paths.at(1)), "");
    EXPECT_EQ(AlbumBytes({}, paths.mid(0, 1)), "/p/M\xfcller.jpg\r\n");
}

TEST(ReadAlbumFile, BinaryRubbishIsTakenAsLines)
{
    QByteArray rubbish;
    quint32 state = 7;
    for (int i = 0; i < 200'000; ++i) {
        state = state * 1664525 + 1013904223;
        rubbish.append(char(state >> 24));
    }
    const AlbumText album = ParseAlbum(rubbish);
    EXPECT_TRUE(album.endedEarly.isEmpty());
    EXPECT_EQ(album.paths.size(), rubbish.count('\n') + (rubbish.endsWith('\n') ? 0 : 1));
}

TEST(ReadAlbumFile, AMillionLinesAreRead)
{
    QByteArray content;
    for (int i = 0; i < 1'000'000; ++i) {
        content += "/p/" + QByteArray::number(i) + "\r\n";
    }
    const AlbumText album = ParseAlbum(content);
    EXPECT_TRUE(album.endedEarly.isEmpty());
    ASSERT_EQ(album.paths.size(), 1'000'000);
    EXPECT_EQ(album.paths.last(), "/p/999999");
}

TEST(ReadAlbumFile, MoreLinesThanTheLimitEndTheReading)
{
    const AlbumText album = ParseAlbum(QByteArray(kMaxAlbumPaths + 1, '\n'));
    EXPECT_EQ(album.paths.size(), kMaxAlbumPaths);
    EXPECT_FALSE(album.endedEarly.isEmpty());
}

TEST(ReadAlbumFile, EndlessLineEndsTheReadingWithWhatStoodBefore)
{
    const AlbumText album =
        ParseAlbum("/a\r\n" + QByteArray(kMaxAlbumLine + 1, 'x') + "\r\n/b\r\n");
    EXPECT_EQ(album.paths, Paths{QStringLiteral("/a")});
    EXPECT_TRUE(album.endedEarly.contains(u'2')) << album.endedEarly.toStdString();
    EXPECT_EQ(PathsOf(QByteArray(kMaxAlbumLine, 'x')).size(), 1);
}

TEST(ReadAlbumFile, EndlessCommentIsCutAndThePathsAreRead)
{
    const QByteArray lines = QByteArray("abc\n").repeated(kMaxAlbumComment);
    for (const QByteArray& comment :
         {QByteArray(kMaxAlbumComment + 1, 'x'), QByteArray(8 << 20, 'x'),
          QByteArray("\xc3\xbc").repeated(kMaxAlbumComment + 1), lines}) {
        const AlbumText album = ParseAlbum("#\r\n" + comment + "\n#\n/a\n/b\n");
        EXPECT_EQ(album.comment.size(), kMaxAlbumComment);
        EXPECT_FALSE(album.endedEarly.isEmpty());
        EXPECT_EQ(album.paths, (Paths{QStringLiteral("/a"), QStringLiteral("/b")}));
    }
    EXPECT_TRUE(
        ParseAlbum("#\n" + QByteArray(kMaxAlbumComment, 'x') + "\n#\n/a\n").endedEarly.isEmpty());
}

TEST(ReadAlbumFile, CommentIsNeverCutInsideACharacter)
{
    for (int before = 0; before < 8; ++before) {
        const AlbumText album = ParseAlbum("#\n" + QByteArray(before, 'x')
                                           + QByteArray("\xe2\x82\xac").repeated(1 << 20) + "\n");
        EXPECT_EQ(album.comment.size(), kMaxAlbumComment);
        EXPECT_EQ(album.comment.back(), QChar(0x20AC)) << before;
        EXPECT_EQ(album.comment.count(QChar(0x20AC)), kMaxAlbumComment - before);
    }
}

TEST(ReadAlbumFile, RubbishBehindAMarkIsNoEndlessComment)
{
    const AlbumText album = ParseAlbum("#\n" + QByteArray(32 << 20, '\xff'));
    EXPECT_EQ(album.comment.size(), kMaxAlbumComment);
    EXPECT_FALSE(album.endedEarly.isEmpty());
}

TEST(ReadAlbumFile, NulsArePartOfTheirLine)
{
    const AlbumText album = ParseAlbum(QByteArray("/a\0b\n\0\n", 7));
    ASSERT_EQ(album.paths.size(), 2);
    EXPECT_EQ(album.paths.at(0).size(), 4);
    EXPECT_EQ(BytesFromPath(album.paths.at(0)), QByteArray("/a\0b", 4));
}

TEST(ReadAlbumFile, LineEndsMayBeMixed)
{
    const Paths ab{QStringLiteral("/a"), QStringLiteral("/b")};
    for (const char* content : {"/a\r\n/b\n", "/a\n/b\r\n", "/a\r/b\r", "/a\r/b", "/a\n/b"}) {
        EXPECT_EQ(PathsOf(content), ab) << content;
    }
    EXPECT_EQ(PathsOf("/a\rb\r\n"), Paths{QStringLiteral("/a\rb")});
}

TEST(ReadAlbumFile, FileBeyondTheLimitIsRefusedUnread)
{
    const TempFolder folder;
    folder.Write("a.ifl", "/a\n");
    ASSERT_EQ(truncate(folder.Bytes("a.ifl").constData(), kMaxAlbumBytes + 1), 0);
    EXPECT_EQ(FailureOf([&] { ReadAlbumText(folder.Path("a.ifl")); }), kFailureLimit);
}

TEST(ReadAlbumFile, FifosAndDevicesAreRefusedWithoutBeingWaitedFor)
{
    const TempFolder folder;
    ASSERT_EQ(mkfifo(folder.Bytes("a.ifl").constData(), 0644), 0);
    EXPECT_EQ(FailureOf([&] { ReadAlbumText(folder.Path("a.ifl")); }), kFailureIo);
    EXPECT_EQ(FailureOf([] { ReadAlbumText(QStringLiteral("/dev/zero")); }), kFailureIo);
}

TEST(ReadAlbumFile, EmptyFileHasNothing)
{
    EXPECT_TRUE(PathsOf("").isEmpty());
    EXPECT_TRUE(PathsOf("\xef\xbb\xbf").isEmpty());
    EXPECT_FALSE(ParseAlbum("").hasComment);
}

TEST(ReadAlbumFile, MissingFilesAndFoldersAreRefused)
{
    const TempFolder folder;
    EXPECT_EQ(FailureOf([&] { ReadAlbumText(folder.Path("none.ifl")); }), kFailureNoFile);
    EXPECT_NE(FailureOf([&] { ReadAlbumText(folder.Path()); }), 0);
}

TEST(PathsWithLineEnds, CountsNamesThatAnAlbumCannotHold)
{
    EXPECT_EQ(PathsWithLineEnds({QStringLiteral("/a"), QStringLiteral("/b\nc"),
                                 QStringLiteral("/d\r"), QStringLiteral("/e\rf")}),
              2);
}

} // namespace quillane
