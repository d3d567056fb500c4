#include "browser/tag_columns.h"

#include "core/failure.h"
#include "core/file_kinds.h"
#include "imaging/comments/comment_set.h"
#include "imaging/comments/slots.h"
#include "metadata/text_tags.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace quillane {

namespace {

constexpr int kTagChunk = 32;
constexpr std::chrono::milliseconds kTagWait{5};

std::array<QString, 4> TagsOfFile(const QString& path, const std::array<QString, 4>& keys)
{
    std::array<QString, 4> tags;
    ResumeNext([&] {
        const CommentSet comments = ReadComments(path);
        const CommentValue& description = comments.At(kDescriptionSlot);
        if (description.IsEmpty()) {
            return;
        }
        qint16 caseSensitive = kFalse;
        for (size_t k = 0; k < tags.size(); ++k) {
            tags[k] = GetTextTag(keys[k], description.Text(), caseSensitive);
        }
    });
    return tags;
}

} // namespace

struct TagColumns::State {
    std::array<QString, 4> keys;
    std::vector<std::pair<int, QString>> files; ///< row and path

    std::mutex mutex;
    std::condition_variable changed;
    size_t nextChunk = 0, handed = 0;
    std::vector<std::unique_ptr<std::vector<std::array<QString, 4>>>> chunks;
    bool stop = false;
    std::vector<std::thread> threads;

    void Work();
};

void TagColumns::State::Work()
{
    for (;;) {
        size_t chunk = 0;
        {
            const std::lock_guard lock(mutex);
            if (stop || nextChunk == chunks.size()) {
                return;
            }
            chunk = nextChunk++;
        }
        auto rows = std::make_unique<std::vector<std::array<QString, 4>>>();
        const size_t end = std::min(files.size(), (chunk + 1) * kTagChunk);
        for (size_t i = chunk * kTagChunk; i < end; ++i) {
            rows->push_back(TagsOfFile(files[i].second, keys));
        }
        {
            const std::lock_guard lock(mutex);
            chunks[chunk] = std::move(rows);
        }
        changed.notify_one();
    }
}

TagColumns::TagColumns(const QList<QString>& paths, const std::array<QString, 4>& keys)
    : mState(std::make_unique<State>())
{
    mState->keys = keys;
    for (int i = 0; i < paths.size(); ++i) {
        if (IsImageFile(paths.at(i)) == kTrue) {
            mState->files.emplace_back(i, paths.at(i));
        }
    }
    mState->chunks.resize((mState->files.size() + kTagChunk - 1) / kTagChunk);
    const size_t cores = std::max(1u, std::thread::hardware_concurrency());
    for (size_t t = 0; t < std::min(cores, mState->chunks.size()); ++t) {
        mState->threads.emplace_back([state = mState.get()] { state->Work(); });
    }
}

TagColumns::~TagColumns()
{
    {
        const std::lock_guard lock(mState->mutex);
        mState->stop = true;
    }
    for (std::thread& thread : mState->threads) {
        thread.join();
    }
}

bool TagColumns::AtEnd() const
{
    return mState->handed == mState->files.size();
}

std::optional<TagColumns::Row> TagColumns::Next()
{
    if (AtEnd()) {
        return {};
    }
    const size_t chunk = mState->handed / kTagChunk;
    {
        std::unique_lock lock(mState->mutex);
        if (!mState->changed.wait_for(lock, kTagWait,
                                      [&] { return mState->chunks[chunk] != nullptr; })) {
            return {};
        }
    }
    std::vector<std::array<QString, 4>>& rows = *mState->chunks[chunk];
    const size_t within = mState->handed % kTagChunk;
    Row row{mState->files[mState->handed].first, std::move(rows[within])};
    if (++mState->handed % kTagChunk == 0 || AtEnd()) {
        rows = {};
    }
    return row;
}

} // namespace quillane
