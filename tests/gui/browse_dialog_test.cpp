// The dialog that picks a folder or a file.
#include "core/temp_folder.h"
#include "modal_dialog.h"
#include "platform/fake/fake_dialogs.h"
#include "widgets/ui/folder_tree.h"
#include "widgets/ui/frmBrowse.h"

#include <QLineEdit>
#include <QScreen>

namespace quillane {

namespace {

class BrowseDialogTest : public testing::Test {
protected:
    static constexpr int kWait = 10'000;

    BrowseDialogTest()
    {
        folder.MakeFolder("one");
        folder.MakeFolder("one/inside");
        folder.MakeFolder("two");
        folder.MakeFolder("two/.hidden");
        folder.Write("two/program");
    }
    void Open()
    {
        dialog = std::make_unique<frmBrowse>(session, boxes, folder.Path("one/"));
        dialog->setWindowTitle(QStringLiteral("Copy File(s) to..."));
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    FolderTree* Tree() const { return In<FolderTree>(*dialog, "FolderView1"); }
    QPushButton* Button(const char* name) const { return In<QPushButton>(*dialog, name); }
    bool Selected(const QByteArray& name) const
    {
        return QTest::qWaitFor([&] { return Tree()->SelectedPath() == folder.Path(name); }, kWait);
    }
    void Choose(const QByteArray& name)
    {
        Tree()->Select(folder.Path(name));
        ASSERT_TRUE(Selected(name));
    }
    /// Asks for a new folder: the box for its name, nothing when none comes.
    QLineEdit* NewFolder() const
    {
        QTest::mouseClick(Button("cmdNewFolder"), Qt::LeftButton);
        QLineEdit* editor = nullptr;
        const auto comes = [&] {
            editor = Tree()->viewport()->findChild<QLineEdit*>();
            return editor != nullptr;
        };
        return QTest::qWaitFor(comes, kWait) ? editor : nullptr;
    }

    TempFolder folder;
    FakeDialogs boxes;
    Session session;
    std::unique_ptr<frmBrowse> dialog;
};

TEST_F(BrowseDialogTest, OpensNoLargerThanTheScreen)
{
    const QSize low(683, 384);
    EXPECT_LT(frmBrowse::FirstSizeIn(low).height(), low.height());
    Open();
    EXPECT_EQ(dialog->size(), frmBrowse::FirstSizeIn(dialog->screen()->availableSize()));
}

TEST_F(BrowseDialogTest, OpensOnTheLastFolderWithFoldersAlone)
{
    session.browsePath = folder.Path("two/");
    Open();
    ASSERT_TRUE(Selected("two"));
    EXPECT_TRUE(dialog->isModal());
    EXPECT_FALSE(Tree()->ShowFiles());
    EXPECT_EQ(Button("cmdSelect")->text(), QStringLiteral("&Select"));
    EXPECT_EQ(Button("cmdCancel")->text(), QStringLiteral("&Cancel"));
    EXPECT_EQ(Button("cmdNewFolder")->text(), QStringLiteral("&New Folder"));
    EXPECT_EQ(session.browsePath, folder.Path("two/"));
}

TEST_F(BrowseDialogTest, WithoutALastFolderItOpensOnTheHomeFolder)
{
    session.browsePath.clear();
    Open();
    ASSERT_TRUE(Selected("one"));
    EXPECT_EQ(session.browsePath, folder.Path("one/"));
}

TEST_F(BrowseDialogTest, ALastFolderThatIsGoneGivesWayToTheOneAbove)
{
    session.browsePath = folder.Path("two/gone/deeper/");
    Open();
    ASSERT_TRUE(Selected("two"));
    EXPECT_EQ(session.browsePath, folder.Path("two/"));
}

TEST_F(BrowseDialogTest, SelectingANodeSetsThePathWithASeparatorButForTheRoot)
{
    session.browsePath = folder.Path("one/");
    Open();
    Choose("two");
    EXPECT_EQ(session.browsePath, folder.Path("two/"));
    Tree()->Select(QStringLiteral("/"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return session.browsePath == "/"; }, kWait));
    Choose("one");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Button("cmdSelect")->isEnabled(); }, kWait));
    QTest::mouseClick(Button("cmdSelect"), Qt::LeftButton);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(session.browsePath, folder.Path("one/"));
}

TEST_F(BrowseDialogTest, EveryWayOutButSelectEmptiesThePath)
{
    for (int way = 0; way < 3; ++way) {
        session.browsePath = folder.Path("two/");
        Open();
        ASSERT_TRUE(Selected("two"));
        if (way == 0) {
            QTest::mouseClick(Button("cmdCancel"), Qt::LeftButton);
        } else if (way == 1) {
            QTest::keyClick(dialog.get(), Qt::Key_Escape);
        } else {
            dialog->close();
        }
        EXPECT_FALSE(dialog->isVisible()) << way;
        EXPECT_EQ(session.browsePath, QString()) << way;
    }
}

