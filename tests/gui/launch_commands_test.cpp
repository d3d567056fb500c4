// The commands of the main window that reach other programs.
#include "browser/ui/send_album.h"
#include "core/paths.h"
#include "main_window_fixture.h"

#include <QFile>
#include <QStatusBar>

namespace quillane {

class LaunchCommandsTest : public MainWindowTest {
protected:
    void Slot(const char* kind, int number, const char* caption, const char* path,
              const char* active = "1")
    {
        const QString section = "CustomToolPrefs";
        const QString of = QStringLiteral("Custom%1").arg(QLatin1String(kind));
        const QString at = QStringLiteral("(%1).").arg(number);
        store.SaveSetting(section, "chk" + of + at + "value", active);
        store.SaveSetting(section, "txt" + of + at + "Text", caption);
        store.SaveSetting(section, "txt" + of + "Path" + at + "Text", path);
    }
    QString Line() const { return main->statusBar()->currentMessage(); }
};

TEST_F(LaunchCommandsTest, EachWayToSendMailTakesTheSelectedFiles)
{
    Pictures(3);
    Start();
    ClickCell(2, Qt::LeftButton, Qt::ControlModifier);
    Click("mnuEmailImages");
    Click("mnuPopEmail");
    Find<QAction>("Toolbar1_9")->trigger();
    const QStringList both{folder + QStringLiteral("p0.bmp"), folder + QStringLiteral("p2.bmp")};
    EXPECT_EQ(fakes.mail.composed, (QVector<QStringList>{both, both, both}));
}

TEST_F(LaunchCommandsTest, AMailThatFailsIsShownWithItsNumber)
{
    Pictures(1);
    Start();
    Click("mnuEmailImages");
    fakes.mail.ended[0]({});
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
    fakes.dialogs.Answer(BoxAnswer::Ok);
    fakes.mail.ended[0](Failure(kFailureCancelled, QStringLiteral("The mail was cancelled.")));
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes()[0].text,
              QStringLiteral("The mail was cancelled.\n\nError 32755"));
}

TEST_F(LaunchCommandsTest, AnswersThatComeAfterTheWindowHasGoneAreDropped)
{
    Pictures(1);
    Start();
    Click("mnuEmailImages");
    Click("mnuPopSetWallpaper");
    ASSERT_EQ(fakes.wallpaper.ended.size(), 1);
    windows.DestroyAll();
    main.reset();
    fakes.mail.ended[0](Failure(kFailureGeneral, QStringLiteral("late")));
    fakes.wallpaper.ended[0]({});
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchCommandsTest, TheAlbumSendsItsSelectedRowsAndShowsAFailure)
{
    Pictures(1);
    Start();
    const auto send = SendAlbumByMail(Services(), main.get());
    const QStringList rows{QStringLiteral("/b.jpg"), QStringLiteral("/a.jpg")};
    send(rows);
    EXPECT_EQ(fakes.mail.composed, QVector<QStringList>{rows});
    fakes.dialogs.Answer(BoxAnswer::Ok);
    fakes.mail.ended[0](Failure(kFailureNoFile, QStringLiteral("gone")));
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes()[0].text, QStringLiteral("gone\n\nError 53"));
}

TEST_F(LaunchCommandsTest, TheWallpaperIsTheCurrentFile)
{
    Pictures(2);
    Start();
    Q_EMIT main->Menus().Popup()->aboutToShow();
    EXPECT_TRUE(Entry("mnuPopSetWallpaper")->isEnabled());
    Click("mnuPopSetWallpaper");
    EXPECT_EQ(fakes.wallpaper.set, QStringList(fakes.places.Wallpaper()));
    EXPECT_TRUE(QFile::exists(fakes.places.Wallpaper()));
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchCommandsTest, BothMapEntriesRunTheMapProgramOnTheCurrentFile)
{
    Picture("a.jpg", {8, 6}, "JPG");
    Picture("b.bmp");
    Start();
    const int photo = int(session.lbFilTiffs.indexOf(folder + "a.jpg"));
    for (const bool image : {true, false}) {
        ClickCell(image ? photo : 1 - photo);
        fakes.launcher.started.clear();
        Click("mnuWayfarix");
        Click("mnuPopWayfarix");
        ASSERT_EQ(fakes.launcher.started.size(), 2);
        for (const FakeLauncher::Started& started : fakes.launcher.started) {
            EXPECT_EQ(started.program,
                      fakes.places.ApplicationFolder() + QStringLiteral("Wayfarix.exe"));
            EXPECT_EQ(started.arguments,
                      image ? QStringList({folder + "a.jpg", "", "", ""}) : QStringList());
        }
    }
}

