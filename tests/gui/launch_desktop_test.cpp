// The same commands down to what a portal and the programs of a desktop get.
#include "core/unprivileged.h"
#include "imaging/engine.h"
#include "main_window_fixture.h"
#include "platform/desktop/desktop_launcher.h"
#include "platform/desktop/desktop_mail.h"
#include "platform/desktop/desktop_places.h"
#include "platform/desktop/desktop_wallpaper.h"
#include "platform/program_log.h"
#include "platform/stub_desktop.h"

#include <QStatusBar>
#include <QtDBus/QDBusConnection>

namespace quillane {

namespace {

/// The main window with the real services of the desktop, on a bus of its own and with a PATH that
/// holds nothing but what a test puts there.
class LaunchDesktopTest : public MainWindowTest {
protected:
    LaunchDesktopTest() : launcher(), places(applications.Path())
    {
        // Whatever the environment says later, the connection stays the first one.
        EXPECT_TRUE(QDBusConnection::sessionBus().isConnected());
    }
    ~LaunchDesktopTest() override
    {
        windows.DestroyAll();
        main.reset();
    }
    void StartPortal(int response)
    {
        portal = std::make_unique<StubService>("org.freedesktop.portal.Desktop",
                                               "/org/freedesktop/portal/desktop");
        portal->response = response;
    }
    void StartOnDesktop()
    {
        store.SaveSetting("Globals", "gsPath", folder);
        main = std::make_unique<frmBrowserMain>(session, store, DesktopServices(), windows);
        main->Load();
        ASSERT_TRUE(
            QTest::qWaitFor([this] { return session.gsPath == folder && Rested(); }, kWait));
    }
    Platform DesktopServices()
    {
        return {fakes.dialogs, loop,      launcher, places,     fakes.watch,
                fakes.scanner, wallpaper, mail,     fakes.files};
    }
    void Slot(const char* kind, int number, const char* caption, const QString& path)
    {
        const QString of = QStringLiteral("Custom%1").arg(QLatin1String(kind));
        const QString at = QStringLiteral("(%1).").arg(number);
        store.SaveSetting("CustomToolPrefs", "chk" + of + at + "value", "1");
        store.SaveSetting("CustomToolPrefs", "txt" + of + at + "Text", caption);
        store.SaveSetting("CustomToolPrefs", "txt" + of + "Path" + at + "Text", path);
    }
    /// Waits for a line in the status bar and empties it.
    QString Line()
    {
        EXPECT_TRUE(QTest::qWaitFor(
            [this] { return !main->statusBar()->currentMessage().isEmpty(); }, kWait));
        const QString line = main->statusBar()->currentMessage();
        main->statusBar()->clearMessage();
        return line;
    }
    /// A photograph with that text in its description.
    void Photo(const QString& name, const QString& description)
    {
        QImage pixels(40, 30, QImage::Format_RGB32);
        pixels.fill(Qt::red);
        EngineInstance engine;
        engine.SetBitmap(Bitmap(pixels, ColourModel::Rgb, 24));
        engine.SetComment(3, CommentValue(description));
        engine.Save(folder + name, 98, 24, 2, kSaveReplace);
    }

