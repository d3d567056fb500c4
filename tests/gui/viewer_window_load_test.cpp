// The viewer's form: settings, captions, the metadata page, keys, reopening, bad files.
#include "gui/viewer_window_fixture.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTabBar>
#include <QTreeWidget>

namespace quillane {

namespace {

class ViewerLoadTest : public ViewerWindowTest {
protected:
    void ExpectTabs(bool general, bool camera, bool gps, bool dicom) const
    {
        ASSERT_EQ(Tabs()->count(), 5);
        EXPECT_TRUE(Tabs()->isTabEnabled(0));
        EXPECT_EQ(Tabs()->isTabEnabled(1), general);
        EXPECT_EQ(Tabs()->isTabEnabled(2), camera);
        EXPECT_EQ(Tabs()->isTabEnabled(3), gps);
        EXPECT_EQ(Tabs()->isTabEnabled(4), dicom);
    }
    QString Words(const char* label) const { return Find<QLabel>(label)->text(); }
    QString Box(const char* name) const { return Find<QLineEdit>(name)->text(); }
    QString Tags() const { return Find<QPlainTextEdit>("txtTags")->toPlainText(); }
    void Keep(const char* key, const char* value)
    {
        store.SaveSetting(QStringLiteral("ImageDisplay"), QLatin1String(key), QLatin1String(value));
    }
    QString Kept(const char* key) const
    {
        return store.GetSetting(QStringLiteral("ImageDisplay"), QLatin1String(key));
    }
};

} // namespace

TEST_F(ViewerLoadTest, AnExifPictureHasItsTextsListsAndTabs)
{
    const QString file = Copy(QStringLiteral("AST_0101.JPG"));
    Open(file);
    EXPECT_EQ(window->windowTitle(),
              QStringLiteral("Quillane  View/Enhance Image     File: ") + file);
    EXPECT_TRUE(window->Picture().HasBitmap());
    EXPECT_TRUE(View()->HasImage());
    EXPECT_EQ(View()->PaintSizeMode(), 3);
    EXPECT_TRUE(View()->DragEnabled());
    EXPECT_EQ(UndoPixels(), Pixels()) << "undo before any command shows the file as it was loaded";
    ExpectTabs(true, true, true, false);
    EXPECT_TRUE(Tags().startsWith(QStringLiteral("Name=Tarn at noon\n")));
    EXPECT_EQ(Words("Label13"), QStringLiteral("Model:"));
    EXPECT_EQ(Words("Label18"), QStringLiteral("Page:"));
    EXPECT_EQ(Words("Label16"), QStringLiteral("Computer:"));
    EXPECT_EQ(Words("Label17"), QStringLiteral("Document:"));
    EXPECT_EQ(Find<QTreeWidget>("lvImageInfo")->topLevelItemCount(), 10);
    EXPECT_GT(Find<QTreeWidget>("lvCamera")->topLevelItemCount(), 25);
    EXPECT_GT(Find<QTreeWidget>("lvGPS")->topLevelItemCount(), 5);
    EXPECT_EQ(Find<QTreeWidget>("lvDICOM")->topLevelItemCount(), 0);
    EXPECT_FALSE(window->IsChanged());
    EXPECT_EQ(Line(), QString());
    EXPECT_EQ(Find<QTabWidget>("SSTab1")->tabText(1), QStringLiteral("Photo Information/Metadata"));
    EXPECT_EQ(Find<QGroupBox>("Frame1")->title(),
              QStringLiteral("Photo Description/Metadata Text Editor"));
    const char* const captions[] = {"Image Information", "General Comment Tags", "Camera (Exif)",
                                    "GPS (Exif)", "DICOM Information"};
    for (int tab = 0; tab < 5; ++tab) {
        EXPECT_EQ(Tabs()->tabText(tab), QLatin1String(captions[tab]));
    }
}

TEST_F(ViewerLoadTest, ListsHaveTheirTitlesAndWidths)
{
    Make(Small());
    const std::pair<const char*, const char*> rows[] = {{"lvImageInfo", "Image Field"},
                                                        {"lvCamera", "Camera Tag"},
                                                        {"lvGPS", "GPS Tag"},
                                                        {"lvDICOM", "DICOM Tag"}};
    for (const auto& [name, title] : rows) {
        const auto* list = Find<QTreeWidget>(name);
        EXPECT_EQ(list->headerItem()->text(0), QLatin1String(title));
        EXPECT_EQ(list->headerItem()->text(1), QStringLiteral("Value"));
        EXPECT_EQ(list->columnWidth(0), 2300 / 15);
    }
}

TEST_F(ViewerLoadTest, ABitmapHasNoTextAndNoFurtherTabs)
{
    Open(Copy(QStringLiteral("chart.BMP")));
    EXPECT_EQ(Tags(), QString());
    ExpectTabs(false, false, false, false);
    EXPECT_TRUE(Find<QPlainTextEdit>("txtTags")->isReadOnly());
    EXPECT_EQ(Find<QTreeWidget>("lvImageInfo")->topLevelItem(0)->text(1),
              QStringLiteral("Windows BMP"));
}

TEST_F(ViewerLoadTest, APngHasLabelsOfItsOwn)
{
    Open(Copy(QStringLiteral("petals.png")));
    ExpectTabs(true, false, false, false);
    EXPECT_EQ(Words("Label13"), QStringLiteral("Disc. :"));
    EXPECT_EQ(Words("Label18"), QStringLiteral("Warning:"));
    EXPECT_EQ(Words("Label16"), QStringLiteral("Title:"));
    EXPECT_EQ(Words("Label17"), QStringLiteral("Misc. Info:"));
}

TEST_F(ViewerLoadTest, ATiffHasTheGeneralTabAndItsWordsComeBackAfterAPng)
{
    Open(Copy(QStringLiteral("petals.png")));
    session.gsFileName = Copy(QStringLiteral("CHART.TIF"));
    window->show();
    ExpectTabs(true, false, false, false);
    EXPECT_EQ(Words("Label13"), QStringLiteral("Model:"));
    EXPECT_EQ(Words("Label17"), QStringLiteral("Document:"));
}

TEST_F(ViewerLoadTest, ADicomFileHasItsList)
{
    Open(Copy(QStringLiteral("PHANTOM.DIC")));
    ExpectTabs(false, false, false, true);
    EXPECT_EQ(Find<QTreeWidget>("lvDICOM")->topLevelItemCount(), 11);
}

TEST_F(ViewerLoadTest, BoxesAreEmptiedWithEveryLoad)
{
    Open(Copy(QStringLiteral("AST_0101.JPG")));
    Find<QLineEdit>("txtArtistExif")->setText(QStringLiteral("Somebody"));
    fakes.dialogs.Answer(BoxAnswer::No);
    session.gsFileName = Copy(QStringLiteral("chart.BMP"));
    window->show();
    EXPECT_EQ(Box("txtArtistExif"), QString());
    EXPECT_EQ(Tags(), QString());
}

TEST_F(ViewerLoadTest, AFileThatCannotBeLoadedLeavesThePictureEmptyAndALineSaysWhy)
{
    const QString file = Path(QStringLiteral("broken.tif"));
    WriteWholeFile(file, QByteArray("no picture at all"));
    Open(file);
    EXPECT_FALSE(window->Picture().HasBitmap());
    EXPECT_FALSE(View()->HasImage());
    EXPECT_FALSE(Line().isEmpty());
    EXPECT_EQ(Find<QTreeWidget>("lvImageInfo")->topLevelItemCount(), 10);
    ExpectTabs(true, false, false, false);
    // No command has anything to work on, and none complains in a box.
    Click("mnuInvert");
    Click("mnuSharpen");
    Click("mnuSingleFileSave");
    EXPECT_EQ(Bytes(file), QByteArray("no picture at all"));
    EXPECT_FALSE(window->IsChanged());
}

TEST_F(ViewerLoadTest, AFileThatIsNotThereAndNoFileAtAllAreTaken)
{
    Open(Path(QStringLiteral("gone.jpg")));
    EXPECT_FALSE(window->Picture().HasBitmap());
    EXPECT_FALSE(Line().isEmpty());
    session.gsFileName.clear();
    window->show();
    EXPECT_FALSE(window->IsChanged());
    window.reset();
    Open({});
    EXPECT_FALSE(window->Picture().HasBitmap());
    EXPECT_TRUE(Line().isEmpty());
}

TEST_F(ViewerLoadTest, PlaceAndZoomAreThoseThatWereKept)
{
    Keep("Me.TOp", "300");
    Keep("Me.Left", "450");
    Keep("Me.Height", "6000");
    Keep("Me.Width", "7500");
    Keep("mnuZoomOut.Checked", "False");
    Keep("mnuZoom150.Checked", "True");
    Keep("LEAD1.PaintSizeMode", "4");
    Open(Small());
    EXPECT_EQ(window->size(), QSize(500, 400));
    EXPECT_EQ(window->pos(), QPoint(30, 20));
    EXPECT_EQ(View()->PaintSizeMode(), 4);
    EXPECT_EQ(View()->PaintScalar(), 150);
    Click("mnuZoom25");
    window->resize(600, 450);
    window->close();
    EXPECT_EQ(Kept("Me.Height"), QStringLiteral("6750"));
    EXPECT_EQ(Kept("Me.Width"), QStringLiteral("9000"));
    EXPECT_EQ(Kept("mnuZoom25.Checked"), QStringLiteral("True"));
    EXPECT_EQ(Kept("mnuZoom150.Checked"), QStringLiteral("False"));
    EXPECT_EQ(Kept("LEAD1.PaintSizeMode"), QStringLiteral("4"));
}

TEST_F(ViewerLoadTest, AStoredSizeBeyondTheScreenIsFittedAtTopAndLeft)
{
    Keep("Me.TOp", "150");
    Keep("Me.Left", "150");
    Keep("Me.Height", "99999");
    Keep("Me.Width", "99999");
    Make(Small());
    const QRect screen = window->screen()->availableGeometry();
    window->show();
    EXPECT_EQ(window->pos(), screen.topLeft());
    EXPECT_EQ(window->width(), screen.width());
    EXPECT_EQ(window->height(), screen.height() - 30);
}

TEST_F(ViewerLoadTest, UnloadFreesThePictureAndAsksNothing)
{
    Open(Small());
    Click("mnuInvert");
    window->close();
    EXPECT_FALSE(window->Picture().HasBitmap());
    EXPECT_FALSE(window->UndoCopy().HasBitmap());
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(ViewerLoadTest, EnterAndASmallXUnload)
{
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_X}) {
        Open(Small());
        QTest::keyClick(View(), key);
        EXPECT_FALSE(window->isVisible()) << key;
    }
    Open(Small());
    Find<QTabWidget>("SSTab1")->setCurrentIndex(1);
    QTest::keyClick(Find<QTreeWidget>("lvImageInfo"), Qt::Key_X);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ViewerLoadTest, OtherKeysAndTextControlsDoNotUnload)
{
    Open(Copy(QStringLiteral("petals.png")));
    QTest::keyClicks(View(), QStringLiteral("X"));
    QTest::keyClick(View(), Qt::Key_Y);
    QTest::keyClick(View(), Qt::Key_X, Qt::AltModifier);
    QTest::keyClick(View(), Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible());
    Find<QTabWidget>("SSTab1")->setCurrentIndex(1);
    auto* tags = Find<QPlainTextEdit>("txtTags");
    tags->setFocus();
    QTest::keyClicks(tags, QStringLiteral("x"));
    QTest::keyClick(tags, Qt::Key_Return);
    EXPECT_TRUE(tags->toPlainText().contains(QStringLiteral("x\n")));
    Tabs()->setCurrentIndex(1);
    auto* artist = Find<QLineEdit>("txtArtistExif");
    artist->setFocus();
    QTest::keyClicks(artist, QStringLiteral("x"));
    QTest::keyClick(artist, Qt::Key_Return);
    EXPECT_TRUE(artist->text().contains(u'x'));
    EXPECT_TRUE(window->isVisible());
}

