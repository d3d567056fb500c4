// The preferences: what Close applies, what any other end applies.
#include "preferences_fixture.h"

namespace quillane {

TEST_F(PreferencesWindowTest, CloseAppliesEverything)
{
    Pictures(2);
    StartWithList(3);
    Preferences([&](QDialog& dialog) {
        Write(dialog, "txtThumbX", "77");
        Write(dialog, "txtThumbY", "66");
        Write(dialog, "txtKeyword1", "Name");
        Write(dialog, "txtKeyword2", "City");
        Write(dialog, "txtKeyword3", "Event");
        Write(dialog, "txtKeyword4", "Sky");
        Check(dialog, "optFileOptions(1)");
        Check(dialog, "chkGridlines");
        Check(dialog, "chkSorted");
        Check(dialog, "chkSubDirectory");
        Tab(dialog, kImagingTab);
        Write(dialog, "txtJPEGValue", "5");
        EXPECT_EQ(session.gThumbnailWidth, 100);
        EXPECT_FALSE(List()->GridLines());
        Close(dialog);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(session.gsFileKeyword, (Four<QString>{"Name", "City", "Event", "Sky"}));
    EXPECT_EQ(session.gThumbnailWidth, 77);
    EXPECT_EQ(session.gThumbnailHeight, 66);
    EXPECT_EQ(session.jpegQuality, 5);
    EXPECT_TRUE(List()->GridLines());
    EXPECT_FALSE(List()->Sorted());
    EXPECT_EQ(List()->Style(), 1);
    EXPECT_TRUE(Entry("mnuMainViewTileBoxTileFilename1")->isChecked());
    EXPECT_FALSE(Entry("mnuMainViewTileBoxTileFilename3")->isChecked());
}

TEST_F(PreferencesWindowTest, TheViewIsNotReadAgainAndCaptionsChangeWithTheNextScan)
{
    Pictures(2);
    StartWithList(3);
    Picture("later.bmp");
    Preferences([&](QDialog& dialog) {
        Write(dialog, "txtKeyword2", "City");
        Close(dialog);
    });
    EXPECT_EQ(List()->Count(), 2);
    EXPECT_NE(List()->Caption(4), "City");
    Refresh();
    EXPECT_EQ(List()->Count(), 3);
    EXPECT_EQ(List()->Caption(4), "City");
}

TEST_F(PreferencesWindowTest, AThumbnailSizeTakesEffectAtTheNextScan)
{
    Pictures(2);
    Start();
    Preferences([&](QDialog& dialog) {
        Write(dialog, "txtThumbX", "160");
        Write(dialog, "txtThumbY", "120");
        Close(dialog);
    });
    EXPECT_EQ(Grid()->CellWidth(), 100);
    EXPECT_EQ(Grid()->CellHeight(), 100);
    Refresh();
    EXPECT_EQ(Grid()->CellWidth(), 160);
    EXPECT_EQ(Grid()->CellHeight(), 120);
}

TEST_F(PreferencesWindowTest, SubfoldersAreInTheNextScan)
{
    Pictures(1);
    MakeFolder(folder + QStringLiteral("below"));
    Picture("below/deep.bmp");
    Start();
    EXPECT_EQ(Grid()->Count(), 1);
    Preferences([&](QDialog& dialog) {
        Check(dialog, "chkSubDirectory");
        Close(dialog);
    });
    EXPECT_EQ(Grid()->Count(), 1);
    Refresh();
    EXPECT_EQ(Grid()->Count(), 2);
    EXPECT_TRUE(session.lbFilTiffs.contains(folder + QStringLiteral("below/deep.bmp")));
}

TEST_F(PreferencesWindowTest, TheStyleOfAHiddenListIsChangedAndTheThumbnailsStay)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        Check(dialog, "optFileOptions(0)");
        Close(dialog);
    });
    EXPECT_TRUE(Grid()->isVisible());
    EXPECT_FALSE(List()->isVisible());
    EXPECT_EQ(List()->Style(), 0);
    EXPECT_TRUE(Entry("mnuMainViewTileBoxTileImage")->isChecked());
    EXPECT_FALSE(Entry("mnuMainViewTileBoxTileFilename")->isChecked());
}

