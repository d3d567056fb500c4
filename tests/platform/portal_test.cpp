#include "core/expect_failure.h"
#include "platform/desktop/desktop_launcher.h"
#include "platform/desktop/portal_request.h"
#include "platform/program_log.h"
#include "platform/stub_desktop.h"
#include <memory>

namespace quillane {

class DesktopWithBus : public testing::Test {
protected:
    DesktopWithBus() { pictures.Write("a.jpg"); }
    void StartPortal()
    {
        portal = std::make_unique<StubService>("org.freedesktop.portal.Desktop",
                                               "/org/freedesktop/portal/desktop");
    }
    void StartFileManager()
    {
        manager = std::make_unique<StubService>("org.freedesktop.FileManager1",
                                                "/org/freedesktop/FileManager1");
    }
    // No request is under way any more.
    bool WaitForEnd()
    {
        return QTest::qWaitFor([&] { return launcher.children().isEmpty(); }, kTestPatience);
    }

    // Started before PATH is the test's own.
    ScopedEnvironment address{"DBUS_SESSION_BUS_ADDRESS", PrivateBus::Address()};
    ProgramLog programs;
    TempFolder pictures;
    DesktopLauncher launcher;
    std::unique_ptr<StubService> portal, manager;
};

TEST_F(DesktopWithBus, PortalGetsTheOpenFileAndXdgOpenIsLeftAlone)
{
    StartPortal();
    programs.Offer("xdg-open");
    const QByteArray name = "odd \xff\n name.jpg";
    pictures.Write(name);
    portal->response = 0;
    launcher.OpenPath(pictures.Path(name));
    ASSERT_TRUE(WaitForEnd());
    ASSERT_EQ(portal->calls.size(), 1);
    EXPECT_EQ(portal->calls[0].method, "OpenFile");
    EXPECT_EQ(portal->calls[0].file, pictures.Bytes(name));
    EXPECT_EQ(portal->calls[0].arguments[0], "");
    EXPECT_TRUE(portal->calls[0].requestPath.contains("/quillane"));
    EXPECT_EQ(programs.CallCount("xdg-open"), 0);
}

TEST_F(DesktopWithBus, PortalOpensAFolderItselfAndNotTheOneAround)
{
    StartPortal();
    portal->response = 0;
    pictures.MakeFolder("in");
    launcher.OpenPath(pictures.Path("in/"));
    ASSERT_TRUE(WaitForEnd());
    ASSERT_EQ(portal->calls.size(), 1);
    EXPECT_EQ(portal->calls[0].method, "OpenFile");
    EXPECT_EQ(portal->calls[0].file, pictures.Bytes("in"));
}

TEST_F(DesktopWithBus, PortalOpensAnAddress)
{
    StartPortal();
    portal->response = 0;
    launcher.OpenAddress("https://example.org/help");
    ASSERT_TRUE(WaitForEnd());
    ASSERT_EQ(portal->calls.size(), 1);
    EXPECT_EQ(portal->calls[0].method, "OpenURI");
    EXPECT_EQ(portal->calls[0].arguments[1], "https://example.org/help");
}

TEST_F(DesktopWithBus, AnAnswerAheadOfTheReplyIsHeard)
{
    // Code 2 says that it failed: only a listener hears it, and then xdg-open has its turn.
    StartPortal();
    programs.Offer("xdg-open");
    portal->response = 2;
    launcher.OpenPath(pictures.Path("a.jpg"));
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments,
              QList<QByteArray>({pictures.Bytes("a.jpg")}));
    EXPECT_TRUE(WaitForEnd());
    EXPECT_EQ(portal->calls.size(), 1);
}

TEST_F(DesktopWithBus, AClosedChooserOpensNothingElse)
{
    StartPortal();
    programs.Offer("xdg-open");
    portal->response = 1;
    launcher.OpenPath(pictures.Path("a.jpg"));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(programs.CallCount("xdg-open"), 0);
}

TEST_F(DesktopWithBus, ARefusingPortalIsFollowedByXdgOpen)
{
    StartPortal();
    programs.Offer("xdg-open");
    portal->refuses = true;
    launcher.OpenPath(pictures.Path("a.jpg"));
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments,
              QList<QByteArray>({pictures.Bytes("a.jpg")}));
    EXPECT_EQ(portal->calls.size(), 1);
}

TEST_F(DesktopWithBus, APortalThatNeverRepliesIsFollowedByXdgOpen)
{
    StartPortal();
    portal->mute = true;
    programs.Offer("xdg-open");
    launcher.OpenPath(pictures.Path("a.jpg"));
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments,
              QList<QByteArray>({pictures.Bytes("a.jpg")}));
    EXPECT_EQ(portal->calls.size(), 1);
}

