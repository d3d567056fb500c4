// How long a request to a decoding process may take.
#include "imaging/worker/request_time.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace quillane::worker {

namespace {

using std::chrono_literals::operator""s;
using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""ns;

constexpr RequestTime::Time kBegin{1000s};
constexpr RequestTime::Span kUsedBefore = 50s; ///< by requests before this one

RequestTime TenSeconds()
{
    RequestTime time;
    time.Start(10s, kBegin, kUsedBefore);
    return time;
}

} // namespace

TEST(RequestTime, NothingEndsBeforeItsSeconds)
{
    RequestTime time = TenSeconds();
    EXPECT_EQ(time.NextLook(), kBegin + 10s);
    EXPECT_TRUE(time.MayGoOn(kBegin, kUsedBefore, false));
    EXPECT_TRUE(time.MayGoOn(kBegin + 9999ms, kUsedBefore + 19s, false));
    EXPECT_EQ(time.NextLook(), kBegin + 10s);
}

TEST(RequestTime, AProcessThatDidNothingEndsWithItsSeconds)
{
    EXPECT_FALSE(TenSeconds().MayGoOn(kBegin + 10s, kUsedBefore, false));
}

TEST(RequestTime, AProcessThatHadItsSecondsOfAProcessorEnds)
{
    EXPECT_FALSE(TenSeconds().MayGoOn(kBegin + 10s, kUsedBefore + 10s, false));
    EXPECT_FALSE(TenSeconds().MayGoOn(kBegin + 10s, kUsedBefore + 10s, true));
}

TEST(RequestTime, AProcessThatTheMachineDoesNotRunGoesOnWhileItWorks)
{
    RequestTime time = TenSeconds();
    EXPECT_TRUE(time.MayGoOn(kBegin + 10s, kUsedBefore + 2s, false));
    EXPECT_EQ(time.NextLook(), kBegin + 10s + RequestTime::kBetweenLooks);
    EXPECT_TRUE(time.MayGoOn(kBegin + 11s, kUsedBefore + 2s + RequestTime::kLeastWork, false));
    EXPECT_FALSE(time.MayGoOn(kBegin + 12s, kUsedBefore + 2s + RequestTime::kLeastWork, false));
}

TEST(RequestTime, AnAnswerThatIsLookedAtLateCounts)
{
    RequestTime time = TenSeconds();
    EXPECT_TRUE(time.MayGoOn(kBegin + 70s, kUsedBefore, true));
}

TEST(RequestTime, NeitherWorkNorAnswersBuyTimeForEver)
{
    for (const bool answered : {false, true}) {
        RequestTime time = TenSeconds();
        RequestTime::Time now = kBegin + 10s;
        RequestTime::Span used = kUsedBefore;
        while (time.MayGoOn(now, used += 2ms, answered)) {
            now = time.NextLook();
            ASSERT_LE(now, kBegin + 81s);
        }
        EXPECT_EQ(now, kBegin + 10s * RequestTime::kMostPatience);
    }
}

TEST(ProcessorTime, GrowsWithTheWorkOfAProcess)
{
    const auto before = ProcessorTime(getpid());
    while (ProcessorTime(getpid()) < before + 20ms) { }
    EXPECT_GT(before, 0ns);
    constexpr pid_t kNobody = (1 << 22) + 1; // beyond what the system numbers processes with
    EXPECT_EQ(ProcessorTime(kNobody), 0ns);
}

} // namespace quillane::worker