TEST_F(LaunchCommandsTest, AMissingMapProgramIsShownInABox)
{
    Pictures(1);
    Start();
    fakes.launcher.fails = true;
    for (const char* entry : {"mnuWayfarix", "mnuPopWayfarix"}) {
        const qsizetype boxes = fakes.dialogs.Boxes().size();
        fakes.dialogs.Answer(BoxAnswer::Ok);
        Click(entry);
        EXPECT_EQ(fakes.dialogs.Boxes().size(), boxes + 1) << entry;
    }
}

TEST_F(LaunchCommandsTest, AToolThatFailsShowsNoBoxAndALineSaysWhichAndWhy)
{
    Slot("Tool", 0, "Paint", "/opt/paint");
    Slot("App", 2, "&Maps", "/opt/maps");
    Pictures(1);
    Start();
    fakes.launcher.fails = true;
    Click("mnuPopCustomTool1");
    EXPECT_EQ(Line(), "\"Paint\" failed: Nothing opens this.");
    Click("mnuCustomApp3");
    EXPECT_EQ(Line(), "\"Maps\" failed: Nothing opens this.");
    fakes.launcher.fails = false;
    Click("mnuCustomApp3");
    ASSERT_EQ(fakes.launcher.started.size(), 1);
    fakes.launcher.started[0].failed("/opt/maps ended with error 3: no map");
    EXPECT_EQ(Line(), "\"Maps\" failed: /opt/maps ended with error 3: no map");
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchCommandsTest, AnEntryOfTheToolsMenuChoosesTheSlotAndRunsNothing)
{
    Slot("Tool", 1, "Paint", "/opt/paint");
    Pictures(2);
    Start();
    Click("mnuCustomTool2");
    EXPECT_EQ(session.gsImageTool, 3);
    EXPECT_TRUE(Entry("mnuCustomTool2")->isChecked());
    EXPECT_TRUE(fakes.launcher.started.isEmpty());
    ClickCell(1);
    QTest::keyClick(Grid(), Qt::Key_Return);
    QTest::mouseDClick(Grid()->viewport(), Qt::LeftButton, {}, Grid()->CellRect(1).center());
    ASSERT_EQ(fakes.launcher.started.size(), 2);
    for (const FakeLauncher::Started& started : fakes.launcher.started) {
        EXPECT_EQ(started.program, "/opt/paint");
        EXPECT_EQ(started.arguments, QStringList(folder + "p1.bmp"));
        EXPECT_EQ(started.folder, folder);
    }
}

TEST_F(LaunchCommandsTest, APopupEntryRunsItsSlotAndLeavesTheDefaultTool)
{
    for (int i = 0; i < 4; ++i) {
        Slot("Tool", i, "Tool", ("/t/" + QByteArray::number(i)).constData());
    }
    Pictures(1);
    Start();
    for (int i = 0; i < 4; ++i) {
        Click(("mnuPopCustomTool" + QByteArray::number(i + 1)).constData());
        ASSERT_EQ(fakes.launcher.started.size(), i + 1);
        EXPECT_EQ(fakes.launcher.started[i].program, QStringLiteral("/t/%1").arg(i));
    }
    EXPECT_EQ(session.gsImageTool, 0);
    EXPECT_TRUE(Grid()->IsSelected(0)) << "the cell is renewed and stays selected";
}