TEST_F(PreferencesWindowTest, AnyOtherWayOutAppliesNothingButTheVideoTool)
{
    Pictures(1);
    Start();
    for (const bool escape : {true, false}) {
        session.gsVideoTool = 0;
        Preferences([&](QDialog& dialog) {
            Write(dialog, "txtThumbX", "77");
            Write(dialog, "txtKeyword1", "City");
            Check(dialog, "chkGridlines");
            Check(dialog, "optFileOptions(0)");
            Tab(dialog, kImagingTab);
            Check(dialog, "optVideoTool(1)");
            EXPECT_EQ(session.gsVideoTool, 1) << "at once";
            Tab(dialog, kToolsTab);
            Check(dialog, "chkCustomTool(0)");
            Write(dialog, "txtCustomTool(0)", "Paint");
            if (escape) {
                QTest::keyClick(&dialog, Qt::Key_Escape);
            } else {
                dialog.close();
            }
            EXPECT_FALSE(dialog.isVisible());
        });
        EXPECT_EQ(session.gThumbnailWidth, 100);
        EXPECT_EQ(session.gsFileKeyword[0], QString());
        EXPECT_FALSE(List()->GridLines());
        EXPECT_EQ(List()->Style(), 3);
        EXPECT_FALSE(Entry("mnuCustomTool1")->isVisible());
        EXPECT_EQ(session.gsVideoTool, 1);
    }
}

TEST_F(PreferencesWindowTest, TheVideoToolFollowsEveryClickAndArrowKey)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        Tab(dialog, kImagingTab);
        dialog.activateWindow();
        ASSERT_TRUE(
            QTest::qWaitFor([&] { return QApplication::activeWindow() == &dialog; }, kWait));
        auto* second = In<QAbstractButton>(dialog, "optVideoTool(1)");
        QTest::mouseClick(second, Qt::LeftButton, {}, {8, second->height() / 2});
        EXPECT_EQ(session.gsVideoTool, 1);
        second->setFocus();
        QTest::keyClick(second, Qt::Key_Up);
        EXPECT_TRUE(Checked(dialog, "optVideoTool(0)"));
        EXPECT_EQ(session.gsVideoTool, 0);
    });
}

TEST_F(PreferencesWindowTest, ATextThatIsNoNumberEndsTheApplyingWhereItStands)
{
    struct Row {
        const char *x, *y, *jpeg, *error, *box;
        qint16 width, height;
    };
    // What stands before the wrong text is applied, what follows is not.
    const Row rows[] = {
        {"wide", "50", "20", "Error 13", "txtThumbX", 100, 100},
        {"51", "tall", "20", "Error 13", "txtThumbY", 51, 100},
        {"52", "", "20", "Error 13", "txtThumbY", 52, 100},
        {"53", "53", "good", "Error 13", "txtJPEGValue", 53, 53},
        {"54", "   ", "20", "Error 13", "txtThumbY", 54, 53},
        {"1000000000", "50", "20", "Error 6", "txtThumbX", 54, 53},
        {"55", "50", "99999999999", "Error 6", "txtJPEGValue", 55, 50},
    };
    Pictures(1);
    StartWithList(3);
    int number = 0;
    for (const Row& row : rows) {
        const QByteArray word = "word" + QByteArray::number(++number);
        fakes.dialogs.Answer(BoxAnswer::Ok);
        List()->SetGridLines(false);
        List()->SetSorted(true);
        List()->SetStyle(3);
        Preferences([&](QDialog& dialog) {
            Write(dialog, "txtKeyword3", word.constData());
            Check(dialog, "optFileOptions(2)");
            Check(dialog, "chkGridlines");
            Check(dialog, "chkSorted");
            Write(dialog, "txtThumbX", row.x);
            Write(dialog, "txtThumbY", row.y);
            Tab(dialog, kImagingTab);
            Write(dialog, "txtJPEGValue", row.jpeg);
            Tab(dialog, kToolsTab);
            Check(dialog, "chkCustomTool(0)");
            Close(dialog);
            EXPECT_TRUE(dialog.isVisible()) << "so that it can be put right";
            EXPECT_EQ(dialog.focusWidget()->objectName(), row.box);
            EXPECT_TRUE(dialog.focusWidget()->isVisible()) << "its tab is shown";
        });
        ASSERT_EQ(fakes.dialogs.Boxes().size(), number) << row.x;
        EXPECT_TRUE(fakes.dialogs.Boxes().last().text.endsWith(QLatin1String(row.error)))
            << fakes.dialogs.Boxes().last().text.toStdString();
        EXPECT_EQ(session.gsFileKeyword[2], QString::fromLatin1(word));
        EXPECT_TRUE(List()->GridLines());
        EXPECT_FALSE(List()->Sorted());
        EXPECT_EQ(List()->Style(), 2);
        EXPECT_EQ(session.gThumbnailWidth, row.width) << row.x;
        EXPECT_EQ(session.gThumbnailHeight, row.height) << row.x;
        EXPECT_EQ(session.jpegQuality, 10);
        EXPECT_FALSE(Entry("mnuCustomTool1")->isVisible());
        EXPECT_NE(store.GetSetting("CustomToolPrefs", "chkCustomTool(0).value"), "1");
    }
}

