#include "browser/file_operation.h"

#include "core/expect_failure.h"
#include "platform/fake/fake_platform.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

class FileOperationTest : public testing::Test, protected FileOperationView {
protected:
    FileOperationTest() : fakes("/home"), operations(session, fakes.Services(), *this)
    {
        session.gsPath = "/p/";
        session.browsePath = "/start/";
        for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) {
            const QString path = session.gsPath + name;
            session.lbFilTiffs.append(path);
            fakes.files.files.insert(path, name);
        }
        flags = {true, false, true};
    }

    QVector<bool> SelectedFlags() const override { return flags; }
    void PickFolder(const QString& caption) override
    {
        captions.append(caption);
        session.browsePath = picked;
    }
    void PickProgram(const QString& caption) override { PickFolder(caption); }
    void AskNewName() override { session.gsNewName = newName; }
    void ShowProgress(int value) override { maximum = value; }
    void SetProgress(int value) override { progress = value; }
    void HideProgress() override { maximum = -1; }
    void RunAlone(const std::function<void()>& work, const std::function<void()>& tick) override
    {
        maximumInWalk = maximum;
        work();
        tick();
    }
    void RefreshFiles() override
    {
        ++refreshed;
        session.lbFilTiffs = afterScan.isEmpty() ? session.lbFilTiffs : afterScan;
    }
    void FileRenamed(int position, const QString& path) override
    {
        renamed.append({position, path});
    }
    void MakeFileCurrent(int position) override { current = position; }
    void Tell(const QString& text) override { line = text; }

    QStringList Left() const { return fakes.files.files.keys(); }

    Session session;
    FakePlatform fakes;
    FileOperations operations;
    QVector<bool> flags;
    QString picked = "/t/", newName, line;
    QStringList captions, afterScan;
    QVector<std::pair<int, QString>> renamed;
    int maximum = -1, maximumInWalk = -1, progress = -1, refreshed = 0, current = -1;
};

TEST_F(FileOperationTest, ADeleteAsksAndDeletesTheSelectedForGood)
{
    fakes.dialogs.Answer(BoxAnswer::Yes);
    EXPECT_EQ(operations.FileOperation(kDeleteFiles), "");
    ASSERT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_EQ(fakes.dialogs.Boxes()[0].text, "Delete Files?");
    EXPECT_EQ(fakes.dialogs.Boxes()[0].title, "Confirm File Delete");
    EXPECT_EQ(fakes.dialogs.Boxes()[0].icon, BoxIcon::Warning);
    EXPECT_EQ(fakes.dialogs.Boxes()[0].buttons, BoxButtons::YesNo);
    EXPECT_EQ(fakes.files.calls, (QStringList{"delete /p/a.jpg", "delete /p/c.jpg"}));
    EXPECT_EQ(refreshed, 1);
    EXPECT_EQ(maximumInWalk, 2);
    EXPECT_EQ(progress, 2);
    EXPECT_EQ(maximum, -1);
    EXPECT_EQ(line, "2 of 2 files deleted.");
    EXPECT_FALSE(operations.CanBringBack());
    EXPECT_EQ(fakes.loop.HourglassDepth(), 0);
    EXPECT_GT(fakes.loop.HourglassBegins(), 0);
}

TEST_F(FileOperationTest, NoEndsADelete)
{
    fakes.dialogs.Answer(BoxAnswer::No);
    operations.FileOperation(kDeleteFiles);
    EXPECT_TRUE(fakes.files.calls.isEmpty());
    EXPECT_EQ(refreshed, 0);
    EXPECT_EQ(line, "");
}

TEST_F(FileOperationTest, ADeleteOfNothingAsksAndScansAgain)
{
    flags = {false, false, false};
    fakes.dialogs.Answer(BoxAnswer::Yes);
    operations.FileOperation(kDeleteFiles);
    EXPECT_EQ(fakes.dialogs.Boxes().size(), 1);
    EXPECT_TRUE(fakes.files.calls.isEmpty());
    EXPECT_EQ(refreshed, 1);
}

