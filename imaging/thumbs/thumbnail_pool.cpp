#include "imaging/thumbs/thumbnail_pool.h"

#include "imaging/thumbs/freedesktop_cache.h"

#include <QSet>
#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace quillane {

namespace {

constexpr qint64 kCacheBudget = 96 << 20; // bytes written to the cache in one session
constexpr size_t kMostToKeep = 64;        // thumbnails waiting to be written to the cache

struct InFlight {
    QString path;
    std::atomic<bool> cancelled = false;
};

struct ToKeep {
    QString path;
    FileStat stat;
    QImage image;
    QSize picture;
    QSize box;
};

} // namespace

struct ThumbnailPool::State {
    QString cacheFolder;
    ThumbnailPool* owner = nullptr; ///< only for posting; cleared before it goes
    Done done;

    std::mutex mutex;
    std::condition_variable work;
    QVector<QString> wanted; ///< most urgent last, so that taking one is cheap
    QSize box;
    std::vector<std::shared_ptr<InFlight>> inFlight;
    std::deque<ToKeep> toKeep;
    qint64 kept = 0; ///< bytes written to the cache
    struct Made {
        QString path;
        Thumbnail thumbnail;
    };
    std::vector<Made> made; ///< not handed over yet
    bool posted = false;
    bool stop = false;
    std::vector<std::thread> threads;

    void Run();
    bool TakeWanted(std::unique_lock<std::mutex>& lock);
    void Keep(std::unique_lock<std::mutex>& lock);
    void HandOver();
};

void ThumbnailPool::State::Run()
{
    std::unique_lock lock(mutex);
    for (;;) {
        work.wait(lock, [this] { return stop || !wanted.isEmpty() || !toKeep.empty(); });
        if (stop) {
            return;
        }
        if (!TakeWanted(lock)) {
            Keep(lock);
        }
    }
}

bool ThumbnailPool::State::TakeWanted(std::unique_lock<std::mutex>& lock)
{
    if (wanted.isEmpty()) {
        return false;
    }
    const auto job = std::make_shared<InFlight>();
    job->path = wanted.takeLast();
    const QSize wantedBox = box;
    inFlight.push_back(job);
    lock.unlock();

    ThumbnailOptions options;
    options.cacheFolder = cacheFolder;
    options.cancelled = &job->cancelled;
    Thumbnail thumbnail = MakeThumbnail(job->path, wantedBox, options);

    lock.lock();
    std::erase(inFlight, job);
    if (job->cancelled) {
        return true;
    }
    if (!thumbnail.forCache.isNull() && kept < kCacheBudget && toKeep.size() < kMostToKeep) {
        toKeep.push_back(
            {job->path, thumbnail.stat, thumbnail.forCache, thumbnail.picture, wantedBox});
    }
    thumbnail.forCache = {};
    made.push_back({job->path, std::move(thumbnail)});
    if (!posted && owner) {
        posted = true;
        QMetaObject::invokeMethod(
            owner, [this] { HandOver(); }, Qt::QueuedConnection);
    }
    return true;
}

void ThumbnailPool::State::Keep(std::unique_lock<std::mutex>& lock)
{
    if (toKeep.empty()) {
        return;
    }
    const ToKeep one = std::move(toKeep.front());
    toKeep.pop_front();
    lock.unlock();
    const qint64 bytes = WriteCachedThumbnail(cacheFolder, one.path, one.stat,
                                              CacheSizeFor(one.box), one.image, one.picture);
    lock.lock();
    kept += bytes;
}

void ThumbnailPool::State::HandOver()
{
    std::vector<Made> batch;
    {
        const std::lock_guard lock(mutex);
        posted = false;
        batch.swap(made);
    }
    for (const Made& one : batch) {
        if (done) {
            done(one.path, one.thumbnail);
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
    const QSet<QString> asked(paths.cbegin(), paths.cend());
    QSet<QString> underWay;
    for (const auto& job : mState->inFlight) {
        if (!sameBox || !asked.contains(job->path)) {
            job->cancelled = true;
        } else if (!job->cancelled) {
            underWay.insert(job->path);
        }
    }
    if (!sameBox) {
        mState->made.clear();
    }
    for (const State::Made& one : mState->made) {
        underWay.insert(one.path);
    }
    mState->wanted.clear();
    mState->wanted.reserve(paths.size());
    for (auto path = paths.crbegin(); path != paths.crend(); ++path) {
        if (!underWay.contains(*path)) {
            mState->wanted.append(*path);
        }
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
    return mState->wanted.isEmpty() && mState->inFlight.empty() && mState->made.empty()
        && mState->toKeep.empty();
}

} // namespace quillane
