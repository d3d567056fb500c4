// The preferences, and the commands of the main window that reach other programs.
#include "browser/ui/send_album.h"
#include "main_window_fixture.h"
#include "modal_dialog.h"

#include <QCheckBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>
#include <QTabWidget>

namespace quillane {

class PreferencesWindowTest : public MainWindowTest {
protected:
    void Preferences(const std::function<void(QDialog&)>& act)
    {
        InDialog(
            "frmBrowserPreferences", [this] { Click("mnuMainFilePreferences"); }, act);
    }
    static void Close(QDialog& dialog)
    {
        QTest::mouseClick(In<QPushButton>(dialog, "cmdClose"), Qt::LeftButton);
    }
    static void Tab(QDialog& dialog, int index)
    {
        In<QTabWidget>(dialog, "tabPreferences")->setCurrentIndex(index);
    }
    static void Write(QDialog& dialog, const char* box, const char* text)
    {
        Retype(In<QLineEdit>(dialog, box), text);
    }
    static void Check(QDialog& dialog, const char* box)
    {
        auto* button = In<QAbstractButton>(dialog, box);
        QTest::keyClick(button, Qt::Key_Space);
    }
};

TEST_F(PreferencesWindowTest, ShowsWhatIsInForceUnderItsNames)
{
    Pictures(1);
    Start();
    session.gsFileKeyword = {"One", "Two", "Three", "Four"};
    session.gThumbnailWidth = 90;
    session.gThumbnailHeight = 80;
    session.jpegQuality = 33;
    session.gsVideoTool = 4;
    Preferences([&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Quillane  Preferences"));
        EXPECT_EQ(In<QLineEdit>(dialog, "txtThumbX")->text(), QStringLiteral("90"));
        EXPECT_EQ(In<QLineEdit>(dialog, "txtThumbY")->text(), QStringLiteral("80"));
        EXPECT_EQ(In<QLineEdit>(dialog, "txtJPEGValue")->text(), QStringLiteral("33"));
        EXPECT_EQ(In<QLineEdit>(dialog, "txtKeyword1")->text(), QStringLiteral("One"));
        EXPECT_EQ(In<QLineEdit>(dialog, "txtKeyword4")->text(), QStringLiteral("Four"));
        EXPECT_TRUE(In<QRadioButton>(dialog, "optFileOptions(3)")->isChecked());
        EXPECT_TRUE(In<QRadioButton>(dialog, "optVideoTool(1)")->isChecked());
        EXPECT_FALSE(In<QCheckBox>(dialog, "chkGridlines")->isChecked());
        EXPECT_TRUE(In<QCheckBox>(dialog, "chkSorted")->isChecked());
        EXPECT_FALSE(In<QCheckBox>(dialog, "chkSubDirectory")->isChecked());
        auto* tabs = In<QTabWidget>(dialog, "tabPreferences");
        QStringList words;
        for (int i = 0; i < tabs->count(); ++i) {
            words.append(tabs->tabText(i));
        }
        EXPECT_EQ(words,
                  (QStringList{QStringLiteral("File/Thumbnail Settings"),
                               QStringLiteral("Imaging Settings"),
                               QStringLiteral("Quillane Custom Tools"),
                               QStringLiteral("Quillane Custom Applications")}));
        EXPECT_EQ(In<QPushButton>(dialog, "cmdCustomTool(0)")->text(),
                  QStringLiteral("Browse for Application (.exe)..."));
        EXPECT_EQ(In<QRadioButton>(dialog, "optVideoTool(1)")->text().remove(u'&'),
                  QStringLiteral("Use Windows Default Video Viewer"));
    });
}

TEST_F(PreferencesWindowTest, CloseAppliesEverythingAndTheNextScanShowsIt)
{
    store.SaveSetting(QStringLiteral("Settings"),
                      QStringLiteral("mnuMainViewTileBoxTileImage.Checked"),
                      QStringLiteral("False"));
    Pictures(2);
    Start();
    Preferences([&](QDialog& dialog) {
        Write(dialog, "txtThumbX", "77");
        Write(dialog, "txtThumbY", "66");
        Write(dialog, "txtKeyword2", "City");
        Check(dialog, "optFileOptions(1)");
        Check(dialog, "chkGridlines");
        Check(dialog, "chkSorted");
        Check(dialog, "chkSubDirectory");
        Tab(dialog, 1);
        Write(dialog, "txtJPEGValue", "5");
        EXPECT_EQ(session.gThumbnailWidth, 100);
        EXPECT_FALSE(List()->GridLines());
        Close(dialog);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(session.gThumbnailWidth, 77);
    EXPECT_EQ(session.gThumbnailHeight, 66);
    EXPECT_EQ(session.jpegQuality, 5);
    EXPECT_TRUE(List()->GridLines());
    EXPECT_FALSE(List()->Sorted());
    EXPECT_EQ(List()->Style(), 1);
    EXPECT_TRUE(Entry("mnuMainViewTileBoxTileFilename1")->isChecked());
    // The captions change with the next scan of the list.
    EXPECT_NE(List()->Caption(5), QStringLiteral("City"));
    Click("mnuRefresh");
    EXPECT_TRUE(QTest::qWaitFor([&] { return Rested(); }, kWait));
    EXPECT_EQ(List()->Caption(5), QStringLiteral("City"));
}

TEST_F(PreferencesWindowTest, AnyOtherWayOutAppliesNothingButTheVideoTool)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        Write(dialog, "txtThumbX", "77");
        Write(dialog, "txtKeyword1", "City");
        Check(dialog, "chkGridlines");
        Tab(dialog, 1);
        Check(dialog, "optVideoTool(1)");
        EXPECT_EQ(session.gsVideoTool, 1) << "at once";
        Tab(dialog, 2);
        Check(dialog, "chkCustomTool(0)");
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(session.gThumbnailWidth, 100);
    EXPECT_EQ(session.gsFileKeyword[0], QString());
    EXPECT_FALSE(List()->GridLines());
    EXPECT_FALSE(Entry("mnuCustomTool1")->isVisible());
    EXPECT_EQ(session.gsVideoTool, 1);
}

TEST_F(PreferencesWindowTest, ATextThatIsNoNumberIsShownAndTheWindowStays)
{
    Pictures(1);
    Start();
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Preferences([&](QDialog& dialog) {
        Write(dialog, "txtThumbX", "50");
        Write(dialog, "txtThumbY", "tall");
        Close(dialog);
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(dialog.focusWidget()->objectName(), QStringLiteral("txtThumbY"));
    });
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_TRUE(fakes.dialogs.Boxes()[0].text.endsWith(QStringLiteral("Error 13")));
    EXPECT_EQ(session.gThumbnailWidth, 50) << "what stands before it is applied";
    EXPECT_EQ(session.gThumbnailHeight, 100);
}

TEST_F(PreferencesWindowTest, SlotsAreStoredAndInTheMenusAtOnce)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        Tab(dialog, 2);
        Check(dialog, "chkCustomTool(2)");
        Write(dialog, "txtCustomTool(2)", "Paint");
        Write(dialog, "txtCustomToolPath(2)", "/opt/paint");
        Tab(dialog, 3);
        Check(dialog, "chkCustomApp(0)");
        Write(dialog, "txtCustomApp(0)", "Maps");
        Close(dialog);
    });
    EXPECT_TRUE(Entry("mnuCustomTool3")->isVisible());
    EXPECT_TRUE(Entry("mnuPopCustomTool3")->isVisible());
    EXPECT_EQ(Entry("mnuPopCustomTool3")->text(), QStringLiteral("Paint"));
    EXPECT_TRUE(Entry("mnuCustomApp1")->isVisible());
    const SettingsStore read(store.File());
    EXPECT_EQ(read.GetSetting(QStringLiteral("CustomToolPrefs"),
                              QStringLiteral("txtCustomToolPath(2).Text")),
              QStringLiteral("/opt/paint"));
    Click("mnuPopCustomTool3");
    ASSERT_EQ(fakes.launcher.started.size(), 1);
    EXPECT_EQ(fakes.launcher.started[0].program, QStringLiteral("/opt/paint"));
    // Off again: both entries go at once; the path stays stored.
    Preferences([&](QDialog& dialog) {
        Tab(dialog, 2);
        EXPECT_EQ(In<QLineEdit>(dialog, "txtCustomToolPath(2)")->text(),
                  QStringLiteral("/opt/paint"));
        Check(dialog, "chkCustomTool(2)");
        Close(dialog);
    });
    EXPECT_FALSE(Entry("mnuCustomTool3")->isVisible());
    EXPECT_FALSE(Entry("mnuPopCustomTool3")->isVisible());
    EXPECT_FALSE(Entry("mnuCustomTool3")->isEnabled());
}

