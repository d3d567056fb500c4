// The road from the main window through the search window to the views.
#include "browser/ui/status_panels.h"
#include "gui/search_window_fixture.h"

namespace quillane {

class SearchRoadTest : public SearchWindowTest { };

TEST_F(SearchRoadTest, ACheckedRowWithoutTextsTakesPartWithAnEmptyKeyword)
{
    Cameras();
    Start();
    InSearch([&](QDialog& dialog) {
        Check(dialog, "chkNumeric(0)");
        Press(dialog, "cmdOkay");
    });
    EXPECT_EQ(main->Panel(3), "0 of 5 Files");
    // Where a whole value is asked for, the missing one equals the empty text.
    InSearch([&](QDialog& dialog) {
        Check(dialog, "chkCharacter(0)");
        Choose(dialog, "mnuMatchWord");
        Press(dialog, "cmdOkay");
    });
    EXPECT_EQ(main->Panel(3), "4 of 5 Files");
}

TEST_F(SearchRoadTest, ASearchShowsTheFilesInTheRangeInBothModes)
{
    Cameras();
    Start();
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "100", "400");
        Press(dialog, "cmdOkay");
    });
    EXPECT_EQ(Shown(), Names({"a.gif", "b.gif"}));
    EXPECT_EQ(Grid()->Count(), 2);
    EXPECT_TRUE(Entry("mnuSearchOn")->isChecked());
    EXPECT_TRUE(session.gSearchActive);
    EXPECT_EQ(main->Panel(1), "Search = ON");
    EXPECT_EQ(main->Panel(2), "Search Found:");
    EXPECT_EQ(main->Panel(3), "2 of 5 Files");
    for (const char* name : {"StatusBar1_1", "StatusBar1_2", "StatusBar1_3"}) {
        const auto* panel = Find<StatusPanel>(name);
        EXPECT_LT(panel->fontMetrics().horizontalAdvance(panel->Text()), panel->width() - 12)
            << name;
    }
    Click("mnuMainViewTileBoxTileFilename3");
    EXPECT_EQ(Shown(), Names({"a.gif", "b.gif"}));
    EXPECT_EQ(main->Panel(3), "2 of 5 Files");
}

TEST_F(SearchRoadTest, ASearchIsMadeInTheViewThatIsShown)
{
    Cameras();
    Start();
    Click("mnuMainViewTileBoxTileFilename3");
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "100", "400");
        Press(dialog, "cmdOkay");
    });
    EXPECT_EQ(List()->Count(), 2);
    EXPECT_EQ(main->Panel(3), "2 of 5 Files");
    EXPECT_EQ(session.gsFileName, folder + QStringLiteral("a.gif"));
}

TEST_F(SearchRoadTest, TheToolBarButtonDoesTheSame)
{
    Cameras();
    Start();
    InDialog(
        "frmBrowserSearch",
        [this] { main->findChild<QAction*>(QStringLiteral("Toolbar1_3"))->trigger(); },
        [&](QDialog& dialog) {
            TypeRange(dialog, "401", "");
            Press(dialog, "cmdOkay");
        });
    EXPECT_EQ(Shown(), Names({"c.gif"}));
    EXPECT_EQ(main->Panel(2), "Search Found:");
}

TEST_F(SearchRoadTest, TheOptionsChangeATextSearch)
{
    Cameras();
    Start();
    const auto search = [this](bool turnCase, bool turnWord, const char* wanted) {
        InSearch([&](QDialog& dialog) {
            if (turnCase) {
                Choose(dialog, "mnuMatchCase");
            }
            if (turnWord) {
                Choose(dialog, "mnuMatchWord");
            }
            Check(dialog, "chkCharacter(2)");
            Retype(Box(dialog, "txtCharacterKeyword(2)"), "City");
            Retype(Box(dialog, "txtCharacterInfo(2)"), wanted);
            Press(dialog, "cmdOkay");
        });
        return Shown();
    };
    EXPECT_EQ(search(false, false, "Paris"), Names({"a.gif", "c.gif"}));
    EXPECT_EQ(search(false, true, "Paris"), Names({"a.gif"}));
    EXPECT_TRUE(session.matchWord);
    EXPECT_EQ(search(true, false, "Paris"), Names({}));
    EXPECT_EQ(search(false, true, "Paris"), Names({"c.gif"}));
    EXPECT_TRUE(session.matchCase);
    EXPECT_FALSE(session.matchWord);
}

