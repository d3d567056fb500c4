#include "platform/end_program.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace quillane {
namespace {

TEST(EndProgramAtOnceDeathTest, RunsNothingThatAnOrdinaryEndWouldRun)
{
    const auto endWithAWatcher = [] {
        std::atexit([] { std::fputs("an ordinary end", stderr); });
        EndProgramAtOnce();
    };
    EXPECT_EXIT(endWithAWatcher(), testing::ExitedWithCode(0), "^$");
}

} // namespace
} // namespace quillane