TEST_F(FileOperationTest, ACopyGoesToThePickedFolderAndScansNothing)
{
    operations.FileOperation(kCopyFiles);
    EXPECT_EQ(captions, QStringList("Copy File(s) to..."));
    EXPECT_EQ(fakes.files.calls, (QStringList{"copy /p/a.jpg /t/a.jpg", "copy /p/c.jpg /t/c.jpg"}));
    EXPECT_EQ(refreshed, 0);
    EXPECT_EQ(session.browsePath, "/t/");
    EXPECT_EQ(line, "2 of 2 files copied.");
}

TEST_F(FileOperationTest, ACancelOfTheFolderPickSetsBrowsePathToHome)
{
    picked.clear();
    for (const qint16 op : {kCopyFiles, kMoveFiles}) {
        session.browsePath = "/start/";
        operations.FileOperation(op);
        EXPECT_EQ(session.browsePath, "/home/");
    }
    EXPECT_TRUE(fakes.files.calls.isEmpty());
    EXPECT_EQ(refreshed, 0);
}

TEST_F(FileOperationTest, AMoveWhoseCopyFailsEndsInTheTrashAndComesBack)
{
    fakes.files.failCopy.insert("/p/a.jpg");
    operations.FileOperation(kMoveFiles);
    EXPECT_EQ(captions, QStringList("Move File(s) to..."));
    EXPECT_EQ(refreshed, 1);
    EXPECT_FALSE(Left().contains("/p/a.jpg"));
    EXPECT_TRUE(Left().contains("/t/c.jpg"));
    EXPECT_EQ(line,
              "1 of 2 files moved. 1 file went to the trash instead. Ctrl+Z brings it back. First "
              "failed: The disk is full.");
    operations.BringBack();
    EXPECT_TRUE(Left().contains("/p/a.jpg"));
    EXPECT_EQ(line, "1 of 1 file brought back from the trash.");
}

TEST_F(FileOperationTest, WithoutATrashAFileThatCouldNotBeCopiedStays)
{
    fakes.files.failCopy.insert("/p/a.jpg");
    fakes.files.failTrash.insert("/p/a.jpg");
    operations.FileOperation(kMoveFiles);
    EXPECT_TRUE(Left().contains("/p/a.jpg"));
    EXPECT_EQ(line, "1 of 2 files moved. First failed: The disk is full.");
}

TEST_F(FileOperationTest, AMoveIntoTheFolderItselfEndsInTheTrash)
{
    picked = "/p/";
    flags = {true, false, false};
    operations.FileOperation(kMoveFiles);
    EXPECT_FALSE(Left().contains("/p/a.jpg"));
    EXPECT_TRUE(operations.CanBringBack());
}

TEST_F(FileOperationTest, ACopyIntoTheFolderItselfChangesNothing)
{
    picked = "/p/";
    const QStringList before = Left();
    operations.FileOperation(kCopyFiles);
    EXPECT_EQ(Left(), before);
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
    EXPECT_TRUE(line.startsWith("0 of 2 files copied. First failed: "));
}

TEST_F(FileOperationTest, ASourceThatCannotBeRemovedStaysWhenItsCopyStands)
{
    fakes.files.failDelete.insert("/p/a.jpg");
    operations.FileOperation(kMoveFiles);
    EXPECT_TRUE(Left().contains("/p/a.jpg"));
    EXPECT_TRUE(Left().contains("/t/a.jpg"));
    EXPECT_EQ(line, "1 of 2 files moved. First failed: It is write-protected.");
}

TEST_F(FileOperationTest, TwoFilesOfOneNameDoNotReplaceEachOther)
{
    session.lbFilTiffs = {"/p/x/a.jpg", "/p/y/a.jpg"};
    fakes.files.files = {{"/p/x/a.jpg", "one"}, {"/p/y/a.jpg", "two"}};
    flags = {true, true};
    operations.FileOperation(kMoveFiles);
    EXPECT_EQ(fakes.files.files.value("/t/a.jpg"), "one");
    EXPECT_EQ(fakes.files.files.size(), 2); // the other is in the trash
    EXPECT_TRUE(operations.CanBringBack());
}

