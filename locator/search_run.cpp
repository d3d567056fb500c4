#include "locator/search_run.h"

#include "core/failure.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <exception>
#include <iterator>
#include <mutex>
#include <utility>

namespace quillane {

namespace {

constexpr int kSearchThreads = 4; // one works; others may be stuck in a volume that is gone
constexpr int kTellEvery = 30;    // milliseconds
constexpr size_t kFilesOfABatch = 500;
constexpr qsizetype kBatchesAtOnce = 4; // so that windows answer while very much is found

} // namespace

/// What both threads know of one search.
struct LocatorSearch::Shared : FindSink {
    std::atomic<bool> stopped = false, subfolders = true;
    std::mutex mutex; ///< over all below
    QString folder;
    bool folderIsNew = false;
    std::deque<Batch> batches; ///< not told yet
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
        for (size_t from = 0; from < files.size(); from += kFilesOfABatch) {
            const auto begin = std::make_move_iterator(files.begin() + qsizetype(from));
            const size_t count = std::min(kFilesOfABatch, files.size() - from);
            batches.push_back({path, {begin, begin + qsizetype(count)}});
        }
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
    connect(&mTimer, &QTimer::timeout, this, &LocatorSearch::TellNext);
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
                mWorked = true;
                TellNext();
            }
        });
    mTimer.start(kTellEvery);
}

void LocatorSearch::Stop()
{
    if (!mShared) {
        return;
    }
    const std::shared_ptr<Shared> shared = mShared;
    if (shared->stopped.exchange(true)) {
        return; // asked by a listener in the middle of it
    }
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
    mWorked = false;
}

void LocatorSearch::SetIncludesSubfolders(bool on)
{
    if (mShared) {
        mShared->subfolders = on;
    }
}

// Tells the next few batches; whether there are more.
bool LocatorSearch::Tell()
{
    const std::shared_ptr<Shared> shared = mShared;
    std::vector<Batch> batches;
    QString folder;
    bool isNew = false, more = false;
    {
        const std::lock_guard lock(shared->mutex);
        const auto end =
            shared->batches.begin() + std::min(kBatchesAtOnce, qsizetype(shared->batches.size()));
        batches.assign(std::make_move_iterator(shared->batches.begin()),
                       std::make_move_iterator(end));
        shared->batches.erase(shared->batches.begin(), end);
        more = !shared->batches.empty();
        folder = shared->folder;
        isNew = std::exchange(shared->folderIsNew, false);
    }
    if (isNew) {
        Q_EMIT folderShown(folder);
    }
    if (!batches.empty() && shared == mShared) {
        Q_EMIT found(batches);
    }
    return more;
}

void LocatorSearch::TellNext()
{
    const std::shared_ptr<Shared> shared = mShared;
    const bool more = Tell();
    if (shared != mShared) { // a listener has ended it
        return;
    }
    if (mWorked && !more) {
        Finish();
    } else {
        mTimer.start(more ? 0 : kTellEvery);
    }
}

void LocatorSearch::Finish()
{
    const std::shared_ptr<Shared> shared = mShared;
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
