#pragma once
#include "core/failure.h"
#include <gtest/gtest.h>

namespace quillane {

/// The number of the Failure that step throws, 0 if it throws none. Its description must have
/// words in it.
template <typename Step> qint32 FailureOf(Step&& step)
{
    try {
        step();
        return 0;
    } catch (const Failure& failure) {
        EXPECT_FALSE(failure.Description().trimmed().isEmpty());
        return failure.Number();
    }
}

} // namespace quillane