TEST_F(DesktopWithBus, WithoutAPortalXdgOpenIsTaken)
{
    programs.Offer("xdg-open");
    launcher.OpenPath(pictures.Path("a.jpg"));
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments,
              QList<QByteArray>({pictures.Bytes("a.jpg")}));
}

TEST_F(DesktopWithBus, NeitherPortalNorXdgOpenFailsAtOnceWithWords)
{
    EXPECT_FALSE(OpenerPortalIsThere());
    EXPECT_NE(FailureOf([&] { launcher.OpenPath(pictures.Path("a.jpg")); }), 0);
    EXPECT_NE(FailureOf([&] { launcher.OpenAddress("https://example.org/"); }), 0);
    EXPECT_NE(FailureOf([&] { launcher.FindIn(pictures.Path()); }), 0);
}

TEST_F(DesktopWithBus, ThePortalAloneIsEnough)
{
    StartPortal();
    EXPECT_TRUE(OpenerPortalIsThere());
    portal->response = 0;
    launcher.OpenPath(pictures.Path("a.jpg"));
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(portal->calls.size(), 1);
}

TEST_F(DesktopWithBus, MissingFilesNeverReachThePortal)
{
    StartPortal();
    EXPECT_EQ(FailureOf([&] { launcher.OpenPath(pictures.Path("absent.jpg")); }), kFailureNoFile);
    EXPECT_TRUE(launcher.children().isEmpty());
    EXPECT_TRUE(portal->calls.isEmpty());
}

TEST_F(DesktopWithBus, RequestsStillUnderWayEndWithTheLauncher)
{
    StartPortal();
    {
        DesktopLauncher brief;
        brief.OpenPath(pictures.Path("a.jpg"));
        EXPECT_FALSE(brief.children().isEmpty());
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return !portal->calls.isEmpty(); }, kTestPatience));
}

TEST_F(DesktopWithBus, FindAsksTheFileManagerToShowTheFolder)
{
    StartFileManager();
    programs.Offer("xdg-open");
    const QByteArray name = "odd \xff name";
    pictures.MakeFolder(name);
    launcher.FindIn(pictures.Path(name));
    ASSERT_TRUE(WaitForEnd());
    ASSERT_EQ(manager->calls.size(), 1);
    EXPECT_EQ(manager->calls[0].method, "ShowFolders");
    EXPECT_EQ(manager->calls[0].arguments[0].toStringList(),
              QStringList(QString::fromLatin1("file://" + pictures.Bytes() + "odd%20%FF%20name")));
    EXPECT_EQ(manager->calls[0].arguments[1], "");
    EXPECT_EQ(programs.CallCount("xdg-open"), 0);
}

TEST_F(DesktopWithBus, FindOpensTheFolderWhereNoFileManagerAnswers)
{
    programs.Offer("xdg-open");
    launcher.FindIn(pictures.Path());
    EXPECT_EQ(programs.WaitForCall("xdg-open").arguments, QList<QByteArray>({pictures.Bytes()}));
}

TEST_F(DesktopWithBus, APortalThatNeverAnswersIsNotWaitedForForEver)
{
    StartPortal();
    QList<PortalEnd> ends;
    PortalCall call{"OpenURI", "OpenURI", {QString(), "https://example.org/"}, {}, 100};
    PortalRequest::Send(
        call, [&](PortalEnd end) { ends.append(end); }, &launcher);
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(ends, QList<PortalEnd>({PortalEnd::Silent}));
    ASSERT_EQ(portal->calls.size(), 1);
    // What comes later finds nobody.
    portal->response = 0;
    portal->Answer(portal->calls[0], portal->caller);
    QCoreApplication::processEvents();
    EXPECT_EQ(ends.size(), 1);
}

TEST(SessionBus, IsOnlyThereWhenTheEnvironmentSaysSo)
{
    const TempFolder folder;
    const ScopedEnvironment address("DBUS_SESSION_BUS_ADDRESS");
    {
        const ScopedEnvironment runtime("XDG_RUNTIME_DIR");
        EXPECT_FALSE(SessionBusIsThere());
    }
    const ScopedEnvironment runtime("XDG_RUNTIME_DIR", folder.Bytes());
    EXPECT_FALSE(SessionBusIsThere());
    folder.Write("bus");
    EXPECT_TRUE(SessionBusIsThere());
    const ScopedEnvironment set("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    EXPECT_TRUE(SessionBusIsThere());
}

} // namespace quillane