TEST_F(SearchRoadTest, TheSwitchSearchesWithTheRowsOfTheLastDialog)
{
    Cameras();
    Start();
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "100", "400");
        Choose(dialog, "mnuExit");
    });
    Click("mnuSearchOn");
    EXPECT_TRUE(session.gSearchActive);
    EXPECT_EQ(Shown(), Names({"a.gif", "b.gif"}));
    EXPECT_EQ(main->Panel(2), "Search Found:");
    Click("mnuSearchOn");
    EXPECT_FALSE(session.gSearchActive);
    EXPECT_EQ(session.lbFilTiffs.size(), 5);
    EXPECT_EQ(main->Panel(1), "");
    EXPECT_EQ(main->Panel(2), "");
    EXPECT_EQ(main->Panel(3), "Total Images = 5");
}

TEST_F(SearchRoadTest, TheSwitchWithoutADialogKeepsEveryImageFile)
{
    Cameras();
    Start();
    Click("mnuSearchOn");
    EXPECT_EQ(Shown(), Names({"a.gif", "b.gif", "c.gif", "d.gif"}));
    EXPECT_EQ(main->Panel(3), "4 of 5 Files");
}

TEST_F(SearchRoadTest, CancelTurnsARunningSearchOffAndLeavesTheView)
{
    Cameras();
    Start();
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "100", "400");
        Press(dialog, "cmdOkay");
    });
    InSearch([&](QDialog& dialog) { Press(dialog, "cmdCancel"); });
    EXPECT_FALSE(session.gSearchActive);
    EXPECT_FALSE(Entry("mnuSearchOn")->isChecked());
    EXPECT_EQ(Shown(), Names({"a.gif", "b.gif"}));
    EXPECT_EQ(Grid()->Count(), 2);
    Click("mnuRefresh");
    EXPECT_EQ(session.lbFilTiffs.size(), 5);
    EXPECT_EQ(main->Panel(1), "");
    EXPECT_EQ(main->Panel(2), "");
}

TEST_F(SearchRoadTest, TheSwitchMayBeTurnedInTheMiddleOfItsScan)
{
    for (int i = 0; i < 400; ++i) {
        Tagged(QStringLiteral("%1.gif").arg(i), "ISO=100");
    }
    Picture(QStringLiteral("e.bmp"));
    Start();
    for (const char* view : {"mnuMainViewTileBoxTileImage", "mnuMainViewTileBoxTileFilename3"}) {
        Click(view);
        QMetaObject::invokeMethod(
            main.get(), [this] { Click("mnuSearchOn"); }, Qt::QueuedConnection);
        Click("mnuSearchOn");
        Until([this] { return !Entry("mnuSearchOn")->isChecked() && Rested(); });
        EXPECT_EQ(session.lbFilTiffs.size(), 401);
        EXPECT_FALSE(session.gSearchActive);
        EXPECT_EQ(main->Panel(1), "");
        EXPECT_EQ(main->Panel(2), "");
    }
}

TEST_F(SearchRoadTest, TheProgramMayEndInTheMiddleOfASearchAndInItsWindow)
{
    for (int i = 0; i < 400; ++i) {
        Tagged(QStringLiteral("%1.gif").arg(i), "ISO=100");
    }
    Start();
    QMetaObject::invokeMethod(
        main.get(), [this] { main->close(); }, Qt::QueuedConnection);
    Click("mnuSearchOn");
    Until([this] { return !main->isVisible(); });
    windows.DestroyAll();
    main.reset();

    StartBare();
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "1", "2");
        main->close();
    });
    EXPECT_FALSE(session.gSearchActive);
}

TEST_F(SearchRoadTest, ClosingByTheFrameKeepsARunningSearchAndScansAgain)
{
    Cameras();
    Start();
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "100", "400");
        Press(dialog, "cmdOkay");
    });
    InSearch([&](QDialog& dialog) { dialog.close(); });
    EXPECT_TRUE(session.gSearchActive);
    // The rows are blank now, so every image file passes.
    EXPECT_EQ(main->Panel(3), "4 of 5 Files");
}

TEST_F(SearchRoadTest, WhetherASearchIsOnIsStoredAtTheEnd)
{
    Cameras();
    Start();
    Click("mnuSearchOn");
    main->close();
    EXPECT_EQ(store.GetSetting(QStringLiteral("Settings"), QStringLiteral("mnuSearchOn.Checked")),
              "True");
}

} // namespace quillane
