// The search window, and the road from the main window through it to the views.
#include "browser/ui/status_panels.h"
#include "core/failure.h"
#include "core/paths.h"
#include "gui/main_window_fixture.h"
#include "gui/modal_dialog.h"
#include "gui/widgets_support.h"
#include "search/tagged_gif.h"
#include "search/ui/frmBrowserSearch.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

namespace quillane {

namespace {

const QString kSearchSection = QStringLiteral("SearchSettings");

/// The main window over files with a description, and the acts of a person who searches.
class SearchWindowTest : public MainWindowTest {
protected:
    void Tagged(const QString& name, const QByteArray& description)
    {
        WriteWholeFile(folder + name, TaggedGif(description));
    }
    void Cameras()
    {
        Tagged(QStringLiteral("a.gif"), "ISO=100\r\nCity=PARIS\r\n");
        Tagged(QStringLiteral("b.gif"), "ISO=400\r\nCity=Rome\r\n");
        Tagged(QStringLiteral("c.gif"), "ISO=401\r\nCity=Paris France\r\n");
        Tagged(QStringLiteral("d.gif"), {});
        Picture(QStringLiteral("e.bmp"));
    }
    /// Opens the window by its entry and acts in it.
    void InSearch(const std::function<void(QDialog&)>& act)
    {
        InDialog(
            "frmBrowserSearch", [this] { Click("mnuSearchSettings"); }, act);
    }
    static QLineEdit* Box(QDialog& dialog, const char* name) { return In<QLineEdit>(dialog, name); }
    static void Press(QDialog& dialog, const char* name)
    {
        QTest::mouseClick(In<QPushButton>(dialog, name), Qt::LeftButton);
    }
    static void Check(QDialog& dialog, const char* name)
    {
        QTest::keyClick(In<QCheckBox>(dialog, name), Qt::Key_Space);
    }
    static void Choose(QDialog& dialog, const char* name) { In<QAction>(dialog, name)->trigger(); }
    static void TypeRange(QDialog& dialog, const char* low, const char* high)
    {
        Check(dialog, "chkNumeric(0)");
        Retype(Box(dialog, "txtNumericKeyword(0)"), "ISO");
        Retype(Box(dialog, "txtNumericInfo(0)"), low);
        Retype(Box(dialog, "txtNumericInfoHigh(0)"), high);
    }
    QStringList Shown() const
    {
        QStringList names;
        for (const QString& path : session.lbFilTiffs) {
            names.append(LeafName(path));
        }
        return names;
    }
    QString Stored(const char* key) const
    {
        return store.GetSetting(kSearchSection, QLatin1String(key));
    }
};

QStringList Names(std::initializer_list<const char*> names)
{
    QStringList list;
    for (const char* name : names) {
        list.append(QLatin1String(name));
    }
    return list;
}

} // namespace

TEST_F(SearchWindowTest, HasItsCaptionsFaultsIncluded)
{
    Start();
    InSearch([&](QDialog& dialog) {
        EXPECT_TRUE(dialog.isModal());
        EXPECT_EQ(dialog.windowTitle(), "Quillane  Search Image Metadata");
        auto* tabs = In<QTabWidget>(dialog, "SSTab1");
        ASSERT_EQ(tabs->count(), 2);
        EXPECT_EQ(tabs->tabText(0), "Custom Search");
        EXPECT_EQ(tabs->tabText(1), "(Personal Information");
        EXPECT_TRUE(tabs->isTabVisible(0));
        EXPECT_FALSE(tabs->isTabVisible(1));
        QStringList words;
        for (const QLabel* label : dialog.findChildren<QLabel*>()) {
            words.append(label->text());
        }
        for (const QGroupBox* frame : dialog.findChildren<QGroupBox*>()) {
            words.append(frame->title());
        }
        for (const char* word :
             {"Numeric Based Search Settings", "Metadata Keyword", "Numeric Value Range Search",
              "Text Based Search Settings", "Meadata Keyword", "Text Value Search"}) {
            EXPECT_EQ(words.count(QLatin1String(word)), 1) << word;
        }
        EXPECT_EQ(In<QPushButton>(dialog, "cmdOkay")->text(), "&Search");
        EXPECT_EQ(In<QPushButton>(dialog, "cmdCancel")->text(), "&Cancel");
        EXPECT_EQ(In<QPushButton>(dialog, "cmdReset")->text(), "Clear/Reset");
        EXPECT_EQ(In<QAction>(dialog, "mnuExit")->text(), "&Exit");
        EXPECT_EQ(In<QAction>(dialog, "mnuMatchCase")->text(), "Match Case");
        EXPECT_EQ(In<QAction>(dialog, "mnuMatchWord")->text(), "Match Whole Word");
        for (int i = 0; i < 4; ++i) {
            for (const char* array : {"txtNumericKeyword", "txtNumericInfo", "txtNumericInfoHigh",
                                      "txtCharacterKeyword", "txtCharacterInfo"}) {
                const QString name = QStringLiteral("%1(%2)").arg(QLatin1String(array)).arg(i);
                EXPECT_NE(dialog.findChild<QLineEdit*>(name), nullptr) << name.toStdString();
            }
            for (const char* array : {"chkNumeric", "chkCharacter"}) {
                const QString name = QStringLiteral("%1(%2)").arg(QLatin1String(array)).arg(i);
                EXPECT_NE(dialog.findChild<QCheckBox*>(name), nullptr) << name.toStdString();
            }
        }
    });
}

TEST_F(SearchWindowTest, EachControlIsReachedByTabAndHasWords)
{
    Start();
    InSearch([&](QDialog& dialog) {
        In<QCheckBox>(dialog, "chkNumeric(0)")->setFocus();
        ExpectNamedByTab(dialog,
                         Names({"chkNumeric(0)", "txtNumericKeyword(0)", "txtNumericInfo(0)",
                                "txtNumericInfoHigh(0)", "chkNumeric(3)", "chkCharacter(0)",
                                "txtCharacterInfo(3)", "cmdReset", "cmdOkay", "cmdCancel"}));
    });
}

TEST_F(SearchWindowTest, EachLetterOfTheKeyboardLeadsToOneControl)
{
    Start();
    InSearch([&](QDialog& dialog) {
        ExpectOwnMnemonics(dialog);
        for (int i = 0; i < 4; ++i) {
            const QByteArray index = "(" + QByteArray::number(i) + ")";
            EXPECT_EQ(In<QCheckBox>(dialog, ("chkNumeric" + index).constData())->shortcut(),
                      QKeySequence(Qt::ALT | Qt::Key(Qt::Key_1 + i)));
            EXPECT_EQ(In<QCheckBox>(dialog, ("chkCharacter" + index).constData())->shortcut(),
                      QKeySequence(Qt::ALT | Qt::Key(Qt::Key_5 + i)));
        }
    });
}

TEST_F(SearchWindowTest, ACheckAndAnOptionCountAtOnceAndTheTextsAtTheEnd)
{
    Start();
    SearchCriteria criteria;
    frmBrowserSearch window(session, store, criteria, Services(), *main);
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    for (size_t i = 0; i < 4; ++i) {
        const QByteArray index = "(" + QByteArray::number(int(i)) + ")";
        Check(window, ("chkNumeric" + index).constData());
        EXPECT_EQ(criteria.searchNumeric[i].checked, kTrue);
        Check(window, ("chkCharacter" + index).constData());
        EXPECT_EQ(criteria.searchCharacter[i].checked, kTrue);
        Check(window, ("chkNumeric" + index).constData());
        EXPECT_EQ(criteria.searchNumeric[i].checked, kFalse);
    }
    Choose(window, "mnuMatchCase");
    EXPECT_TRUE(session.matchCase);
    Choose(window, "mnuMatchWord");
    EXPECT_TRUE(session.matchWord);
    Choose(window, "mnuMatchCase");
    EXPECT_FALSE(session.matchCase);
    Retype(Box(window, "txtCharacterKeyword(3)"), "City");
    Retype(Box(window, "txtCharacterInfo(3)"), " Rome ");
    EXPECT_TRUE(criteria.searchCharacter[3].keyword.isEmpty());
    window.close();
    EXPECT_EQ(criteria.searchCharacter[3].keyword, "City");
    EXPECT_EQ(criteria.searchCharacter[3].text, " Rome ");
    EXPECT_EQ(Stored("searchCharacter(i).String3"), " Rome ");
    EXPECT_EQ(Stored("matchWord"), "True");
}

TEST_F(SearchWindowTest, ACheckedRowWithoutTextsTakesPartWithAnEmptyKeyword)
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

TEST_F(SearchWindowTest, ASearchShowsTheFilesInTheRangeInBothModes)
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

TEST_F(SearchWindowTest, TheToolBarButtonDoesTheSame)
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

TEST_F(SearchWindowTest, TheOptionsChangeATextSearch)
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

TEST_F(SearchWindowTest, OpensBlankWithTheOptionsOfTheLastSessionAndClosingClearsTheRows)
{
    store.SaveSetting(kSearchSection, QStringLiteral("matchCase"), QStringLiteral("True"));
    store.SaveSetting(kSearchSection, QStringLiteral("searchNumeric(i).CHECKED0"),
                      QStringLiteral("True"));
    store.SaveSetting(kSearchSection, QStringLiteral("searchNumeric(i).Keyword0"),
                      QStringLiteral("ISO"));
    store.SaveSetting(kSearchSection, QStringLiteral("searchCharacter(i).String1"),
                      QStringLiteral("Rome"));
    store.SaveSetting(kSearchSection, QStringLiteral("searchScope(i).value3"),
                      QStringLiteral("33"));
    Start();
    InSearch([&](QDialog& dialog) {
        EXPECT_TRUE(In<QAction>(dialog, "mnuMatchCase")->isChecked());
        EXPECT_FALSE(In<QAction>(dialog, "mnuMatchWord")->isChecked());
        for (const QLineEdit* box : dialog.findChildren<QLineEdit*>()) {
            EXPECT_TRUE(box->text().isEmpty()) << box->objectName().toStdString();
        }
        for (const QCheckBox* check : dialog.findChildren<QCheckBox*>()) {
            EXPECT_FALSE(check->isChecked()) << check->objectName().toStdString();
        }
        dialog.close();
    });
    EXPECT_EQ(Stored("matchCase"), "True");
    EXPECT_EQ(Stored("searchNumeric(i).CHECKED0"), "False");
    EXPECT_EQ(Stored("searchNumeric(i).Keyword0"), "");
    EXPECT_EQ(Stored("searchNumeric(i).value0"), "-1");
    EXPECT_EQ(Stored("searchCharacter(i).String1"), "");
    // What the window does not show is written back unchanged.
    EXPECT_EQ(Stored("searchScope(i).value3"), "33");
}

TEST_F(SearchWindowTest, ExitStoresTheRowsAndLeavesTheSearchAsItWas)
{
    Cameras();
    Start();
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "12.5", "13.5");
        Choose(dialog, "mnuExit");
    });
    EXPECT_FALSE(session.gSearchActive);
    EXPECT_FALSE(Entry("mnuSearchOn")->isChecked());
    EXPECT_EQ(session.lbFilTiffs.size(), 5);
    EXPECT_EQ(Stored("searchNumeric(i).CHECKED0"), "True");
    EXPECT_EQ(Stored("searchNumeric(i).value0"), "12");
    EXPECT_EQ(Stored("searchNumeric(i).ValueHigh0"), "14");
}

