#include "imaging/worker/worker_pool.h"
#include "core/failure.h"
#include "imaging/worker/protocol.h"
#include <QCoreApplication>
#include <chrono>

namespace quillane::worker {

WorkerPool::WorkerPool(const char* argument) : mArgument(argument)
{ }

WorkerPool::~WorkerPool()
{
    Shutdown();
}

void WorkerPool::Configure(const QString& program, int maxProcesses)
{
    std::vector<Spawned> old;
    {
        const std::lock_guard lock(mMutex);
        mProgram = program;
        mMax = std::max(1, maxProcesses);
        ++mGeneration;
        old.swap(mIdle);
    }
    mPlaceFree.notify_all();
}

quint64 WorkerPool::Generation() const
{
    const std::lock_guard lock(mMutex);
    return mGeneration;
}

void WorkerPool::WarmUp()
{
    const std::lock_guard lock(mMutex);
    if (mEnding || !mIdle.empty() || mTaken > 0) {
        return;
    }
    ++mTaken;
    mWarming = true;
    const quint64 generation = mGeneration;
    const QString program = Program();
    mTasks.emplace([this, program, generation]() -> Spawned {
        Spawned spawned;
        ResumeNext([&] { spawned = WorkerProcess::Spawn(program, mArgument); });
        GiveBack(std::move(spawned), generation);
        {
            const std::lock_guard done(mMutex);
            mWarming = false;
        }
        mPlaceFree.notify_all();
        return nullptr;
    });
    if (!mKeeper.joinable()) {
        mKeeper = std::thread([this] { Keep(); });
    }
    mKeeperWanted.notify_one();
}

void WorkerPool::Shutdown()
{
    std::vector<Spawned> old;
    std::thread keeper;
    {
        const std::lock_guard lock(mMutex);
        mEnding = true;
        ++mGeneration;
        old.swap(mIdle);
        keeper.swap(mKeeper);
    }
    mKeeperWanted.notify_all();
    if (keeper.joinable()) {
        keeper.join();
    }
    {
        const std::lock_guard lock(mMutex);
        mEnding = false;
    }
    mPlaceFree.notify_all();
}

QString WorkerPool::Program() const
{
    return mProgram.isEmpty()
        ? QCoreApplication::applicationDirPath() + QStringLiteral("/quillane-codec")
        : mProgram;
}

std::unique_ptr<WorkerProcess> WorkerPool::Take(const std::atomic<bool>* cancelled)
{
    std::future<Spawned> coming;
    {
        std::unique_lock lock(mMutex);
        for (;;) {
            if (cancelled && cancelled->load()) {
                throw Failure(kFailureCancelled, QStringLiteral("Cancelled."));
            }
            if (!mEnding && !mWarming && mTaken < mMax) {
                break;
            }
            mPlaceFree.wait_for(lock, std::chrono::milliseconds(cancelled ? 10 : 1000));
        }
        ++mTaken;
        while (!mIdle.empty()) {
            Spawned process = std::move(mIdle.back());
            mIdle.pop_back();
            if (process->IsUsable()) {
                return process;
            }
        }
        coming = AskKeeper(Program());
    }
    try {
        return coming.get();
    } catch (...) {
        GiveBack(nullptr, 0);
        throw;
    }
}

std::future<WorkerPool::Spawned> WorkerPool::AskKeeper(QString program)
{
    std::packaged_task<Spawned()> task(
        [this, program = std::move(program)] { return WorkerProcess::Spawn(program, mArgument); });
    std::future<Spawned> future = task.get_future();
    mTasks.push(std::move(task));
    if (!mKeeper.joinable()) {
        mKeeper = std::thread([this] { Keep(); });
    }
    mKeeperWanted.notify_one();
    return future;
}

void WorkerPool::GiveBack(std::unique_ptr<WorkerProcess> process, quint64 generation)
{
    {
        const std::lock_guard lock(mMutex);
        --mTaken;
        if (process && generation == mGeneration && !mEnding) {
            mIdle.push_back(std::move(process));
        }
    }
    mPlaceFree.notify_one();
}

void WorkerPool::Keep()
{
    std::unique_lock lock(mMutex);
    for (;;) {
        mKeeperWanted.wait(lock, [this] { return mEnding || !mTasks.empty(); });
        if (mTasks.empty()) {
            return;
        }
        std::packaged_task<Spawned()> task = std::move(mTasks.front());
        mTasks.pop();
        lock.unlock();
        task();
        lock.lock();
    }
}

WorkerPool& SharedPool()
{
    static WorkerPool pool;
    return pool;
}

WorkerPool& ClipPool()
{
    static WorkerPool pool(kClipArgument);
    return pool;
}

WorkerPool& PoolFor(const char* codecName)
{
    const bool isClip =
        std::any_of(std::begin(kClipCodecs), std::end(kClipCodecs),
                    [&](const char* name) { return qstrcmp(codecName, name) == 0; });
    return isClip ? ClipPool() : SharedPool();
}

} // namespace quillane::worker
