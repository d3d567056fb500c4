#include "locator/search_run.h"

#include "core/failure.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <utility>

namespace quillane {

namespace {

constexpr int kSearchThreads = 4; // one works; others may be stuck in a volume that is gone
constexpr int kTellEvery = 30;    // milliseconds

} // namespace

/// What both threads know of one search.
struct LocatorSearch::Shared : FindSink {
    std::atomic<bool> stopped = false, subfolders = true;
    std::mutex mutex; ///< over all below
    QString folder;
    bool folderIsNew = false;
    std::vector<Batch> batches;
    FindResult result;
    QString failure;
    std::exception_ptr trouble; ///< anything but a Failure

    void ShowFolder(const QString& path) override
    {
        const std::lock_guard lock(mutex);
        folder = path;
        folderIsNew = true;
    }
    void AddFound(const QString& path, std::vector<FoundFile>&& files) override
    {
        const std::lock_guard lock(mutex);
        batches.push_back({path, std::move(files)});
    }
    bool IncludesSubfolders() override { return subfolders; }
    bool SearchStopped() override { return stopped; }

    void Work(const QString& startFolder, const QString& searchString)
    {
        try {
            QStringList Dirs;
            FindResult end = FindFiles(startFolder, Dirs, searchString, *this);
            const std::lock_guard lock(mutex);
            result = std::move(end);
        } catch (const Failure& stop) {
            const std::lock_guard lock(mutex);
            failure = stop.Description();
        } catch (...) {
            const std::lock_guard lock(mutex);
            trouble = std::current_exception();
        }
    }
};

LocatorSearch::LocatorSearch(QObject* parent) : QObject(parent), mJobs(kSearchThreads)
{
    mTimer.setInterval(kTellEvery);
    connect(&mTimer, &QTimer::timeout, this, &LocatorSearch::Tell);
}

LocatorSearch::~LocatorSearch()
{
    Terminate();
}

void LocatorSearch::Start(const QString& startFolder, const QString& searchString,
                          bool includeSubfolders)
{
    Terminate();
    mShared = std::make_shared<Shared>();
    mShared->subfolders = includeSubfolders;
    mJobs.Run(
        [shared = mShared, startFolder, searchString] { shared->Work(startFolder, searchString); },
        [this, shared = mShared] {
            if (shared == mShared) {
                Finish();
            }
        });
    mTimer.start();
}

void LocatorSearch::Stop()
{
    if (!mShared) {
        return;
    }
    const std::shared_ptr<Shared> shared = mShared;
    shared->stopped = true;
    Tell();
    if (shared != mShared) { // a listener has ended it
        return;
    }
    Terminate();
    FindResult result;
    result.stopped = true;
    Q_EMIT ended(result);
}

void LocatorSearch::Terminate()
{
    mTimer.stop();
    if (mShared) {
        mShared->stopped = true;
        mShared.reset();
    }
}

void LocatorSearch::SetIncludesSubfolders(bool on)
{
    if (mShared) {
        mShared->subfolders = on;
    }
}

void LocatorSearch::Tell()
{
    const std::shared_ptr<Shared> shared = mShared;
    std::vector<Batch> batches;
    QString folder;
    bool isNew = false;
    {
        const std::lock_guard lock(shared->mutex);
        batches.swap(shared->batches);
        folder = shared->folder;
        isNew = std::exchange(shared->folderIsNew, false);
    }
    if (isNew) {
        Q_EMIT folderShown(folder);
    }
    if (!batches.empty() && shared == mShared) {
        Q_EMIT found(batches);
    }
}

void LocatorSearch::Finish()
{
    const std::shared_ptr<Shared> shared = mShared;
    Tell();
    if (shared != mShared) { // a listener has ended it
        return;
    }
    Terminate();
    if (shared->trouble) {
        std::rethrow_exception(shared->trouble);
    }
    if (!shared->failure.isEmpty()) {
        Q_EMIT failed(shared->failure);
    } else {
        Q_EMIT ended(shared->result);
    }
}

} // namespace quillane
