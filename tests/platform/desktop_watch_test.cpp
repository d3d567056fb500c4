#include "platform/desktop/desktop_watch.h"

#include "core/temp_folder.h"
#include "platform/program_log.h"
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

bool WaitForTold(const int& told, int times)
{
    return QTest::qWaitFor([&] { return told >= times; }, kTestPatience);
}

class WatchTest : public testing::Test {
protected:
    WatchTest()
    {
        watch.OnChange([this] { ++told; });
    }

    TempFolder folder;
    DesktopWatch watch;
    int told = 0;
};

struct FolderChange {
    const char* name;
    std::function<void(const TempFolder&)> change;
};

class EveryChange : public WatchTest, public testing::WithParamInterface<FolderChange> { };

TEST_P(EveryChange, IsTold)
{
    folder.Write("there.jpg");
    watch.Watch(folder.Path());
    GetParam().change(folder);
    EXPECT_TRUE(WaitForTold(told, 1));
}

INSTANTIATE_TEST_SUITE_P(
    Watch, EveryChange,
    testing::Values(
        FolderChange{"NewFile", [](const TempFolder& in) { in.Write("new.jpg"); }},
        FolderChange{"NewFolder", [](const TempFolder& in) { in.MakeFolder("new"); }},
        FolderChange{"NewLink", [](const TempFolder& in) { in.Link("there.jpg", "link.jpg"); }},
        FolderChange{"Rewritten", [](const TempFolder& in) { in.Write("there.jpg", "other"); }},
        FolderChange{"Mode", [](const TempFolder& in) { in.Chmod("there.jpg", 0600); }},
        FolderChange{"Removed",
                     [](const TempFolder& in) { unlink(in.Bytes("there.jpg").constData()); }},
        FolderChange{"Renamed",
                     [](const TempFolder& in) {
                         rename(in.Bytes("there.jpg").constData(),
                                in.Bytes("other.jpg").constData());
                     }},
        FolderChange{
            "ReplacedByRename",
            [](const TempFolder& in) { WriteWholeFile(in.Path("there.jpg"), "replaced"); }},
        FolderChange{"OddName", [](const TempFolder& in) { in.Write("\xff \n.jpg"); }}),
    [](const auto& which) { return which.param.name; });

TEST_F(WatchTest, ManyChangesAreToldOnce)
{
    watch.Watch(folder.Path());
    for (int i = 0; i < 500; ++i) {
        folder.Write("picture" + QByteArray::number(i) + ".jpg");
    }
    ASSERT_TRUE(WaitForTold(told, 1));
    folder.Write("later.jpg");
    ASSERT_TRUE(WaitForTold(told, 2));
    EXPECT_EQ(told, 2);
}

TEST_F(WatchTest, OnlyTheLatestFolderIsWatched)
{
    const TempFolder second;
    watch.Watch(folder.Path());
    watch.Watch(second.Path());
    DesktopWatch control;
    int controlTold = 0;
    control.OnChange([&] { ++controlTold; });
    control.Watch(folder.Path());
    for (int round = 1; round <= 2; ++round) {
        folder.Write("a" + QByteArray::number(round));
        ASSERT_TRUE(WaitForTold(controlTold, round));
    }
    EXPECT_EQ(told, 0);
    second.Write("b");
    EXPECT_TRUE(WaitForTold(told, 1));
}

TEST_F(WatchTest, AChangeNotYetToldIsDroppedWithItsFolder)
{
    const TempFolder second;
    watch.Watch(folder.Path());
    folder.Write("a");
    watch.Watch(second.Path());
    DesktopWatch control;
    int controlTold = 0;
    control.OnChange([&] { ++controlTold; });
    control.Watch(folder.Path());
    for (int round = 1; round <= 2; ++round) {
        folder.Write("b" + QByteArray::number(round));
        ASSERT_TRUE(WaitForTold(controlTold, round));
    }
    EXPECT_EQ(told, 0);
}

TEST_F(WatchTest, EmptyPathWatchesNothing)
{
    watch.Watch(folder.Path());
    watch.Watch({});
    DesktopWatch control;
    int controlTold = 0;
    control.OnChange([&] { ++controlTold; });
    control.Watch(folder.Path());
    for (int round = 1; round <= 2; ++round) {
        folder.Write("a" + QByteArray::number(round));
        ASSERT_TRUE(WaitForTold(controlTold, round));
    }
    EXPECT_EQ(told, 0);
}

TEST_F(WatchTest, ReadingAFileIsNoChange)
{
    folder.Write("a.jpg", "content");
    watch.Watch(folder.Path());
    EXPECT_EQ(folder.Content("a.jpg"), "content");
    EXPECT_EQ(folder.Entries(), QStringList("a.jpg"));
    const TempFolder other;
    DesktopWatch control;
    int controlTold = 0;
    control.OnChange([&] { ++controlTold; });
    control.Watch(other.Path());
    for (int round = 1; round <= 2; ++round) {
        other.Write("a" + QByteArray::number(round));
        ASSERT_TRUE(WaitForTold(controlTold, round));
    }
    EXPECT_EQ(told, 0);
}

TEST_F(WatchTest, VanishedFolderTellsOnceAndAnotherCanBeWatched)
{
    folder.MakeFolder("gone");
    watch.Watch(folder.Path("gone"));
    ASSERT_EQ(rmdir(folder.Bytes("gone").constData()), 0);
    ASSERT_TRUE(WaitForTold(told, 1));
    watch.Watch(folder.Path());
    folder.Write("a");
    ASSERT_TRUE(WaitForTold(told, 2));
    EXPECT_EQ(told, 2);
}

TEST_F(WatchTest, RenamedFolderTells)
{
    folder.MakeFolder("old");
    watch.Watch(folder.Path("old"));
    ASSERT_EQ(rename(folder.Bytes("old").constData(), folder.Bytes("new").constData()), 0);
    EXPECT_TRUE(WaitForTold(told, 1));
}

TEST_F(WatchTest, FolderNamesAreBytes)
{
    const QByteArray name = "Greek \xce\xb1 \xff\xfe \n folder";
    folder.MakeFolder(name);
    watch.Watch(folder.Path(name));
    folder.Write(name + "/a.jpg");
    EXPECT_TRUE(WaitForTold(told, 1));
}

TEST_F(WatchTest, WhatIsNoFolderIsPassedOver)
{
    folder.Write("file");
    watch.Watch(folder.Path("missing"));
    watch.Watch(folder.Path("file"));
    watch.Watch(folder.Path());
    folder.Write("a");
    EXPECT_TRUE(WaitForTold(told, 1));
}

TEST_F(WatchTest, TheListenerMayReplaceItselfAndWatchAnew)
{
    watch.Watch(folder.Path());
    int second = 0;
    watch.OnChange([&] {
        watch.OnChange([&] { ++second; });
        watch.Watch(folder.Path());
        folder.Write("b");
    });
    folder.Write("a");
    EXPECT_TRUE(WaitForTold(second, 1));
    EXPECT_EQ(told, 0);
}

TEST_F(WatchTest, ChangesWithoutAListenerDoNoHarm)
{
    watch.OnChange(nullptr);
    watch.Watch(folder.Path());
    folder.Write("a");
    DesktopWatch control;
    int controlTold = 0;
    control.OnChange([&] { ++controlTold; });
    control.Watch(folder.Path());
    folder.Write("b");
    EXPECT_TRUE(WaitForTold(controlTold, 1));
}

} // namespace quillane
