#include "core/paths.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include "gui/widgets_support.h"
#include "widgets/ui/folder_tree.h"

#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QScrollBar>

namespace quillane {

namespace {

class FolderTreeTest : public testing::Test {
protected:
    FolderTreeTest()
    {
        mFolder.MakeFolder("a");
        mFolder.MakeFolder("a/b");
        mFolder.MakeFolder("a/b/c");
        mFolder.MakeFolder("d");
        mFolder.Write("a/x.jpg");
        mTree.FolderModel().SetPlaces({{"All", "/", "drive-harddisk"}, {"Top", Top(), "folder"}});
        ShowAndWait(mTree, QSize(300, 400));
    }
    QString Top() const { return WithoutSeparator(mFolder.Path()); }
    void Finish()
    {
        Until([&] { return !mTree.IsSelecting() && mTree.FolderModel().Jobs().Waiting() == 0; });
    }
    void Select(const QString& path)
    {
        mTree.Select(path);
        Finish();
    }
    QModelIndex Node(const QByteArray& name) const
    {
        return mTree.findChild<FolderTreeModel*>()->Find(mFolder.Path(name));
    }

    TempFolder mFolder;
    BoxRecorder mBoxes;
    FolderTree mTree{mBoxes};
    QSignalSpy mSelected{&mTree, &FolderTree::nodeSelected};
};

TEST_F(FolderTreeTest, SelectsAPathFarDownAndTellsOnce)
{
    Select(mFolder.Path("a/b/c"));
    ASSERT_EQ(mSelected.size(), 1);
    EXPECT_EQ(mSelected[0][0].toString(), "c");
    EXPECT_EQ(mSelected[0][1].toString(), mFolder.Path("a/b/c"));
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a/b/c"));
    EXPECT_TRUE(mTree.isExpanded(Node("a/b")));
    EXPECT_TRUE(mTree.selectionModel()->isSelected(mTree.currentIndex()));
    EXPECT_TRUE(mTree.viewport()->rect().intersects(mTree.visualRect(mTree.currentIndex())));
}

TEST_F(FolderTreeTest, ASeparatorBehindThePathDoesNotMatter)
{
    Select(mFolder.Path("a/"));
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a"));
    Select("/");
    EXPECT_EQ(mTree.SelectedPath(), "/");
    ASSERT_EQ(mSelected.size(), 2);
    EXPECT_EQ(mSelected[1][1].toString(), "/");
}

TEST_F(FolderTreeTest, SelectingTheSamePathAgainTellsAgain)
{
    Select(mFolder.Path("a"));
    Select(mFolder.Path("a"));
    EXPECT_EQ(mSelected.size(), 2);
}

TEST_F(FolderTreeTest, APathThatIsNotThereLeavesTheNearestFolder)
{
    Select(mFolder.Path("a/gone/further"));
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a"));
    EXPECT_EQ(mSelected.size(), 1);
    Select(mFolder.Path("a/x.jpg"));
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a")) << "files are not shown";
}

TEST_F(FolderTreeTest, NonsenseSelectsNothing)
{
    Select(mFolder.Path("a"));
    Select("C:\\Windows");
    Select("");
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a"));
    EXPECT_EQ(mSelected.size(), 1);
}

TEST_F(FolderTreeTest, OfSeveralWishesTheLastIsTold)
{
    mTree.Select(mFolder.Path("a"));
    mTree.Select(mFolder.Path("a/b"));
    Select(mFolder.Path("d"));
    ASSERT_EQ(mSelected.size(), 1);
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("d"));
}

TEST_F(FolderTreeTest, AClickOnANodeTellsOnce)
{
    Select(mFolder.Path("a"));
    mSelected.clear();
    const QPoint at = mTree.visualRect(Node("d")).center();
    QTest::mouseClick(mTree.viewport(), Qt::LeftButton, {}, at);
    ASSERT_EQ(mSelected.size(), 1);
    EXPECT_EQ(mSelected[0][0].toString(), "d");
    QTest::keyClick(&mTree, Qt::Key_Up);
    ASSERT_EQ(mSelected.size(), 2);
    EXPECT_EQ(mSelected[1][1].toString(), mFolder.Path("a"));
}

TEST_F(FolderTreeTest, AClickTakesThePlaceOfASelectionOnItsWay)
{
    Select(mFolder.Path("a"));
    const QPoint at = mTree.visualRect(Node("d")).center();
    mSelected.clear();
    mTree.Select(mFolder.Path("a/b"));
    QTest::mouseClick(mTree.viewport(), Qt::LeftButton, {}, at);
    Finish();
    EXPECT_EQ(mSelected.size(), 1);
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("d"));
}

TEST_F(FolderTreeTest, TheKeyboardComingInSelectsNothing)
{
    FolderTree tree(mBoxes);
    QSignalSpy selected(&tree, &FolderTree::nodeSelected);
    ShowAndWait(tree, QSize(300, 300));
    EXPECT_TRUE(tree.hasFocus());
    EXPECT_FALSE(tree.currentIndex().isValid());
    EXPECT_EQ(selected.size(), 0);
}

TEST_F(FolderTreeTest, ADoubleClickIsTold)
{
    Select(mFolder.Path("d"));
    QSignalSpy doubled(&mTree, &FolderTree::nodeDoubleClicked);
    QTest::mouseDClick(mTree.viewport(), Qt::LeftButton, {}, mTree.visualRect(Node("d")).center());
    ASSERT_EQ(doubled.size(), 1);
    EXPECT_EQ(doubled[0][0].toString(), mFolder.Path("d"));
}