TEST_F(ViewerLoadTest, AnOpenViewerLoadsTheNewlyChosenFile)
{
    Open(Small());
    session.gsFileName = Copy(QStringLiteral("flower.jpg"));
    window->show();
    EXPECT_EQ(window->File(), session.gsFileName);
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty()) << "nothing was changed, nothing is asked";
    const qint64 loaded = Pixels().cacheKey();
    window->show();
    EXPECT_EQ(Pixels().cacheKey(), loaded) << "the same file again is not loaded anew";
}

TEST_F(ViewerLoadTest, AChangedPictureIsAskedForBeforeAnotherTakesItsPlace)
{
    const QString first = Small();
    const QByteArray before = Bytes(first);
    Open(first);
    Click("mnuInvert");
    session.gsFileName = Copy(QStringLiteral("flower.jpg"));
    fakes.dialogs.Answer(BoxAnswer::Cancel);
    window->show();
    EXPECT_EQ(window->File(), first) << "cancelled: everything stays";
    EXPECT_TRUE(window->IsChanged());

    fakes.dialogs.Answer(BoxAnswer::Yes);
    window->show();
    EXPECT_EQ(window->File(), session.gsFileName);
    EXPECT_NE(Bytes(first), before) << "saved first";
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 2);
    EXPECT_EQ(fakes.dialogs.Boxes().first().buttons, BoxButtons::YesNoCancel);
    EXPECT_TRUE(fakes.dialogs.Boxes().first().text.contains(QStringLiteral("small.bmp")));

    Click("mnuInvert");
    Click("mnuUndoLast");
    EXPECT_FALSE(window->IsChanged()) << "the very picture that was loaded";
    Click("mnuInvert");
    const QByteArray second = Bytes(session.gsFileName);
    fakes.dialogs.Answer(BoxAnswer::No);
    session.gsFileName = first;
    window->show();
    EXPECT_EQ(window->File(), first);
    EXPECT_EQ(Bytes(Path(QStringLiteral("flower.jpg"))), second) << "not saved";
}