    ScopedEnvironment address{"DBUS_SESSION_BUS_ADDRESS", PrivateBus::Address()};
    ScopedEnvironment desktop{"XDG_CURRENT_DESKTOP", "GNOME"};
    TempFolder data, applications;
    ScopedEnvironment dataHome{"XDG_DATA_HOME", data.Bytes()};
    ProgramLog programs;
    DesktopLauncher launcher;
    DesktopWallpaper wallpaper;
    DesktopMail mail;
    DesktopPlaces places;
    std::unique_ptr<StubService> portal;
};

} // namespace

TEST_F(LaunchDesktopTest, AToolGetsFileAndFolderAndABlankMakesTwoParameters)
{
    programs.Offer("paint");
    Slot("Tool", 0, "Paint", programs.Folder().Path("paint"));
    folder = root.path() + "/two words/";
    MakeFolder(folder);
    Picture("my cat.bmp");
    StartOnDesktop();
    Click("mnuPopCustomTool1");
    const ProgramCall call = programs.WaitForCall("paint");
    QList<QByteArray> words = BytesFromPath(folder + "my cat.bmp").split(' ');
    EXPECT_EQ(words.size(), 3);
    EXPECT_EQ(call.arguments, words);
    EXPECT_EQ(call.folder + '/', BytesFromPath(folder));
}

TEST_F(LaunchDesktopTest, AnApplicationIsFoundInPathAndGetsBytesAsTheyAre)
{
    programs.Offer("maps");
    Slot("App", 3, "Maps", "maps");
    const QByteArray name = "\xff-\n\xc3\xbc.bmp";
    Picture("p.bmp");
    ASSERT_EQ(::rename(BytesFromPath(folder + "p.bmp").constData(),
                       (BytesFromPath(folder) + name).constData()),
              0);
    StartOnDesktop();
    Click("mnuCustomApp4");
    EXPECT_EQ(programs.WaitForCall("maps").arguments,
              QList<QByteArray>{BytesFromPath(folder) + name});
    // The folder of the test can take no such name away.
    EXPECT_EQ(::unlink((BytesFromPath(folder) + name).constData()), 0);
}

TEST_F(LaunchDesktopTest, EachWayToFailIsALineThatNamesTheToolAndNoBox)
{
    programs.Offer("wrong", "echo 'no such lens' >&2; exit 3");
    programs.Offer("killed", "kill -KILL $$");
    programs.Folder().Write("plain", "text");
    programs.Folder().Chmod("plain", 0644);
    Slot("Tool", 0, "Missing", "/nowhere/tool");
    Slot("Tool", 1, "Plain", programs.Folder().Path("plain"));
    Slot("Tool", 2, "Wrong", programs.Folder().Path("wrong"));
    Slot("Tool", 3, "Killed", programs.Folder().Path("killed"));
    Slot("App", 0, "Nameless", "no-such-program-in-path");
    Slot("App", 1, "Folder", programs.Folder().Path());
    Pictures(1);
    StartOnDesktop();
    const QString at = programs.Folder().Path();
    const std::pair<const char*, QString> rows[] = {
        {"mnuPopCustomTool1", "\"Missing\" failed: There is no program /nowhere/tool."},
        {"mnuPopCustomTool2", "\"Plain\" failed: " + at + "plain may not be run as a program."},
        {"mnuPopCustomTool3", "\"Wrong\" failed: " + at + "wrong ended with error 3: no such lens"},
        {"mnuPopCustomTool4",
         "\"Killed\" failed: " + at + "killed was ended by the system: Killed."},
        {"mnuCustomApp1", "\"Nameless\" failed: There is no program no-such-program-in-path."},
        {"mnuCustomApp2", "\"Folder\" failed: " + at + " may not be run as a program."}};
    for (const auto& [entry, line] : rows) {
        Click(entry);
        EXPECT_EQ(Line(), line) << entry;
    }
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchDesktopTest, TheMapProgramGetsThePositionOfThePhoto)
{
    Photo("a.jpg", "Lat=48.2\r\nLong=-16.37\r\nElevation=171\r\n");
    Photo("b.jpg", "Lat=48.2\r\n");
    applications.Write("Wayfarix.exe",
                       "#!/bin/sh\nprintf '%s\\0' \"$#\" \"$@\" > '"
                           + applications.Bytes("got.part") + "'\n/bin/mv '"
                           + applications.Bytes("got.part") + "' '" + applications.Bytes("got")
                           + "'\n");
    applications.Chmod("Wayfarix.exe", 0755);
    StartOnDesktop();
    const auto got = [&] {
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return StatPath(applications.Path("got")).type == FileType::Regular; }, kWait));
        const QByteArray words = applications.Content("got");
        EXPECT_EQ(::unlink(applications.Bytes("got").constData()), 0);
        return words.split('\0');
    };
    Click("mnuWayfarix");
    EXPECT_EQ(
        got(),
        (QList<QByteArray>{"4", BytesFromPath(folder) + "a.jpg", "48.2", "-16.37", "171", ""}));
    ClickCell(1);
    Click("mnuPopWayfarix");
    EXPECT_EQ(got(), (QList<QByteArray>{"4", BytesFromPath(folder) + "b.jpg", "48.2", "", "", ""}));
    WriteWholeFile(folder + "notes.ifl", "");
    session.gsFileName = folder + "notes.ifl";
    Click("mnuWayfarix");
    EXPECT_EQ(got(), (QList<QByteArray>{"0", ""}));
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchDesktopTest, AMapProgramThatIsMissingIsAnErrorInWords)
{
    Pictures(1);
    StartOnDesktop();
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Click("mnuWayfarix");
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes()[0].text,
              "There is no program " + applications.Path("Wayfarix.exe") + ".\n\nError 53");
}

