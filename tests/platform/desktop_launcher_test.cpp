#include "platform/desktop/desktop_launcher.h"

#include "core/expect_failure.h"
#include "platform/program_log.h"
#include <sys/stat.h>

namespace quillane {

/// A desktop without a session bus: everything goes through programs.
class LauncherWithoutBus : public testing::Test {
protected:
    ProgramLog programs;
    TempFolder pictures;
    ScopedEnvironment bus{"DBUS_SESSION_BUS_ADDRESS"};
    ScopedEnvironment runtime{"XDG_RUNTIME_DIR"};
    DesktopLauncher launcher;
};

TEST_F(LauncherWithoutBus, OpensAFileByXdgOpen)
{
    programs.Offer("xdg-open");
    pictures.Write("a.jpg");
    launcher.OpenPath(pictures.Path("a.jpg"));
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments,
              QList<QByteArray>({pictures.Bytes("a.jpg")}));
}

class OddNames : public LauncherWithoutBus, public testing::WithParamInterface<const char*> { };

TEST_P(OddNames, ReachTheOpenerAsTheyAre)
{
    programs.Offer("xdg-open");
    pictures.Write(GetParam());
    launcher.OpenPath(pictures.Path(GetParam()));
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments,
              QList<QByteArray>({pictures.Bytes(GetParam())}));
}

INSTANTIATE_TEST_SUITE_P(Launcher, OddNames,
                         testing::Values("two blanks .jpg", "line\nbreak.jpg", "\xff\xfe.jpg",
                                         "\xce\xb1\xd7\x90.jpg", "-option.jpg", "$(id);'\".jpg",
                                         "100%25.jpg"));

TEST_F(LauncherWithoutBus, OpensAFolder)
{
    programs.Offer("xdg-open");
    launcher.OpenPath(pictures.Path());
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments, QList<QByteArray>({pictures.Bytes()}));
}

TEST_F(LauncherWithoutBus, RefusesAMissingFileBeforeAnybodyIsAsked)
{
    programs.Offer("xdg-open");
    EXPECT_EQ(FailureOf([&] { launcher.OpenPath(pictures.Path("absent.jpg")); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { launcher.OpenPath({}); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { launcher.FindIn(pictures.Path("absent")); }), kFailureNoFile);
    pictures.Link("absent.jpg", "broken.jpg");
    EXPECT_EQ(FailureOf([&] { launcher.OpenPath(pictures.Path("broken.jpg")); }), kFailureNoFile);
    EXPECT_EQ(programs.CallCount("xdg-open"), 0);
}

TEST_F(LauncherWithoutBus, FailsWithWordsWhereNothingOpensFiles)
{
    pictures.Write("a.jpg");
    EXPECT_NE(FailureOf([&] { launcher.OpenPath(pictures.Path("a.jpg")); }), 0);
    EXPECT_NE(FailureOf([&] { launcher.OpenAddress("https://example.org/"); }), 0);
    EXPECT_NE(FailureOf([&] { launcher.FindIn(pictures.Path()); }), 0);
}

TEST_F(LauncherWithoutBus, OpensAnAddress)
{
    programs.Offer("xdg-open");
    const QString address = "mailto:help@example.org?subject=Quillane%20Help%20Request";
    launcher.OpenAddress(address);
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments, QList<QByteArray>({address.toUtf8()}));
}

TEST_F(LauncherWithoutBus, FindStartsTheSearchProgram)
{
    programs.Offer("xdg-open");
    programs.Offer("catfish");
    launcher.FindIn(pictures.Path());
    EXPECT_EQ(programs.WaitForCall("catfish").arguments,
              QList<QByteArray>({"--path=" + pictures.Bytes()}));
    EXPECT_EQ(programs.CallCount("xdg-open"), 0);
}

TEST_F(LauncherWithoutBus, FindOpensTheFolderWhereThereIsNoSearch)
{
    programs.Offer("xdg-open");
    launcher.FindIn(pictures.Path());
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments, QList<QByteArray>({pictures.Bytes()}));
}

TEST_F(LauncherWithoutBus, RunStartsAProgramOfPathOrByItsPath)
{
    programs.Offer("tool");
    programs.Offer("second");
    pictures.MakeFolder("in here");
    launcher.Run("tool", {"-x", PathFromBytes("\xff a")}, pictures.Path("in here"));
    const ProgramCall call = programs.WaitForCall("tool");
    EXPECT_EQ(call.arguments, QList<QByteArray>({"-x", "\xff a"}));
    EXPECT_EQ(call.folder, pictures.Bytes("in here"));
    launcher.Run(programs.Folder().Path("second"), {}, {});
    EXPECT_TRUE(programs.WaitForCall("second").arguments.isEmpty());
}