TEST_F(ViewerLoadTest, AFileThatWasReplacedIsLoadedAnewWhenItIsChosenAgain)
{
    const QString file = Small();
    Open(file);
    Small(QStringLiteral("small.bmp"), {20, 10});
    window->show();
    EXPECT_EQ(Pixels().size(), QSize(20, 10));
}

TEST_F(ViewerLoadTest, AWindowThatIsClosedWhileItLoadsGoesWhenTheLoadHasEnded)
{
    Make(Copy(QStringLiteral("AST_0101.JPG")));
    QMetaObject::invokeMethod(
        window.get(),
        [this] {
            EXPECT_TRUE(window->IsBusy());
            window->close();
            EXPECT_FALSE(window->isVisible());
        },
        Qt::QueuedConnection);
    window->show();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->Picture().HasBitmap(); }, kWait));
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(window->IsBusy());
}

TEST_F(ViewerLoadTest, AWindowThatIsDestroyedWhileItLoadsHurtsNothing)
{
    Make(Copy(QStringLiteral("AST_0101.JPG")));
    QMetaObject::invokeMethod(
        qApp, [this] { window.reset(); }, Qt::QueuedConnection);
    frmToolImageDisplay* const shown = window.get();
    shown->show();
    EXPECT_EQ(window, nullptr);
}

TEST_F(ViewerLoadTest, AnotherFileChosenWhileOneIsLoadedTakesItsPlace)
{
    Make(Copy(QStringLiteral("AST_0101.JPG")));
    const QString second = Small();
    QMetaObject::invokeMethod(
        window.get(),
        [&] {
            session.gsFileName = second;
            window->show();
        },
        Qt::QueuedConnection);
    window->show();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return !window->IsBusy() && window->File() == second && View()->HasImage(); },
        kWait));
    EXPECT_EQ(Pixels().size(), QSize(40, 30));
}

TEST_F(ViewerLoadTest, EveryControlHasANameForThoseWhoHearIt)
{
    Open(Copy(QStringLiteral("AST_0101.JPG")));
    for (const QWidget* widget : window->findChildren<QWidget*>()) {
        if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisibleTo(window.get())) {
            continue;
        }
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const bool own = widget->objectName().startsWith(QStringLiteral("qt_"))
            || qobject_cast<const QTabBar*>(widget) || qobject_cast<const QHeaderView*>(widget);
        EXPECT_TRUE(own || !widget->accessibleName().isEmpty()
                    || (button && !button->text().isEmpty()))
            << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    }
}

} // namespace quillane
