#include "search/search_ahead.h"

#include "core/failure.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <algorithm>
#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <new>
#include <set>
#include <thread>

namespace quillane {

namespace {

QStringList Numbered(int count)
{
    QStringList paths;
    paths.reserve(count);
    for (int i = 0; i < count; ++i) {
        paths.append(QString::number(i));
    }
    return paths;
}

bool NextOf(SearchAhead& ahead)
{
    for (;;) {
        if (const std::optional<bool> answer = ahead.Next()) {
            return *answer;
        }
    }
}

} // namespace

TEST(SearchAhead, AnswersComeInTheOrderOfTheFiles)
{
    SearchAhead ahead(Numbered(1000), [](const QString& path) {
        if (path.toInt() % 7 == 0) {
            std::this_thread::yield();
        }
        return path.toInt() % 3 == 0;
    });
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(NextOf(ahead), i % 3 == 0) << i;
    }
    EXPECT_THROW(ahead.Next(), Failure);
}

TEST(SearchAhead, EveryFileIsTestedOnce)
{
    std::mutex mutex;
    std::multiset<QString> seen;
    {
        SearchAhead ahead(Numbered(100), [&](const QString& path) {
            const std::lock_guard lock(mutex);
            seen.insert(path);
            return true;
        });
        for (int i = 0; i < 100; ++i) {
            EXPECT_TRUE(NextOf(ahead));
        }
    }
    EXPECT_EQ(seen.size(), 100u);
    EXPECT_EQ(std::set<QString>(seen.begin(), seen.end()).size(), 100u);
}

TEST(SearchAhead, NoFilesHaveNoAnswers)
{
    SearchAhead ahead({}, [](const QString&) { return true; });
    EXPECT_THROW(ahead.Next(), Failure);
}

TEST(SearchAhead, AFailureComesOutAtItsFileAndTheRestGoesOn)
{
    SearchAhead ahead(Numbered(40), [](const QString& path) {
        if (path == QStringLiteral("20")) {
            throw Failure(kFailureDenied, QStringLiteral("Not this one."));
        }
        return true;
    });
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(NextOf(ahead));
    }
    try {
        NextOf(ahead);
        ADD_FAILURE() << "it passed";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), kFailureDenied);
    }
    EXPECT_TRUE(NextOf(ahead));
}

TEST(SearchAhead, WhatIsNotTestedYetIsDroppedAtTheEnd)
{
    constexpr int kMany = 1'000'000;
    const auto tested = std::make_shared<std::atomic<int>>(0);
    {
        // Minutes of work, were it all done.
        SearchAhead ahead(
            Numbered(kMany), [tested, content = QByteArray(200'000, 'x')](const QString&) {
                ++*tested;
                return !QCryptographicHash::hash(content, QCryptographicHash::Sha256).isEmpty();
            });
        EXPECT_TRUE(NextOf(ahead));
    }
    EXPECT_GT(*tested, 0);
    EXPECT_LT(*tested, kMany);
}

TEST(SearchAhead, ItsEndDoesNotWaitForAFileThatDoesNotAnswer)
{
    std::promise<void> answer;
    const auto stuck = std::make_shared<std::atomic<int>>(0);
    {
        SearchAhead ahead(Numbered(1000),
                          [stuck, disk = answer.get_future().share()](const QString&) {
                              ++*stuck;
                              disk.wait();
                              return true;
                          });
        // Nothing comes, and asking for it does not wait for ever either.
        EXPECT_FALSE(ahead.Next());
    }
    answer.set_value();
    EXPECT_LE(*stuck, int(std::max(1u, std::thread::hardware_concurrency())));
}

TEST(SearchAhead, WhatIsNoFailureComesOutToo)
{
    SearchAhead ahead(Numbered(3), [](const QString&) -> bool { throw std::bad_alloc(); });
    EXPECT_THROW(NextOf(ahead), std::bad_alloc);
}

} // namespace quillane
