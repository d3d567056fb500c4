#include "imaging/worker/worker_process.h"
#include "core/failure.h"
#include "imaging/worker/protocol.h"
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillane::worker {

namespace {

/// The variables a decoding process gets: those that sanitizers and the loader look for.
std::vector<QByteArray> WorkerEnvironment()
{
    std::vector<QByteArray> kept;
    for (const char* name : {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = ::getenv(name)) {
            kept.push_back(QByteArray(name) + '=' + value);
        }
    }
    kept.push_back("LC_ALL=C.UTF-8");
    return kept;
}

/// Owns what posix_spawn is told.
struct SpawnPlan {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    SpawnPlan()
    {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawnattr_init(&attributes);
    }
    ~SpawnPlan()
    {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }
};

} // namespace

std::unique_ptr<WorkerProcess> WorkerProcess::Spawn(const QString& program, const char* argument)
{
    int pair[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair) != 0) {
        throw Failure(kFailureWorker,
                      QStringLiteral("The picture decoder could not be started: the system has "
                                     "no more connections."));
    }
    FileHandle ours(pair[0]);
    const FileHandle theirs(pair[1]);

    SpawnPlan plan;
    ::posix_spawn_file_actions_addopen(&plan.actions, 0, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_addopen(&plan.actions, 1, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_adddup2(&plan.actions, theirs.Fd(), kSocketDescriptor);
    ::posix_spawn_file_actions_addclosefrom_np(&plan.actions, kSocketDescriptor + 1);
    sigset_t none, all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_setsigmask(&plan.attributes, &none);
    ::posix_spawnattr_setsigdefault(&plan.attributes, &all);
    ::posix_spawnattr_setflags(&plan.attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    QByteArray path = BytesFromPath(program);
    QByteArray word(argument);
    char* const arguments[] = {path.data(), argument ? word.data() : nullptr, nullptr};
    std::vector<QByteArray> environment = WorkerEnvironment();
    std::vector<char*> variables;
    variables.reserve(environment.size() + 1);
    for (QByteArray& one : environment) {
        variables.push_back(one.data());
    }
    variables.push_back(nullptr);

    pid_t pid = -1;
    const int error = ::posix_spawn(&pid, path.constData(), &plan.actions, &plan.attributes,
                                    arguments, variables.data());
    if (error != 0) {
        throw Failure(kFailureWorker,
                      QStringLiteral("The picture decoder %1 could not be started: %2.")
                          .arg(program, QString::fromLocal8Bit(::strerror(error))));
    }
    return std::unique_ptr<WorkerProcess>(new WorkerProcess(pid, std::move(ours)));
}

WorkerProcess::~WorkerProcess()
{
    mSocket = FileHandle();
    ::kill(mPid, SIGKILL);
    while (::waitpid(mPid, nullptr, 0) < 0 && errno == EINTR) { }
}

bool WorkerProcess::IsUsable() const
{
    pollfd one{Socket(), POLLIN, 0};
    const int count = ::poll(&one, 1, 0);
    if (count <= 0) {
        return count == 0;
    }
    return (one.revents & (POLLHUP | POLLERR | POLLNVAL)) == 0 && !mReady;
}

} // namespace quillane::worker
