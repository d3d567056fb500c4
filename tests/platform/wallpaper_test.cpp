#include "platform/desktop/desktop_wallpaper.h"

#include "core/expect_failure.h"
#include "platform/desktop/desktop_launcher.h"
#include "platform/program_log.h"
#include "platform/stub_desktop.h"
#include <memory>

namespace quillane {

/// A desktop with a session bus, on which nobody answers yet, and a PATH without programs.
class WallpaperTest : public testing::Test {
protected:
    WallpaperTest() { pictures.Write("Wallpaper one.bmp", "BM picture"); }
    void StartPortal(int response)
    {
        portal = std::make_unique<StubService>("org.freedesktop.portal.Desktop",
                                               "/org/freedesktop/portal/desktop");
        portal->response = response;
    }
    /// Sets the picture and waits for how it ends.
    std::optional<Failure> Set()
    {
        int ends = 0;
        std::optional<Failure> failure;
        service.Set(Picture(), [&](const std::optional<Failure>& end) {
            ++ends;
            failure = end;
        });
        EXPECT_EQ(ends, 0) << "told before the caller goes on";
        EXPECT_TRUE(QTest::qWaitFor([&] { return service.children().isEmpty(); }, kTestPatience));
        EXPECT_EQ(ends, 1);
        return failure;
    }
    QString Picture() const { return pictures.Path("Wallpaper one.bmp"); }
    QByteArray Address() const { return "file://" + pictures.Bytes("Wallpaper%20one.bmp"); }
    void Desktop(const QByteArray& name) { desktop.emplace("XDG_CURRENT_DESKTOP", name); }

    ScopedEnvironment address{"DBUS_SESSION_BUS_ADDRESS", PrivateBus::Address()};
    std::optional<ScopedEnvironment> desktop{"XDG_CURRENT_DESKTOP"};
    ProgramLog programs;
    TempFolder pictures;
    DesktopWallpaper service;
    std::unique_ptr<StubService> portal;
};

TEST_F(WallpaperTest, ThePortalGetsTheOpenFileAndNoCommandRuns)
{
    StartPortal(0);
    programs.Offer("gsettings");
    EXPECT_FALSE(Set().has_value());
    ASSERT_EQ(portal->calls.size(), 1);
    EXPECT_EQ(portal->calls[0].method, "SetWallpaperFile");
    EXPECT_EQ(portal->calls[0].arguments[0], "");
    EXPECT_EQ(portal->calls[0].file, pictures.Bytes("Wallpaper one.bmp"));
    EXPECT_EQ(portal->calls[0].options.value("set-on"), "background");
    EXPECT_EQ(portal->calls[0].options.value("show-preview"), false);
    EXPECT_EQ(programs.CallCount("gsettings"), 0);
}

TEST_F(WallpaperTest, AnAnswerAtAPathOfThePortalsChoiceIsHeard)
{
    StartPortal(0);
    portal->ownPath = true;
    int ends = 0;
    service.Set(Picture(), [&](const std::optional<Failure>& end) {
        EXPECT_FALSE(end.has_value());
        ++ends;
    });
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            // It answers until somebody listens at its path.
            if (!portal->calls.isEmpty() && !portal->caller.isEmpty()) {
                portal->Answer(portal->calls[0], portal->caller);
            }
            return ends > 0;
        },
        kTestPatience));
    EXPECT_EQ(ends, 1);
}

TEST_F(WallpaperTest, APersonsRefusalIsToldAndLeftAtThat)
{
    StartPortal(1);
    programs.Offer("gsettings");
    const std::optional<Failure> failure = Set();
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->Number(), kFailureCancelled);
    EXPECT_EQ(programs.CallCount("gsettings"), 0);
}

TEST_F(WallpaperTest, APortalThatFailsIsFollowedByCommands)
{
    for (const bool refuses : {false, true}) {
        StartPortal(2);
        portal->refuses = refuses;
        programs.Offer(refuses ? "feh" : "plasma-apply-wallpaperimage");
        EXPECT_FALSE(Set().has_value());
        EXPECT_EQ(portal->calls.size(), 1);
        portal.reset();
    }
    EXPECT_EQ(programs.CallCount("plasma-apply-wallpaperimage"), 2);
}

