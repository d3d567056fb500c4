// The slots of the preferences, the picking of programs, and the keyboard.
#include "preferences_fixture.h"

#include "core/temp_folder.h"
#include "widgets/ui/folder_tree.h"

#include <QLabel>
#include <QMap>

namespace quillane {

namespace {

/// The letter behind the mnemonic mark; 0 for none.
QChar MnemonicOf(const QString& words)
{
    for (qsizetype at = words.indexOf(u'&'); at >= 0; at = words.indexOf(u'&', at + 2)) {
        if (at + 1 < words.size() && words[at + 1] != u'&') {
            return words[at + 1].toLower();
        }
    }
    return {};
}

} // namespace

TEST_F(PreferencesWindowTest, EachSlotIsInItsMenusAtOnce)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        for (int i = 0; i < 4; ++i) {
            const auto name = [i](const char* before) {
                return (QByteArray(before) + '(' + QByteArray::number(i) + ')');
            };
            const QByteArray number = QByteArray::number(i + 1);
            Tab(dialog, kToolsTab);
            Check(dialog, name("chkCustomTool").constData());
            Write(dialog, name("txtCustomTool").constData(), ("Tool &" + number).constData());
            Write(dialog, name("txtCustomToolPath").constData(), ("/t/" + number).constData());
            Tab(dialog, kApplicationsTab);
            Check(dialog, name("chkCustomApp").constData());
            Write(dialog, name("txtCustomApp").constData(), ("App &" + number).constData());
            Write(dialog, name("txtCustomAppPath").constData(), ("/a/" + number).constData());
        }
        EXPECT_FALSE(Entry("mnuCustomTool1")->isVisible());
        Close(dialog);
    });
    for (int i = 1; i <= 4; ++i) {
        const auto number = QByteArray::number(i);
        for (const char* entry : {"mnuCustomTool", "mnuPopCustomTool", "mnuCustomApp"}) {
            const QAction* action = Entry((entry + number).constData());
            EXPECT_TRUE(action->isVisible()) << entry << i;
            EXPECT_TRUE(action->isEnabled()) << entry << i;
            EXPECT_EQ(action->text(),
                      QLatin1String(QByteArray(entry).endsWith("App") ? "App &" : "Tool &")
                          + QString::fromLatin1(number));
        }
        Click(("mnuPopCustomTool" + number).constData());
        Click(("mnuCustomApp" + number).constData());
    }
    ASSERT_EQ(fakes.launcher.started.size(), 8);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(fakes.launcher.started[2 * i].program, QStringLiteral("/t/%1").arg(i + 1));
        EXPECT_EQ(fakes.launcher.started[2 * i + 1].program, QStringLiteral("/a/%1").arg(i + 1));
    }
}

TEST_F(PreferencesWindowTest, ASlotThatIsTurnedOffLeavesBothMenusAtOnceAndKeepsItsPath)
{
    Store("CustomToolPrefs", "chkCustomTool(2).value", "1");
    Store("CustomToolPrefs", "txtCustomTool(2).Text", "Paint");
    Store("CustomToolPrefs", "txtCustomToolPath(2).Text", "/opt/paint");
    Pictures(1);
    Start();
    EXPECT_TRUE(Entry("mnuCustomTool3")->isVisible());
    EXPECT_TRUE(Entry("mnuPopCustomTool3")->isVisible());
    Preferences([&](QDialog& dialog) {
        Tab(dialog, kToolsTab);
        Check(dialog, "chkCustomTool(2)");
        Close(dialog);
    });
    for (const char* entry : {"mnuCustomTool3", "mnuPopCustomTool3"}) {
        EXPECT_FALSE(Entry(entry)->isVisible()) << entry;
        EXPECT_FALSE(Entry(entry)->isEnabled()) << entry;
    }
    const SettingsStore read(store.File());
    EXPECT_EQ(read.GetSetting("CustomToolPrefs", "chkCustomTool(2).value"), "0");
    EXPECT_EQ(read.GetSetting("CustomToolPrefs", "txtCustomToolPath(2).Text"), "/opt/paint");
    Preferences(
        [&](QDialog& dialog) { EXPECT_EQ(TextIn(dialog, "txtCustomToolPath(2)"), "/opt/paint"); });
}

class BrowseForProgramTest : public PreferencesWindowTest {
protected:
    BrowseForProgramTest()
    {
        programs.Write("paint me");
        programs.Write("other");
        store.SaveSetting("MainScreenSettings", "exePath", programs.Path());
    }
    /// Presses a browse button of the tools and acts in what it opens.
    void Browse(QDialog& dialog, const char* button, const std::function<void(QDialog&)>& act)
    {
        InDialog(
            "frmBrowse",
            [&] { QTest::mouseClick(In<QPushButton>(dialog, button), Qt::LeftButton); }, act);
    }
    /// Chooses a file in the tree as a person does.
    void Choose(QDialog& browse, const QString& path) const
    {
        auto* tree = In<FolderTree>(browse, "FolderView1");
        const auto node = [&] { return tree->findChild<FolderTreeModel*>()->Find(path); };
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                if (!tree->IsSelecting() && !tree->SelectedPath().isEmpty()) {
                    tree->expand(tree->currentIndex());
                }
                return node().isValid();
            },
            kWait));
        tree->scrollTo(node());
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualRect(node()).center());
        ASSERT_TRUE(QTest::qWaitFor([&] { return tree->SelectedPath() == path; }, kWait));
        ASSERT_TRUE(QTest::qWaitFor([&] { return session.browsePath == path + u'/'; }, kWait));
    }
    static void Press(QDialog& dialog, const char* button)
    {
        QTest::mouseClick(In<QPushButton>(dialog, button), Qt::LeftButton);
    }
    TempFolder programs;
};