TEST_F(BrowseDialogTest, NothingCanBeSelectedBeforeTheTreeHasFoundItsPlace)
{
    session.browsePath = folder.Path("two/gone/");
    dialog = std::make_unique<frmBrowse>(session, boxes, folder.Path("one/"));
    EXPECT_FALSE(Button("cmdSelect")->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return Button("cmdSelect")->isEnabled(); }, kWait));
    EXPECT_EQ(session.browsePath, folder.Path("two/"));
}

TEST_F(BrowseDialogTest, EnterSelects)
{
    session.browsePath = folder.Path("two/");
    Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Button("cmdSelect")->isEnabled(); }, kWait));
    Button("cmdSelect")->setFocus();
    QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(session.browsePath, folder.Path("two/"));
}

TEST_F(BrowseDialogTest, EnterInTheTreeSelects)
{
    session.browsePath = folder.Path("two/");
    Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Button("cmdSelect")->isEnabled(); }, kWait));
    EXPECT_EQ(dialog->focusWidget(), Tree());
    QTest::keyClick(Tree(), Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(session.browsePath, folder.Path("two/"));
}

TEST_F(BrowseDialogTest, ANewFolderIsNamedInPlaceAndSelected)
{
    session.browsePath = folder.Path("two/");
    Open();
    ASSERT_TRUE(Selected("two"));
    QLineEdit* const editor = NewFolder();
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(session.browsePath, folder.Path("two/New Folder/"));
    Retype(editor, "Holiday");
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(Selected("two/Holiday"));
    EXPECT_TRUE(dialog->isVisible()); // Enter named the folder and did not close the dialog
    EXPECT_EQ(session.browsePath, folder.Path("two/Holiday/"));
    EXPECT_EQ(StatPath(folder.Path("two/Holiday")).type, FileType::Folder);
    EXPECT_TRUE(boxes.Boxes().isEmpty());
}

TEST_F(BrowseDialogTest, SelectWhileANewFolderIsNamedTakesTheNameAlong)
{
    session.browsePath = folder.Path("two/");
    Open();
    ASSERT_TRUE(Selected("two"));
    QLineEdit* const editor = NewFolder();
    ASSERT_NE(editor, nullptr);
    Retype(editor, "Holiday");
    QTest::mouseClick(Button("cmdSelect"), Qt::LeftButton);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(session.browsePath, folder.Path("two/Holiday/"));
    EXPECT_EQ(StatPath(folder.Path("two/Holiday")).type, FileType::Folder);
}

TEST_F(BrowseDialogTest, ANewFolderWhereNoneCanBeMadeIsRefusedInWords)
{
    session.browsePath = QStringLiteral("/proc/");
    Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Tree()->SelectedPath() == "/proc"; }, kWait));
    boxes.Answer(BoxAnswer::Ok);
    QTest::mouseClick(Button("cmdNewFolder"), Qt::LeftButton);
    ASSERT_EQ(boxes.Boxes().size(), 1);
    EXPECT_FALSE(boxes.Boxes()[0].text.isEmpty());
}

TEST_F(BrowseDialogTest, FilesAreShownForThePickOfAProgram)
{
    session.browsePath = folder.Path("one/");
    dialog = std::make_unique<frmBrowse>(session, boxes, folder.Path("one/"));
    dialog->PickFiles(folder.Path("two/program"));
    EXPECT_FALSE(Button("cmdSelect")->isEnabled());
    dialog->show();
    ASSERT_TRUE(Selected("two/program"));
    EXPECT_TRUE(Tree()->ShowFiles());
    EXPECT_FALSE(Button("cmdNewFolder")->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return Button("cmdSelect")->isEnabled(); }, kWait));
    EXPECT_EQ(session.browsePath, folder.Path("two/program/"));
}

TEST_F(BrowseDialogTest, EveryControlIsReachedByTabAndHasAName)
{
    session.browsePath = folder.Path("two/");
    Open();
    ASSERT_TRUE(QTest::qWaitFor([&] { return Button("cmdSelect")->isEnabled(); }, kWait));
    ExpectNamedByTab(*dialog, {"FolderView1", "cmdNewFolder", "cmdSelect", "cmdCancel"});
}

TEST_F(BrowseDialogTest, AClosedDialogThatStillReadsFoldersLeavesNothingBehind)
{
    session.browsePath = QStringLiteral("/usr/share/");
    for (int i = 0; i < 20; ++i) {
        dialog = std::make_unique<frmBrowse>(session, boxes, folder.Path("one/"));
        dialog->show();
        dialog.reset();
    }
    EXPECT_EQ(session.browsePath, "/usr/share/");
}

} // namespace

} // namespace quillane
