// The dialog that opens a picture, through its real controls.
#include "file_dialogs_support.h"

namespace quillane {
namespace {

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

TEST_F(FileDialogsTest, TheToolkitsOwnDialogsKeepTheirColumns)
{
    Copy("petals.png");
    for (int round = 0; round < 2; ++round) {
        WhenShown([this] { EXPECT_TRUE(Find<QTreeView>("treeView")->isColumnHidden(2)); });
        EXPECT_EQ(FailureOf([&] { FileSaveDialog(nullptr, Start("petals.png")); }),
                  kFailureCancelled);
        QFileDialog plain;
        plain.setOption(QFileDialog::DontUseNativeDialog);
        const auto* const list = plain.findChild<QTreeView*>(QStringLiteral("treeView"));
        ASSERT_NE(list, nullptr);
        for (int column = 0; column < 4; ++column) {
            EXPECT_FALSE(list->isColumnHidden(column)) << column;
        }
    }
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

} // namespace
} // namespace quillane
