#include "platform/desktop/desktop_mail.h"

#include "platform/desktop/portal_request.h"
#include "platform/fake/fake_platform.h"
#include "platform/program_log.h"
#include "platform/send_by_mail.h"
#include "platform/stub_desktop.h"
#include <memory>
#include <sys/stat.h>

namespace quillane {

class MailTest : public testing::Test {
protected:
    MailTest()
    {
        pictures.Write("a b.jpg", "first");
        pictures.Write("c.png", "second");
    }
    void StartPortal(int response)
    {
        portal = std::make_unique<StubService>("org.freedesktop.portal.Desktop",
                                               "/org/freedesktop/portal/desktop");
        portal->response = response;
    }
    /// Composes and waits for how it ends.
    std::optional<Failure> Compose(const QStringList& files)
    {
        int ends = 0;
        std::optional<Failure> failure;
        service.Compose(files, [&](const std::optional<Failure>& end) {
            ++ends;
            failure = end;
        });
        EXPECT_EQ(ends, 0) << "told before the caller goes on";
        EXPECT_TRUE(QTest::qWaitFor([&] { return ends > 0; }, kTestPatience));
        EXPECT_TRUE(QTest::qWaitFor([&] { return service.findChild<PortalRequest*>() == nullptr; },
                                    kTestPatience));
        EXPECT_EQ(ends, 1);
        return failure;
    }
    QStringList Both() const { return {pictures.Path("c.png"), pictures.Path("a b.jpg")}; }

    ScopedEnvironment address{"DBUS_SESSION_BUS_ADDRESS", PrivateBus::Address()};
    ProgramLog programs;
    TempFolder pictures;
    DesktopMail service;
    std::unique_ptr<StubService> portal;
};

TEST_F(MailTest, ThePortalGetsTheOpenFilesInOrderAndNothingElse)
{
    StartPortal(0);
    programs.Offer("xdg-email");
    EXPECT_FALSE(Compose(Both()).has_value());
    ASSERT_EQ(portal->calls.size(), 1);
    const ServiceCall& call = portal->calls[0];
    EXPECT_EQ(call.method, "ComposeEmail");
    EXPECT_EQ(call.arguments[0], "");
    EXPECT_EQ(call.attachments, QList<QByteArray>({"second", "first"}));
    QStringList options = call.options.keys();
    options.sort();
    EXPECT_EQ(options, QStringList({"attachment_fds", "handle_token"}));
    EXPECT_EQ(programs.CallCount("xdg-email"), 0);
}

TEST_F(MailTest, AMailWithoutFilesIsComposedToo)
{
    StartPortal(0);
    EXPECT_FALSE(Compose({}).has_value());
    ASSERT_EQ(portal->calls.size(), 1);
    EXPECT_TRUE(portal->calls[0].attachments.isEmpty());
    portal.reset();
    programs.Offer("xdg-email");
    EXPECT_FALSE(Compose({}).has_value());
    EXPECT_EQ(programs.Calls("xdg-email"), QList<QByteArray>({"mailto:"}));
}

TEST_F(MailTest, APersonsCancelIsAFailureAndNothingElseOpens)
{
    StartPortal(1);
    programs.Offer("xdg-email");
    const std::optional<Failure> failure = Compose(Both());
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->Number(), kFailureCancelled);
    EXPECT_EQ(programs.CallCount("xdg-email"), 0);
}

TEST_F(MailTest, WithoutAPortalXdgEmailGetsThePaths)
{
    programs.Offer("xdg-email");
    EXPECT_FALSE(Compose(Both()).has_value());
    EXPECT_EQ(programs.Calls("xdg-email"),
              QList<QByteArray>({"--attach|" + pictures.Bytes("c.png") + "|--attach|"
                                 + pictures.Bytes("a b.jpg")}));
}

TEST_F(MailTest, APortalWithoutMailIsFollowedByXdgEmail)
{
    StartPortal(0);
    portal->lacks = {"org.freedesktop.portal.Email"};
    programs.Offer("xdg-email");
    EXPECT_FALSE(Compose(Both()).has_value());
    EXPECT_EQ(programs.CallCount("xdg-email"), 1);
}

TEST_F(MailTest, APortalThatFailsIsFollowedByXdgEmail)
{
    StartPortal(2);
    programs.Offer("xdg-email");
    EXPECT_FALSE(Compose(Both()).has_value());
    EXPECT_EQ(portal->calls.size(), 1);
    EXPECT_EQ(programs.CallCount("xdg-email"), 1);
}

TEST_F(MailTest, APortalThatNeverRepliesIsFollowedByXdgEmail)
{
    StartPortal(0);
    portal->mute = true;
    programs.Offer("xdg-email");
    EXPECT_FALSE(Compose(Both()).has_value());
    EXPECT_EQ(portal->calls.size(), 1);
    EXPECT_EQ(programs.CallCount("xdg-email"), 1);
}

TEST_F(MailTest, OddNamesGoOverAsTheyAreOnBothRoads)
{
    const QList<QByteArray> names{"two  blanks .jpg", "\xc3\xa4\xc3\xb6\xc3\xbc.jpg",
                                  "line\nbreak.jpg",  "-attach.jpg",
                                  "\xff\xfe.jpg",     "a,b;$(id)'\".jpg"};
    QStringList paths;
    for (const QByteArray& name : names) {
        pictures.Write(name, "in " + name);
        paths.append(pictures.Path(name));
    }
    StartPortal(0);
    programs.Offer("xdg-email");
    EXPECT_FALSE(Compose(paths).has_value());
    ASSERT_EQ(portal->calls.size(), 1);
    QList<QByteArray> contents, words;
    for (const QByteArray& name : names) {
        contents.append("in " + name);
        words += {"--attach", pictures.Bytes(name)};
    }
    EXPECT_EQ(portal->calls[0].attachments, contents);
    portal.reset();
    EXPECT_FALSE(Compose(paths).has_value());
    EXPECT_EQ(programs.WaitForCall("xdg-email").arguments, words);
}

