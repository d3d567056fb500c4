// The dialog that saves a picture, through its real controls.
#include "file_dialogs_support.h"

namespace quillane {
namespace {

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
