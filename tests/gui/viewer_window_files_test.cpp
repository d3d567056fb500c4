// The viewer's roads to and from files, scanner and printer, through its entries and buttons.
#include "gui/viewer_window_fixture.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>

namespace quillane {

namespace {

class ViewerFileTest : public ViewerWindowTest {
protected:
    static void Type(QDialog& dialog, const QString& path)
    {
        auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(name, nullptr);
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    }
    void ChooseFormat(QDialog& dialog, const QString& words) const
    {
        auto* formats = dialog.findChild<QComboBox*>(QStringLiteral("SaveFormat"));
        ASSERT_NE(formats, nullptr);
        const int at = formats->findText(words, Qt::MatchContains);
        ASSERT_GE(at, 0) << words.toStdString();
        formats->setCurrentIndex(at);
        Q_EMIT formats->activated(at);
    }
    static QString Description(const QString& file)
    {
        const CommentSet set = ReadComments(file);
        return set.At(kDescriptionSlot).IsEmpty() ? QString() : set.At(kDescriptionSlot).Text();
    }
    static void Scan(QDialog& dialog)
    {
        EXPECT_EQ(dialog.objectName(), QStringLiteral("frmAcquire"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdScan")),
                          Qt::LeftButton);
    }
    QPlainTextEdit* Tags() const { return Find<QPlainTextEdit>("txtTags"); }
    QString Photograph() { return Copy(QStringLiteral("AST_0101.JPG")); }
    void Page(qint32 width = 20, qint32 height = 10)
    {
        fakes.scanner.sources = {{QStringLiteral("a:0"), QStringLiteral("Maker"),
                                  QStringLiteral("One"), QStringLiteral("flatbed scanner")}};
        fakes.scanner.page.width = width;
        fakes.scanner.page.height = height;
        fakes.scanner.page.channels = 3;
        fakes.scanner.page.bytesPerLine = qint64(width) * 3;
        fakes.scanner.page.rows = QByteArray(qsizetype(width) * 3 * height, '\x55');
    }
};

} // namespace

TEST_F(ViewerFileTest, OpenLoadsTheChosenFileFromEntryAndButton)
{
    Open(Small());
    const QString second = Copy(QStringLiteral("petals.png"));
    InDialog([this] { Click("mnuOpen"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Open File"));
                 Type(dialog, second);
             });
    EXPECT_EQ(window->File(), second);
    EXPECT_EQ(window->windowTitle(),
              QStringLiteral("Quillane  View/Enhance Image     File: ") + second);
    EXPECT_TRUE(Tabs()->isTabEnabled(1));
    const QString third = Photograph();
    InDialog([this] { Press(1); }, [&](QDialog& dialog) { Type(dialog, third); });
    EXPECT_EQ(window->File(), third);
    EXPECT_TRUE(Tabs()->isTabEnabled(3));
}

TEST_F(ViewerFileTest, ACancelledOpenLeavesEverything)
{
    const QString file = Small();
    Open(file);
    const QImage before = Pixels();
    InDialog([this] { Click("mnuOpen"); },
             [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(window->File(), file);
    EXPECT_EQ(Pixels(), before);
    EXPECT_EQ(Line(), QString());
}

TEST_F(ViewerFileTest, OpeningOverAChangedPictureAsksFirst)
{
    const QString file = Small();
    Open(file);
    Click("mnuInvert");
    fakes.dialogs.Answer(BoxAnswer::Cancel);
    const QString second = Copy(QStringLiteral("petals.png"));
    InDialog([this] { Click("mnuOpen"); }, [&](QDialog& dialog) { Type(dialog, second); });
    EXPECT_EQ(window->File(), file);
    EXPECT_TRUE(window->IsChanged());
}

TEST_F(ViewerFileTest, SaveWritesPictureAndTextsAndRenewsTheCell)
{
    const QString file = Photograph();
    const CommentSet before = ReadComments(file);
    Open(file);
    Click("mnuInvert");
    const QImage inverted = Pixels();
    Tags()->setPlainText(QStringLiteral("Name=Night\nCity=Chur"));
    Find<QLineEdit>("txtArtistExif")->setText(QStringLiteral("Ann"));
    EXPECT_TRUE(window->IsChanged());
    Click("mnuSingleFileSave");
    EXPECT_EQ(host.renewed, 1);
    EXPECT_FALSE(window->IsChanged());
    EXPECT_TRUE(Line().contains(file));
    EXPECT_EQ(Description(file), QStringLiteral("Name=Night\r\nCity=Chur"));
    const CommentSet after = ReadComments(file);
    EXPECT_EQ(after.At(0).Text(), QStringLiteral("Ann"));
    EXPECT_EQ(after.At(22), before.At(22)) << "when it was taken";
    EXPECT_TRUE(after.At(9).Text().endsWith(QStringLiteral(" Quillane")));
    EXPECT_EQ(Pixels(), inverted) << "the picture in the window stays as it is";
    window->close();
    Open(file);
    EXPECT_EQ(Tags()->toPlainText(), QStringLiteral("Name=Night\nCity=Chur\n"));
    const QColor there = Pixels().pixelColor(800, 300);
    const QColor wanted = inverted.pixelColor(800, 300);
    EXPECT_NEAR(there.green(), wanted.green(), 16);
    Press(2);
    EXPECT_EQ(host.renewed, 2) << "the button saves too";
}

TEST_F(ViewerFileTest, AnEmptyDateIsFilledByASave)
{
    Open(Copy(QStringLiteral("petals.png")));
    Find<QLineEdit>("txtDateCreated")->clear();
    Click("mnuSingleFileSave");
    EXPECT_FALSE(Find<QLineEdit>("txtDateCreated")->text().isEmpty());
    EXPECT_FALSE(window->IsChanged());
}

TEST_F(ViewerFileTest, SaveAsWritesAnotherFileAndTheViewersStays)
{
    const QString file = Photograph();
    const QByteArray before = Bytes(file);
    Open(file);
    Click("mnuGrayscale");
    const QString other = Path(QStringLiteral("other.png"));
    InDialog([this] { Click("mnuSingleFileSaveAs"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Save File"));
                 ChooseFormat(dialog, QStringLiteral("PNG"));
                 Type(dialog, other);
             });
    EXPECT_EQ(window->File(), file);
    EXPECT_EQ(Bytes(file), before);
    EXPECT_EQ(ProbeFile(other).format, 75);
    EXPECT_TRUE(Description(other).startsWith(QStringLiteral("Name=Tarn at noon")));
    EXPECT_EQ(host.renewed, 0);
    EXPECT_FALSE(window->IsChanged()) << "as it was saved last";
}

TEST_F(ViewerFileTest, SaveAsABitmapWritesWhatItCan)
{
    Open(Photograph());
    const QString other = Path(QStringLiteral("other.bmp"));
    InDialog([this] { Click("mnuSingleFileSaveAs"); },
             [&](QDialog& dialog) {
                 ChooseFormat(dialog, QStringLiteral("BMP"));
                 Type(dialog, other);
             });
    EXPECT_EQ(ProbeFile(other).format, 6);
    EXPECT_EQ(ProbeFile(other).width, 1600);
}

TEST_F(ViewerFileTest, ACancelledSaveAsWritesNothing)
{
    const QString file = Small();
    const QByteArray before = Bytes(file);
    Open(file);
    Click("mnuInvert");
    InDialog([this] { Click("mnuSingleFileSaveAs"); },
             [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(Bytes(file), before);
    EXPECT_TRUE(window->IsChanged());
    EXPECT_EQ(Line(), QString());
}

TEST_F(ViewerFileTest, AFileThatWasReplacedMeanwhileIsNotSavedOver)
{
    const QString file = Photograph();
    Open(file);
    Click("mnuInvert");
    const QImage inverted = Pixels();
    WriteWholeFile(file, Bytes(Sample(QStringLiteral("AST_0102.JPG"))));
    const QByteArray replaced = Bytes(file);
    Click("mnuSingleFileSave");
    EXPECT_EQ(Bytes(file), replaced);
    EXPECT_EQ(Pixels(), inverted);
    EXPECT_FALSE(Line().isEmpty());
    EXPECT_TRUE(window->IsChanged());
    EXPECT_EQ(host.renewed, 0);
}

TEST_F(ViewerFileTest, AFileThatVanishedOrShrankIsStillShownAndWorkedOn)
{
    const QString file = Photograph();
    Open(file);
    WriteWholeFile(file, QByteArray("short"));
    Click("mnuInvert");
    Click("mnuDateStamp");
    Click("mnuSingleFileSave");
    EXPECT_EQ(Bytes(file), QByteArray("short"));
    EXPECT_TRUE(window->Picture().HasBitmap());
    RemoveFile(file);
    const QImage before = Pixels();
    Click("mnuSingleFileSave");
    EXPECT_EQ(Pixels(), before);
    Click("mnuFlipImage");
    EXPECT_NE(Pixels(), before);
}

TEST_F(ViewerFileTest, APastedPictureReplacesTheFileOnlyWhenThatIsMeant)
{
    const QString file = Copy(QStringLiteral("petals.png"));
    const QByteArray before = Bytes(file);
    Open(file);
    QImage other(12, 9, QImage::Format_RGB32);
    other.fill(QColor(50, 60, 70));
    QApplication::clipboard()->setImage(other);
    Click("mnuPaste");
    fakes.dialogs.Answer(BoxAnswer::No);
    Click("mnuSingleFileSave");
    EXPECT_EQ(Bytes(file), before);
    EXPECT_EQ(fakes.dialogs.Boxes().last().buttons, BoxButtons::YesNo);
    fakes.dialogs.Answer(BoxAnswer::Yes);
    Click("mnuSingleFileSave");
    EXPECT_EQ(ProbeFile(file).width, 12);
}

TEST_F(ViewerFileTest, AWindowClosedInTheMiddleOfASaveLeavesAWholeFile)
{
    const QString file = Photograph();
    Open(file);
    Click("mnuInvert");
    QMetaObject::invokeMethod(
        window.get(),
        [this] {
            EXPECT_TRUE(window->IsBusy());
            window->close();
        },
        Qt::QueuedConnection);
    Click("mnuSingleFileSave");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->Picture().HasBitmap(); }, kWait));
    EXPECT_EQ(ProbeFile(file).width, 1600);
    EXPECT_TRUE(Description(file).startsWith(QStringLiteral("Name=Tarn at noon")));
}

TEST_F(ViewerFileTest, PrintLeavesTheCopyWhereThePrintRoadFindsIt)
{
    Open(Photograph());
    Click("mnuPrint");
    ImageFacts facts = ProbeFile(fakes.places.PrintCopy());
    EXPECT_EQ(facts.format, 96);
    EXPECT_EQ(facts.width, 1600);
    RemoveFile(fakes.places.PrintCopy());
    Press(4);
    EXPECT_EQ(ProbeFile(fakes.places.PrintCopy()).format, 96);
}

TEST_F(ViewerFileTest, AScannedPageReplacesThePictureAndTheFileKeepsItsName)
{
    const QString file = Small();
    Open(file);
    Page();
    fakes.scanner.choices.modes = {QStringLiteral("Gray"), QStringLiteral("Color")};
    fakes.scanner.choices.mode = QStringLiteral("Color");
    fakes.scanner.choices.resolutions = {100, 300};
    fakes.scanner.choices.resolution = 300;
    InDialog([this] { Click("mnuAcquireTwain"); },
             [](QDialog& dialog) {
                 EXPECT_EQ(dialog.findChild<QComboBox*>(QStringLiteral("cboMode"))->currentText(),
                           QStringLiteral("Color"));
                 auto* dots = dialog.findChild<QComboBox*>(QStringLiteral("cboResolution"));
                 EXPECT_EQ(dots->currentText(), QStringLiteral("300"));
                 dots->setCurrentIndex(0);
                 EXPECT_FALSE(dialog.findChild<QComboBox*>(QStringLiteral("cboFeed"))->isVisible());
                 Scan(dialog);
             });
    EXPECT_EQ(fakes.scanner.acquiredWith.mode, QStringLiteral("Color"));
    EXPECT_EQ(fakes.scanner.acquiredWith.resolution, 100);
    EXPECT_EQ(fakes.scanner.acquiredWith.feed, QString());
    EXPECT_EQ(Pixels().size(), QSize(20, 10));
    EXPECT_EQ(View()->ImageSize(), QSize(20, 10));
    EXPECT_EQ(window->File(), file);
    EXPECT_TRUE(window->IsChanged());
    Page(30, 12);
    fakes.scanner.choices = {};
    fakes.scanner.choices.leastResolution = 75;
    fakes.scanner.choices.mostResolution = 600;
    fakes.scanner.choices.resolution = 150;
    InDialog([this] { Press(5); },
             [](QDialog& dialog) {
                 auto* dots = dialog.findChild<QSpinBox*>(QStringLiteral("txtResolution"));
                 EXPECT_EQ(dots->value(), 150);
                 EXPECT_EQ(dots->minimum(), 75);
                 EXPECT_EQ(dots->maximum(), 600);
                 Scan(dialog);
             });
    EXPECT_EQ(fakes.scanner.acquiredWith.resolution, 150);
    EXPECT_EQ(Pixels().size(), QSize(30, 12));
}

TEST_F(ViewerFileTest, ACancelledScanLeavesThePicture)
{
    Open(Small());
    const QImage before = Pixels();
    Page();
    InDialog([this] { Click("mnuAcquireTwain"); },
             [](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(Pixels(), before);
    EXPECT_EQ(Line(), QString());
    EXPECT_FALSE(window->IsBusy());
}

TEST_F(ViewerFileTest, AWindowClosedWhileAScannerIsLookedForEndsTheScan)
{
    Open(Small());
    Page();
    fakes.scanner.waits = true;
    QMetaObject::invokeMethod(
        window.get(), [this] { window->close(); }, Qt::QueuedConnection);
    Click("mnuAcquireTwain");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->Picture().HasBitmap(); }, kWait));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ViewerFileTest, WithoutAScannerALineSaysSoAndThePictureStays)
{
    Open(Small());
    const QImage before = Pixels();
    Click("mnuAcquireTwain");
    EXPECT_EQ(Pixels(), before);
    EXPECT_FALSE(Line().isEmpty());
    EXPECT_FALSE(window->IsBusy());
}

TEST_F(ViewerFileTest, TheSourceIsChosenInTheViewerToo)
{
    Open(Small());
    Page();
    InDialog([this] { Click("mnuSelectTwainSource"); },
             [](QDialog& dialog) {
                 auto* again = dialog.findChild<QPushButton*>(QStringLiteral("cmdLookAgain"));
                 ASSERT_TRUE(QTest::qWaitFor([&] { return again->isEnabled(); }, kWait));
                 QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdSelect")),
                                   Qt::LeftButton);
             });
    EXPECT_EQ(fakes.scanner.Selected(), QStringLiteral("a:0"));
}

TEST_F(ViewerFileTest, ExitClosesTheWindow)
{
    Open(Small());
    Click("mnuExit");
    EXPECT_FALSE(window->isVisible());
}

} // namespace quillane