TEST_F(PreferencesWindowTest, AWrongTextThatIsPutRightIsApplied)
{
    Pictures(1);
    Start();
    fakes.dialogs.Answer(BoxAnswer::Ok);
    Preferences([&](QDialog& dialog) {
        Write(dialog, "txtThumbY", "tall");
        QTest::keyClick(In<QLineEdit>(dialog, "txtThumbY"), Qt::Key_Return); // Close is the default
        EXPECT_TRUE(dialog.isVisible());
        QTest::keyClicks(In<QLineEdit>(dialog, "txtThumbY"), "85"); // the wrong text is selected
        QTest::keyClick(In<QLineEdit>(dialog, "txtThumbY"), Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(session.gThumbnailHeight, 85);
    EXPECT_EQ(fakes.dialogs.Boxes().size(), 1);
}

TEST_F(PreferencesWindowTest, NoNumberIsTooStrangeForTheNextScan)
{
    Picture("wide.bmp", {400, 90});
    Start();
    const std::pair<const char*, const char*> sizes[] = {
        {"0", "0"}, {"-5", "-32768"}, {"32767", "32767"}, {"1", "32767"}, {" 64 ", "2.5"}};
    for (const auto& [x, y] : sizes) {
        Preferences([&, x = x, y = y](QDialog& dialog) {
            Write(dialog, "txtThumbX", x);
            Write(dialog, "txtThumbY", y);
            Tab(dialog, kImagingTab);
            Write(dialog, "txtJPEGValue", y);
            Close(dialog);
            EXPECT_FALSE(dialog.isVisible()) << x;
        });
        Refresh();
        EXPECT_EQ(Grid()->Count(), 1);
        EXPECT_GE(Grid()->CellWidth(), 16);
        EXPECT_LE(Grid()->CellWidth(), 1024);
        EXPECT_GE(Grid()->CellHeight(), 16);
        EXPECT_LE(Grid()->CellHeight(), 1024);
        main->UpdateImageInImageList();
        EXPECT_EQ(Grid()->Count(), 1);
    }
    EXPECT_EQ(session.gThumbnailWidth, 64);
    EXPECT_EQ(session.gThumbnailHeight, 2);
    EXPECT_EQ(session.jpegQuality, 2);
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(PreferencesWindowTest, VeryLongTextsHarmNothing)
{
    const QString endless(30'000, u'W');
    Pictures(1);
    StartWithList(3);
    Preferences([&](QDialog& dialog) {
        In<QLineEdit>(dialog, "txtKeyword1")->setText(endless);
        Tab(dialog, kToolsTab);
        Check(dialog, "chkCustomTool(0)");
        In<QLineEdit>(dialog, "txtCustomTool(0)")->setText(endless);
        In<QLineEdit>(dialog, "txtCustomToolPath(0)")->setText(u'/' + endless);
        EXPECT_LT(dialog.minimumSizeHint().width(), 1000);
        Close(dialog);
        EXPECT_FALSE(dialog.isVisible());
    });
    Refresh();
    EXPECT_EQ(session.gsFileKeyword[0], endless);
    EXPECT_EQ(List()->Caption(3), endless);
    EXPECT_LT(main->Menus().Menu("mnuTools")->sizeHint().width(), 1000);
    EXPECT_LT(main->Menus().Popup()->sizeHint().width(), 1000);
    EXPECT_EQ(store.GetSetting("CustomToolPrefs", "txtCustomTool(0).Text"), endless);
    fakes.launcher.fails = true;
    Click("mnuPopCustomTool1");
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(PreferencesWindowTest, EverythingIsThereAgainAfterARestart)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        Write(dialog, "txtThumbX", "140");
        Write(dialog, "txtThumbY", "130");
        Write(dialog, "txtKeyword4", "Sky");
        Check(dialog, "optFileOptions(1)");
        Check(dialog, "chkGridlines");
        Check(dialog, "chkSorted");
        Check(dialog, "chkSubDirectory");
        Tab(dialog, kImagingTab);
        Write(dialog, "txtJPEGValue", "200");
        Check(dialog, "optVideoTool(1)");
        Tab(dialog, kApplicationsTab);
        Check(dialog, "chkCustomApp(3)");
        Write(dialog, "txtCustomApp(3)", "Ma&ps");
        Write(dialog, "txtCustomAppPath(3)", "/opt/my maps");
        Close(dialog);
    });
    main->close();
    main.reset();
    ASSERT_TRUE(store.Flush());

    const SettingsStore stored(store.File());
    for (const auto& [section, key, value] : std::initializer_list<std::array<const char*, 3>>{
             {"Globals", "gThumbnailWidth", "140"},
             {"Globals", "gThumbnailHeight", "130"},
             {"Globals", "gsFileKeyword(3)", "Sky"},
             {"Globals", "jpegQuality", "200"},
             {"Globals", "gsVideoTool", "1"},
             {"Settings", "lvSelected.View", "1"},
             {"Settings", "lvSelected.GridLines", "True"},
             {"Settings", "lvSelected.Sorted", "False"},
             {"Settings", "LEADThumb1.IncludeSubDirectories", "True"},
             {"CustomToolPrefs", "chkCustomApp(3).value", "1"},
             {"CustomToolPrefs", "txtCustomApp(3).Text", "Ma&ps"},
             {"CustomToolPrefs", "txtCustomAppPath(3).Text", "/opt/my maps"}}) {
        EXPECT_EQ(stored.GetSetting(QLatin1String(section), QLatin1String(key)), value) << key;
    }
    session = {};
    SettingsStore reread(store.File());
    main = std::make_unique<frmBrowserMain>(session, reread, Services(), windows);
    main->Load();
    ASSERT_TRUE(QTest::qWaitFor([this] { return session.gsPath == folder && Rested(); }, kWait));
    EXPECT_EQ(Grid()->CellWidth(), 140);
    EXPECT_TRUE(Entry("mnuCustomApp4")->isVisible());
    Preferences([&](QDialog& dialog) {
        EXPECT_EQ(TextIn(dialog, "txtThumbX"), "140");
        EXPECT_EQ(TextIn(dialog, "txtThumbY"), "130");
        EXPECT_EQ(TextIn(dialog, "txtKeyword4"), "Sky");
        EXPECT_TRUE(Checked(dialog, "optFileOptions(1)"));
        EXPECT_TRUE(Checked(dialog, "chkGridlines"));
        EXPECT_FALSE(Checked(dialog, "chkSorted"));
        EXPECT_TRUE(Checked(dialog, "chkSubDirectory"));
        EXPECT_EQ(TextIn(dialog, "txtJPEGValue"), "200");
        EXPECT_TRUE(Checked(dialog, "optVideoTool(1)"));
        EXPECT_EQ(TextIn(dialog, "txtCustomAppPath(3)"), "/opt/my maps");
    });
    main.reset(); // before the store that it writes
}

} // namespace quillane