TEST_F(MailTest, NoFileStaysOpen)
{
    StartPortal(0);
    EXPECT_FALSE(Compose(Both()).has_value());
    portal->calls.clear();
    const int before = OpenDescriptors();
    for (int i = 0; i < 20; ++i) {
        EXPECT_FALSE(Compose(Both()).has_value());
        portal->calls.clear();
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return OpenDescriptors() <= before; }, kTestPatience));
}

TEST_F(MailTest, TooManyFilesForThePortalAloneAreRefusedWithWhatToDo)
{
    StartPortal(0);
    QStringList many;
    many.fill(pictures.Path("c.png"), 17);
    const std::optional<Failure> failure = Compose(many);
    ASSERT_TRUE(failure.has_value());
    EXPECT_TRUE(failure->Description().contains(QStringLiteral("More than 16 files")))
        << failure->Description().toStdString();
    EXPECT_TRUE(portal->calls.isEmpty());
}

TEST_F(MailTest, MoreFilesThanAMessageTakesGoToXdgEmail)
{
    StartPortal(0);
    programs.Offer("xdg-email");
    QStringList many;
    for (int i = 0; i < 17; ++i) {
        many.append(pictures.Path("c.png"));
    }
    EXPECT_FALSE(Compose(many).has_value());
    EXPECT_TRUE(portal->calls.isEmpty());
    ASSERT_EQ(programs.CallCount("xdg-email"), 1);
    EXPECT_EQ(programs.Calls("xdg-email")[0].count("--attach"), 17);
}

TEST_F(MailTest, AsManyFilesAsAMessageTakesGoToThePortal)
{
    StartPortal(0);
    QStringList many;
    for (int i = 0; i < 16; ++i) {
        many.append(pictures.Path("c.png"));
    }
    EXPECT_FALSE(Compose(many).has_value());
    ASSERT_EQ(portal->calls.size(), 1);
    EXPECT_EQ(portal->calls[0].attachments.size(), 16);
}

TEST_F(MailTest, AMissingFileIsRefusedBeforeAnybodyIsAsked)
{
    StartPortal(0);
    programs.Offer("xdg-email");
    for (const bool withPortal : {true, false}) {
        if (!withPortal) {
            portal.reset();
        }
        const std::optional<Failure> failure =
            Compose({pictures.Path("c.png"), pictures.Path("absent.jpg")});
        ASSERT_TRUE(failure.has_value());
        EXPECT_EQ(failure->Number(), kFailureNoFile);
        EXPECT_TRUE(failure->Description().contains(QStringLiteral("absent.jpg")));
        EXPECT_TRUE(!portal || portal->calls.isEmpty());
    }
    EXPECT_EQ(programs.CallCount("xdg-email"), 0);
}

TEST_F(MailTest, AFifoIsRefusedAndNotWaitedFor)
{
    ASSERT_EQ(mkfifo(pictures.Bytes("pipe.jpg").constData(), 0600), 0);
    EXPECT_TRUE(Compose({pictures.Path("pipe.jpg")}).has_value());
}

TEST_F(MailTest, WithoutAnyMailProgramItSaysSo)
{
    const std::optional<Failure> failure = Compose(Both());
    ASSERT_TRUE(failure.has_value());
    EXPECT_TRUE(failure->Description().startsWith(QStringLiteral("No mail program was found.")));
}

TEST_F(MailTest, WhatXdgEmailEndsWithIsPutIntoWords)
{
    const std::pair<int, const char*> ends[] = {{1, "ended with error 1: why"},
                                                {2, "A file to be sent is not there any more."},
                                                {3, "No mail program took the files."},
                                                {4, "No mail program took the files."}};
    for (const auto& [code, words] : ends) {
        programs.Folder().Write("xdg-email",
                                "#!/bin/sh\necho why >&2\nexit " + QByteArray::number(code) + "\n");
        programs.Folder().Chmod("xdg-email", 0755);
        const std::optional<Failure> failure = Compose(Both());
        ASSERT_TRUE(failure.has_value()) << code;
        EXPECT_TRUE(failure->Description().contains(QLatin1String(words)))
            << failure->Description().toStdString();
    }
}

TEST_F(MailTest, NothingIsToldAfterTheServiceHasGone)
{
    bool told = false;
    {
        DesktopMail brief;
        brief.Compose(Both(), [&](const std::optional<Failure>&) { told = true; });
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(told);
}

TEST(SendByMail, TakesTheSelectedEntriesInListOrder)
{
    FakeMail mail;
    SendByMail({"/c", "/a", "/b"}, {true, false, true}, mail, {});
    SendByMail({"/c", "/a"}, {false, false}, mail, {});
    SendByMail({"/c", "/a"}, {true}, mail, {}); // a flag that is not there counts as off
    EXPECT_EQ(mail.composed,
              QVector<QStringList>({QStringList({"/c", "/b"}), QStringList(), QStringList("/c")}));
}

} // namespace quillane
