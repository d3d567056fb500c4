#pragma once
// Root passes every permission check. While an Unprivileged lives, this thread does not: the two
// capabilities that pass over permissions are taken out of force, and put back at the end.
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillane {

class Unprivileged {
public:
    Unprivileged()
    {
        EXPECT_EQ(syscall(SYS_capget, &mHeader, mBefore), 0);
        __user_cap_data_struct without[2] = {mBefore[0], mBefore[1]};
        without[0].effective &= ~(1u << CAP_DAC_OVERRIDE | 1u << CAP_DAC_READ_SEARCH);
        EXPECT_EQ(syscall(SYS_capset, &mHeader, without), 0);
    }
    ~Unprivileged() { EXPECT_EQ(syscall(SYS_capset, &mHeader, mBefore), 0); }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

private:
    __user_cap_header_struct mHeader{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct mBefore[2] = {};
};

} // namespace quillane
