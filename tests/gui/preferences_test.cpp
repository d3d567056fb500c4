// The preferences: what they show, what Close applies, what any other end applies.
#include "preferences_fixture.h"

#include <QGroupBox>
#include <QLabel>

namespace quillane {

TEST_F(PreferencesWindowTest, IsAModalDialogUnderItsCaption)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Quillane  Preferences"));
        EXPECT_TRUE(dialog.isModal());
        EXPECT_EQ(dialog.parentWidget(), main.get());
    });
}

TEST_F(PreferencesWindowTest, OnALowScreenEveryTabScrollsAndTheButtonStaysInSight)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        const QSize low(512, 300);
        auto* close = In<QPushButton>(dialog, "cmdClose");
        const char* lastOfTab[] = {"txtKeyword4", "optVideoTool(1)", "txtCustomToolPath(3)",
                                   "txtCustomAppPath(3)"};
        for (int tab = kFileTab; tab <= kApplicationsTab; ++tab) {
            Tab(dialog, tab);
            dialog.resize(low);
            QCoreApplication::processEvents();
            EXPECT_EQ(dialog.size(), low) << tab;
            EXPECT_EQ(close->visibleRegion().boundingRect(), close->rect()) << tab;
            auto* last = In<QWidget>(dialog, lastOfTab[tab]);
            In<QTabWidget>(dialog, "tabPreferences")->setFocus();
            for (int i = 0; i < 40 && !last->hasFocus(); ++i) {
                QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
                if (tab == kImagingTab && In<QWidget>(dialog, "optVideoTool(0)")->hasFocus()) {
                    QTest::keyClick(dialog.focusWidget(), Qt::Key_Down);
                }
            }
            EXPECT_TRUE(last->hasFocus()) << tab;
            EXPECT_FALSE(last->visibleRegion().isEmpty()) << tab;
        }
    });
}

TEST_F(PreferencesWindowTest, ShowsWhatIsInForce)
{
    Store("Settings", "lvSelected.GridLines", "True");
    Store("Settings", "lvSelected.Sorted", "False");
    Store("Settings", "LEADThumb1.IncludeSubDirectories", "True");
    for (int i = 0; i < 4; ++i) {
        const QByteArray n = QByteArray::number(i);
        Store("CustomToolPrefs", ("chkCustomTool(" + n + ").value").constData(),
              QByteArray::number(i % 2));
        Store("CustomToolPrefs", ("txtCustomTool(" + n + ").Text").constData(), "Tool " + n);
        Store("CustomToolPrefs", ("txtCustomToolPath(" + n + ").Text").constData(), "/t/" + n);
        Store("CustomToolPrefs", ("chkCustomApp(" + n + ").value").constData(),
              QByteArray::number(1 - i % 2));
        Store("CustomToolPrefs", ("txtCustomApp(" + n + ").Text").constData(), "App " + n);
        Store("CustomToolPrefs", ("txtCustomAppPath(" + n + ").Text").constData(), "/a/" + n);
    }
    Pictures(1);
    StartWithList(2);
    session.gsFileKeyword = {"One", "Two", "Three", "Four"};
    session.gThumbnailWidth = 90;
    session.gThumbnailHeight = 80;
    session.jpegQuality = 33;
    session.gsVideoTool = 4;
    Preferences([&](QDialog& dialog) {
        EXPECT_EQ(TextIn(dialog, "txtThumbX"), "90");
        EXPECT_EQ(TextIn(dialog, "txtThumbY"), "80");
        EXPECT_EQ(TextIn(dialog, "txtJPEGValue"), "33");
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(TextIn(dialog, QStringLiteral("txtKeyword%1").arg(i + 1)),
                      session.gsFileKeyword[size_t(i)]);
            EXPECT_EQ(Checked(dialog, QStringLiteral("optFileOptions(%1)").arg(i)), i == 2);
            EXPECT_EQ(Checked(dialog, QStringLiteral("chkCustomTool(%1)").arg(i)), i % 2 == 1);
            EXPECT_EQ(Checked(dialog, QStringLiteral("chkCustomApp(%1)").arg(i)), i % 2 == 0);
            EXPECT_EQ(TextIn(dialog, QStringLiteral("txtCustomTool(%1)").arg(i)),
                      QStringLiteral("Tool %1").arg(i));
            EXPECT_EQ(TextIn(dialog, QStringLiteral("txtCustomToolPath(%1)").arg(i)),
                      QStringLiteral("/t/%1").arg(i));
            EXPECT_EQ(TextIn(dialog, QStringLiteral("txtCustomApp(%1)").arg(i)),
                      QStringLiteral("App %1").arg(i));
            EXPECT_EQ(TextIn(dialog, QStringLiteral("txtCustomAppPath(%1)").arg(i)),
                      QStringLiteral("/a/%1").arg(i));
        }
        EXPECT_TRUE(Checked(dialog, "optVideoTool(1)")) << "any video tool but 0";
        EXPECT_FALSE(Checked(dialog, "optVideoTool(0)"));
        EXPECT_TRUE(Checked(dialog, "chkGridlines"));
        EXPECT_FALSE(Checked(dialog, "chkSorted"));
        EXPECT_TRUE(Checked(dialog, "chkSubDirectory"));
    });
    EXPECT_EQ(session.gsVideoTool, 4) << "looking changes nothing";
}

