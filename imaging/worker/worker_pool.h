#pragma once
#include "imaging/worker/worker_process.h"
#include <QString>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <queue>
#include <thread>
#include <vector>

namespace quillane::worker {

/// The decoding processes that run: up to a number of them, started when first needed and
/// kept. Any thread.
class WorkerPool {
public:
    /// `argument` is what every process gets with its program; nullptr for nothing.
    explicit WorkerPool(const char* argument = nullptr);
    ~WorkerPool();
    /// Program and number from now on; processes of before end as they come back.
    void Configure(const QString& program, int maxProcesses);
    /// Starts one process in the background when none is there.
    void WarmUp();
    /// Ends the processes that are not in use and the thread that started them all; with it
    /// the system ends those in use. The pool can be used again afterwards.
    void Shutdown();

    /// A process of the caller's own, until given back; waits while as many as may run are
    /// busy. Failure kFailureWorker when none can be started, kFailureCancelled.
    std::unique_ptr<WorkerProcess> Take(const std::atomic<bool>* cancelled);
    /// Takes a process back for the next request, or, when it is null, just its place.
    void GiveBack(std::unique_ptr<WorkerProcess> process, quint64 generation);
    /// Changes with Configure and Shutdown; to be asked before Take.
    quint64 Generation() const;

private:
    using Spawned = std::unique_ptr<WorkerProcess>;
    std::future<Spawned> AskKeeper(QString program);
    void Keep();
    /// The configured program; without one, the decoder beside the running program.
    QString Program() const;

    mutable std::mutex mMutex;
    std::condition_variable mPlaceFree;
    std::condition_variable mKeeperWanted;
    std::vector<Spawned> mIdle;
    std::queue<std::packaged_task<Spawned()>> mTasks;
    const char* mArgument;
    QString mProgram;
    int mMax = int(std::max(1u, std::thread::hardware_concurrency()));
    int mTaken = 0;
    quint64 mGeneration = 0;
    bool mEnding = false;
    bool mWarming = false; ///< a process is being started that nobody has asked for yet
    /// Starts every process. It lives as long as they do, which threads that ask need not.
    std::thread mKeeper;
};

/// The pool that the whole program uses, for everything but clips.
WorkerPool& SharedPool();
/// Processes for clips alone: they load libraries that take long to load.
WorkerPool& ClipPool();
/// The pool whose processes serve a codec (Codec::name).
WorkerPool& PoolFor(const char* codecName);

} // namespace quillane::worker