TEST_F(PreferencesWindowTest, BrowsePutsThePickedProgramIntoItsPath)
{
    Pictures(1);
    Start();
    fakes.dialogs.AnswerFile(QStringLiteral("/usr/bin/gimp"));
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Preferences([&](QDialog& dialog) {
        Tab(dialog, 3);
        QTest::mouseClick(In<QPushButton>(dialog, "cmdCustomApp(1)"), Qt::LeftButton);
        EXPECT_EQ(In<QLineEdit>(dialog, "txtCustomAppPath(1)")->text(),
                  QStringLiteral("/usr/bin/gimp"));
        EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
        // Cancelled: the failure is shown, the path stays.
        QTest::mouseClick(In<QPushButton>(dialog, "cmdCustomApp(1)"), Qt::LeftButton);
        EXPECT_EQ(fakes.dialogs.Boxes().size(), 1);
        EXPECT_EQ(In<QLineEdit>(dialog, "txtCustomAppPath(1)")->text(),
                  QStringLiteral("/usr/bin/gimp"));
    });
}

TEST_F(PreferencesWindowTest, EveryControlIsReachedByTabAndHasWords)
{
    Pictures(1);
    Start();
    const QStringList expected[] = {
        {QStringLiteral("txtThumbX"), QStringLiteral("chkSubDirectory"),
         QStringLiteral("txtKeyword4"), QStringLiteral("cmdClose")},
        {QStringLiteral("txtJPEGValue"), QStringLiteral("cmdClose")},
        {QStringLiteral("chkCustomTool(0)"), QStringLiteral("cmdCustomTool(3)")},
        {QStringLiteral("chkCustomApp(0)"), QStringLiteral("cmdCustomApp(3)")}};
    for (int tab = 0; tab < 4; ++tab) {
        Preferences([&](QDialog& dialog) {
            Tab(dialog, tab);
            ExpectNamedByTab(dialog, expected[tab]);
        });
    }
}