TEST_F(PreferencesWindowTest, AFirstRunShowsTheDefaults)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        EXPECT_EQ(TextIn(dialog, "txtThumbX"), "100");
        EXPECT_EQ(TextIn(dialog, "txtThumbY"), "100");
        EXPECT_EQ(TextIn(dialog, "txtJPEGValue"), "10");
        EXPECT_TRUE(Checked(dialog, "optFileOptions(3)"));
        EXPECT_TRUE(Checked(dialog, "optVideoTool(0)"));
        EXPECT_FALSE(Checked(dialog, "chkGridlines"));
        EXPECT_TRUE(Checked(dialog, "chkSorted"));
        EXPECT_FALSE(Checked(dialog, "chkSubDirectory"));
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(TextIn(dialog, QStringLiteral("txtKeyword%1").arg(i + 1)), "");
            EXPECT_FALSE(Checked(dialog, QStringLiteral("chkCustomTool(%1)").arg(i)));
            EXPECT_FALSE(Checked(dialog, QStringLiteral("chkCustomApp(%1)").arg(i)));
        }
    });
}

TEST_F(PreferencesWindowTest, HasItsWords)
{
    Pictures(1);
    Start();
    Preferences([&](QDialog& dialog) {
        const auto* tabs = In<QTabWidget>(dialog, "tabPreferences");
        QStringList words;
        for (int i = 0; i < tabs->count(); ++i) {
            words.append(tabs->tabText(i));
        }
        EXPECT_EQ(words,
                  (QStringList{"File/Thumbnail Settings", "Imaging Settings",
                               "Quillane Custom Tools", "Quillane Custom Applications"}));
        QStringList frames, labels;
        for (const auto* frame : dialog.findChildren<QGroupBox*>()) {
            frames.append(frame->title());
        }
        for (const auto* label : dialog.findChildren<QLabel*>()) {
            labels.append(label->text().remove(u'&'));
        }
        for (const char* frame : {"Thumbnail View", "List View Options:", "Imaging Settings",
                                  "Column Header Metadata Keywords (Detail List)",
                                  "Video Application for (AVI/MPEG)"}) {
            EXPECT_TRUE(frames.contains(QLatin1String(frame))) << frame;
        }
        for (const char* label :
             {"Thumbnail Image Width:", "Thumbnail Image Height:", "Keyword1:", "Keyword2:",
              "Keyword3:", "Keyword4:", "JPEG Image Compression:"}) {
            EXPECT_TRUE(labels.contains(QLatin1String(label))) << label;
        }
        const auto said = [&](const char* name) {
            return In<QAbstractButton>(dialog, name)->text().remove(u'&');
        };
        EXPECT_EQ(said("optFileOptions(0)"), "Large Icons");
        EXPECT_EQ(said("optFileOptions(1)"), "Small Icons");
        EXPECT_EQ(said("optFileOptions(2)"), "List");
        EXPECT_EQ(said("optFileOptions(3)"), "Details");
        EXPECT_EQ(said("chkSorted"), "Sorted List");
        EXPECT_EQ(said("optVideoTool(1)"), "Use Windows Default Video Viewer");
        for (int i = 0; i < 4; ++i) {
            for (const char* browse : {"cmdCustomTool(%1)", "cmdCustomApp(%1)"}) {
                EXPECT_EQ(said(QString::fromLatin1(browse).arg(i).toLatin1().constData()),
                          "Browse for Application (.exe)...");
            }
        }
    });
}

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
