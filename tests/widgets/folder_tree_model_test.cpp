#include "widgets/folder_tree_model.h"

#include "core/expect_failure.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include "widgets/new_folder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <gtest/gtest.h>

namespace quillane {

namespace {

class FolderTreeModelTest : public testing::Test {
protected:
    void Start()
    {
        mModel.SetPlaces({{"Top", WithoutSeparator(mFolder.Path()), "folder"}});
        mTop = mModel.index(0, 0);
    }
    QStringList Children(const QModelIndex& parent) const
    {
        QStringList names;
        for (int row = 0; row < mModel.rowCount(parent); ++row) {
            names.append(mModel.index(row, 0, parent).data(Qt::EditRole).toString());
        }
        return names;
    }
    void Finish()
    {
        QElapsedTimer limit;
        limit.start();
        while (mModel.Jobs().Waiting() > 0 && limit.elapsed() < 30'000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        }
        ASSERT_EQ(mModel.Jobs().Waiting(), 0);
    }
    QModelIndex Read(const QModelIndex& index)
    {
        mModel.fetchMore(index);
        Finish();
        return index;
    }

    TempFolder mFolder;
    FolderTreeModel mModel;
    QPersistentModelIndex mTop;
};

TEST_F(FolderTreeModelTest, ReadsAFolderWhenItIsOpenedAndNotBefore)
{
    mFolder.MakeFolder("b");
    const qint64 before = PathCallCount().lists;
    Start();
    EXPECT_TRUE(mModel.hasChildren(mTop)) << "what is not known may be opened";
    EXPECT_EQ(PathCallCount().lists, before);
    EXPECT_TRUE(mModel.canFetchMore(mTop));
    Read(mTop);
    EXPECT_FALSE(mModel.canFetchMore(mTop));
    EXPECT_EQ(Children(mTop), QStringList{"b"});
}

TEST_F(FolderTreeModelTest, OrdersByNameWithoutCaseAndLeavesHiddenOnesAndFilesOut)
{
    for (const char* name : {"beta", "Alpha", ".hidden", "alpha2", "Gamma"}) {
        mFolder.MakeFolder(name);
    }
    mFolder.Write("a.jpg");
    Start();
    Read(mTop);
    EXPECT_EQ(Children(mTop), (QStringList{"Alpha", "alpha2", "beta", "Gamma"}));
}

TEST_F(FolderTreeModelTest, ShowsFilesBehindFoldersWhenAsked)
{
    mFolder.MakeFolder("z");
    mFolder.Write("a.jpg");
    mFolder.Write(".b.jpg");
    Start();
    Read(mTop);
    mModel.SetShowFiles(true);
    Finish();
    EXPECT_EQ(Children(mTop), (QStringList{"z", "a.jpg"}));
    const QModelIndex file = mModel.index(1, 0, mTop);
    EXPECT_FALSE(mModel.IsFolder(file));
    EXPECT_FALSE(mModel.hasChildren(file));
    mModel.SetShowFiles(false);
    Finish();
    EXPECT_EQ(Children(mTop), QStringList{"z"});
}

TEST_F(FolderTreeModelTest, AFolderWithoutFoldersLosesItsArrow)
{
    mFolder.MakeFolder("empty");
    mFolder.MakeFolder("full");
    mFolder.MakeFolder("full/inner");
    mFolder.Write("empty/a.jpg");
    Start();
    Read(mTop);
    EXPECT_FALSE(mModel.hasChildren(mModel.index(0, 0, mTop)));
    EXPECT_TRUE(mModel.hasChildren(mModel.index(1, 0, mTop)));
}

TEST_F(FolderTreeModelTest, RefreshKeepsTheNodesThatAreStillThere)
{
    for (const char* name : {"a", "c", "e"}) {
        mFolder.MakeFolder(name);
    }
    mFolder.MakeFolder("c/inner");
    Start();
    Read(mTop);
    const QPersistentModelIndex c = Read(mModel.index(1, 0, mTop));
    const QPersistentModelIndex inner = mModel.index(0, 0, c);
    const QPersistentModelIndex a = mModel.index(0, 0, mTop);
    ASSERT_EQ(rmdir(mFolder.Bytes("a").constData()), 0);
    for (const char* name : {"b", "d", "f"}) {
        mFolder.MakeFolder(name);
    }
    mModel.Refresh();
    Finish();
    EXPECT_EQ(Children(mTop), (QStringList{"b", "c", "d", "e", "f"}));
    EXPECT_FALSE(a.isValid());
    EXPECT_EQ(mModel.Path(inner), mFolder.Path("c/inner"));
}

TEST_F(FolderTreeModelTest, AFileThatBecameAFolderIsANewNode)
{
    mFolder.Write("x");
    mModel.SetShowFiles(true);
    Start();
    Read(mTop);
    EXPECT_FALSE(mModel.IsFolder(mModel.index(0, 0, mTop)));
    ASSERT_TRUE(RemoveFile(mFolder.Path("x")));
    mFolder.MakeFolder("x");
    mModel.Refresh();
    Finish();
    EXPECT_TRUE(mModel.IsFolder(mModel.index(0, 0, mTop)));
}

TEST_F(FolderTreeModelTest, AWayDownIsMadeBeforeAnythingIsRead)
{
    mFolder.MakeFolder("m");
    mFolder.MakeFolder("m/n");
    mFolder.MakeFolder("a");
    Start();
    const QPersistentModelIndex n = mModel.MakeNode(mFolder.Path("m/n"), true, {});
    ASSERT_TRUE(n.isValid());
    EXPECT_EQ(mModel.Path(n), mFolder.Path("m/n"));
    EXPECT_EQ(mModel.Find(mFolder.Path("m/n/")), n);
    Read(mTop);
    EXPECT_EQ(Children(mTop), (QStringList{"a", "m"})) << "no node is there twice";
    EXPECT_TRUE(n.isValid());
    EXPECT_FALSE(mModel.Find(mFolder.Path("m/o")).isValid());
}

TEST_F(FolderTreeModelTest, StaysInTheBranchItIsInElseTakesTheClosestTopNode)
{
    mFolder.MakeFolder("pictures");
    mModel.SetPlaces({{"All", "/", "drive-harddisk"},
                      {"Top", WithoutSeparator(mFolder.Path()), "folder"},
                      {"Pictures", mFolder.Path("pictures"), "folder"}});
    const QModelIndex closest = mModel.MakeNode(mFolder.Path("pictures/x"), true, {});
    EXPECT_EQ(closest.parent(), mModel.index(2, 0));
    const QModelIndex near = mModel.MakeNode(mFolder.Path("pictures"), true, mModel.index(1, 0));
    EXPECT_EQ(near.parent(), mModel.index(1, 0));
    EXPECT_EQ(mModel.MakeNode("/", true, {}), mModel.index(0, 0));
}

TEST_F(FolderTreeModelTest, AFolderThatCannotBeReadIsEmptyAndSaysWhy)
{
    mFolder.MakeFolder("locked");
    mFolder.MakeFolder("locked/inner");
    mFolder.Chmod("locked", 0);
    {
        const Unprivileged person; // the reading threads begin within
        FolderTreeModel model;
        model.SetPlaces({{"Top", mFolder.Path("locked"), "folder"}});
        const QModelIndex top = model.index(0, 0);
        model.fetchMore(top);
        QElapsedTimer limit;
        limit.start();
        while (model.Jobs().Waiting() > 0 && limit.elapsed() < 30'000) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        }
        EXPECT_EQ(model.rowCount(top), 0);
        EXPECT_FALSE(model.hasChildren(top));
        const QString tip = top.data(Qt::ToolTipRole).toString();
        EXPECT_GT(tip.size(), mFolder.Path("locked").size() + 60) << tip.toStdString();
        const LocatedPath located = LocatePath(mFolder.Path("locked/inner/x"), false);
        EXPECT_EQ(located.path, mFolder.Path("locked"));
    }
    mFolder.Chmod("locked", 0755);
}

TEST_F(FolderTreeModelTest, LinksInACircleAreFollowedOnlyAsFarAsAPersonOpensThem)
{
    mFolder.MakeFolder("a");
    mFolder.Link("..", "a/back");
    mFolder.Link("loop", "loop");
    Start();
    Read(mTop);
    EXPECT_EQ(Children(mTop), QStringList{"a"}) << "a link to itself is no folder";
    const QModelIndex back = mModel.index(0, 0, Read(mModel.index(0, 0, mTop)));
    EXPECT_EQ(mModel.Path(back), mFolder.Path("a/back"));
    Read(back);
    EXPECT_EQ(Children(back), QStringList{"a"});
}

TEST_F(FolderTreeModelTest, NamesOfAnyBytesComeThrough)
{
    mFolder.MakeFolder("\xff\xfe name");
    mFolder.MakeFolder("line\nbreak");
    Start();
    Read(mTop);
    ASSERT_EQ(mModel.rowCount(mTop), 2);
    for (int row = 0; row < 2; ++row) {
        const QModelIndex node = mModel.index(row, 0, mTop);
        EXPECT_EQ(StatPath(mModel.Path(node)).type, FileType::Folder);
        EXPECT_FALSE(node.data(Qt::DisplayRole).toString().contains(u'\n'));
    }
}

TEST_F(FolderTreeModelTest, ANewNameMovesTheNodeToItsPlace)
{
    for (const char* name : {"a", "b", "c"}) {
        mFolder.MakeFolder(name);
    }
    Start();
    Read(mTop);
    const QPersistentModelIndex a = mModel.index(0, 0, mTop);
    mModel.SetName(a, "bb");
    EXPECT_EQ(Children(mTop), (QStringList{"b", "bb", "c"}));
    EXPECT_EQ(a.row(), 1);
    mModel.SetName(a, "z");
    EXPECT_EQ(Children(mTop), (QStringList{"b", "c", "z"}));
    mModel.SetName(a, "0");
    EXPECT_EQ(Children(mTop), (QStringList{"0", "b", "c"}));
}

TEST_F(FolderTreeModelTest, OnlyTheNodeBeingNamedMayBeEdited)
{
    mFolder.MakeFolder("a");
    Start();
    Read(mTop);
    const QModelIndex a = mModel.index(0, 0, mTop);
    QString asked;
    QObject::connect(&mModel, &FolderTreeModel::renameWanted,
                     [&](const QModelIndex&, const QString& name) { asked = name; });
    EXPECT_FALSE(mModel.flags(a) & Qt::ItemIsEditable);
    EXPECT_FALSE(mModel.setData(a, "x", Qt::EditRole));
    mModel.SetEditable(a);
    EXPECT_TRUE(mModel.flags(a) & Qt::ItemIsEditable);
    EXPECT_TRUE(mModel.setData(a, "x", Qt::EditRole));
    EXPECT_EQ(asked, "x");
}

TEST(FolderTreeModel, GoesWhileFoldersAreBeingRead)
{
    for (int i = 0; i < 20; ++i) {
        FolderTreeModel model;
        model.SetPlaces({{"All", "/", "drive-harddisk"}});
        model.fetchMore(model.index(0, 0));
    }
    QCoreApplication::processEvents();
    SUCCEED();
}

TEST(FolderTreeModel, TheTopHoldsHomeAndTheRoot)
{
    const auto places = FolderTreeModel::SystemPlaces();
    const auto has = [&](const QString& path) {
        return std::any_of(places.begin(), places.end(),
                           [&](const auto& place) { return place.path == path; });
    };
    EXPECT_TRUE(has("/"));
    EXPECT_TRUE(has(WithoutSeparator(PathFromBytes(qgetenv("HOME")))));
}

TEST(LocatePath, FindsTheNearestFolderAbove)
{
    const TempFolder folder;
    folder.MakeFolder("a");
    folder.Write("a/b.jpg");
    EXPECT_EQ(LocatePath(folder.Path("a"), false).path, folder.Path("a"));
    EXPECT_EQ(LocatePath(folder.Path("a/"), false).path, folder.Path("a"));
    EXPECT_EQ(LocatePath(folder.Path("a/x/y/z"), false).path, folder.Path("a"));
    EXPECT_EQ(LocatePath(folder.Path("a/b.jpg"), false).path, folder.Path("a"));
    EXPECT_EQ(LocatePath(folder.Path("a/b.jpg"), true).path, folder.Path("a/b.jpg"));
    EXPECT_FALSE(LocatePath(folder.Path("a/b.jpg"), true).isFolder);
    EXPECT_EQ(LocatePath("/no/such/place", false).path, "/");
    EXPECT_EQ(LocatePath("relative", false).path, "");
    EXPECT_EQ(LocatePath("", false).path, "");
}

TEST(NewFolder, TakesANameThatIsFree)
{
    const TempFolder folder;
    EXPECT_EQ(MakeNewFolder(folder.Path()), folder.Path("New Folder"));
    EXPECT_EQ(MakeNewFolder(folder.Path()), folder.Path("New Folder (2)"));
    EXPECT_EQ(MakeNewFolder(WithoutSeparator(folder.Path())), folder.Path("New Folder (3)"));
    EXPECT_EQ(folder.Entries().size(), 3);
}

TEST(NewFolder, IsRefusedInWordsWhereNoneCanBe)
{
    const TempFolder folder;
    EXPECT_NE(FailureOf([&] { MakeNewFolder(folder.Path("gone")); }), 0);
    folder.MakeFolder("locked");
    folder.Chmod("locked", 0555);
    {
        const Unprivileged person;
        EXPECT_EQ(FailureOf([&] { MakeNewFolder(folder.Path("locked")); }), kFailureDenied);
    }
    folder.Chmod("locked", 0755);
}

TEST(NewFolder, GetsANameThatIsNoPathAndReplacesNothing)
{
    const TempFolder folder;
    folder.MakeFolder("a");
    folder.MakeFolder("b");
    for (const QString& name : {QString(), QStringLiteral("."), QStringLiteral(".."),
                                QStringLiteral("x/y"), QStringLiteral("b")}) {
        EXPECT_NE(FailureOf([&] { RenameFolder(folder.Path("a"), name); }), 0)
            << name.toStdString();
    }
    EXPECT_EQ(RenameFolder(folder.Path("a"), "c"), folder.Path("c"));
    EXPECT_EQ(folder.Entries(), (QStringList{"b", "c"}));
    EXPECT_EQ(FailureOf([&] { RenameFolder(folder.Path("a"), "d"); }), kFailureNoFile);
}

} // namespace

} // namespace quillane