TEST_F(SearchWindowTest, TheSwitchSearchesWithTheRowsOfTheLastDialog)
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

TEST_F(SearchWindowTest, TheSwitchWithoutADialogKeepsEveryImageFile)
{
    Cameras();
    Start();
    Click("mnuSearchOn");
    EXPECT_EQ(Shown(), Names({"a.gif", "b.gif", "c.gif", "d.gif"}));
    EXPECT_EQ(main->Panel(3), "4 of 5 Files");
}

TEST_F(SearchWindowTest, CancelTurnsARunningSearchOffAndLeavesTheView)
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

TEST_F(SearchWindowTest, TheSwitchMayBeTurnedInTheMiddleOfItsScan)
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

TEST_F(SearchWindowTest, TheProgramMayEndInTheMiddleOfASearchAndInItsWindow)
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

TEST_F(SearchWindowTest, ClosingByTheFrameKeepsARunningSearchAndScansAgain)
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

TEST_F(SearchWindowTest, EscapeCancels)
{
    Cameras();
    Start();
    Click("mnuSearchOn");
    InSearch([&](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_FALSE(session.gSearchActive);
}

TEST_F(SearchWindowTest, ResetDoesNothing)
{
    Start();
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "100", "400");
        Press(dialog, "cmdReset");
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_TRUE(In<QCheckBox>(dialog, "chkNumeric(0)")->isChecked());
        EXPECT_EQ(Box(dialog, "txtNumericKeyword(0)")->text(), "ISO");
        EXPECT_EQ(Box(dialog, "txtNumericInfoHigh(0)")->text(), "400");
    });
}

