#include "imaging/thumbs/thumbnail_pool.h"

#include "imaging/thumbs/freedesktop_cache.h"

#include <QSet>
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace quillane {

namespace {

constexpr qint64 kCacheSession = 96 << 20; // bytes written to the cache in one session
constexpr qint64 kCacheTotal = 512 << 20;  // bytes in the cache above which nothing is written
constexpr qint64 kMostToKeep = 16 << 20;   // bytes of pixels waiting to be written to the cache
constexpr std::chrono::milliseconds kHandOverTime{8}; // on the window thread at a time

/// Names in a folder differ near their end: one look there settles most comparisons.
bool SamePoolPath(const QString& a, const QString& b)
{
    constexpr qsizetype kFromEnd = 5; // before the point of an extension of three letters
    return a.size() == b.size()
        && (a.size() < kFromEnd || a[a.size() - kFromEnd] == b[b.size() - kFromEnd]) && a == b;
}

} // namespace

struct ThumbnailPool::State {
    struct InFlight {
        QString path;
        bool listed = false; ///< only while wishes change
        std::atomic<bool> cancelled = false;
    };

    struct ToKeep {
        QString path;
        FileStat stat;
        QImage image;
        QSize picture;
        QSize box;
    };

    QString cacheFolder;
    ThumbnailPool* owner = nullptr; ///< only for posting; cleared before it goes
    Done done;

    std::mutex mutex;
    std::condition_variable work;
    QVector<QString> wanted; ///< shared with the caller, not copied
    qsizetype next = 0;      ///< first wish that is not looked at
    QSet<QString> taken;     ///< of these wishes, and what was under way or ready before them
    QSize box;
    std::vector<std::shared_ptr<InFlight>> inFlight;
    std::deque<ToKeep> toKeep;
    qint64 toKeepBytes = 0;
    qint64 cacheLeft = kCacheSession; ///< bytes that may still be written
    bool cacheCounted = false;
    int keeping = 0; ///< threads that write to the cache
    struct Made {
        QString path;
        Thumbnail thumbnail;
    };
    std::deque<Made> made; ///< not handed over yet
    bool posted = false;
    bool stop = false;
    std::vector<std::thread> threads;

    void Run();
    bool HasWork() const { return next < wanted.size() || !toKeep.empty(); }
    /// The next wish that nobody is at; null when there is none.
    std::shared_ptr<InFlight> TakeWanted();
    void Make(const std::shared_ptr<InFlight>& job, std::unique_lock<std::mutex>& lock);
    void Keep(std::unique_lock<std::mutex>& lock);
    void Post();
    void HandOver();
};

void ThumbnailPool::State::Run()
{
    std::unique_lock lock(mutex);
    for (;;) {
        work.wait(lock, [this] { return stop || HasWork(); });
        if (stop) {
            return;
        }
        if (const std::shared_ptr<InFlight> job = TakeWanted()) {
            Make(job, lock);
        } else if (!toKeep.empty()) {
            Keep(lock);
        }
    }
}

std::shared_ptr<ThumbnailPool::State::InFlight> ThumbnailPool::State::TakeWanted()
{
    while (next < wanted.size()) {
        const QString path = wanted[next++];
        if (!taken.contains(path)) {
            taken.insert(path);
            const auto job = std::make_shared<InFlight>();
            job->path = path;
            inFlight.push_back(job);
            return job;
        }
    }
    return nullptr;
}

void ThumbnailPool::State::Make(const std::shared_ptr<InFlight>& job,
                                std::unique_lock<std::mutex>& lock)
{
    const QSize wantedBox = box;
    ThumbnailOptions options;
    options.cacheFolder = cacheFolder;
    options.cancelled = &job->cancelled;
    lock.unlock();
    Thumbnail thumbnail = MakeThumbnail(job->path, wantedBox, options);
    lock.lock();
    std::erase(inFlight, job);
    if (job->cancelled) {
        return;
    }
    const qint64 bytes = thumbnail.forCache.sizeInBytes();
    if (bytes > 0 && cacheLeft > 0 && toKeepBytes + bytes <= kMostToKeep) {
        toKeep.push_back(
            {job->path, thumbnail.stat, thumbnail.forCache, thumbnail.picture, wantedBox});
        toKeepBytes += bytes;
    }
    thumbnail.forCache = {};
    made.push_back({job->path, std::move(thumbnail)});
    Post();
}

void ThumbnailPool::State::Keep(std::unique_lock<std::mutex>& lock)
{
    const ToKeep one = std::move(toKeep.front());
    toKeep.pop_front();
    toKeepBytes -= one.image.sizeInBytes();
    if (cacheLeft <= 0) {
        return;
    }
    ++keeping;
    if (!cacheCounted) {
        cacheCounted = true;
        lock.unlock();
        const qint64 held = CachedThumbnailBytes(cacheFolder, kCacheTotal);
        lock.lock();
        cacheLeft = std::min(cacheLeft, kCacheTotal - held);
    }
    if (cacheLeft > 0) {
        lock.unlock();
        const qint64 bytes = WriteCachedThumbnail(cacheFolder, one.path, one.stat,
                                                  CacheSizeFor(one.box), one.image, one.picture);
        lock.lock();
        cacheLeft -= bytes;
    }
    --keeping;
}

void ThumbnailPool::State::Post()
{
    if (!posted && owner) {
        posted = true;
        QMetaObject::invokeMethod(
            owner, [this] { HandOver(); }, Qt::QueuedConnection);
    }
}

void ThumbnailPool::State::HandOver()
{
    const auto end = std::chrono::steady_clock::now() + kHandOverTime;
    std::unique_lock lock(mutex);
    posted = false;
    while (!made.empty()) {
        const Made one = std::move(made.front());
        made.pop_front();
        lock.unlock();
        if (done) {
            done(one.path, one.thumbnail);
        }
        lock.lock();
        if (!made.empty() && std::chrono::steady_clock::now() >= end) {
            Post();
            return;
        }
    }
}

ThumbnailPool::ThumbnailPool(QString cacheFolder, QObject* parent)
    : QObject(parent),
      mState(std::make_shared<State>())
{
    mState->cacheFolder = std::move(cacheFolder);
    mState->owner = this;
}

ThumbnailPool::~ThumbnailPool()
{
    {
        const std::lock_guard lock(mState->mutex);
        mState->stop = true;
        mState->owner = nullptr;
        for (const auto& job : mState->inFlight) {
            job->cancelled = true;
        }
    }
    mState->work.notify_all();
    for (std::thread& thread : mState->threads) {
        thread.join();
    }
}

void ThumbnailPool::Want(const QVector<QString>& paths, QSize box)
{
    const std::lock_guard lock(mState->mutex);
    if (mState->threads.empty() && !paths.isEmpty()) {
        const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
        for (unsigned i = 0; i < cores; ++i) {
            mState->threads.emplace_back([state = mState.get()] { state->Run(); });
        }
    }
    const bool sameBox = mState->box == box;
    mState->box = box;
    for (const auto& job : mState->inFlight) {
        job->listed = false;
    }
    for (qsizetype i = 0; i < paths.size() && sameBox && !mState->inFlight.empty(); ++i) {
        for (const auto& job : mState->inFlight) {
            job->listed = job->listed || SamePoolPath(paths[i], job->path);
        }
    }
    for (const auto& job : mState->inFlight) {
        job->cancelled = job->cancelled || !job->listed;
    }
    if (!sameBox) {
        mState->made.clear();
    }
    mState->wanted = paths;
    mState->next = 0;
    mState->taken.clear();
    for (const auto& job : mState->inFlight) {
        if (!job->cancelled) {
            mState->taken.insert(job->path);
        }
    }
    for (const State::Made& one : mState->made) {
        mState->taken.insert(one.path);
    }
    mState->work.notify_all();
}

void ThumbnailPool::Clear()
{
    Want({}, mState->box);
    const std::lock_guard lock(mState->mutex);
    mState->made.clear();
}

void ThumbnailPool::OnDone(Done done)
{
    mState->done = std::move(done);
}

bool ThumbnailPool::IsIdle() const
{
    const std::lock_guard lock(mState->mutex);
    return !mState->HasWork() && mState->inFlight.empty() && mState->made.empty()
        && mState->keeping == 0;
}

} // namespace quillane