TEST_F(LaunchDesktopTest, TheWallpaperGoesToThePortalAsAnOpenBitmapOf24Bits)
{
    Picture("p.bmp", {50, 20});
    StartPortal(0);
    programs.Offer("gsettings");
    StartOnDesktop();
    Click("mnuPopSetWallpaper");
    EXPECT_EQ(Line(), "The photo is the wallpaper now.");
    ASSERT_EQ(portal->calls.size(), 1);
    EXPECT_EQ(portal->calls[0].file, data.Bytes("quillane/Wallpaper.bmp"));
    const ImageFacts facts = ProbeFile(PathFromBytes(portal->calls[0].file));
    EXPECT_EQ(facts.width, 50);
    EXPECT_EQ(facts.height, 20);
    EXPECT_EQ(facts.bits, 24);
    EXPECT_EQ(programs.CallCount("gsettings"), 0);
}

TEST_F(LaunchDesktopTest, WithoutAPortalTheDesktopsCommandGetsTheWallpaper)
{
    Pictures(1);
    programs.Offer("gsettings");
    StartOnDesktop();
    Click("mnuPopSetWallpaper");
    EXPECT_EQ(Line(), "The photo is the wallpaper now.");
    const QByteArray place = "file://" + data.Bytes("quillane/Wallpaper.bmp");
    EXPECT_EQ(programs.Calls("gsettings"),
              (QList<QByteArray>{"set|org.gnome.desktop.background|picture-uri-dark|" + place,
                                 "set|org.gnome.desktop.background|picture-uri|" + place}));
}

TEST_F(LaunchDesktopTest, AWallpaperThatAPersonRefusesIsNoError)
{
    Pictures(1);
    StartPortal(1);
    programs.Offer("gsettings");
    StartOnDesktop();
    Click("mnuPopSetWallpaper");
    EXPECT_EQ(Line(), "The wallpaper stays as it was.");
    EXPECT_EQ(programs.CallCount("gsettings"), 0);
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchDesktopTest, InAReadOnlyPlaceTheSystemIsToldTheOldPath)
{
    Pictures(1);
    data.MakeFolder("quillane");
    data.Write("quillane/Wallpaper.bmp", "the old one");
    data.Chmod("quillane/Wallpaper.bmp", 0444);
    data.Chmod("quillane", 0555);
    programs.Offer("gsettings");
    StartOnDesktop();
    {
        const Unprivileged person;
        Click("mnuPopSetWallpaper");
        EXPECT_TRUE(Line().startsWith("The wallpaper could not be set: "));
    }
    data.Chmod("quillane", 0755);
    EXPECT_EQ(data.Content("quillane/Wallpaper.bmp"), "the old one");
    EXPECT_EQ(programs.CallCount("gsettings"), 2);
    EXPECT_TRUE(
        programs.Calls("gsettings").constFirst().endsWith(data.Bytes("quillane/Wallpaper.bmp")));
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchDesktopTest, AMailGoesToThePortalWithTheOpenFilesInOrder)
{
    Pictures(3);
    WriteWholeFile(folder + "p2.bmp", ReadWholeFile(folder + "p2.bmp", 1 << 20) + "second");
    StartPortal(0);
    programs.Offer("xdg-email");
    StartOnDesktop();
    ClickCell(2);
    ClickCell(0, Qt::LeftButton, Qt::ControlModifier);
    Click("mnuEmailImages");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !portal->calls.isEmpty(); }, kWait));
    EXPECT_EQ(portal->calls[0].method, "ComposeEmail");
    EXPECT_EQ(portal->calls[0].attachments,
              (QList<QByteArray>{ReadWholeFile(folder + "p0.bmp", 1 << 20),
                                 ReadWholeFile(folder + "p2.bmp", 1 << 20)}));
    EXPECT_FALSE(portal->calls[0].options.contains("subject"));
    EXPECT_FALSE(portal->calls[0].options.contains("body"));
    EXPECT_EQ(programs.CallCount("xdg-email"), 0);
}

