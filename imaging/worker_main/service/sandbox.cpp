#include "imaging/worker_main/service/sandbox.h"
#include "imaging/limits.h"
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <linux/landlock.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillane::worker {

namespace {

#ifdef QUILLANE_SANITIZED
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

bool Limit(__rlimit_resource resource, rlim_t value)
{
    const rlimit both{value, value};
    return ::setrlimit(resource, &both) == 0;
}

/// Bytes of address space in use now; 0 when the system does not tell.
quint64 AddressSpaceInUse()
{
    unsigned long pages = 0;
    if (FILE* file = std::fopen("/proc/self/statm", "re")) {
        if (std::fscanf(file, "%lu", &pages) != 1) {
            pages = 0;
        }
        std::fclose(file);
    }
    return quint64(pages) * quint64(::sysconf(_SC_PAGESIZE));
}

bool LimitResources()
{
    constexpr rlim_t kDescriptors = 16;
    bool done = Limit(RLIMIT_CORE, 0) && Limit(RLIMIT_NOFILE, kDescriptors);
    // The sanitizers reserve terabytes of addresses and write their reports to files.
    if (!kSanitized) {
        ::signal(SIGXFSZ, SIG_IGN);
        done = done && Limit(RLIMIT_FSIZE, 0)
            && Limit(RLIMIT_AS, AddressSpaceInUse() + quint64(limits::kWorkerMemoryBytes));
    }
    return done;
}

/// Forbids every access to the file system, where the kernel can. Descriptors that are already
/// open, and those that arrive over the socket, go on working.
void LockFileSystem()
{
    const long version =
        ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (version < 1) {
        return;
    }
    // Rights the first version knew, and one more each with versions 2 and 3.
    constexpr std::uint64_t kFirstRights = (1ull << 13) - 1;
    struct {
        std::uint64_t handledFileRights;
    } rules{kFirstRights | (version >= 2 ? 1ull << 13 : 0) | (version >= 3 ? 1ull << 14 : 0)};
    const int ruleset = int(::syscall(SYS_landlock_create_ruleset, &rules, sizeof(rules), 0));
    if (ruleset >= 0) {
        ::syscall(SYS_landlock_restrict_self, ruleset, 0);
        ::close(ruleset);
    }
}

/// What decoding needs. Everything else fails with EPERM.
constexpr const char* kAllowed[] = {"read",          "readv",
                                    "pread64",       "preadv",
                                    "recvmsg",       "sendmsg",
                                    "recvfrom",      "sendto",
                                    "poll",          "ppoll",
                                    "close",         "lseek",
                                    "fstat",         "munmap",
                                    "mremap",        "madvise",
                                    "brk",           "futex",
                                    "clock_gettime", "clock_getres",
                                    "gettimeofday",  "time",
                                    "alarm",         "setitimer",
                                    "getpid",        "gettid",
                                    "getrandom",     "exit",
                                    "exit_group",    "rt_sigreturn",
                                    "rt_sigaction",  "rt_sigprocmask",
                                    "sigaltstack",   "restart_syscall",
                                    "sched_yield",   "sysinfo",
                                    "getrusage",     "sched_getaffinity",
                                    "uname"};

/// What the sanitizers' own checks and reports need besides.
constexpr const char* kAllowedSanitizers[] = {"pipe", "pipe2", "write", "readlink", "readlinkat"};

/// What no decoder ever asks for: whoever does has been taken over.
constexpr const char* kDeadly[] = {"execve",
                                   "execveat",
                                   "fork",
                                   "vfork",
                                   "clone",
                                   "clone3",
                                   "ptrace",
                                   "socket",
                                   "connect",
                                   "bind",
                                   "listen",
                                   "process_vm_readv",
                                   "process_vm_writev",
                                   "bpf",
                                   "mount"};

/// A condition on one argument of a system call.
constexpr scmp_arg_cmp OnlyWhere(unsigned argument, scmp_compare comparison, scmp_datum_t first,
                                 scmp_datum_t second = 0)
{
    return {argument, comparison, first, second};
}

bool AddRule(scmp_filter_ctx filter, std::uint32_t action, const char* name)
{
    const int number = ::seccomp_syscall_resolve_name(name);
    return number == __NR_SCMP_ERROR || ::seccomp_rule_add(filter, action, number, 0) == 0;
}

bool AddRules(scmp_filter_ctx filter)
{
    bool done = true;
    for (const char* name : kAllowed) {
        done = done && AddRule(filter, SCMP_ACT_ALLOW, name);
    }
    if (kSanitized) {
        for (const char* name : kAllowedSanitizers) {
            done = done && AddRule(filter, SCMP_ACT_ALLOW, name);
        }
    }
    // A sanitizer's report starts helpers of its own; there a mere refusal must do.
    for (const char* name : kDeadly) {
        done = done && (kSanitized || AddRule(filter, SCMP_ACT_KILL_PROCESS, name));
    }
    // Memory, but none that can be executed.
    for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mprotect)}) {
        done = done
            && ::seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 1,
                                  OnlyWhere(2, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0))
                == 0;
    }
    // The state of an open descriptor, messages of a dying library, and its own end.
    done = done
        && ::seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(newfstatat), 1,
                              OnlyWhere(3, SCMP_CMP_EQ, AT_EMPTY_PATH))
            == 0;
    for (const int call : {SCMP_SYS(write), SCMP_SYS(writev)}) {
        if (kSanitized && call == SCMP_SYS(write)) {
            continue; // allowed above, without conditions
        }
        done = done
            && ::seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 1,
                                  OnlyWhere(0, SCMP_CMP_EQ, STDERR_FILENO))
                == 0;
    }
    const auto self = scmp_datum_t(::getpid());
    return done
        && ::seccomp_rule_add(filter, SCMP_ACT_ALLOW, SCMP_SYS(tgkill), 1,
                              OnlyWhere(0, SCMP_CMP_EQ, self))
        == 0;
}

bool LockSystemCalls()
{
    scmp_filter_ctx filter = ::seccomp_init(SCMP_ACT_ERRNO(EPERM));
    if (!filter) {
        return false;
    }
    constexpr std::uint32_t kBinaryTree = 2;
    ::seccomp_attr_set(filter, SCMP_FLTATR_CTL_OPTIMIZE, kBinaryTree);
    const bool done = AddRules(filter) && ::seccomp_load(filter) == 0;
    ::seccomp_release(filter);
    return done;
}

} // namespace

bool LockProcess()
{
    // The socket's end ends an idle process; this ends a busy one.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || !LimitResources()) {
        return false;
    }
    LockFileSystem();
    return LockSystemCalls();
}

} // namespace quillane::worker
