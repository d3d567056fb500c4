#include "core/failure.h"
#include <gtest/gtest.h>
#include <stdexcept>

namespace quillane {

TEST(Failure, CarriesNumberDescriptionAndSource)
{
    const Failure failure(kFailureNoFile, QStringLiteral("Nicht da: \u00E4"),
                          QStringLiteral("png"));
    EXPECT_EQ(failure.Number(), 53);
    EXPECT_EQ(failure.Description(), QStringLiteral("Nicht da: \u00E4"));
    EXPECT_EQ(failure.Source(), QStringLiteral("png"));
    EXPECT_STREQ(failure.what(), "Nicht da: \xC3\xA4");
}

TEST(Failure, SourceMayBeEmpty)
{
    EXPECT_TRUE(Failure(1, QStringLiteral("words")).Source().isEmpty());
}

TEST(ResumeNext, RunsTheStepAndTellsThatItEnded)
{
    bool ran = false;
    EXPECT_TRUE(ResumeNext([&] { ran = true; }));
    EXPECT_TRUE(ran);
}

TEST(ResumeNext, PassesOverAFailure)
{
    int steps = 0;
    EXPECT_FALSE(ResumeNext([&] {
        ++steps;
        throw Failure(kFailureIo, QStringLiteral("broken"));
    }));
    EXPECT_EQ(steps, 1);
}

TEST(ResumeNext, LetsExhaustedMemoryPass)
{
    EXPECT_THROW(ResumeNext([] { throw std::bad_alloc(); }), std::bad_alloc);
}

TEST(ResumeNext, LetsForeignExceptionsPass)
{
    EXPECT_THROW(ResumeNext([] { throw std::runtime_error("not ours"); }), std::runtime_error);
}

} // namespace quillane
