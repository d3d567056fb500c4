#include "search/search_ahead.h"

#include "core/failure.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace quillane {

namespace {

constexpr size_t kFilesAtOnce = 16; // that a thread takes at a time
constexpr std::chrono::milliseconds kAnswerWait{5};

enum class SearchAnswer : quint8 { Open, Fails, Passes, Failed };

} // namespace

struct SearchAhead::State {
    QStringList paths;
    Test test;

    std::atomic<size_t> next = 0; ///< first file that no thread has taken
    std::atomic<bool> stop = false;
    std::mutex mutex;
    std::condition_variable answered;
    std::vector<SearchAnswer> answers;
    std::map<size_t, std::exception_ptr> failures;
    size_t handed = 0;

    void Work();
    SearchAnswer AnswerFor(size_t index);
};

SearchAnswer SearchAhead::State::AnswerFor(size_t index)
{
    try {
        return test(paths.at(qsizetype(index))) ? SearchAnswer::Passes : SearchAnswer::Fails;
    } catch (...) {
        const std::lock_guard lock(mutex);
        failures.emplace(index, std::current_exception());
        return SearchAnswer::Failed;
    }
}

void SearchAhead::State::Work()
{
    std::vector<SearchAnswer> batch;
    batch.reserve(kFilesAtOnce);
    while (!stop) {
        const size_t begin = next.fetch_add(kFilesAtOnce);
        if (begin >= answers.size()) {
            return;
        }
        const size_t end = std::min(begin + kFilesAtOnce, answers.size());
        batch.clear();
        for (size_t i = begin; i < end && !stop; ++i) {
            batch.push_back(AnswerFor(i));
        }
        {
            const std::lock_guard lock(mutex);
            std::copy(batch.begin(), batch.end(), answers.begin() + qsizetype(begin));
        }
        answered.notify_one();
    }
}

SearchAhead::SearchAhead(QStringList paths, Test test) : mState(std::make_shared<State>())
{
    mState->paths = std::move(paths);
    mState->test = std::move(test);
    const size_t count = size_t(mState->paths.size());
    mState->answers.assign(count, SearchAnswer::Open);
    const size_t cores = std::max(1u, std::thread::hardware_concurrency());
    const size_t shares = (count + kFilesAtOnce - 1) / kFilesAtOnce;
    const size_t threads = std::min(cores, shares);
    for (size_t t = 0; t < threads; ++t) {
        std::thread([state = mState] { state->Work(); }).detach();
    }
}

SearchAhead::~SearchAhead()
{
    mState->stop = true;
}

std::optional<bool> SearchAhead::Next()
{
    State& state = *mState;
    std::unique_lock lock(state.mutex);
    if (state.handed >= state.answers.size()) {
        throw Failure(kFailureIndex, QStringLiteral("Every file of the search has its answer."));
    }
    const SearchAnswer& answer = state.answers[state.handed];
    if (!state.answered.wait_for(lock, kAnswerWait, [&] { return answer != SearchAnswer::Open; })) {
        return {};
    }
    const size_t index = state.handed++;
    if (answer == SearchAnswer::Failed) {
        std::rethrow_exception(state.failures.at(index));
    }
    return answer == SearchAnswer::Passes;
}

} // namespace quillane