class LaunchCommandsTest : public MainWindowTest { };

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

TEST_F(LaunchCommandsTest, BothMapEntriesRunTheMapProgram)
{
    Pictures(1);
    Start();
    Click("mnuWayfarix");
    Click("mnuPopWayfarix");
    ASSERT_EQ(fakes.launcher.started.size(), 2);
    EXPECT_EQ(fakes.launcher.started[1].program,
              fakes.places.ApplicationFolder() + QStringLiteral("Wayfarix.exe"));
    EXPECT_EQ(fakes.launcher.started[1].arguments.constFirst(), session.gsFileName);
}

TEST_F(LaunchCommandsTest, AMissingMapProgramIsShownAndAFailingToolIsNot)
{
    store.SaveSetting(QStringLiteral("CustomToolPrefs"), QStringLiteral("chkCustomTool(0).value"),
                      QStringLiteral("1"));
    Pictures(1);
    Start();
    fakes.launcher.fails = true;
    Click("mnuPopCustomTool1");
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
    EXPECT_TRUE(
        main->statusBar()->currentMessage().endsWith(QStringLiteral("failed: Nothing opens this.")))
        << main->statusBar()->currentMessage().toStdString();
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Click("mnuWayfarix");
    EXPECT_EQ(fakes.dialogs.Boxes().size(), 1);
}

} // namespace quillane
