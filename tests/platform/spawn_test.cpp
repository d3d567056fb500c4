#include "platform/desktop/spawn.h"

#include "core/expect_failure.h"
#include "core/unprivileged.h"
#include "platform/desktop/find_program.h"
#include "platform/program_log.h"
#include <csignal>
#include <pthread.h>

namespace quillane {

TEST(FindProgram, TakesTheFirstExecutableFileOfPath)
{
    const TempFolder first, second;
    first.MakeFolder("folder");
    first.Write("plain");
    first.Chmod("plain", 0644);
    second.Write("plain");
    second.Chmod("plain", 0755);
    second.Write("folder");
    second.Chmod("folder", 0755);
    const ScopedEnvironment path(
        "PATH", first.Bytes("missing") + "::" + first.Bytes() + ":" + second.Bytes());
    EXPECT_EQ(FindProgram("plain"), second.Path("plain"));
    EXPECT_EQ(FindProgram("folder"), second.Path("folder"));
    EXPECT_EQ(FindProgram("absent"), "");
    EXPECT_EQ(FindProgram(""), "");
}

TEST(FindProgram, NeverLooksWhereTheProgramHappensToStand)
{
    const TempFolder folder;
    folder.Write("tool");
    folder.Chmod("tool", 0755);
    const QByteArray before = QDir::currentPath().toUtf8();
    ASSERT_EQ(chdir(folder.Bytes().constData()), 0);
    for (const char* relative : {"", ".", ":", "./"}) {
        const ScopedEnvironment path("PATH", relative);
        EXPECT_EQ(FindProgram("tool"), "") << relative;
    }
    ASSERT_EQ(chdir(before.constData()), 0);
}

TEST(SpawnDetached, GivesArgumentsAsBytes)
{
    const ProgramLog programs;
    programs.Offer("tool");
    const QList<QByteArray> arguments{
        "", "a b", "line\nbreak", "\xff\xfe", "$HOME `id` \"'\\", "\xce\xb1\xd7\x90"};
    SpawnDetached(programs.Folder().Path("tool"), arguments);
    EXPECT_EQ(programs.WaitForCall("tool").arguments, arguments);
}

TEST(SpawnDetached, StartsInTheFolderAskedFor)
{
    const ProgramLog programs;
    programs.Offer("tool");
    const TempFolder folder;
    const QByteArray name = "with blank \xff";
    folder.MakeFolder(name);
    SpawnDetached(programs.Folder().Path("tool"), {}, folder.Path(name));
    EXPECT_EQ(programs.WaitForCall("tool").folder, folder.Bytes(name));
}

TEST(SpawnDetached, RefusesWithWordsWhatCannotBeStarted)
{
    const TempFolder folder;
    folder.Write("text", "no program");
    folder.Chmod("text", 0755);
    folder.Write("locked", "#!/bin/sh\n");
    folder.Chmod("locked", 0644);
    EXPECT_EQ(FailureOf([&] { SpawnDetached(folder.Path("absent"), {}); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { SpawnDetached(folder.Path("locked"), {}); }), kFailureDenied);
    EXPECT_EQ(FailureOf([&] { SpawnDetached(folder.Path(), {}); }), kFailureDenied);
    EXPECT_EQ(FailureOf([&] { SpawnDetached(folder.Path("text"), {}); }), kFailureGeneral);
    EXPECT_EQ(FailureOf([&] { SpawnDetached("/bin/sh", {}, folder.Path("absent")); }),
              kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { SpawnDetached("/bin/sh", {}, folder.Path("text")); }),
              kFailureNoFile);
}

TEST(SpawnDetached, RefusesAFolderThatMayNotBeEntered)
{
    const TempFolder folder;
    folder.MakeFolder("closed");
    folder.Chmod("closed", 0);
    const Unprivileged person;
    EXPECT_NE(FailureOf([&] { SpawnDetached("/bin/sh", {}, folder.Path("closed")); }), 0);
}

QString WordsOfStart(const QString& program, const QString& folder = {})
{
    try {
        SpawnDetached(program, {}, folder);
    } catch (const Failure& failure) {
        return failure.Description();
    }
    return {};
}

TEST(SpawnDetached, BlamesTheFolderThatMayNotBeEnteredAndNotTheProgram)
{
    const TempFolder folder;
    folder.MakeFolder("closed");
    folder.Chmod("closed", 0);
    const Unprivileged person;
    EXPECT_EQ(WordsOfStart("/bin/sh", folder.Path("closed")),
              "The folder " + folder.Path("closed") + " may not be entered.");
}

TEST(SpawnDetached, SaysThatAScriptsInterpreterIsMissing)
{
    const TempFolder folder;
    folder.Write("from elsewhere.sh", "#!/bin/sh\r\nexit 0\r\n");
    folder.Chmod("from elsewhere.sh", 0755);
    folder.Write("script", "#!/absent/interpreter\n");
    folder.Chmod("script", 0755);
    for (const char* name : {"from elsewhere.sh", "script"}) {
        EXPECT_EQ(WordsOfStart(folder.Path(name)),
                  folder.Path(name)
                      + " needs another program to run, which is not there; a "
                        "script names it in its first line.");
    }
    EXPECT_EQ(WordsOfStart(folder.Path("absent")),
              "There is no program " + folder.Path("absent") + ".");
}

TEST(SpawnDetached, SaysWhatAScriptWithoutAFirstLineLacks)
{
    const TempFolder folder;
    folder.Write("script", "exit 0\n");
    folder.Chmod("script", 0755);
    EXPECT_EQ(WordsOfStart(folder.Path("script")),
              folder.Path("script")
                  + " is no program that this computer can run. A script needs "
                    "a first line such as \"#!/bin/sh\".");
}

// Writes who it is: process, session, blocked signals; then ends.
void WriteSelfPortrait(const TempFolder& folder)
{
    folder.Write(
        "portrait",
        "#!/bin/sh\n"
        "exec > '"
            + folder.Bytes("out.part")
            + "'\n"
              "read -r line < /proc/$$/stat\n"
              "echo \"$line\"\n"
              "while read -r line; do case $line in SigBlk*|SigIgn*) echo \"$line\";; esac; "
              "done < /proc/$$/status\n"
              "exec /bin/mv '"
            + folder.Bytes("out.part") + "' '" + folder.Bytes("out") + "'\n");
    folder.Chmod("portrait", 0755);
    SpawnDetached(folder.Path("portrait"), {});
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return StatPath(folder.Path("out")).type == FileType::Regular; }, kTestPatience));
}

