#include "locator/search_run.h"

#include "core/temp_folder.h"
#include "core/unprivileged.h"
#include "platform/wait_for_events.h"

#include <QElapsedTimer>
#include <algorithm>
#include <gtest/gtest.h>

namespace quillane {
namespace {

class LocatorSearchTest : public testing::Test {
protected:
    LocatorSearchTest()
    {
        search = std::make_unique<LocatorSearch>();
        Listen();
    }
    void Listen()
    {
        QObject::connect(search.get(), &LocatorSearch::folderShown, &context,
                         [this](const QString& path) { shown.append(path); });
        QObject::connect(search.get(), &LocatorSearch::found, &context,
                         [this](const std::vector<LocatorSearch::Batch>& batches) {
                             qsizetype files = 0;
                             for (const auto& batch : batches) {
                                 for (const FoundFile& file : batch.files) {
                                     rows.append(batch.folder + file.name);
                                     ++files;
                                 }
                             }
                             mostAtOnce = std::max(mostAtOnce, files);
                         });
        QObject::connect(search.get(), &LocatorSearch::ended, &context,
                         [this](const FindResult& result) { ends.push_back(result); });
        QObject::connect(search.get(), &LocatorSearch::failed, &context,
                         [this](const QString& words) { failures.append(words); });
    }
    void UntilRested() const
    {
        QElapsedTimer timer;
        timer.start();
        while (search->IsRunning() && timer.elapsed() < 30'000) {
            WaitForThreadEvents(20);
        }
        EXPECT_FALSE(search->IsRunning());
    }

    TempFolder folder;
    QObject context;
    std::unique_ptr<LocatorSearch> search;
    QStringList shown, rows, failures;
    qsizetype mostAtOnce = 0; ///< files told in one go
    std::vector<FindResult> ends;
};

TEST_F(LocatorSearchTest, TellsWhatItFindsAndThenItsEnd)
{
    folder.MakeFolder("sub");
    folder.Write("x1");
    folder.Write("sub/x2");
    search->Start(folder.Path(), QStringLiteral("x*"), true);
    EXPECT_TRUE(search->IsRunning());
    EXPECT_TRUE(rows.isEmpty()); // nothing is told but from the message loop
    UntilRested();
    EXPECT_EQ(rows, QStringList({folder.Path("x1"), folder.Path("sub/x2")}));
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(ends[0].rows, 2);
    EXPECT_FALSE(ends[0].stopped);
    EXPECT_EQ(shown.last(), folder.Path("sub/"));
}

TEST_F(LocatorSearchTest, ANewSearchTakesThePlaceOfTheOneThatRuns)
{
    folder.Write("old one");
    folder.Write("new one");
    search->Start(folder.Path(), QStringLiteral("old*"), true);
    search->Start(folder.Path(), QStringLiteral("new*"), true);
    UntilRested();
    EXPECT_EQ(rows, QStringList{folder.Path("new one")});
    EXPECT_EQ(ends.size(), 1U);
}

TEST_F(LocatorSearchTest, AStopEndsItAtOnceAndOnce)
{
    folder.Write("x1");
    search->Start(folder.Path(), QStringLiteral("x*"), true);
    search->Stop();
    EXPECT_FALSE(search->IsRunning());
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_TRUE(ends[0].stopped);
    const QStringList before = rows;
    search->Stop();
    for (int i = 0; i < 10; ++i) {
        WaitForThreadEvents(10);
    }
    EXPECT_EQ(ends.size(), 1U);
    EXPECT_EQ(rows, before);
}

TEST_F(LocatorSearchTest, ManyFilesOfOneFolderAreToldInParts)
{
    for (int i = 0; i < 4500; ++i) {
        folder.Write("x" + QByteArray::number(i).rightJustified(5, '0'), {});
    }
    search->Start(folder.Path(), QStringLiteral("x*"), true);
    UntilRested();
    ASSERT_EQ(rows.size(), 4500);
    EXPECT_EQ(rows.first(), folder.Path("x00000"));
    EXPECT_EQ(rows.last(), folder.Path("x04499"));
    EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end()));
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_EQ(ends[0].rows, 4500);
    EXPECT_LE(mostAtOnce, 2000);

    // Stopped by its listener at the first part: that part and at most one more are told.
    rows.clear();
    QObject::connect(search.get(), &LocatorSearch::found, &context, [this] { search->Stop(); });
    search->Start(folder.Path(), QStringLiteral("x*"), true);
    UntilRested();
    EXPECT_LE(rows.size(), 2 * mostAtOnce);
    ASSERT_EQ(ends.size(), 2U);
    EXPECT_TRUE(ends[1].stopped);
}

TEST_F(LocatorSearchTest, AFailureIsToldAfterTheRowsBeforeIt)
{
    for (int i = 0; i < 2500; ++i) {
        folder.Write("x" + QByteArray::number(i), {});
    }
    folder.MakeFolder("locked");
    folder.Chmod("locked", 0);
    QObject::connect(search.get(), &LocatorSearch::failed, &context,
                     [this] { EXPECT_EQ(rows.size(), 2500); });
    {
        const Unprivileged unprivileged;
        search->Start(folder.Path(), QStringLiteral("x*"), true);
        UntilRested();
    }
    folder.Chmod("locked", 0755);
    EXPECT_EQ(failures.size(), 1);
    EXPECT_TRUE(ends.empty());
}

TEST_F(LocatorSearchTest, AFailureIsToldInWords)
{
    search->Start(folder.Path("none"), QStringLiteral("x*"), true);
    UntilRested();
    ASSERT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures[0].contains(QStringLiteral("none"))) << failures[0].toStdString();
    EXPECT_TRUE(ends.empty());
}

TEST_F(LocatorSearchTest, ItMayGoAwayWhileItRuns)
{
    for (int i = 0; i < 50; ++i) {
        folder.MakeFolder("sub" + QByteArray::number(i));
    }
    search->Start(folder.Path(), QStringLiteral("*"), true);
    search.reset();
    WaitForThreadEvents(10);
    EXPECT_TRUE(ends.empty());
}

TEST_F(LocatorSearchTest, TheListenerMayEndItWhileItTells)
{
    folder.Write("x1");
    QObject::connect(search.get(), &LocatorSearch::found, &context, [this] { search->Stop(); });
    QObject::connect(search.get(), &LocatorSearch::folderShown, &context,
                     [this] { EXPECT_TRUE(search->IsRunning()); });
    search->Start(folder.Path(), QStringLiteral("x*"), true);
    UntilRested();
    ASSERT_EQ(ends.size(), 1U);
    EXPECT_TRUE(ends[0].stopped);
}

} // namespace
} // namespace quillane