TEST_F(BrowseForProgramTest, ThePickedProgramIsPutIntoItsPath)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        Tab(dialog, kApplicationsTab);
        Browse(dialog, "cmdCustomApp(1)", [&](QDialog& browse) {
            EXPECT_EQ(browse.windowTitle(), "Select Custom Tool Path...");
            EXPECT_EQ(browse.parentWidget(), &dialog) << "it stands above the preferences";
            EXPECT_FALSE(In<QPushButton>(browse, "cmdNewFolder")->isEnabled());
            auto* tree = In<FolderTree>(browse, "FolderView1");
            EXPECT_TRUE(QTest::qWaitFor(
                [&] { return tree->SelectedPath() + u'/' == programs.Path(); }, kWait))
                << tree->SelectedPath().toStdString();
            Choose(browse, programs.Path("paint me"));
            Press(browse, "cmdSelect");
        });
        EXPECT_EQ(TextIn(dialog, "txtCustomAppPath(1)"), programs.Path("paint me"));
        Tab(dialog, kToolsTab);
        Browse(dialog, "cmdCustomTool(3)", [&](QDialog& browse) {
            Choose(browse, programs.Path("other"));
            Press(browse, "cmdSelect");
        });
        EXPECT_EQ(TextIn(dialog, "txtCustomToolPath(3)"), programs.Path("other"));
        EXPECT_EQ(TextIn(dialog, "txtCustomToolPath(1)"), "");
        EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
    });
    EXPECT_EQ(session.exePath, programs.Path()) << "it keeps its value for ever";
}

TEST_F(BrowseForProgramTest, ACancelIsShownAndThePathStays)
{
    Pictures(1);
    Start();
    for (const char* way : {"cmdCancel", ""}) {
        fakes.dialogs.Answer(BoxAnswer::Ok);
        const qsizetype boxes = fakes.dialogs.Boxes().size();
        Preferences([&](QDialog& dialog) {
            Tab(dialog, kToolsTab);
            Write(dialog, "txtCustomToolPath(0)", "/opt/paint");
            Browse(dialog, "cmdCustomTool(0)", [&](QDialog& browse) {
                if (*way) {
                    Press(browse, way);
                } else {
                    QTest::keyClick(&browse, Qt::Key_Escape);
                }
            });
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(TextIn(dialog, "txtCustomToolPath(0)"), "/opt/paint");
        });
        ASSERT_EQ(fakes.dialogs.Boxes().size(), boxes + 1);
        EXPECT_TRUE(fakes.dialogs.Boxes().last().text.startsWith("No program was chosen."));
        EXPECT_EQ(session.browsePath, QString());
    }
}

TEST_F(PreferencesWindowTest, EveryControlIsReachedByTabAndHasWords)
{
    Pictures(1);
    Start();
    QStringList expected[] = {{"txtThumbX", "txtThumbY", "chkSubDirectory", "optFileOptions(3)",
                               "chkGridlines", "chkSorted", "txtKeyword1", "txtKeyword2",
                               "txtKeyword3", "txtKeyword4", "cmdClose", "qt_tabwidget_tabbar"},
                              {"txtJPEGValue", "optVideoTool(0)", "cmdClose"},
                              {},
                              {}};
    for (int i = 0; i < 4; ++i) {
        for (const char* control :
             {"chkCustom%1(%2)", "txtCustom%1(%2)", "txtCustom%1Path(%2)", "cmdCustom%1(%2)"}) {
            expected[kToolsTab].append(QString::fromLatin1(control).arg("Tool").arg(i));
            expected[kApplicationsTab].append(QString::fromLatin1(control).arg("App").arg(i));
        }
    }
    for (int tab = 0; tab < 4; ++tab) {
        Preferences([&](QDialog& dialog) {
            dialog.activateWindow();
            ASSERT_TRUE(
                QTest::qWaitFor([&] { return QApplication::activeWindow() == &dialog; }, kWait));
            Tab(dialog, tab);
            ExpectNamedByTab(dialog, expected[tab]);
        });
    }
}

TEST_F(PreferencesWindowTest, NoTwoControlsOfATabShareALetter)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        for (int tab = 0; tab < 4; ++tab) {
            Tab(dialog, tab);
            QMap<QChar, QString> taken;
            const auto take = [&](const QString& words) {
                const QChar letter = MnemonicOf(words);
                EXPECT_TRUE(letter.isNull() || !taken.contains(letter))
                    << words.toStdString() << " and " << taken.value(letter).toStdString();
                taken.insert(letter, words);
            };
            for (const auto* button : dialog.findChildren<QAbstractButton*>()) {
                if (button->isVisible()) {
                    take(button->text());
                }
            }
            for (const auto* label : dialog.findChildren<QLabel*>()) {
                if (label->isVisible()) {
                    take(label->text());
                }
            }
        }
    });
}

TEST_F(PreferencesWindowTest, TheKeyboardReachesEveryTab)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        auto* tabs = In<QTabWidget>(dialog, "tabPreferences");
        for (const int expected : {kImagingTab, kToolsTab, kApplicationsTab, kFileTab}) {
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
            EXPECT_EQ(tabs->currentIndex(), expected);
        }
    });
}

TEST_F(PreferencesWindowTest, GoesWithTheMainWindow)
{
    Pictures(1);
    Start();
    QPointer<QDialog> shown;
    InDialog(
        "frmBrowserPreferences", [this] { Click("mnuMainFilePreferences"); },
        [&](QDialog& dialog) {
            shown = &dialog;
            main.reset();
        });
    EXPECT_FALSE(shown);
}

} // namespace quillane
