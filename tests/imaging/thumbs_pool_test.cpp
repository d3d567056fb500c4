#include "imaging/thumbs/freedesktop_cache.h"
#include "imaging/thumbs/thumbnail_pool.h"
#include "platform/wait_for_events.h"
#include "thumbs_support.h"
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr int kPatience = 60'000; ///< milliseconds; only a fault takes so long

/// A folder of pictures, a pool, and what it has delivered.
class Pool : public testing::Test {
protected:
    struct Delivery {
        QString path;
        Thumbnail thumbnail;
    };

    QVector<QString> MakeFiles(const QByteArray& name, int count, const QByteArray& content) const
    {
        QVector<QString> paths;
        for (int i = 0; i < count; ++i) {
            const QByteArray leaf = name + QByteArray::number(i) + ".jpg";
            mFolder.Write(leaf, content);
            making::MakeOld(mFolder, leaf);
            paths.append(mFolder.Path(leaf));
        }
        return paths;
    }
    /// A picture that takes a while: a hundred milliseconds or more.
    static const QByteArray& SlowPicture()
    {
        static const QByteArray slow = [] {
            making::JpegMake make;
            make.width = 5000;
            make.height = 4000;
            make.progressive = true;
            return making::MakeJpeg(make);
        }();
        return slow;
    }
    void Listen(ThumbnailPool& pool)
    {
        pool.OnDone([this](const QString& path, const Thumbnail& thumbnail) {
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            mDelivered.append({path, thumbnail});
        });
    }
    template <typename Condition> static bool WaitUntil(Condition&& condition)
    {
        const QDeadlineTimer deadline(kPatience);
        while (!condition() && !deadline.hasExpired()) {
            WaitForThreadEvents(5);
        }
        return condition();
    }
    static bool WaitUntilIdle(const ThumbnailPool& pool)
    {
        return WaitUntil([&] { return pool.IsIdle(); });
    }
    QStringList DeliveredPaths() const
    {
        QStringList paths;
        for (const Delivery& delivery : mDelivered) {
            paths.append(delivery.path);
        }
        paths.sort();
        return paths;
    }

    TempFolder mFolder;
    QVector<Delivery> mDelivered;
};

} // namespace

TEST_F(Pool, DeliversEveryWishOnceOnTheWindowThread)
{
    QVector<QString> paths = MakeFiles("a", 100, making::MakeJpeg({}));
    paths.append(paths.first()); // a file may stand in two cells
    paths.append(mFolder.Path("missing.jpg"));
    ThumbnailPool pool({});
    EXPECT_TRUE(pool.IsIdle());
    Listen(pool);
    pool.Want(paths, {40, 40});
    EXPECT_FALSE(pool.IsIdle());
    ASSERT_TRUE(WaitUntilIdle(pool));

    QStringList expected(paths.begin(), paths.end());
    expected.sort();
    expected.removeDuplicates();
    EXPECT_EQ(DeliveredPaths(), expected);
    for (const Delivery& delivery : mDelivered) {
        const bool missing = delivery.path.endsWith("missing.jpg");
        EXPECT_EQ(delivery.thumbnail.image.isNull(), missing);
        EXPECT_EQ(delivery.thumbnail.failure.isEmpty(), !missing);
        EXPECT_TRUE(delivery.thumbnail.forCache.isNull());
    }
}

TEST_F(Pool, NewWishesTakeThePlaceOfOldOnes)
{
    const QVector<QString> old = MakeFiles("old", 60, SlowPicture());
    const QVector<QString> wanted = MakeFiles("new", 20, making::MakeJpeg({}));
    ThumbnailPool pool({});
    Listen(pool);
    pool.Want(old, {100, 100});
    pool.Want(wanted, {100, 100});
    ASSERT_TRUE(WaitUntilIdle(pool));
    const QStringList paths = DeliveredPaths();
    for (const QString& path : wanted) {
        EXPECT_EQ(paths.count(path), 1);
    }
    EXPECT_LT(paths.size(), old.size() + wanted.size());
}

TEST_F(Pool, WhatIsStillWantedIsNotMadeTwice)
{
    const QVector<QString> paths = MakeFiles("a", 12, SlowPicture());
    ThumbnailPool pool({});
    Listen(pool);
    pool.Want(paths, {100, 100});
    ASSERT_TRUE(WaitUntil([&] { return mDelivered.size() >= 2; }));
    QVector<QString> rest;
    const QStringList done = DeliveredPaths();
    for (auto path = paths.crbegin(); path != paths.crend(); ++path) {
        if (!done.contains(*path)) {
            rest.append(*path);
        }
    }
    pool.Want(rest, {100, 100});
    ASSERT_TRUE(WaitUntilIdle(pool));
    EXPECT_EQ(DeliveredPaths().size(), paths.size());
    QStringList once = DeliveredPaths();
    EXPECT_EQ(once.removeDuplicates(), 0);
}

