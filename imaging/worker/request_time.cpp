#include "imaging/worker/request_time.h"

#include <ctime>

namespace quillane::worker {

void RequestTime::Start(std::chrono::seconds seconds, Time now, Span used)
{
    mSeconds = seconds;
    mStarted = now;
    mNextLook = now + seconds;
    mUsedAtStart = mUsedAtLook = used;
}

bool RequestTime::MayGoOn(Time now, Span used, bool answered)
{
    if (now < mNextLook) {
        return true;
    }
    const bool works = answered || used - mUsedAtLook >= kLeastWork;
    mUsedAtLook = used;
    mNextLook = now + kBetweenLooks;
    return works && used - mUsedAtStart < mSeconds && now - mStarted < mSeconds * kMostPatience;
}

std::chrono::nanoseconds ProcessorTime(pid_t process)
{
    clockid_t clock{};
    struct timespec used { };
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &used) != 0) {
        return std::chrono::nanoseconds(0);
    }
    return std::chrono::seconds(used.tv_sec) + std::chrono::nanoseconds(used.tv_nsec);
}

} // namespace quillane::worker