TEST_F(WallpaperTest, APortalThatDiesIsFollowedByCommands)
{
    StartPortal(-1);
    programs.Offer("feh");
    bool ended = false;
    service.Set(Picture(), [&](const std::optional<Failure>& failure) {
        EXPECT_FALSE(failure.has_value());
        ended = true;
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return !portal->calls.isEmpty(); }, kTestPatience));
    EXPECT_FALSE(ended);
    portal.reset();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended; }, kTestPatience));
    EXPECT_EQ(programs.CallCount("feh"), 1);
}

TEST_F(WallpaperTest, APortalThatNeverRepliesIsFollowedByCommands)
{
    StartPortal(0);
    portal->mute = true;
    programs.Offer("feh");
    EXPECT_FALSE(Set().has_value());
    EXPECT_EQ(portal->calls.size(), 1);
    EXPECT_EQ(programs.CallCount("feh"), 1);
}

TEST_F(WallpaperTest, GnomeGetsTheAddressForLightAndDark)
{
    Desktop("ubuntu:GNOME");
    programs.Offer("gsettings");
    programs.Offer("feh");
    EXPECT_FALSE(Set().has_value());
    EXPECT_EQ(programs.Calls("gsettings"),
              QList<QByteArray>({"set|org.gnome.desktop.background|picture-uri-dark|" + Address(),
                                 "set|org.gnome.desktop.background|picture-uri|" + Address()}));
    EXPECT_EQ(programs.CallCount("feh"), 0);
}

TEST_F(WallpaperTest, AGnomeWithoutADarkPictureIsServedAllTheSame)
{
    Desktop("GNOME");
    programs.Offer("gsettings", "case $3 in picture-uri-dark) exit 1;; esac; exit 0");
    EXPECT_FALSE(Set().has_value());
    EXPECT_EQ(programs.CallCount("gsettings"), 2);
}

TEST_F(WallpaperTest, EachDesktopHasItsOwnSetting)
{
    programs.Offer("gsettings");
    Desktop("X-Cinnamon");
    EXPECT_FALSE(Set().has_value());
    Desktop("MATE");
    EXPECT_FALSE(Set().has_value());
    EXPECT_EQ(programs.Calls("gsettings"),
              QList<QByteArray>(
                  {"set|org.cinnamon.desktop.background|picture-uri|" + Address(),
                   "set|org.mate.background|picture-filename|" + BytesFromPath(Picture())}));
}

TEST_F(WallpaperTest, PlasmaGetsThePath)
{
    Desktop("KDE");
    programs.Offer("gsettings");
    programs.Offer("plasma-apply-wallpaperimage");
    EXPECT_FALSE(Set().has_value());
    EXPECT_EQ(programs.Calls("plasma-apply-wallpaperimage"),
              QList<QByteArray>({BytesFromPath(Picture())}));
    EXPECT_EQ(programs.CallCount("gsettings"), 0);
}

TEST_F(WallpaperTest, XfceGetsItForEveryScreenItKnows)
{
    Desktop("XFCE");
    programs.Offer("xfconf-query",
                   "case \"$*\" in *-l) printf '/backdrop/screen0/monitorA/workspace0/last-image\\n"
                   "/backdrop/screen0/monitorA/workspace0/image-style\\n"
                   "/backdrop/screen0/monitorB/workspace0/last-image\\n';; esac; exit 0");
    EXPECT_FALSE(Set().has_value());
    const QByteArray path = BytesFromPath(Picture());
    EXPECT_EQ(
        programs.Calls("xfconf-query"),
        QList<QByteArray>(
            {"-c|xfce4-desktop|-l",
             "-c|xfce4-desktop|-p|/backdrop/screen0/monitorA/workspace0/last-image|-s|" + path,
             "-c|xfce4-desktop|-p|/backdrop/screen0/monitorB/workspace0/last-image|-s|" + path}));
}

TEST_F(WallpaperTest, XfceWithoutAnyPictureYetGetsOneForTheFirstScreen)
{
    Desktop("XFCE");
    programs.Offer("xfconf-query", "case \"$*\" in *-l) exit 1;; esac; exit 0");
    EXPECT_FALSE(Set().has_value());
    EXPECT_EQ(programs.Calls("xfconf-query").constLast(),
              "-c|xfce4-desktop|-p|/backdrop/screen0/monitor0/workspace0/last-image|-n|-t|string|"
              "-s|"
                  + BytesFromPath(Picture()));
}