TEST_F(FileOperationTest, NothingThatHappensMeanwhileChangesTheSet)
{
    fakes.files.before = [this] { session.lbFilTiffs.clear(); };
    operations.FileOperation(kCopyFiles);
    EXPECT_EQ(fakes.files.calls.size(), 2);
}

TEST_F(FileOperationTest, AFileThatStandsThereTwiceIsTakenOnce)
{
    session.lbFilTiffs = {"/p/a.jpg", "/p/a.jpg"};
    flags = {true, true};
    fakes.dialogs.Answer(BoxAnswer::Yes);
    operations.FileOperation(kDeleteFiles);
    EXPECT_EQ(line, "1 of 1 file deleted.");
}

TEST_F(FileOperationTest, PathsJoinedToAFolderWithoutASeparatorAreLeftAlone)
{
    session.gsPath = "/p";
    session.lbFilTiffs = {"/pa.jpg", "/p/a.jpg"};
    fakes.files.files.insert("/pa.jpg", "another's");
    flags = {true, true};
    fakes.dialogs.Answer(BoxAnswer::Yes);
    operations.FileOperation(kDeleteFiles);
    EXPECT_EQ(fakes.files.calls, QStringList("delete /p/a.jpg"));
}

TEST_F(FileOperationTest, AProgramIsPickedAndACancelFails)
{
    session.exePath = "/usr/bin";
    picked = "/usr/bin/gimp/";
    EXPECT_EQ(operations.FileOperation(kPickProgram), "/usr/bin/gimp");
    EXPECT_EQ(captions, QStringList("Select Custom Tool Path..."));
    EXPECT_EQ(session.exePath, "/usr/bin");
    picked.clear();
    EXPECT_EQ(FailureOf([&] { operations.FileOperation(kPickProgram); }), kFailureGeneral);
}

TEST_F(FileOperationTest, ACodeWithoutAnOperationDoesNothing)
{
    EXPECT_EQ(operations.FileOperation(5), "");
    EXPECT_TRUE(fakes.files.calls.isEmpty());
    EXPECT_EQ(refreshed, 0);
    EXPECT_EQ(maximumInWalk, 2);
    EXPECT_TRUE(captions.isEmpty());
}

TEST_F(FileOperationTest, TheProgressOfOneFileGoesToOne)
{
    session.lbFilTiffs = {"/p/a.jpg"};
    operations.FileOperation(kCopyFiles);
    EXPECT_EQ(maximumInWalk, 1);
}

TEST_F(FileOperationTest, ARenameChangesTheEntryOfTheList)
{
    session.gsFileName = "/p/b.jpg";
    session.gImageListIndex = 1;
    newName = "/p/new.jpg";
    operations.FileOperation(kRenameFile);
    EXPECT_EQ(session.gsFileName, "/p/new.jpg");
    EXPECT_EQ(session.lbFilTiffs.at(1), "/p/new.jpg");
    ASSERT_EQ(renamed.size(), 1);
    EXPECT_EQ(renamed[0].first, 1);
    EXPECT_EQ(refreshed, 0);
    EXPECT_EQ(maximumInWalk, -1);
}

TEST_F(FileOperationTest, AnEmptyNameEndsARename)
{
    session.gsFileName = "/p/b.jpg";
    operations.FileOperation(kRenameFile);
    EXPECT_TRUE(fakes.files.calls.isEmpty());
    EXPECT_EQ(session.gsFileName, "/p/b.jpg");
}

TEST_F(FileOperationTest, ARenameNeverReplacesSilently)
{
    session.gsFileName = "/p/b.jpg";
    session.gImageListIndex = 1;
    newName = "/p/c.jpg";
    fakes.dialogs.Answer(BoxAnswer::No);
    operations.FileOperation(kRenameFile);
    EXPECT_EQ(session.gsFileName, "/p/b.jpg");
    EXPECT_EQ(session.lbFilTiffs.at(1), "/p/b.jpg");
    EXPECT_TRUE(fakes.files.calls.isEmpty());
    fakes.dialogs.Answer(BoxAnswer::Yes);
    operations.FileOperation(kRenameFile);
    EXPECT_EQ(fakes.files.files.value("/p/c.jpg"), "b.jpg");
    EXPECT_EQ(session.gsFileName, "/p/c.jpg");
}

