#include "imaging/thumbs/thumbnail_scanner.h"

#include "core/failure.h"
#include "core/file_kinds.h"
#include "core/native_path.h"
#include "imaging/reader.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace quillane {

namespace {

constexpr int kHeaderReaders = 16;     // reading headers waits on the disk, not on a core
constexpr size_t kHeadersAhead = 4096; // results held before they are delivered
constexpr size_t kHeadersAtOnce = 16;  // files a reader takes at a time
constexpr std::chrono::milliseconds kHeaderWait{4};

/// Albums and print settings by the name's own end: no use in opening them. (A picture in a folder
/// whose name has such letters in it is an album to IsAlbumFile as well, and is a picture here.)
bool IsNoPictureByName(const QString& path)
{
    return path.endsWith(QLatin1String(".ifl"), Qt::CaseInsensitive)
        || path.endsWith(QLatin1String(".ly2"), Qt::CaseInsensitive);
}

} // namespace

struct ThumbnailScanner::State {
    struct HeaderResult {
        qint16 status = kScanUnreadable;
        bool ready = false;
        ImageFacts facts;
    };

    static_assert(sizeof(HeaderResult) < 100, "thousands of them are held");

    std::vector<QString> paths;    ///< of all masks, one behind the other
    std::vector<size_t> maskBegin; ///< first path of each mask, and one end
    std::vector<HeaderResult> ring;
    Wanted isWanted;

    std::mutex mutex;
    std::condition_variable read;   ///< a result is there
    std::condition_variable wanted; ///< room for more results
    size_t next = 0;                ///< first path no reader has taken
    size_t delivered = 0;           ///< paths that are through
    bool full = false;              ///< readers wait for room
    bool stop = false;
    std::vector<std::thread> readers;
    std::atomic<int> reading = 0; ///< readers that are not through

    ~State();
    HeaderResult ReadHeader(const QString& path) const;
    void Read();
    /// What is before `path` is through. Under the lock.
    void Advance(size_t path);
    /// Paths that are not to be read any more: those before `path`.
    void SkipTo(size_t path);
    void End();
    HeaderResult& At(size_t path) { return ring[path % ring.size()]; }
};

ThumbnailScanner::State::HeaderResult ThumbnailScanner::State::ReadHeader(const QString& path) const
{
    HeaderResult result;
    result.ready = true;
    try {
        if (isWanted && !isWanted(path)) {
            result.status = kScanUnwanted;
            return result;
        }
        if (IsNoPictureByName(path)) {
            const bool there = StatPath(path).type == FileType::Regular;
            result.status = there ? kScanKnownOther : kScanIgnored;
            return result;
        }
        result.facts = ProbeFile(path);
        result.status = kScanGood;
    } catch (const Failure&) {
        if (StatPath(path).type != FileType::Regular) {
            result.status = kScanIgnored;
        } else if (IsAlbumFile(path) == kTrue || IsPrintSetFile(path) == kTrue) {
            result.status = kScanKnownOther;
        }
    } catch (const std::bad_alloc&) {
        result.status = kScanUnreadable;
    }
    return result;
}

ThumbnailScanner::State::~State()
{
    for (std::thread& reader : readers) {
        reader.join();
    }
}

void ThumbnailScanner::State::Read()
{
    std::vector<HeaderResult> results;
    std::unique_lock lock(mutex);
    for (;;) {
        full = full || next >= delivered + ring.size();
        wanted.wait(lock, [this] { return stop || next >= paths.size() || !full; });
        if (stop || next >= paths.size()) {
            return;
        }
        // Few at a time where few are left, so that every reader has its part.
        const size_t share = (paths.size() - next) / (2 * kHeaderReaders);
        const size_t from = next;
        const size_t count = std::clamp<size_t>(share, 1, kHeadersAtOnce);
        next = std::min({from + count, paths.size(), delivered + ring.size()});
        const size_t end = next;
        lock.unlock();
        results.clear();
        for (size_t i = from; i < end; ++i) {
            results.push_back(ReadHeader(paths[i]));
        }
        lock.lock();
        // What was skipped meanwhile has no place any more.
        for (size_t i = std::max(from, delivered); i < end; ++i) {
            At(i) = std::move(results[i - from]);
        }
        if (delivered < paths.size() && At(delivered).ready) {
            read.notify_one();
        }
    }
}