TEST_F(WallpaperTest, AWindowManagerAloneIsServedByFehAndNoSettingThatNobodyReads)
{
    Desktop("i3");
    programs.Offer("gsettings");
    programs.Offer("feh");
    EXPECT_FALSE(Set().has_value());
    EXPECT_EQ(programs.Calls("feh"), QList<QByteArray>({"--bg-fill|" + BytesFromPath(Picture())}));
    EXPECT_EQ(programs.CallCount("gsettings"), 0);
}

TEST_F(WallpaperTest, WhereTheDesktopHasNoNameCommandsAreTriedInTurn)
{
    programs.Offer("gsettings", "exit 1");
    programs.Offer("plasma-apply-wallpaperimage", "exit 1");
    programs.Offer("xfconf-query", "exit 1");
    programs.Offer("feh");
    EXPECT_FALSE(Set().has_value());
    EXPECT_EQ(programs.CallCount("gsettings"), 3);
    EXPECT_EQ(programs.CallCount("plasma-apply-wallpaperimage"), 1);
    EXPECT_EQ(programs.CallCount("xfconf-query"), 2);
    EXPECT_EQ(programs.CallCount("feh"), 1);
}

TEST_F(WallpaperTest, WhenAllFailTheFirstIsNamedWithItsReason)
{
    Desktop("KDE");
    programs.Offer("plasma-apply-wallpaperimage", "echo 'no shell' >&2; exit 1");
    programs.Offer("feh", "echo 'no display' >&2; exit 2");
    const std::optional<Failure> failure = Set();
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->Description(),
              programs.Folder().Path("plasma-apply-wallpaperimage")
                  + QStringLiteral(" ended with error 1: no shell"));
}

TEST_F(WallpaperTest, WithoutAnyProgramItSaysSo)
{
    const std::optional<Failure> failure = Set();
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->Description(),
              QStringLiteral("No program that sets the wallpaper was found."));
}

TEST_F(WallpaperTest, AMissingPictureIsRefusedBeforeAnybodyIsAsked)
{
    StartPortal(0);
    EXPECT_EQ(FailureOf([&] {
                  service.Set(pictures.Path("absent.bmp"), [](const std::optional<Failure>&) {});
              }),
              kFailureNoFile);
    EXPECT_EQ(FailureOf([&] { service.Set({}, [](const std::optional<Failure>&) {}); }),
              kFailureNoFile);
    EXPECT_TRUE(service.children().isEmpty());
    EXPECT_TRUE(portal->calls.isEmpty());
}

TEST_F(WallpaperTest, OddNamesReachTheCommandAsBytes)
{
    const QByteArray name = "\xff a;$(b).bmp";
    pictures.Write(name);
    Desktop("i3");
    programs.Offer("feh");
    bool ended = false;
    service.Set(pictures.Path(name), [&](const std::optional<Failure>&) { ended = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return ended; }, kTestPatience));
    EXPECT_EQ(programs.Calls("feh"), QList<QByteArray>({"--bg-fill|" + pictures.Bytes(name)}));
}

TEST_F(WallpaperTest, NothingIsToldAfterTheServiceHasGone)
{
    StartPortal(-1);
    bool told = false;
    {
        DesktopWallpaper brief;
        brief.Set(Picture(), [&](const std::optional<Failure>&) { told = true; });
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return !portal->calls.isEmpty(); }, kTestPatience));
    portal.reset();
    QCoreApplication::processEvents();
    EXPECT_FALSE(told);
}

TEST(WallpaperCommands, EveryRowIsThereOnceWhereTheDesktopHasNoName)
{
    QStringList names;
    for (const WallpaperCommand& command : WallpaperCommands({}, "/p.bmp")) {
        names.append(command.program);
    }
    EXPECT_EQ(names,
              QStringList({"gsettings", "gsettings", "gsettings", "plasma-apply-wallpaperimage",
                           "xfconf-query", "feh"}));
}

} // namespace quillane