TEST_F(FileOperationTest, ARenameThatFailsChangesNothing)
{
    session.gsFileName = "/p/b.jpg";
    session.gImageListIndex = 1;
    newName = "/p/new.jpg";
    fakes.files.failRename.insert("/p/b.jpg");
    operations.FileOperation(kRenameFile);
    EXPECT_EQ(session.gsFileName, "/p/b.jpg");
    EXPECT_EQ(session.lbFilTiffs.at(1), "/p/b.jpg");
    EXPECT_EQ(line, "You have no permission.");
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
}

TEST_F(FileOperationTest, ACurrentFileOfAnotherFolderIsNotRenamed)
{
    session.gsFileName = "/other/b.jpg";
    newName = "/p/b2.jpg";
    operations.FileOperation(kRenameFile);
    EXPECT_TRUE(fakes.files.calls.isEmpty());
}

TEST_F(FileOperationTest, AFileOfASubFolderGetsItsNameWhereItStands)
{
    fakes.files.files.insert("/p/sub/d.jpg", "d");
    session.lbFilTiffs.append("/p/sub/d.jpg");
    session.gsFileName = "/p/sub/d.jpg";
    session.gImageListIndex = 3;
    newName = "/p/sub/e.jpg";
    operations.FileOperation(kRenameFile);
    EXPECT_EQ(fakes.files.calls.value(0), "rename /p/sub/d.jpg /p/sub/e.jpg");
    EXPECT_EQ(session.lbFilTiffs.at(3), "/p/sub/e.jpg");
    fakes.files.calls.clear();
    newName = "/p/f.jpg"; // a rename moves nothing
    operations.FileOperation(kRenameFile);
    EXPECT_TRUE(fakes.files.calls.isEmpty());
    EXPECT_TRUE(line.contains("keeps its name")) << line.toStdString();
}

TEST_F(FileOperationTest, TheNextFileInTheShownOrderIsCurrentAfterTheDeleteKey)
{
    // By size, say; the scan afterwards has the order of the folder again.
    session.lbFilTiffs = {"/p/c.jpg", "/p/b.jpg", "/p/a.jpg"};
    flags = {true, false, false};
    afterScan = {"/p/a.jpg", "/p/b.jpg"};
    operations.TrashSelected();
    EXPECT_EQ(current, 1);
}

TEST_F(FileOperationTest, TheFileBeforeIsCurrentAfterTheDeleteKeyTookTheLastOnes)
{
    session.lbFilTiffs = {"/p/b.jpg", "/p/c.jpg", "/p/a.jpg"};
    flags = {false, true, true};
    afterScan = {"/p/0.jpg", "/p/b.jpg"};
    operations.TrashSelected();
    EXPECT_EQ(current, 1);
}

TEST_F(FileOperationTest, WhatTheScanNoLongerShowsIsNotMadeCurrentAfterTheDeleteKey)
{
    afterScan = {"/p/x.jpg", "/p/y.jpg"};
    operations.TrashSelected();
    EXPECT_EQ(current, -1); // the scan has chosen its first file
}

TEST_F(FileOperationTest, TheDeleteKeyMovesToTheTrashWithoutAsking)
{
    afterScan = {"/p/b.jpg"};
    operations.TrashSelected();
    EXPECT_TRUE(fakes.dialogs.Boxes().isEmpty());
    EXPECT_EQ(fakes.files.calls, (QStringList{"trash /p/a.jpg", "trash /p/c.jpg"}));
    EXPECT_EQ(refreshed, 1);
    EXPECT_EQ(current, 0);
    EXPECT_EQ(line, "2 of 2 files moved to the trash. Ctrl+Z brings them back.");
    operations.BringBack();
    EXPECT_TRUE(Left().contains("/p/a.jpg"));
    EXPECT_TRUE(Left().contains("/p/c.jpg"));
    EXPECT_EQ(line, "2 of 2 files brought back from the trash.");
    operations.BringBack();
    EXPECT_EQ(line, "There is nothing to bring back.");
}

} // namespace

} // namespace quillane