TEST_F(LaunchDesktopTest, WithoutAPortalXdgEmailGetsTheMail)
{
    Pictures(2);
    programs.Offer("xdg-email");
    StartOnDesktop();
    Grid()->SelectAll();
    Click("mnuPopEmail");
    EXPECT_EQ(programs.WaitForCall("xdg-email").arguments,
              (QList<QByteArray>{"--attach", BytesFromPath(folder) + "p0.bmp", "--attach",
                                 BytesFromPath(folder) + "p1.bmp"}));
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchDesktopTest, AMissingMailSystemSurfacesAsAnErrorInWords)
{
    Pictures(1);
    StartOnDesktop();
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Find<QAction>("Toolbar1_9")->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !fakes.dialogs.Boxes().isEmpty(); }, kWait));
    EXPECT_TRUE(fakes.dialogs.Boxes()[0].text.startsWith("No mail program was found."));
}

TEST_F(LaunchDesktopTest, ACancelledMailSurfacesAsAnErrorAndNothingElseOpens)
{
    Pictures(1);
    StartPortal(1);
    programs.Offer("xdg-email");
    StartOnDesktop();
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Click("mnuEmailImages");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !fakes.dialogs.Boxes().isEmpty(); }, kWait));
    EXPECT_EQ(fakes.dialogs.Boxes()[0].text, "The mail was cancelled.\n\nError 32755");
    EXPECT_EQ(programs.CallCount("xdg-email"), 0);
}

TEST_F(LaunchDesktopTest, AFileThatHasGoneIsNamedAndNoMailOpens)
{
    Pictures(2);
    StartPortal(0);
    StartOnDesktop();
    Grid()->SelectAll();
    ASSERT_EQ(::unlink(BytesFromPath(folder + "p1.bmp").constData()), 0);
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Click("mnuEmailImages");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !fakes.dialogs.Boxes().isEmpty(); }, kWait));
    EXPECT_TRUE(fakes.dialogs.Boxes()[0].text.contains("p1.bmp"));
    EXPECT_TRUE(portal->calls.isEmpty());
}

TEST_F(LaunchDesktopTest, TheEndOfTheProgramWaitsForNoTool)
{
    applications.Write("patient",
                       "#!/bin/sh\nread -r line < '" + applications.Bytes("gate") + "'\n");
    applications.Chmod("patient", 0755);
    ASSERT_EQ(::mkfifo(applications.Bytes("gate").constData(), 0600), 0);
    Slot("Tool", 0, "Patient", applications.Path("patient"));
    const QByteArray before = ChildProcesses();
    Pictures(1);
    StartOnDesktop();
    Click("mnuPopCustomTool1");
    const QByteArray running = ChildProcesses();
    EXPECT_NE(running, before);
    main->close();
    windows.DestroyAll();
    main.reset();
    EXPECT_EQ(ChildProcesses(), running) << "it lives on";
    applications.Write("gate", "on\n");
    EXPECT_TRUE(QTest::qWaitFor([&] { return ChildProcesses() == before; }, kWait));
}

} // namespace quillane