void ThumbnailScanner::State::Advance(size_t path)
{
    delivered = path;
    next = std::max(next, path);
    // Readers that have run far enough ahead sleep until half of their lead is used up.
    if (full && next - delivered <= ring.size() / 2) {
        full = false;
        wanted.notify_all();
    }
}

void ThumbnailScanner::State::SkipTo(size_t path)
{
    const std::lock_guard lock(mutex);
    for (size_t i = delivered; i < std::min(path, delivered + ring.size()); ++i) {
        At(i).ready = false;
    }
    Advance(std::max(delivered, path));
}

void ThumbnailScanner::State::End()
{
    {
        const std::lock_guard lock(mutex);
        stop = true;
    }
    wanted.notify_all();
}

ThumbnailScanner::ThumbnailScanner(UiLoop& loop) : mLoop(loop)
{ }

ThumbnailScanner::~ThumbnailScanner()
{
    Stop();
}

void ThumbnailScanner::Prepare(const FolderListing& listing, const QStringList& masks)
{
    std::vector<QStringList> filesOfMasks;
    for (const QString& mask : masks) {
        filesOfMasks.push_back(listing.Paths(mask));
    }
    Prepare(filesOfMasks);
}

void ThumbnailScanner::Prepare(const std::vector<QStringList>& filesOfMasks, Wanted wanted)
{
    Stop();
    mState = std::make_shared<State>();
    mState->isWanted = std::move(wanted);
    for (const QStringList& files : filesOfMasks) {
        mState->maskBegin.push_back(mState->paths.size());
        mState->paths.insert(mState->paths.end(), files.begin(), files.end());
    }
    mState->maskBegin.push_back(mState->paths.size());
    mState->ring.resize(std::clamp<size_t>(mState->paths.size(), 1, kHeadersAhead));
    // Asking whether a file is wanted is work for every core.
    const size_t atMost = mState->isWanted
        ? std::max<size_t>(kHeaderReaders, std::thread::hardware_concurrency())
        : kHeaderReaders;
    const size_t readers = std::min(atMost, mState->paths.size());
    mState->reading = int(readers);
    for (size_t i = 0; i < readers; ++i) {
        mState->readers.emplace_back([state = mState.get()] {
            state->Read();
            --state->reading;
        });
    }
}

void ThumbnailScanner::Stop()
{
    if (mState) {
        // A reader may still wait for a slow file: the window thread does not wait with it.
        mState->End();
        mEnding.push_back(std::move(mState));
        mState.reset();
    }
    std::erase_if(mEnding, [](const std::shared_ptr<State>& state) { return state->reading == 0; });
}

bool ThumbnailScanner::Browse(int index, Generation generation, const Event& event)
{
    const std::shared_ptr<State> state = mState;
    if (!state || index < 0 || size_t(index) + 1 >= state->maskBegin.size()) {
        return mLoop.Newest() == generation;
    }
    const size_t end = state->maskBegin[size_t(index) + 1];
    state->SkipTo(state->maskBegin[size_t(index)]);
    std::vector<State::HeaderResult> batch;
    size_t at = state->delivered;
    while (at < end) {
        {
            std::unique_lock lock(state->mutex);
            state->read.wait_for(lock, kHeaderWait, [&] { return state->At(at).ready; });
            batch.clear();
            for (size_t i = at; i < end && batch.size() < kHeadersAtOnce && state->At(i).ready;
                 ++i) {
                batch.push_back(std::move(state->At(i)));
                state->At(i).ready = false;
            }
            state->Advance(at + batch.size());
        }
        if (batch.empty() && !mLoop.Yield(generation)) {
            return false;
        }
        for (State::HeaderResult& result : batch) {
            const ScannedFile file{state->paths[at], result.status, std::move(result.facts)};
            ++at;
            const bool go = event(file);
            if (!mLoop.Yield(generation)) {
                return false;
            }
            if (!go) {
                state->SkipTo(end);
                return true;
            }
        }
    }
    return true;
}

} // namespace quillane
