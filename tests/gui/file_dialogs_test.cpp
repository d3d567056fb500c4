// The dialogs that open and save a picture, through their real controls.
#include "viewer/ui/picture_file_dialogs.h"

#include "core/expect_failure.h"
#include "core/temp_folder.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"
#include "imaging/worker/worker_host.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

namespace quillane {
namespace {

constexpr int kDialogWait = 10'000; // milliseconds; a condition that fails, not a delay

class FileDialogsTest : public testing::Test {
protected:
    FileDialogsTest()
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 2);
    }
    void Copy(const char* sample, const char* name = nullptr)
    {
        folder.Write(name ? name : sample,
                     ReadWholeFile(QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/")
                                       + QLatin1String(sample),
                                   1 << 26));
    }
    /// Runs as soon as the next dialog has its own message loop; a dialog that it leaves open is
    /// cancelled.
    template <typename Act> void WhenShown(const Act& act)
    {
        QMetaObject::invokeMethod(
            qApp,
            [this, act] {
                dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
                ASSERT_NE(dialog, nullptr);
                dialog->activateWindow();
                ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
                act();
                if (dialog && dialog->isVisible()) {
                    static_cast<QDialog*>(dialog)->reject();
                }
            },
            Qt::QueuedConnection);
    }
    template <typename Kind> Kind* Find(const char* name) const
    {
        Kind* found = dialog->findChild<Kind*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QLineEdit* Name() const { return Find<QLineEdit>("fileNameEdit"); }
    QComboBox* Box(const char* name) const { return Find<QComboBox>(name); }
    QCheckBox* Check(const char* name) const { return Find<QCheckBox>(name); }
    void Accept() const
    {
        auto* const buttons = Find<QDialogButtonBox>("buttonBox");
        for (QAbstractButton* const button : buttons->buttons()) {
            if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole) {
                ASSERT_TRUE(button->isEnabled());
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
        ADD_FAILURE();
    }
    /// Types a name in the place of what stands there.
    void Type(const char* name) const
    {
        Name()->setFocus();
        Name()->selectAll();
        QTest::keyClicks(Name(), QLatin1String(name));
    }
    void Choose(const char* box, const QString& words) const
    {
        const int at = Box(box)->findText(words);
        ASSERT_GE(at, 0) << words.toStdString();
        Box(box)->setCurrentIndex(at);
    }
    void ChooseType(const char* type) const
    {
        const int at = Box("SaveFormat")->findText(QLatin1String(type), Qt::MatchStartsWith);
        ASSERT_GE(at, 0) << type;
        Box("SaveFormat")->setCurrentIndex(at);
    }
    /// Presses a button of the question that the next step will raise.
    static void AnswerQuestion(const char* button, QString* words = nullptr)
    {
        QMetaObject::invokeMethod(
            qApp,
            [button, words] {
                auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                ASSERT_NE(box, nullptr);
                if (words) {
                    *words = box->text();
                }
                auto* const found = box->findChild<QAbstractButton*>(QLatin1String(button));
                ASSERT_NE(found, nullptr);
                QTest::mouseClick(found, Qt::LeftButton);
            },
            Qt::QueuedConnection);
    }
    QString Words() const { return Find<QLabel>("PreviewWords")->text(); }
    bool HasPreview() const { return !Find<QLabel>("PreviewPicture")->pixmap().isNull(); }
    bool Waits(const std::function<bool()>& condition) const
    {
        return QTest::qWaitFor(condition, kDialogWait);
    }

    QString Open() { return FileOpenDialog(nullptr, QStringLiteral("Open File"), folder.Path()); }
    SaveDialogStart Start(const char* file)
    {
        SaveDialogStart start;
        start.title = QStringLiteral("Save File");
        start.filter = QStringLiteral("All Files|*.*");
        start.folder = folder.Path();
        start.fileName = folder.Path(file);
        ResumeNext([&] {
            const LoadedImage loaded = LoadFile(start.fileName);
            start.format = loaded.facts.format;
            start.bits = loaded.facts.bits;
            start.picture = loaded.bitmap;
        });
        return start;
    }

    TempFolder folder;
    QPointer<QFileDialog> dialog;
};

TEST_F(FileDialogsTest, OpenShowsAllKindsThatAreReadAndTheMarkedPicture)
{
    Copy("AST_0101.JPG");
    folder.Write("notes.txt");
    WhenShown([this] {
        EXPECT_EQ(dialog->objectName(), QStringLiteral("FileOpenDialog"));
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Open File"));
        ASSERT_EQ(dialog->nameFilters().size(), 2);
        EXPECT_TRUE(dialog->nameFilters().first().startsWith(QStringLiteral("All pictures (")));
        for (const char* pattern : {"*.jpg", "*.jpeg", "*.tif", "*.dic", "*.avi", "*.wpg"}) {
            EXPECT_TRUE(dialog->nameFilters().first().contains(QLatin1String(pattern))) << pattern;
        }
        EXPECT_EQ(dialog->nameFilters().last(), QStringLiteral("All files (*)"));
        Type("AST_0101.JPG");
        EXPECT_TRUE(Waits([this] { return HasPreview() && !Words().isEmpty(); }));
        EXPECT_TRUE(Words().contains(QStringLiteral("24 bits"))) << Words().toStdString();
        EXPECT_TRUE(
            Words().contains(FormatDescription(ProbeFile(folder.Path("AST_0101.JPG")).format)));
        Accept();
    });
    EXPECT_EQ(Open(), folder.Path("AST_0101.JPG"));
}

TEST_F(FileDialogsTest, OpenTellsWhatItCannotShow)
{
    folder.Write("notes.jpg", "no picture");
    WhenShown([this] {
        Type("notes.jpg");
        EXPECT_TRUE(Waits([this] { return !Words().isEmpty(); }));
        EXPECT_EQ(Words(), QStringLiteral("\"notes.jpg\" is not a picture this program reads."));
        EXPECT_FALSE(HasPreview());
        Type("gone.jpg");
        EXPECT_TRUE(Waits([this] { return Words().isEmpty(); }));
    });
    EXPECT_EQ(FailureOf([&] { Open(); }), kFailureCancelled);
}

TEST_F(FileDialogsTest, OpenRefusesAFileThatIsNotThereAndStays)
{
    Copy("petals.png");
    WhenShown([this] {
        Type("gone.png");
        static_cast<QDialog*>(dialog)->accept();
        EXPECT_TRUE(dialog->isVisible());
        auto* const hint = Find<QLabel>("DialogHint");
        EXPECT_TRUE(hint->isVisible());
        EXPECT_EQ(hint->text(),
                  QStringLiteral("There is no file \"gone.png\". Choose another one."));
        Type("petals.png");
        EXPECT_FALSE(hint->isVisible());
        Accept();
    });
    EXPECT_EQ(Open(), folder.Path("petals.png"));
}

TEST_F(FileDialogsTest, OpenGoesIntoAFolderThatIsTyped)
{
    ASSERT_TRUE(MakeFolder(folder.Path("inner")));
    Copy("petals.png", "inner/petals.png");
    WhenShown([this] {
        Type("inner");
        static_cast<QDialog*>(dialog)->accept();
        EXPECT_TRUE(dialog->isVisible());
        Type("petals.png");
        static_cast<QDialog*>(dialog)->accept();
    });
    EXPECT_EQ(Open(), folder.Path("inner/petals.png"));
}

TEST_F(FileDialogsTest, EscapeCancelsBoth)
{
    Copy("petals.png");
    WhenShown([this] { QTest::keyClick(dialog, Qt::Key_Escape); });
    EXPECT_EQ(FailureOf([&] { Open(); }), kFailureCancelled);
    WhenShown([this] { QTest::keyClick(dialog, Qt::Key_Escape); });
    EXPECT_EQ(FailureOf([&] { FileSaveDialog(nullptr, Start("petals.png")); }), kFailureCancelled);
}

TEST_F(FileDialogsTest, TheOwnerThatGoesTakesTheDialogAlong)
{
    auto owner = std::make_unique<QWidget>();
    owner->show();
    WhenShown([&] { owner.reset(); });
    EXPECT_EQ(
        FailureOf([&] { FileOpenDialog(owner.get(), QStringLiteral("Open File"), folder.Path()); }),
        kFailureCancelled);
}

TEST_F(FileDialogsTest, SaveBeginsWithTheFileItsFormatAndDepth)
{
    Copy("AST_0101.JPG");
    SaveDialogStart start = Start("AST_0101.JPG");
    start.quality = 33;
    QString question;
    WhenShown([&] {
        EXPECT_EQ(dialog->objectName(), QStringLiteral("FileSaveDialog"));
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Save File"));
        EXPECT_EQ(dialog->nameFilters(), QStringList{QStringLiteral("All Files (*)")});
        EXPECT_EQ(Name()->text(), QStringLiteral("AST_0101.JPG"));
        EXPECT_TRUE(Box("SaveFormat")->currentText().startsWith(QStringLiteral("JPEG (")));
        EXPECT_EQ(Box("SaveFormat")->count(), SaveTypes().size());
        EXPECT_EQ(Box("SaveSubFormat")->currentText(), FormatDescription(start.format));
        EXPECT_EQ(Box("SaveBits")->currentText(), QStringLiteral("24 bits: full colours"));
        EXPECT_EQ(Find<QSpinBox>("SaveQuality")->value(), 33);
        EXPECT_EQ(Find<QSlider>("SaveQualityBar")->value(), 33);
        EXPECT_FALSE(Check("StampWanted")->isChecked());
        EXPECT_FALSE(Check("MultiPage")->isEnabled());
        AnswerQuestion("cmdYes", &question);
        Accept();
    });
    const SaveDialogChoice choice = FileSaveDialog(nullptr, start);
    EXPECT_EQ(question,
              QStringLiteral("\"AST_0101.JPG\" is there already. Do you want to replace it?"));
    EXPECT_EQ(choice.file, folder.Path("AST_0101.JPG"));
    EXPECT_EQ(choice.format, start.format);
    EXPECT_EQ(choice.bits, 24);
    EXPECT_EQ(choice.quality, 33);
    EXPECT_FALSE(choice.stampWanted);
    EXPECT_EQ(choice.multiPage, 0);
}

TEST_F(FileDialogsTest, AFileThatIsThereIsNotReplacedWithoutAYes)
{
    Copy("petals.png");
    WhenShown([this] {
        AnswerQuestion("cmdNo");
        Accept();
        EXPECT_TRUE(dialog->isVisible());
        Type("other.png");
        Accept();
    });
    EXPECT_EQ(FileSaveDialog(nullptr, Start("petals.png")).file, folder.Path("other.png"));
}

TEST_F(FileDialogsTest, AChosenFormatChangesTheNameAndATypedNameTheFormat)
{
    Copy("petals.png");
    WhenShown([this] {
        ChooseType("TIFF");
        EXPECT_EQ(Name()->text(), QStringLiteral("petals.tif"));
        ChooseType("PCX");
        EXPECT_EQ(Name()->text(), QStringLiteral("petals.pcx"));
        EXPECT_FALSE(Box("SaveSubFormat")->isEnabled());
        Type("new.jp2");
        EXPECT_TRUE(Box("SaveFormat")->currentText().startsWith(QStringLiteral("JPEG 2000")));
        EXPECT_EQ(Box("SaveSubFormat")->currentText(), FormatDescription(163));
        Box("SaveSubFormat")->setCurrentIndex(1);
        EXPECT_EQ(Name()->text(), QStringLiteral("new.j2k"));
        Type("my holiday");
        EXPECT_TRUE(Box("SaveFormat")->currentText().startsWith(QStringLiteral("JPEG 2000")));
        Accept();
    });
    const SaveDialogChoice choice = FileSaveDialog(nullptr, Start("petals.png"));
    EXPECT_EQ(choice.file, folder.Path("my holiday.j2k"));
    EXPECT_EQ(choice.format, 164);
    EXPECT_EQ(choice.subFormat, 1);
}

TEST_F(FileDialogsTest, AChosenFormatWhoseFileIsThereToo)
{
    Copy("petals.png");
    Copy("petals.png", "petals.bmp");
    WhenShown([this] {
        Find<QTreeView>("treeView")->setFocus();
        Type("petals.png");
        Box("SaveFormat")->setFocus();
        ChooseType("BMP");
        EXPECT_EQ(Name()->text(), QStringLiteral("petals.bmp"));
        AnswerQuestion("cmdYes");
        Accept();
    });
    EXPECT_EQ(FileSaveDialog(nullptr, Start("petals.png")).file, folder.Path("petals.bmp"));
}

TEST_F(FileDialogsTest, ControlsAreEnabledWhereTheFormatHasWhatTheyChoose)
{
    Copy("petals.png");
    WhenShown([this] {
        for (int type = 0; type < Box("SaveFormat")->count(); ++type) {
            Box("SaveFormat")->setCurrentIndex(type);
            for (int sub = 0; sub < Box("SaveSubFormat")->count(); ++sub) {
                Box("SaveSubFormat")->setCurrentIndex(sub);
                const qint16 format = SaveTypes().at(type).formats.at(sub);
                const SaveVariant& variant = *FindSaveVariant(format);
                EXPECT_EQ(Box("SaveSubFormat")->currentText(), FormatDescription(format));
                EXPECT_EQ(Find<QSlider>("SaveQualityBar")->isEnabled(), TakesQuality(variant))
                    << format;
                EXPECT_EQ(Find<QSpinBox>("SaveQuality")->isEnabled(), TakesQuality(variant));
                EXPECT_EQ(Check("StampWanted")->isEnabled(), variant.stamp) << format;
                int depths = 0;
                for (; variant.depths[depths] != 0; ++depths) {
                    EXPECT_EQ(Box("SaveBits")->itemData(depths).toInt(), variant.depths[depths]);
                }
                EXPECT_EQ(Box("SaveBits")->count(), depths) << format;
            }
        }
    });
    EXPECT_EQ(FailureOf([&] { FileSaveDialog(nullptr, Start("petals.png")); }), kFailureCancelled);
}

TEST_F(FileDialogsTest, AStampIsChosenWithSizeAndColours)
{
    Copy("AST_0101.JPG");
    WhenShown([this] {
        EXPECT_FALSE(Find<QSpinBox>("StampSize")->isEnabled());
        QTest::keyClick(Check("StampWanted"), Qt::Key_Space);
        EXPECT_TRUE(Find<QSpinBox>("StampSize")->isEnabled());
        EXPECT_TRUE(Box("StampBits")->isEnabled());
        Find<QSpinBox>("StampSize")->setValue(96);
        Choose("StampBits", QStringLiteral("8 bits: grey"));
        Choose("SaveBits", QStringLiteral("8 bits: shades of grey"));
        Find<QSlider>("SaveQualityBar")->setValue(120);
        EXPECT_EQ(Find<QSpinBox>("SaveQuality")->value(), 120);
        Type("new.jpg");
        Accept();
    });
    const SaveDialogChoice choice = FileSaveDialog(nullptr, Start("AST_0101.JPG"));
    EXPECT_TRUE(choice.stampWanted);
    EXPECT_EQ(choice.stampSize, 96);
    EXPECT_EQ(choice.stampBits, 8);
    EXPECT_EQ(choice.bits, 8);
    EXPECT_EQ(choice.quality, 120);
}

TEST_F(FileDialogsTest, AStampThatTheFormatLacksIsNotChosen)
{
    Copy("AST_0101.JPG");
    WhenShown([this] {
        QTest::keyClick(Check("StampWanted"), Qt::Key_Space);
        Type("new.png");
        EXPECT_FALSE(Check("StampWanted")->isEnabled());
        Accept();
    });
    EXPECT_FALSE(FileSaveDialog(nullptr, Start("AST_0101.JPG")).stampWanted);
}

TEST_F(FileDialogsTest, APageIsAppendedToATiffThatIsThereWithoutAQuestion)
{
    Copy("three_pages.tif");
    Copy("petals.png");
    Copy("petals.png", "false.tif");
    WhenShown([this] {
        EXPECT_FALSE(Check("MultiPage")->isEnabled());
        Type("false.tif"); // a TIFF by its name alone
        EXPECT_FALSE(Check("MultiPage")->isEnabled());
        Type("three_pages.tif");
        ASSERT_TRUE(Waits([this] { return Check("MultiPage")->isEnabled(); }));
        QTest::keyClick(Check("MultiPage"), Qt::Key_Space);
        EXPECT_FALSE(Check("StampWanted")->isEnabled());
        Type("none.tif");
        ASSERT_TRUE(Waits([this] { return !Check("MultiPage")->isEnabled(); }));
        EXPECT_FALSE(Check("MultiPage")->isChecked());
        Type("three_pages.tif");
        ASSERT_TRUE(Waits([this] { return Check("MultiPage")->isEnabled(); }));
        QTest::keyClick(Check("MultiPage"), Qt::Key_Space);
        Accept();
    });
    const SaveDialogChoice choice = FileSaveDialog(nullptr, Start("petals.png"));
    EXPECT_EQ(choice.file, folder.Path("three_pages.tif"));
    EXPECT_EQ(choice.multiPage, 1);
    EXPECT_EQ(choice.format, 3);
}

TEST_F(FileDialogsTest, ThePreviewFollowsWhatIsChosen)
{
    Copy("AST_0101.JPG");
    WhenShown([this] {
        EXPECT_TRUE(Waits([this] { return HasPreview(); }));
        const QString first = Words();
        EXPECT_TRUE(first.startsWith(QStringLiteral("Size: "))) << first.toStdString();
        const QImage look = Find<QLabel>("PreviewPicture")->pixmap().toImage();
        for (int quality = 20; quality <= 255; quality += 5) { // as a slider is dragged
            Find<QSlider>("SaveQualityBar")->setValue(quality);
        }
        EXPECT_TRUE(Waits([&] { return Words() != first; }));
        const SaveDialogStart start = Start("AST_0101.JPG");
        EncodeRequest request;
        request.format = start.format;
        request.bits = 24;
        request.quality = 255;
        request.icc = start.picture.Icc();
        const QString last = QLocale().toString(EncodePicture(start.picture, request).size());
        EXPECT_TRUE(Waits([&] { return Words().contains(last); })) << Words().toStdString();
        EXPECT_NE(Find<QLabel>("PreviewPicture")->pixmap().toImage(), look);
        const QImage whole = Find<QLabel>("PreviewPicture")->pixmap().toImage();
        QTest::keyClick(Check("PreviewActual"), Qt::Key_Space);
        EXPECT_NE(Find<QLabel>("PreviewPicture")->pixmap().toImage(), whole);
    });
    EXPECT_EQ(FailureOf([&] { FileSaveDialog(nullptr, Start("AST_0101.JPG")); }),
              kFailureCancelled);
}

TEST_F(FileDialogsTest, WithoutAPictureThereIsNoPreview)
{
    SaveDialogStart start = Start("none.png");
    WhenShown([this] {
        EXPECT_FALSE(Find<QLabel>("PreviewPicture")->isVisible());
        EXPECT_FALSE(Check("PreviewActual")->isVisible());
        Accept();
    });
    EXPECT_EQ(FileSaveDialog(nullptr, start).file, folder.Path("none.png"));
}

TEST_F(FileDialogsTest, AFileThatIsOnlyReadIsOfferedInAnotherFormat)
{
    Copy("dunes.AVI");
    WhenShown([this] {
        EXPECT_EQ(Name()->text(), QStringLiteral("dunes.png"));
        EXPECT_TRUE(Box("SaveFormat")->currentText().startsWith(QStringLiteral("PNG")));
        Accept();
    });
    const SaveDialogChoice choice = FileSaveDialog(nullptr, Start("dunes.AVI"));
    EXPECT_EQ(choice.file, folder.Path("dunes.png"));
    EXPECT_EQ(choice.format, 75);
}

TEST_F(FileDialogsTest, NamesThatCannotBeTakenAreRefusedInWords)
{
    Copy("petals.png");
    ASSERT_TRUE(MakeFolder(folder.Path("folder.png")));
    WhenShown([this] {
        auto* const hint = Find<QLabel>("DialogHint");
        Type("nowhere/a.png");
        static_cast<QDialog*>(dialog)->accept();
        EXPECT_TRUE(hint->text().startsWith(QStringLiteral("There is no folder ")))
            << hint->text().toStdString();
        Type("folder");
        static_cast<QDialog*>(dialog)->accept();
        EXPECT_EQ(hint->text(),
                  QStringLiteral("\"folder.png\" is not a file. Choose another name."));
        Name()->selectAll();
        QTest::keyClick(Name(), Qt::Key_Delete);
        static_cast<QDialog*>(dialog)->accept();
        EXPECT_TRUE(dialog->isVisible());
    });
    EXPECT_EQ(FailureOf([&] { FileSaveDialog(nullptr, Start("petals.png")); }), kFailureCancelled);
}

TEST_F(FileDialogsTest, EveryControlIsReachedByTabAndHasAName)
{
    Copy("AST_0101.JPG");
    WhenShown([this] {
        QTest::keyClick(Check("StampWanted"), Qt::Key_Space);
        QSet<QString> reached;
        Name()->setFocus();
        for (int i = 0; i < 30; ++i) {
            if (const QWidget* focus = dialog->focusWidget()) {
                reached.insert(focus->objectName());
            }
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
        }
        for (const char* name :
             {"fileNameEdit", "SaveFormat", "SaveSubFormat", "SaveBits", "SaveQuality",
              "SaveQualityBar", "StampWanted", "StampSize", "StampBits", "PreviewActual"}) {
            EXPECT_TRUE(reached.contains(QLatin1String(name))) << name;
            if (QByteArrayView(name) != QByteArrayView("fileNameEdit")) {
                EXPECT_FALSE(Find<QWidget>(name)->accessibleName().isEmpty()) << name;
            }
        }
    });
    EXPECT_EQ(FailureOf([&] { FileSaveDialog(nullptr, Start("AST_0101.JPG")); }),
              kFailureCancelled);
}

} // namespace
} // namespace quillane