TEST(SpawnDetached, ProgramHasASessionOfItsOwnAndNothingIsLeftOfIt)
{
    const TempFolder folder;
    WriteSelfPortrait(folder);
    const QList<QByteArray> stat = folder.Content("out").split(' ');
    ASSERT_GT(stat.size(), 6);
    EXPECT_EQ(stat[5], stat[0]); // it leads its session
    EXPECT_NE(stat[5].toLongLong(), getsid(0));
    const QByteArray process = "/proc/" + stat[0];
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return StatPath(PathFromBytes(process)).type == FileType::Missing; }, kTestPatience));
}

TEST(SpawnDetached, ProgramGetsSignalsThatAreBlockedOrIgnoredHere)
{
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ASSERT_EQ(pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
    const auto ignored = signal(SIGPIPE, SIG_IGN);
    const TempFolder folder;
    WriteSelfPortrait(folder);
    signal(SIGPIPE, ignored);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    const QByteArray portrait = folder.Content("out");
    const auto mask = [&](const QByteArray& name) {
        const qsizetype at = portrait.indexOf(name);
        EXPECT_GE(at, 0);
        return portrait.mid(at + name.size())
            .split('\n')
            .constFirst()
            .trimmed()
            .toULongLong(nullptr, 16);
    };
    EXPECT_EQ(mask("SigBlk:") & 1ull << (SIGTERM - 1), 0u);
    EXPECT_EQ(mask("SigIgn:") & 1ull << (SIGPIPE - 1), 0u);
}

} // namespace quillane
