// The search window by itself.
#include "core/failure.h"
#include "gui/search_window_fixture.h"

namespace quillane {

TEST_F(SearchWindowTest, HasItsCaptionsFaultsIncluded)
{
    Start();
    InSearch([&](QDialog& dialog) {
        EXPECT_TRUE(dialog.isModal());
        EXPECT_EQ(dialog.parentWidget(), main.get());
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

TEST_F(SearchWindowTest, OnALowScreenEveryControlIsReachedAndTheButtonsStayInSight)
{
    Start();
    InSearch([&](QDialog& dialog) {
        const QSize low(512, 320);
        dialog.resize(low);
        QCoreApplication::processEvents();
        EXPECT_EQ(dialog.size(), low);
        for (const char* name : {"cmdReset", "cmdOkay", "cmdCancel"}) {
            auto* button = In<QPushButton>(dialog, name);
            EXPECT_EQ(button->visibleRegion().boundingRect(), button->rect()) << name;
        }
        In<QCheckBox>(dialog, "chkNumeric(0)")->setFocus();
        auto* last = Box(dialog, "txtCharacterInfo(3)");
        EXPECT_TRUE(last->visibleRegion().isEmpty());
        for (int i = 0; i < 40 && !last->hasFocus(); ++i) {
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
        }
        EXPECT_TRUE(last->hasFocus());
        EXPECT_FALSE(last->visibleRegion().isEmpty());
    });
}

TEST_F(SearchWindowTest, OpensAsHighAsItsRows)
{
    Start();
    InSearch([&](QDialog& dialog) {
        for (const char* name : {"txtNumericInfoHigh(0)", "txtCharacterInfo(3)"}) {
            auto* box = Box(dialog, name);
            EXPECT_EQ(box->visibleRegion().boundingRect(), box->rect()) << name;
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

TEST_F(SearchWindowTest, SearchLetsEventsPassBeforeTheWindowGoes)
{
    Start();
    bool seen = false;
    InSearch([&](QDialog& dialog) {
        QMetaObject::invokeMethod(
            &dialog,
            [&] {
                seen = dialog.isVisible() && session.gSearchActive
                    && Entry("mnuSearchOn")->isChecked();
            },
            Qt::QueuedConnection);
        Press(dialog, "cmdOkay");
    });
    EXPECT_TRUE(seen);
}

TEST_F(SearchWindowTest, ExitKeepsARunningSearchToo)
{
    Cameras();
    Start();
    Click("mnuSearchOn");
    InSearch([&](QDialog& dialog) {
        TypeRange(dialog, "401", "");
        Choose(dialog, "mnuExit");
    });
    EXPECT_TRUE(session.gSearchActive);
    EXPECT_EQ(Shown(), Names({"c.gif"}));
    EXPECT_EQ(main->Panel(2), "Search Found:");
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

} // namespace quillane