TEST_F(LauncherWithoutBus, RunRefusesWhatIsNotThere)
{
    programs.Offer("tool");
    EXPECT_EQ(FailureOf([&] { launcher.Run("absent", {}, {}); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { launcher.Run({}, {}, {}); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { launcher.Run(pictures.Path("absent"), {}, {}); }), kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { launcher.Run("tool", {}, pictures.Path("absent")); }),
              kFailureNoFile);
    EXPECT_EQ(programs.CallCount("tool"), 0);
}

TEST_F(LauncherWithoutBus, RunTellsHowAProgramFailed)
{
    programs.Offer("tool", "echo 'cannot open it' >&2; exit 4");
    programs.Offer("good");
    QStringList told;
    launcher.Run("good", {}, {}, [&](const QString& words) { told.append(words); });
    launcher.Run("tool", {"a b"}, pictures.Path(),
                 [&](const QString& words) { told.append(words); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return launcher.children().isEmpty(); }, kTestPatience));
    EXPECT_EQ(told,
              QStringList(programs.Folder().Path("tool")
                          + QStringLiteral(" ended with error 4: cannot open it")));
    EXPECT_EQ(programs.WaitForCall("tool").arguments, QList<QByteArray>({"a b"}));
    EXPECT_EQ(programs.CallCount("good"), 1);
}

TEST_F(LauncherWithoutBus, RunTellsThatAProgramWasKilled)
{
    programs.Offer("tool", "kill -KILL $$");
    QStringList told;
    launcher.Run("tool", {}, {}, [&](const QString& words) { told.append(words); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return launcher.children().isEmpty(); }, kTestPatience));
    EXPECT_EQ(told,
              QStringList(programs.Folder().Path("tool")
                          + QStringLiteral(" was ended by the system: Killed.")));
}

TEST_F(LauncherWithoutBus, RunRefusesWhatMayNotBeRun)
{
    pictures.Write("plain.sh", "#!/bin/sh\n");
    pictures.Chmod("plain.sh", 0644);
    try {
        launcher.Run(pictures.Path("plain.sh"), {}, {}, [](const QString&) { ADD_FAILURE(); });
        ADD_FAILURE();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), kFailureDenied);
        EXPECT_EQ(failure.Description(),
                  pictures.Path("plain.sh") + QStringLiteral(" may not be run as a program."));
    }
}

TEST_F(LauncherWithoutBus, HundredsOfLaunchesLeaveNothingBehind)
{
    pictures.Write("quick", "#!/bin/sh\nexit 1\n");
    pictures.Chmod("quick", 0755);
    int ended = 0;
    const auto launch = [&] {
        launcher.Run(pictures.Path("quick"), {}, {}, [&](const QString&) { ++ended; });
    };
    launch();
    ASSERT_TRUE(QTest::qWaitFor([&] { return launcher.children().isEmpty(); }, kTestPatience));
    const int open = OpenDescriptors();
    const QByteArray children = ChildProcesses();
    for (int i = 0; i < 300; ++i) {
        launch();
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return launcher.children().isEmpty(); }, kTestPatience));
    EXPECT_EQ(ended, 301);
    EXPECT_LE(OpenDescriptors(), open); // what tests before this one left may close meanwhile
    EXPECT_EQ(ChildProcesses(), children);
}

TEST_F(LauncherWithoutBus, AProgramThatOutlivesTheLauncherLeavesNoZombie)
{
    pictures.Write("patient", "#!/bin/sh\nread -r line < gate\n");
    pictures.Chmod("patient", 0755);
    ASSERT_EQ(mkfifo(pictures.Bytes("gate").constData(), 0600), 0);
    const QByteArray children = ChildProcesses();
    {
        DesktopLauncher brief; // its end waits for nobody
        brief.Run(pictures.Path("patient"), {}, pictures.Path(),
                  [](const QString&) { ADD_FAILURE(); });
    }
    EXPECT_NE(ChildProcesses(), children);
    pictures.Write("gate", "through\n");
    EXPECT_TRUE(QTest::qWaitFor([&] { return ChildProcesses() == children; }, kTestPatience));
}

TEST_F(LauncherWithoutBus, WhatAToolSaysAloudIsNotHeldBack)
{
    // Two megabytes more than are kept of a complaint: the tool must not see an error.
    programs.Offer("tool", "/usr/bin/head -c 3000000 /dev/zero || exit 9; exit 0");
    bool told = false;
    launcher.Run("tool", {}, {}, [&](const QString&) { told = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return launcher.children().isEmpty(); }, kTestPatience));
    EXPECT_FALSE(told);
}

TEST(FileAddress, EscapesEveryByteThatIsNotPlain)
{
    EXPECT_EQ(FileAddress("/a/B-1_2.~z"), "file:///a/B-1_2.~z");
    EXPECT_EQ(FileAddress(PathFromBytes("/a b/\xff%\n\xce\xb1?#")),
              "file:///a%20b/%FF%25%0A%CE%B1%3F%23");
}

} // namespace quillane