TEST_F(FolderTreeTest, FilesShowWhenTheyAreAskedFor)
{
    Select(mFolder.Path("a/b"));
    EXPECT_FALSE(Node("a/x.jpg").isValid());
    mTree.SetShowFiles(true);
    Finish();
    EXPECT_TRUE(Node("a/x.jpg").isValid());
    Select(mFolder.Path("a/x.jpg"));
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a/x.jpg"));
    EXPECT_EQ(mSelected.last()[0].toString(), "x.jpg");
    mTree.SetShowFiles(false);
    Finish();
    EXPECT_FALSE(Node("a/x.jpg").isValid());
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a")) << "the nearest that is still shown";
}

TEST_F(FolderTreeTest, RefreshShowsWhatIsNewAndTellsNothing)
{
    Select(mFolder.Path("a"));
    mTree.expand(Node("a"));
    Finish();
    mSelected.clear();
    mFolder.MakeFolder("a/new");
    mTree.Refresh();
    Finish();
    EXPECT_TRUE(Node("a/new").isValid());
    EXPECT_TRUE(mTree.isExpanded(Node("a")));
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a"));
    EXPECT_EQ(mSelected.size(), 0);
}

TEST_F(FolderTreeTest, ASelectedFolderThatVanishedHandsOverToTheOneAbove)
{
    Select(mFolder.Path("a/b/c"));
    mSelected.clear();
    ASSERT_EQ(rmdir(mFolder.Bytes("a/b/c").constData()), 0);
    mTree.Refresh();
    Finish();
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a/b"));
    EXPECT_EQ(mSelected.size(), 1);
}

TEST_F(FolderTreeTest, ANewFolderIsMadeSelectedAndNamedInPlace)
{
    Select(mFolder.Path("d"));
    mSelected.clear();
    mTree.NewFolder(true);
    Finish();
    EXPECT_EQ(StatPath(mFolder.Path("d/New Folder")).type, FileType::Folder);
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("d/New Folder"));
    ASSERT_EQ(mSelected.size(), 1);
    auto* edit = mTree.findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->selectedText(), "New Folder");
    QTest::keyClicks(edit, "Summer");
    QTest::keyClick(edit, Qt::Key_Return);
    Until([&] { return mTree.SelectedPath() == mFolder.Path("d/Summer"); });
    EXPECT_EQ(StatPath(mFolder.Path("d/Summer")).type, FileType::Folder);
    EXPECT_EQ(StatPath(mFolder.Path("d/New Folder")).type, FileType::Missing);
    EXPECT_EQ(mSelected.last()[1].toString(), mFolder.Path("d/Summer"));
    EXPECT_TRUE(mBoxes.texts.isEmpty());
}

TEST_F(FolderTreeTest, ANewFolderKeepsItsNameWhenEditingIsLeft)
{
    Select(mFolder.Path("d"));
    mTree.NewFolder(true);
    Finish();
    auto* edit = mTree.findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr);
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("d/New Folder"));
    mTree.Select(mFolder.Path("d"));
    Finish();
    mTree.NewFolder(false);
    Finish();
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("d/New Folder (2)"));
}

TEST_F(FolderTreeTest, ANameThatIsTakenIsRefusedInWords)
{
    Select(mFolder.Path("a"));
    mTree.NewFolder(true);
    Finish();
    auto* edit = mTree.findChild<QLineEdit*>();
    ASSERT_NE(edit, nullptr);
    edit->setText("b");
    QTest::keyClick(edit, Qt::Key_Return);
    Until([&] { return !mBoxes.texts.isEmpty(); });
    EXPECT_TRUE(mBoxes.texts[0].contains("already")) << mBoxes.texts[0].toStdString();
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a/New Folder"));
    EXPECT_EQ(StatPath(mFolder.Path("a/New Folder")).type, FileType::Folder);
}

TEST_F(FolderTreeTest, ANewFolderThatCannotBeMadeIsToldInWords)
{
    Select(mFolder.Path("d"));
    mFolder.Chmod("d", 0555);
    {
        const Unprivileged person;
        mTree.NewFolder(true);
    }
    mFolder.Chmod("d", 0755);
    ASSERT_EQ(mBoxes.texts.size(), 1);
    EXPECT_TRUE(mBoxes.texts[0].contains("/d\""));
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("d"));
}

TEST_F(FolderTreeTest, LinksInACircleCanBeSelectedAndOpened)
{
    mFolder.Link("..", "a/back");
    Select(mFolder.Path("a/back/a/back/d"));
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a/back/a/back/d"));
}

TEST_F(FolderTreeTest, NamesThatAreNoTextAreKeptAsTheyAre)
{
    mFolder.MakeFolder("d/\xff\xfe");
    Select(mFolder.Path("d/\xff\xfe"));
    EXPECT_EQ(StatPath(mTree.SelectedPath()).type, FileType::Folder);
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("d/\xff\xfe"));
}

TEST_F(FolderTreeTest, TheModelKeepsItsPromisesThroughAllOfIt)
{
    const QAbstractItemModelTester tester(&mTree.FolderModel(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    mTree.FolderModel().SetPlaces({{"Top", Top(), "folder"}});
    Select(mFolder.Path("a/b"));
    mTree.SetShowFiles(true);
    Finish();
    mFolder.MakeFolder("0");
    mFolder.MakeFolder("a/a");
    ASSERT_TRUE(RemoveFile(mFolder.Path("a/x.jpg")));
    mTree.Refresh();
    Finish();
    mTree.NewFolder(false);
    Finish();
    EXPECT_EQ(mTree.SelectedPath(), mFolder.Path("a/b/New Folder"));
}

TEST_F(FolderTreeTest, HasANameForScreenReaders)
{
    EXPECT_EQ(mTree.objectName(), "tvExplore");
    EXPECT_EQ(mTree.accessibleName(), "Folders");
}

} // namespace

} // namespace quillane