TEST_F(Pool, ClearDropsEverything)
{
    ThumbnailPool pool({});
    Listen(pool);
    pool.Want(MakeFiles("a", 60, SlowPicture()), {100, 100});
    pool.Clear();
    ASSERT_TRUE(WaitUntilIdle(pool));
    EXPECT_TRUE(mDelivered.isEmpty());
}

TEST_F(Pool, AnotherBoxDropsWhatWasMadeForTheOldOne)
{
    const QVector<QString> paths = MakeFiles("a", 50, making::MakeJpeg({}));
    ThumbnailPool pool({});
    Listen(pool);
    pool.Want(paths, {40, 40});
    pool.Want(paths, {20, 20});
    ASSERT_TRUE(WaitUntilIdle(pool));
    EXPECT_EQ(mDelivered.size(), paths.size());
    for (const Delivery& delivery : mDelivered) {
        EXPECT_EQ(delivery.thumbnail.image.width(), 20);
    }
}

TEST_F(Pool, EndsWhileItIsBusy)
{
    {
        ThumbnailPool pool({});
        Listen(pool);
        pool.Want(MakeFiles("a", 60, SlowPicture()), {100, 100});
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(mDelivered.isEmpty());
}

TEST_F(Pool, AWishMayBeMadeWhileOneIsHandedOver)
{
    const QVector<QString> paths = MakeFiles("a", 30, making::MakeJpeg({}));
    ThumbnailPool pool({});
    qsizetype next = 0;
    pool.OnDone([&](const QString& path, const Thumbnail&) {
        EXPECT_EQ(path, paths.at(next));
        if (++next < paths.size()) {
            pool.Want({paths.at(next)}, {40, 40});
        }
    });
    pool.Want({paths.first()}, {40, 40});
    ASSERT_TRUE(WaitUntil([&] { return next == paths.size(); }));
}

TEST_F(Pool, FillsTheCacheWithWhatTookLong)
{
    const QVector<QString> slow = MakeFiles("slow", 3, SlowPicture());
    const QString cache = mFolder.Path("cache");
    {
        ThumbnailPool pool(cache);
        Listen(pool);
        pool.Want(slow, {100, 100});
        ASSERT_TRUE(WaitUntilIdle(pool));
    }
    for (const QString& path : slow) {
        EXPECT_FALSE(ReadCachedThumbnail(cache, path, StatPath(path), {128, 128}).isNull());
    }
    mDelivered.clear();
    ThumbnailPool pool(cache);
    Listen(pool);
    pool.Want(slow, {100, 100});
    ASSERT_TRUE(WaitUntilIdle(pool));
    ASSERT_EQ(mDelivered.size(), 3);
    for (const Delivery& delivery : mDelivered) {
        EXPECT_EQ(delivery.thumbnail.from, ThumbnailFrom::Cache);
        EXPECT_EQ(delivery.thumbnail.image.size(), QSize(100, 80));
    }
}

TEST_F(Pool, AddsNothingToACacheThatIsFull)
{
    mFolder.MakeFolder("cache");
    mFolder.MakeFolder("cache/x-large");
    mFolder.Write("cache/x-large/other.png");
    // A file of that size without content takes no room on the disk.
    ASSERT_EQ(truncate(mFolder.Bytes("cache/x-large/other.png").constData(), 600 << 20), 0);
    ThumbnailPool pool(mFolder.Path("cache"));
    Listen(pool);
    pool.Want(MakeFiles("slow", 1, SlowPicture()), {100, 100});
    ASSERT_TRUE(WaitUntilIdle(pool));
    EXPECT_EQ(mDelivered.size(), 1);
    EXPECT_EQ(StatPath(mFolder.Path("cache/normal")).type, FileType::Missing);
}

TEST_F(Pool, TakesVeryLongLists)
{
    QVector<QString> wishes(200'000, mFolder.Path("missing.jpg"));
    wishes.prepend(MakeFiles("a", 1, making::MakeJpeg({})).first());
    ThumbnailPool pool({});
    Listen(pool);
    for (int i = 0; i < 20; ++i) {
        pool.Want(wishes, {40, 40});
    }
    ASSERT_TRUE(WaitUntil([&] { return mDelivered.size() >= 2; }));
    pool.Clear();
    ASSERT_TRUE(WaitUntilIdle(pool));
}

} // namespace quillane
