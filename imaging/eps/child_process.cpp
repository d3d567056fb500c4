#include "imaging/eps/child_process.h"
#include "core/failure.h"
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace quillane::eps {

namespace {

/// Owns what posix_spawn is told.
struct ChildPlan {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    ChildPlan()
    {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawnattr_init(&attributes);
    }
    ~ChildPlan()
    {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }
    ChildPlan(const ChildPlan&) = delete;
    ChildPlan& operator=(const ChildPlan&) = delete;
};

void ChildLimit(pid_t pid, __rlimit_resource what, qint64 most)
{
    const rlimit limit{rlim_t(most), rlim_t(most)};
    ::prlimit(pid, what, &limit, nullptr);
}

/// Makes a pipe: `ours` reads from it, what comes back writes into it.
FileHandle ChildPipe(FileHandle& ours)
{
    int pair[2];
    if (::pipe2(pair, O_CLOEXEC) != 0) {
        throw Failure(kFailureWorker,
                      QStringLiteral("No program could be started: the system has no more pipes."));
    }
    ours = FileHandle(pair[0]);
    ::fcntl(pair[0], F_SETFL, O_NONBLOCK);
    return FileHandle(pair[1]);
}

std::vector<char*> ChildPointers(QList<QByteArray>& words)
{
    std::vector<char*> pointers;
    pointers.reserve(size_t(words.size()) + 1);
    for (QByteArray& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

ChildProcess::ChildProcess(const QByteArray& program, const QList<QByteArray>& arguments,
                           const FileHandle& input, const ChildLimits& limits)
{
    const FileHandle output = ChildPipe(mOutput);
    const FileHandle messages = ChildPipe(mMessages);

    ChildPlan plan;
    ::posix_spawn_file_actions_adddup2(&plan.actions, input.Fd(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&plan.actions, output.Fd(), STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&plan.actions, messages.Fd(), STDERR_FILENO);
    ::posix_spawn_file_actions_addclosefrom_np(&plan.actions, STDERR_FILENO + 1);
    ::posix_spawn_file_actions_addchdir_np(&plan.actions, "/");
    sigset_t none, all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_setsigmask(&plan.attributes, &none);
    ::posix_spawnattr_setsigdefault(&plan.attributes, &all);
    ::posix_spawnattr_setpgroup(&plan.attributes, 0);
    ::posix_spawnattr_setflags(
        &plan.attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);

    QList<QByteArray> words{program};
    words.append(arguments);
    // There is no folder for temporary files, so nothing can be left in one.
    QList<QByteArray> variables{"PATH=/usr/local/bin:/usr/bin:/bin", "LC_ALL=C.UTF-8",
                                "TMPDIR=/dev/null"};
    const std::vector<char*> argv = ChildPointers(words);
    const std::vector<char*> environment = ChildPointers(variables);
    const int error = ::posix_spawn(&mPid, argv.front(), &plan.actions, &plan.attributes,
                                    argv.data(), environment.data());
    if (error != 0) {
        mPid = -1;
        throw Failure(
            kFailureWorker,
            QStringLiteral("%1 could not be started: %2.")
                .arg(PathFromBytes(program), QString::fromLocal8Bit(std::strerror(error))));
    }
    ChildLimit(mPid, RLIMIT_CPU, limits.cpuSeconds);
    ChildLimit(mPid, RLIMIT_AS, limits.memoryBytes);
    ChildLimit(mPid, RLIMIT_FSIZE, limits.fileBytes);
    ChildLimit(mPid, RLIMIT_CORE, 0);
}

ChildProcess::~ChildProcess()
{
    if (mPid <= 0) {
        return;
    }
    // Its whole group, with what it may have started itself.
    ::kill(-mPid, SIGKILL);
    while (::waitpid(mPid, nullptr, 0) < 0 && errno == EINTR) { }
}

} // namespace quillane::eps
