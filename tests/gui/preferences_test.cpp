// The preferences: the window and what it shows.
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

} // namespace quillane
