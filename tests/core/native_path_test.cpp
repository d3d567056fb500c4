#include "core/expect_failure.h"
#include "core/native_path.h"
#include "core/posix_error.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include <QRandomGenerator>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/time.h>

namespace quillane {

TEST(PathFromBytes, ReadsValidUtf8)
{
    EXPECT_EQ(PathFromBytes("/pics/a b.jpg"), QStringLiteral("/pics/a b.jpg"));
    EXPECT_EQ(PathFromBytes("\xCE\xB1\xD7\x90"), QStringLiteral("\u03B1\u05D0"));
    EXPECT_EQ(PathFromBytes("\xE2\x82\xAC"), QStringLiteral("\u20AC"));
    EXPECT_EQ(PathFromBytes("\xF0\x9F\x93\xB7"), QStringLiteral("\U0001F4F7"));
    EXPECT_EQ(PathFromBytes("\xEF\xBB\xBF"
                            "a"),
              QStringLiteral("\uFEFFa"));
    EXPECT_EQ(PathFromBytes("\xF4\x8F\xBF\xBF"), QStringLiteral("\U0010FFFF"));
    EXPECT_EQ(PathFromBytes(""), QString());
}

TEST(PathFromBytes, InvalidBytesBecomeLoneSurrogates)
{
    struct Row {
        QByteArray bytes;
        QList<ushort> units;
    };
    const Row rows[] = {
        {"\xFF", {0xDCFF}},
        {"\x80", {0xDC80}},
        {"a\xE4z", {'a', 0xDCE4, 'z'}},
        {"\xC3", {0xDCC3}},                         // cut short
        {"\xE2\x82", {0xDCE2, 0xDC82}},             // cut short
        {"\xC0\x80", {0xDCC0, 0xDC80}},             // overlong
        {"\xE0\x80\x80", {0xDCE0, 0xDC80, 0xDC80}}, // overlong
        {"\xF0\x80\x80\x80", {0xDCF0, 0xDC80, 0xDC80, 0xDC80}},
        {"\xED\xA0\x80", {0xDCED, 0xDCA0, 0xDC80}},             // a surrogate
        {"\xED\xB2\x80", {0xDCED, 0xDCB2, 0xDC80}},             // the very U+DC80
        {"\xF4\x90\x80\x80", {0xDCF4, 0xDC90, 0xDC80, 0xDC80}}, // above U+10FFFF
        {"\xF5\x80\x80\x80", {0xDCF5, 0xDC80, 0xDC80, 0xDC80}},
        {"\xE2\x28\xA1", {0xDCE2, '(', 0xDCA1}},
    };
    for (const Row& row : rows) {
        QString expected;
        for (ushort unit : row.units)
            expected += QChar(unit);
        EXPECT_EQ(PathFromBytes(row.bytes), expected) << row.bytes.toHex().constData();
        EXPECT_EQ(BytesFromPath(expected), row.bytes) << row.bytes.toHex().constData();
    }
}

TEST(PathFromBytes, EveryByteStringComesBackTheSame)
{
    QRandomGenerator random(7);
    constexpr uchar kTelling[] = {0x2F, 0x41, 0x7F, 0x80, 0xBF, 0xC2, 0xDF, 0xE0, 0xED, 0xA0,
                                  0xB2, 0xEF, 0xF0, 0x90, 0xF4, 0x8F, 0xF8, 0xFF, 0xBB};
    for (int round = 0; round < 50'000; ++round) {
        QByteArray bytes;
        const int length = random.bounded(12);
        for (int i = 0; i < length; ++i) {
            bytes += round % 2 == 0 ? char(kTelling[random.bounded(int(sizeof kTelling))])
                                    : char(random.bounded(256));
        }
        ASSERT_EQ(BytesFromPath(PathFromBytes(bytes)), bytes) << bytes.toHex().constData();
    }
}

TEST(BytesFromPath, ValidTextBecomesUtf8)
{
    const QString text = QStringLiteral("/\u00E4/\u20AC/\U0001F4F7.jpg");
    EXPECT_EQ(BytesFromPath(text), text.toUtf8());
    EXPECT_EQ(PathFromBytes(BytesFromPath(text)), text);
}

TEST(StatPath, TellsWhatLiesThere)
{
    TempFolder folder;
    folder.Write("a.jpg", "12345");
    folder.MakeFolder("sub");
    folder.Link("a.jpg", "link");
    folder.Link("nowhere", "dangling");
    folder.Link("circle", "circle");
    ASSERT_EQ(mkfifo(folder.Bytes("fifo").constData(), 0644), 0);
    folder.Chmod("a.jpg", 0640);
    const timespec times[2] = {{1'000'000'000, 0}, {1'234'567'890, 123'456'789}};
    ASSERT_EQ(utimensat(AT_FDCWD, folder.Bytes("a.jpg").constData(), times, 0), 0);

    const FileStat file = StatPath(folder.Path("a.jpg"));
    EXPECT_EQ(file.type, FileType::Regular);
    EXPECT_EQ(file.size, 5);
    EXPECT_EQ(file.mode, 0640u);
    EXPECT_EQ(file.modifiedSeconds, 1'234'567'890);
    EXPECT_EQ(file.modifiedNanos, 123'456'789);
    EXPECT_EQ(StatPath(folder.Path("link")).inode, file.inode);
    EXPECT_EQ(StatPath(folder.Path("link")).device, file.device);
    EXPECT_EQ(StatPath(folder.Path("sub")).type, FileType::Folder);
    EXPECT_EQ(StatPath(folder.Path("fifo")).type, FileType::Other);
    EXPECT_EQ(StatPath("/dev/null").type, FileType::Other);
    for (const char* name : {"missing", "dangling", "circle", "a.jpg/x"})
        EXPECT_EQ(StatPath(folder.Path(name)).type, FileType::Missing) << name;
    EXPECT_EQ(StatPath({}).type, FileType::Missing);
    EXPECT_EQ(StatPath(folder.Path("a.jpg") + QChar(u'\0')).type, FileType::Missing);
}

TEST(ModifiedTime, IsLocalTimeAndInvalidForAMissingFile)
{
    FileStat stat;
    EXPECT_FALSE(ModifiedTime(stat).isValid());
    stat.type = FileType::Regular;
    stat.modifiedSeconds = 1'234'567'890;
    stat.modifiedNanos = 500'000'000;
    EXPECT_EQ(ModifiedTime(stat).toMSecsSinceEpoch(), 1'234'567'890'500);
    EXPECT_EQ(ModifiedTime(stat).timeSpec(), Qt::LocalTime);
    stat.modifiedSeconds = -1;
    stat.modifiedNanos = 0;
    EXPECT_EQ(ModifiedTime(stat).toMSecsSinceEpoch(), -1000);
    stat.modifiedSeconds = std::numeric_limits<qint64>::max();
    EXPECT_FALSE(ModifiedTime(stat).isValid());
}

TEST(FileHandle, OwnsItsDescriptor)
{
    const int fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
    {
        FileHandle first(fd);
        FileHandle second(std::move(first));
        // What is left behind is what this line is about.
        // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
        EXPECT_FALSE(first.IsOpen());
        FileHandle third;
        third = std::move(second);
        EXPECT_EQ(third.Fd(), fd);
        EXPECT_NE(fcntl(fd, F_GETFD), -1);
    }
    EXPECT_EQ(fcntl(fd, F_GETFD), -1);
}

TEST(OpenForReading, OpensARegularFileCloseOnExec)
{
    TempFolder folder;
    folder.Write("a\nb \xFF.jpg", "content");
    const FileHandle file = OpenForReading(folder.Path("a\nb \xFF.jpg"));
    ASSERT_TRUE(file.IsOpen());
    EXPECT_TRUE(fcntl(file.Fd(), F_GETFD) & FD_CLOEXEC);
}

TEST(OpenForReading, RefusesWhatIsNoFileWithoutOpeningIt)
{
    TempFolder folder;
    folder.MakeFolder("folder.jpg");
    ASSERT_EQ(mkfifo(folder.Bytes("fifo.jpg").constData(), 0644), 0);
    folder.Link("fifo.jpg", "link.jpg");
    folder.Link("/dev/null", "device.jpg");
    const qint64 opensBefore = PathCallCount().opens;
    // A FIFO without a writer would hold up whoever opens it.
    for (const char* name : {"folder.jpg", "fifo.jpg", "link.jpg", "device.jpg"}) {
        EXPECT_EQ(FailureOf([&] { OpenForReading(folder.Path(name)); }), kFailureIo) << name;
        EXPECT_EQ(FailureOf([&] { ReadWholeFile(folder.Path(name), 10); }), kFailureIo) << name;
    }
    EXPECT_EQ(PathCallCount().opens, opensBefore);
}

TEST(OpenForReading, TellsWhyItFails)
{
    TempFolder folder;
    folder.Write("closed.jpg");
    folder.Link("circle", "circle");
    EXPECT_EQ(FailureOf([&] { OpenForReading(folder.Path("missing.jpg")); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { OpenForReading(folder.Path("closed.jpg/x")); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { OpenForReading({}); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { OpenForReading(folder.Path("closed.jpg") + QChar(u'\0')); }),
              kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { OpenForReading(folder.Path("circle")); }), kFailureIo);
    folder.Chmod("closed.jpg", 0);
    const Unprivileged now;
    EXPECT_EQ(FailureOf([&] { OpenForReading(folder.Path("closed.jpg")); }), kFailureDenied);
}

TEST(ReadWholeFile, GivesTheContentUpToTheLimit)
{
    TempFolder folder;
    folder.Write("a", "12345");
    folder.Write("empty", "");
    EXPECT_EQ(ReadWholeFile(folder.Path("a"), 5), "12345");
    EXPECT_EQ(ReadWholeFile(folder.Path("empty"), 0), "");
    EXPECT_EQ(FailureOf([&] { ReadWholeFile(folder.Path("a"), 4); }), kFailureLimit);
    EXPECT_EQ(ReadWholeFile(folder.Path("a"), std::numeric_limits<qint64>::max()), "12345");
}

TEST(ReadWholeFile, ReadsFilesThatDoNotKnowTheirSize)
{
    EXPECT_FALSE(ReadWholeFile("/proc/self/status", 1 << 20).isEmpty());
    EXPECT_FALSE(ReadWholeFile("/proc/self/status", std::numeric_limits<qint64>::max()).isEmpty());
    EXPECT_EQ(FailureOf([] { ReadWholeFile("/proc/self/status", 10); }), kFailureLimit);
}

TEST(ReadWholeFile, RefusesAHugeFileWithoutReadingIt)
{
    TempFolder folder;
    folder.Write("huge", "");
    ASSERT_EQ(truncate(folder.Bytes("huge").constData(), qint64(1) << 40), 0);
    EXPECT_EQ(FailureOf([&] { ReadWholeFile(folder.Path("huge"), 1 << 20); }), kFailureLimit);
}

TEST(ListFolder, GivesEveryEntryWithItsType)
{
    TempFolder folder;
    folder.Write("a.jpg");
    folder.Write(".hidden");
    folder.Write("\xFFnot utf8");
    folder.Write("new\nline");
    folder.Write("\xCE\xB1\xCE\xB2.jpg");
    folder.Write("\xD7\x90.jpg");
    folder.MakeFolder("sub");
    folder.Link("a.jpg", "to file");
    folder.Link("sub", "to folder");
    folder.Link("gone", "dangling");
    ASSERT_EQ(mkfifo(folder.Bytes("fifo").constData(), 0644), 0);
    QMap<QString, FileType> types;
    const qint64 statsBefore = PathCallCount().stats;
    ListFolder(folder.Path(), [&](DirEntry&& entry) {
        EXPECT_EQ(entry.hidden, entry.name.startsWith(u'.'));
        types[entry.name] = entry.type;
        return true;
    });
    EXPECT_EQ(PathCallCount().stats - statsBefore, 3) << "only links are looked at";
    EXPECT_EQ(types.size(), 11);
    EXPECT_EQ(types["a.jpg"], FileType::Regular);
    EXPECT_EQ(types[".hidden"], FileType::Regular);
    EXPECT_EQ(types[PathFromBytes("\xFFnot utf8")], FileType::Regular);
    EXPECT_EQ(types["new\nline"], FileType::Regular);
    EXPECT_EQ(types[QStringLiteral("\u03B1\u03B2.jpg")], FileType::Regular);
    EXPECT_EQ(types[QStringLiteral("\u05D0.jpg")], FileType::Regular);
    EXPECT_EQ(types["sub"], FileType::Folder);
    EXPECT_EQ(types["to file"], FileType::Regular);
    EXPECT_EQ(types["to folder"], FileType::Folder);
    EXPECT_EQ(types["dangling"], FileType::Missing);
    EXPECT_EQ(types["fifo"], FileType::Other);
}

TEST(ListFolder, StopsWhenTold)
{
    TempFolder folder;
    for (char name = 'a'; name < 'f'; ++name)
        folder.Write(QByteArray(1, name));
    int seen = 0;
    ListFolder(folder.Path(), [&](DirEntry&&) { return ++seen < 2; });
    EXPECT_EQ(seen, 2);
}

TEST(ListFolder, FailsForWhatCannotBeRead)
{
    TempFolder folder;
    folder.Write("file");
    folder.MakeFolder("closed");
    ASSERT_EQ(mkfifo(folder.Bytes("fifo").constData(), 0644), 0);
    const auto list = [](const QString& path) {
        return FailureOf([&] { ListFolder(path, [](DirEntry&&) { return true; }); });
    };
    EXPECT_EQ(list(folder.Path("missing")), kFailureNoFile);
    EXPECT_EQ(list(folder.Path("file")), kFailureNoFile);
    EXPECT_EQ(list(folder.Path("fifo")), kFailureNoFile);
    EXPECT_EQ(list({}), kFailureNoFile);
    folder.Chmod("closed", 0);
    {
        const Unprivileged now;
        EXPECT_EQ(list(folder.Path("closed")), kFailureDenied);
    }
    folder.Chmod("closed", 0755);
}

TEST(MakeFolder, MakesThoseAboveToo)
{
    TempFolder folder;
    EXPECT_TRUE(MakeFolder(folder.Path("a/b/c/"), 0700));
    EXPECT_EQ(StatPath(folder.Path("a/b/c")).type, FileType::Folder);
    EXPECT_EQ(StatPath(folder.Path("a/b/c")).mode, 0700u);
    EXPECT_TRUE(MakeFolder(folder.Path("a/b")));
    EXPECT_TRUE(MakeFolder("/"));
    folder.Write("file");
    EXPECT_FALSE(MakeFolder(folder.Path("file")));
    EXPECT_FALSE(MakeFolder(folder.Path("file/sub")));
    EXPECT_FALSE(MakeFolder({}));
    folder.Chmod("a", 0555);
    {
        const Unprivileged now;
        EXPECT_FALSE(MakeFolder(folder.Path("a/new")));
        EXPECT_TRUE(MakeFolder(folder.Path("a/b/new")));
    }
    folder.Chmod("a", 0755);
}

TEST(RemoveFile, RemovesFilesAndLinksAlone)
{
    TempFolder folder;
    folder.Write("a");
    folder.Link("a", "link");
    folder.MakeFolder("sub");
    EXPECT_TRUE(RemoveFile(folder.Path("link")));
    EXPECT_EQ(StatPath(folder.Path("a")).type, FileType::Regular);
    EXPECT_TRUE(RemoveFile(folder.Path("a")));
    EXPECT_FALSE(RemoveFile(folder.Path("a")));
    EXPECT_FALSE(RemoveFile(folder.Path("sub")));
    EXPECT_EQ(StatPath(folder.Path("sub")).type, FileType::Folder);
}

TEST(ShownName, IsReadableWhateverTheNameHolds)
{
    EXPECT_EQ(ShownName("/pics/a.jpg"), "\"a.jpg\"");
    EXPECT_EQ(ShownName("/pics/"), "\"pics\"");
    EXPECT_EQ(ShownName("/"), "\"/\"");
    EXPECT_EQ(ShownName("/a\nb"), QStringLiteral("\"a\uFFFDb\""));
    EXPECT_EQ(ShownName(PathFromBytes("/a\xFF")), QStringLiteral("\"a\uFFFD\""));
    EXPECT_EQ(ShownName(QStringLiteral("/\U0001F4F7")), QStringLiteral("\"\U0001F4F7\""));
    EXPECT_LT(ShownName(u'/' + QString(5000, u'x')).size(), 100);
}

} // namespace quillane
