#pragma once
#include <chrono>
#include <sys/types.h>

namespace quillane::worker {

/// How long a request may take. Tells a process that is slow from one that a busy machine does not
/// run: a request has its seconds by the clock, and goes on behind them while the process works and
/// has not had as many seconds of a processor, at most kMostPatience times as long.
class RequestTime {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Span = std::chrono::nanoseconds;
    static constexpr int kMostPatience = 8;
    static constexpr std::chrono::seconds kBetweenLooks{1};
    static constexpr std::chrono::milliseconds kLeastWork{
        1}; ///< between two looks, of one that works

    /// Begins the seconds of a request. used: processor time that its process has had so far.
    void Start(std::chrono::seconds seconds, Time now, Span used);
    /// When to look again whether it may go on; before that it may.
    Time NextLook() const { return mNextLook; }
    /// Whether it may go on. answered: the process has just said something, and need not have
    /// worked since the last look.
    bool MayGoOn(Time now, Span used, bool answered);

private:
    std::chrono::seconds mSeconds{0};
    Time mStarted, mNextLook;
    Span mUsedAtStart{0}, mUsedAtLook{0};
};

/// Processor time that all threads of a process have had; 0 where the system does not tell.
std::chrono::nanoseconds ProcessorTime(pid_t process);

} // namespace quillane::worker