TEST_F(SearchWindowTest, ANumberThatDoesNotFitIsToldAndMayBeCorrected)
{
    Cameras();
    Start();
    fakes.dialogs.Answer(BoxAnswer::Ok);
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "100", "32768");
        Press(dialog, "cmdOkay");
        ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
        EXPECT_TRUE(fakes.dialogs.Boxes().first().text.contains(QString::number(kFailureOverflow)));
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.focusWidget(), Box(dialog, "txtNumericInfoHigh(0)"));
        Retype(Box(dialog, "txtNumericInfoHigh(0)"), "32767");
        Press(dialog, "cmdOkay");
    });
    EXPECT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(Shown(), Names({"a.gif", "b.gif", "c.gif"}));
    EXPECT_EQ(Stored("searchNumeric(i).ValueHigh0"), "32767");
}

TEST_F(SearchWindowTest, ANumberThatDoesNotFitIsToldAtCancelTooAndTheStoreStays)
{
    Start();
    fakes.dialogs.Answer(BoxAnswer::Ok);
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "40000", "");
        Press(dialog, "cmdCancel");
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_FALSE(store.Contains(kSearchSection, QStringLiteral("searchNumeric(i).Keyword0")));
}

TEST_F(SearchWindowTest, WhetherASearchIsOnIsStoredAtTheEnd)
{
    Cameras();
    Start();
    Click("mnuSearchOn");
    main->close();
    EXPECT_EQ(store.GetSetting(QStringLiteral("Settings"), QStringLiteral("mnuSearchOn.Checked")),
              "True");
}

} // namespace quillane
