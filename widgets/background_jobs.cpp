#include "widgets/background_jobs.h"

#include <QMetaObject>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace quillane {

/// What the threads know; outlives the owner while one of them waits for the system.
struct BackgroundJobs::Shared {
    struct Job {
        std::function<void()> work, done;
    };
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<Job> jobs;
    int threads = 0;
    int idle = 0;                    ///< threads that wait for a job
    BackgroundJobs* owner = nullptr; ///< null when it is gone

    static void Serve(const std::shared_ptr<Shared>& shared);
};

void BackgroundJobs::Shared::Serve(const std::shared_ptr<Shared>& shared)
{
    std::unique_lock lock(shared->mutex);
    while (shared->owner) {
        if (shared->jobs.empty()) {
            ++shared->idle;
            shared->wake.wait(lock);
            --shared->idle;
            continue;
        }
        Job job = std::move(shared->jobs.front());
        shared->jobs.pop_front();
        lock.unlock();
        job.work();
        job.work = nullptr; // what it holds goes without the lock
        lock.lock();
        if (BackgroundJobs* owner = shared->owner) {
            QMetaObject::invokeMethod(
                owner,
                [owner, done = std::move(job.done)] {
                    --owner->mWaiting;
                    done();
                },
                Qt::QueuedConnection);
        }
    }
}

BackgroundJobs::BackgroundJobs(int mostThreads, QObject* parent)
    : QObject(parent),
      mShared(std::make_shared<Shared>()),
      mMostThreads(mostThreads)
{
    mShared->owner = this;
}

BackgroundJobs::~BackgroundJobs()
{
    std::deque<Shared::Job> dropped;
    const std::lock_guard lock(mShared->mutex);
    mShared->owner = nullptr;
    dropped.swap(mShared->jobs);
    mShared->wake.notify_all();
}

void BackgroundJobs::Run(std::function<void()> work, std::function<void()> done)
{
    ++mWaiting;
    const std::lock_guard lock(mShared->mutex);
    mShared->jobs.push_back({std::move(work), std::move(done)});
    // Threads are let go rather than waited for: one may be stuck in a volume that is gone.
    if (size_t(mShared->idle) < mShared->jobs.size() && mShared->threads < mMostThreads) {
        ++mShared->threads;
        std::thread(&Shared::Serve, mShared).detach();
    }
    mShared->wake.notify_one();
}

} // namespace quillane