TEST_F(LaunchCommandsTest, ASlotThatIsOffIsNotRunThoughItsPathIsStored)
{
    Slot("Tool", 0, "Paint", "/opt/paint", "0");
    store.SaveSetting("Globals", "gsImageTool", "2"); // chosen while it was on
    Pictures(1);
    Start();
    EXPECT_FALSE(Entry("mnuCustomTool1")->isVisible());
    EXPECT_FALSE(Entry("mnuPopCustomTool1")->isVisible());
    QTest::keyClick(Grid(), Qt::Key_Return);
    EXPECT_TRUE(fakes.launcher.started.isEmpty());
    EXPECT_EQ(Line(), "\"Paint\" is switched off in the preferences.");
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
    main->close();
    EXPECT_EQ(store.GetSetting("CustomToolPrefs", "txtCustomToolPath(0).Text"), "/opt/paint");
}

TEST_F(LaunchCommandsTest, ASlotWithoutAProgramFailsWithoutABox)
{
    Slot("Tool", 0, "Paint", "");
    Slot("App", 0, "", "");
    Pictures(1);
    Start();
    Click("mnuPopCustomTool1");
    EXPECT_EQ(Line(), "\"Paint\" has no program yet. Choose one in the preferences.");
    Click("mnuCustomApp1");
    EXPECT_EQ(Line(), "\"The tool\" has no program yet. Choose one in the preferences.");
    EXPECT_TRUE(fakes.launcher.started.isEmpty());
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(LaunchCommandsTest, AFilePickedInTheTreeIsRunInItsFolder)
{
    Slot("Tool", 0, "Paint", "/opt/paint");
    Pictures(1);
    Start();
    session.gsPath = folder + "p0.bmp"; // as "Show All Files" leaves it
    session.gsFileName = session.gsPath;
    Click("mnuPopCustomTool1");
    ASSERT_EQ(fakes.launcher.started.size(), 1);
    EXPECT_EQ(fakes.launcher.started[0].arguments, QStringList(folder + "p0.bmp"));
    EXPECT_EQ(WithSeparator(fakes.launcher.started[0].folder), folder);
}

TEST_F(LaunchCommandsTest, AMailTakesTheRowsOfTheListInTheOtherViews)
{
    Pictures(3);
    Start();
    for (const char* view :
         {"mnuMainViewTileBoxTileFilename", "mnuMainViewTileBoxTileFilename1",
          "mnuMainViewTileBoxTileFilename2", "mnuMainViewTileBoxTileFilename3"}) {
        Click(view);
        ASSERT_TRUE(QTest::qWaitFor([this] { return Rested(); }, kWait));
        // The first row is selected by the scan; selected last, it is attached first.
        ClickRow(2);
        ClickRow(0, Qt::ControlModifier);
        fakes.mail.composed.clear();
        Click("mnuEmailImages");
        EXPECT_EQ(fakes.mail.composed,
                  (QVector<QStringList>{{folder + "p0.bmp", folder + "p2.bmp"}}))
            << view;
    }
}

TEST_F(LaunchCommandsTest, AMailWithoutASelectionHasNoAttachments)
{
    Pictures(1);
    Start();
    ClickCell(0, Qt::LeftButton, Qt::ControlModifier); // the scan has selected it
    EXPECT_FALSE(Grid()->IsSelected(0));
    Click("mnuPopEmail");
    EXPECT_EQ(fakes.mail.composed, QVector<QStringList>{QStringList()});
}

TEST_F(LaunchCommandsTest, TheWallpaperTellsHowItEnded)
{
    Pictures(1);
    Start();
    Click("mnuPopSetWallpaper");
    Click("mnuPopSetWallpaper");
    Click("mnuPopSetWallpaper");
    ASSERT_EQ(fakes.wallpaper.ended.size(), 3);
    fakes.wallpaper.ended[0]({});
    EXPECT_EQ(Line(), "The photo is the wallpaper now.");
    fakes.wallpaper.ended[1](Failure(kFailureCancelled, "no"));
    EXPECT_EQ(Line(), "The wallpaper stays as it was.");
    fakes.wallpaper.ended[2](Failure(kFailureGeneral, "feh ended with error 2."));
    EXPECT_EQ(Line(), "The wallpaper could not be set: feh ended with error 2.");
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

} // namespace quillane
