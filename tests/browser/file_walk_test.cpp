// Walks over real files whose folders change under them.
#include "browser/file_walk.h"

#include "core/temp_folder.h"
#include "platform/desktop/file_service.h"

#include <functional>

namespace quillane {

namespace {

/// Does something of a test's before the file of that number.
class ChangingFiles : public DesktopFileService {
public:
    ChangingFiles(const QString& trash, int before, std::function<void()> change)
        : DesktopFileService(trash),
          mLeft(before),
          mChange(std::move(change))
    { }
    FileId Copy(const QString& from, const QString& to, const FileIds& keep) override
    {
        Look();
        return DesktopFileService::Copy(from, to, keep);
    }
    MoveResult Move(const QString& from, const QString& to, const FileIds& keep) override
    {
        Look();
        return DesktopFileService::Move(from, to, keep);
    }
    void Delete(const QString& path) override
    {
        Look();
        DesktopFileService::Delete(path);
    }

private:
    void Look()
    {
        if (mLeft-- == 0) {
            mChange();
        }
    }
    int mLeft;
    std::function<void()> mChange;
};

class FileWalkTest : public testing::Test {
protected:
    FileWalkTest()
    {
        folder.MakeFolder("from");
        folder.MakeFolder("to");
        for (int i = 0; i < 3; ++i) {
            const QByteArray name = "from/" + QByteArray::number(i) + ".jpg";
            folder.Write(name, "picture " + QByteArray::number(i));
            walk.append({i, folder.Path(name)});
        }
    }
    /// Walks; before the second file the change happens.
    WalkResult Run(
        WalkKind kind, const std::function<void()>& change = [] {})
    {
        ChangingFiles files(folder.Path("Trash"), 1, change);
        return RunWalk(files, kind, walk, folder.Path("to/"), progress);
    }
    void TargetGoes()
    {
        EXPECT_EQ(rename(folder.Bytes("to").constData(), folder.Bytes("gone").constData()), 0);
    }
    void SourceGoes()
    {
        EXPECT_EQ(rename(folder.Bytes("from").constData(), folder.Bytes("gone").constData()), 0);
    }
    int Count(const char* in) const
    {
        int count = 0;
        ListFolder(folder.Path(in), [&](DirEntry&&) {
            ++count;
            return true;
        });
        return count;
    }

    TempFolder folder;
    QVector<WalkFile> walk;
    std::atomic<int> progress = -1;
};

TEST_F(FileWalkTest, ATargetThatDisappearsEndsTheCopiesAndNothingElse)
{
    const WalkResult result = Run(WalkKind::Copy, [this] { TargetGoes(); });
    EXPECT_EQ(result.done, 1);
    EXPECT_EQ(result.total, 3);
    EXPECT_TRUE(result.firstFailed.contains(QStringLiteral("\"1.jpg\"")));
    EXPECT_EQ(Count("from"), 3);
    EXPECT_EQ(Count("gone"), 1);
    EXPECT_EQ(progress, 2);
}

TEST_F(FileWalkTest, AMoveWhoseTargetDisappearsEndsInTheTrash)
{
    const WalkResult result = Run(WalkKind::Move, [this] { TargetGoes(); });
    EXPECT_EQ(result.done, 1);
    EXPECT_EQ(result.trashedInstead, 2);
    EXPECT_EQ(Count("from"), 0);
    EXPECT_EQ(Count("gone"), 1);
    ASSERT_EQ(result.trashed.size(), 2);
    DesktopFileService files(folder.Path("Trash"));
    for (const TrashedFile& file : result.trashed) {
        files.BringBack(file);
    }
    EXPECT_EQ(folder.Content("from/1.jpg"), "picture 1");
    EXPECT_EQ(folder.Content("from/2.jpg"), "picture 2");
}

TEST_F(FileWalkTest, ASourceThatDisappearsFailsForTheRest)
{
    for (const WalkKind kind : {WalkKind::Copy, WalkKind::Move, WalkKind::Delete}) {
        const WalkResult result = Run(kind, [this] { SourceGoes(); });
        EXPECT_EQ(result.done, 1);
        EXPECT_EQ(result.trashedInstead, 0);
        EXPECT_TRUE(result.firstFailed.contains(QStringLiteral("\"1.jpg\"")));
        EXPECT_EQ(rename(folder.Bytes("gone").constData(), folder.Bytes("from").constData()), 0);
        EXPECT_EQ(folder.Content("from/1.jpg"), "picture 1");
        EXPECT_EQ(folder.Content("from/2.jpg"), "picture 2");
        folder.Write("from/0.jpg", "picture 0");
    }
}

TEST_F(FileWalkTest, AMoveToAFileOrToNowhereEndsInTheTrash)
{
    ASSERT_EQ(rmdir(folder.Bytes("to").constData()), 0);
    folder.Write("to", "a file");
    WalkResult result = Run(WalkKind::Move);
    EXPECT_EQ(result.done, 0);
    EXPECT_EQ(result.trashedInstead, 3);
    EXPECT_EQ(folder.Content("to"), "a file");
    EXPECT_EQ(Count("Trash/files"), 3);
}

TEST_F(FileWalkTest, AMoveBehindALinkToTheFolderItselfEndsInTheTrash)
{
    ASSERT_EQ(rmdir(folder.Bytes("to").constData()), 0);
    folder.Link("from", "to");
    const WalkResult result = Run(WalkKind::Move);
    EXPECT_EQ(result.done, 0);
    EXPECT_EQ(result.trashed.size(), 3);
    EXPECT_EQ(Count("Trash/files"), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(folder.Content("Trash/files/" + QByteArray::number(i) + ".jpg"),
                  "picture " + QByteArray::number(i));
    }
}

TEST_F(FileWalkTest, OfNamesThatDifferInCaseEachIsTaken)
{
    folder.Write("from/PHOTO.jpg", "large");
    folder.Write("from/photo.jpg", "small");
    walk = {{0, folder.Path("from/PHOTO.jpg")}, {1, folder.Path("from/photo.jpg")}};
    EXPECT_EQ(Run(WalkKind::Move).done, 2);
    EXPECT_EQ(folder.Content("to/PHOTO.jpg"), "large");
    EXPECT_EQ(folder.Content("to/photo.jpg"), "small");
}

TEST_F(FileWalkTest, ALinkThatIsDeletedOrMovedLeavesWhatItLeadsTo)
{
    folder.Link("0.jpg", "from/link.jpg");
    walk = {{0, folder.Path("from/link.jpg")}};
    EXPECT_EQ(Run(WalkKind::Move).done, 1);
    EXPECT_EQ(folder.Content("to/link.jpg"), "picture 0");
    EXPECT_EQ(folder.Content("from/0.jpg"), "picture 0");
    folder.Link("0.jpg", "from/link.jpg");
    EXPECT_EQ(Run(WalkKind::Delete).done, 1);
    EXPECT_EQ(folder.Content("from/0.jpg"), "picture 0");
    EXPECT_EQ(Count("from"), 3);
}

TEST_F(FileWalkTest, PipesAmongTheFilesHoldNothingUp)
{
    ASSERT_EQ(mkfifo(folder.Bytes("from/pipe.jpg").constData(), 0644), 0);
    walk.insert(1, {1, folder.Path("from/pipe.jpg")});
    const WalkResult copied = Run(WalkKind::Copy);
    EXPECT_EQ(copied.done, 3);
    EXPECT_EQ(copied.total, 4);
    EXPECT_TRUE(copied.firstFailed.contains(QStringLiteral("\"pipe.jpg\"")));
}

} // namespace

} // namespace quillane
