#include "core/expect_failure.h"
#include "core/native_path.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

namespace quillane {

TEST(WriteWholeFile, MakesANewFileUnderTheUmask)
{
    TempFolder folder;
    const mode_t before = umask(027);
    WriteWholeFile(folder.Path("new \xFF.txt"), "content");
    WriteWholeFile(folder.Path("private"), "content", {.newFileMode = 0600, .sync = false});
    umask(before);
    EXPECT_EQ(folder.Content("new \xFF.txt"), "content");
    EXPECT_EQ(StatPath(folder.Path("new \xFF.txt")).mode, 0640u);
    EXPECT_EQ(StatPath(folder.Path("private")).mode, 0600u);
    EXPECT_EQ(folder.Entries().size(), 2) << "nothing is left beside it";
}

TEST(WriteWholeFile, ReplacesAFileAndKeepsItsPermissions)
{
    TempFolder folder;
    folder.Write("a", "old");
    folder.Chmod("a", 0624);
    const FileStat old = StatPath(folder.Path("a"));
    WriteWholeFile(folder.Path("a"), "new");
    EXPECT_EQ(folder.Content("a"), "new");
    EXPECT_EQ(StatPath(folder.Path("a")).mode, 0624u);
    EXPECT_NE(StatPath(folder.Path("a")).inode, old.inode) << "the old file is not written into";
    EXPECT_EQ(folder.Entries(), QStringList{"a"});
}

TEST(WriteWholeFile, WhoeverHasTheOldFileOpenReadsTheOldContent)
{
    TempFolder folder;
    folder.Write("a", "old content");
    const FileHandle old = OpenForReading(folder.Path("a"));
    WriteWholeFile(folder.Path("a"), "new");
    char read[16] = {};
    ASSERT_EQ(pread(old.Fd(), read, sizeof read, 0), 11);
    EXPECT_STREQ(read, "old content");
}

TEST(WriteWholeFile, WritesEmptyAndLargeContent)
{
    TempFolder folder;
    WriteWholeFile(folder.Path("a"), {});
    EXPECT_EQ(StatPath(folder.Path("a")).size, 0);
    WriteWholeFile(folder.Path("a"), QByteArray(5'000'000, 'x'));
    EXPECT_EQ(StatPath(folder.Path("a")).size, 5'000'000);
}

TEST(WriteWholeFile, BehindALinkTheTargetIsReplaced)
{
    TempFolder folder;
    folder.MakeFolder("other");
    folder.Write("other/target", "old");
    folder.Link("other/target", "first");
    folder.Link(folder.Bytes("first"), "second");
    WriteWholeFile(folder.Path("second"), "new");
    EXPECT_EQ(folder.Content("other/target"), "new");
    char target[512] = {};
    EXPECT_GT(readlink(folder.Bytes("second").constData(), target, sizeof target - 1), 0);
    EXPECT_EQ(folder.Bytes("first"), target);
}

TEST(WriteWholeFile, BehindADanglingLinkTheTargetIsMade)
{
    TempFolder folder;
    folder.Link("target", "link");
    WriteWholeFile(folder.Path("link"), "new");
    EXPECT_EQ(folder.Content("target"), "new");
}

TEST(WriteWholeFile, RefusesWhatIsNoFile)
{
    TempFolder folder;
    folder.MakeFolder("sub");
    folder.Link("circle", "circle");
    ASSERT_EQ(mkfifo(folder.Bytes("fifo").constData(), 0644), 0);
    const auto write = [](const QString& path) {
        return FailureOf([&] { WriteWholeFile(path, "x"); });
    };
    EXPECT_EQ(write(folder.Path("sub")), kFailureIo);
    EXPECT_EQ(write(folder.Path("fifo")), kFailureIo);
    EXPECT_EQ(write(folder.Path("circle")), kFailureIo);
    EXPECT_EQ(write("/dev/null"), kFailureIo);
    EXPECT_EQ(write(folder.Path("missing/a")), kFailureNoFile);
    EXPECT_EQ(write({}), kFailureNoFile);
    EXPECT_EQ(write(folder.Path("a") + QChar(u'\0')), kFailureNoFile);
    EXPECT_EQ(folder.Entries(), (QStringList{"circle", "fifo", "sub"}));
}

TEST(WriteWholeFile, ReadOnlyFilesAndFoldersStayAsTheyAre)
{
    TempFolder folder;
    folder.Write("read only", "old");
    folder.Chmod("read only", 0444);
    folder.MakeFolder("closed");
    folder.Write("closed/a", "old");
    folder.Chmod("closed", 0555);
    {
        const Unprivileged now;
        EXPECT_EQ(FailureOf([&] { WriteWholeFile(folder.Path("read only"), "new"); }),
                  kFailureDenied);
        EXPECT_EQ(FailureOf([&] { WriteWholeFile(folder.Path("closed/a"), "new"); }),
                  kFailureDenied);
        EXPECT_EQ(FailureOf([&] { WriteWholeFile(folder.Path("closed/b"), "new"); }),
                  kFailureDenied);
    }
    folder.Chmod("closed", 0755);
    EXPECT_EQ(folder.Content("read only"), "old");
    EXPECT_EQ(folder.Content("closed/a"), "old");
}

TEST(WriteWholeFile, AWriteThatFailsHalfwayLeavesTheOldFileAndNothingElse)
{
    TempFolder folder;
    folder.Write("a", "old");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit small{100'000, 100'000};
        setrlimit(RLIMIT_FSIZE, &small);
        qint32 number = 0;
        try {
            WriteWholeFile(folder.Path("a"), QByteArray(1'000'000, 'x'));
        } catch (const Failure& failure) {
            number = failure.Number();
        }
        _exit(number == kFailureIo ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(folder.Content("a"), "old");
    EXPECT_EQ(folder.Entries(), QStringList{"a"});
}

} // namespace quillane
