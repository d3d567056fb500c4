#include "platform/desktop/scan_process.h"
#include "core/failure.h"
#include "core/posix_error.h"
#include <QElapsedTimer>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace quillane {

namespace {

constexpr int kScanLook = 100; // milliseconds between two questions whether to go on
constexpr int kScanEnd = 1000;

Failure NotStarted(const QString& program, int error)
{
    const Failure reason = FailureFromErrno(error, QStringLiteral("start"), program);
    return Failure(kFailureWorker,
                   QStringLiteral("The program that talks to scanners does not run. %1")
                       .arg(reason.Description()));
}

struct ScanSpawnPlan {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    ScanSpawnPlan()
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    ~ScanSpawnPlan()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    ScanSpawnPlan(const ScanSpawnPlan&) = delete;
    ScanSpawnPlan& operator=(const ScanSpawnPlan&) = delete;
};

} // namespace

ScanProcess::ScanProcess(const QString& program, const QList<QByteArray>& orders,
                         ScanPatience patience)
    : mPatience(patience)
{
    int pair[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair) != 0)
        throw NotStarted(program, errno);
    mSocket = FileHandle(pair[0]);
    const FileHandle theirs(pair[1]);

    // Drivers print as they please; in a group of its own what they start ends with them.
    ScanSpawnPlan plan;
    posix_spawn_file_actions_addopen(&plan.actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&plan.actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&plan.actions, theirs.Fd(), scan::kScanSocket);
    posix_spawn_file_actions_addclosefrom_np(&plan.actions, scan::kScanSocket + 1);
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&plan.attributes, &none);
    posix_spawnattr_setsigdefault(&plan.attributes, &all);
    posix_spawnattr_setpgroup(&plan.attributes, 0);
    posix_spawnattr_setflags(
        &plan.attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);

    QByteArray path = BytesFromPath(program);
    QList<QByteArray> texts = orders;
    std::vector<char*> arguments;
    arguments.reserve(size_t(texts.size()) + 2);
    arguments.push_back(path.data());
    for (QByteArray& text : texts)
        arguments.push_back(text.data());
    arguments.push_back(nullptr);
    const int error = posix_spawn(&mPid, path.constData(), &plan.actions, &plan.attributes,
                                  arguments.data(), environ);
    if (error != 0)
        throw NotStarted(program, error);
    // A driver's own children may keep the socket open behind a process that has crashed.
    mEnd = FileHandle(int(syscall(SYS_pidfd_open, mPid, 0)));
}

ScanProcess::~ScanProcess()
{
    shutdown(mSocket.Fd(), SHUT_WR);
    QElapsedTimer since;
    since.start();
    // What still comes is taken, so that nobody waits for it to be.
    while (!HasEnded(0) && since.elapsed() < mPatience.stop) {
        char rest[4096];
        const ssize_t count = recv(mSocket.Fd(), rest, sizeof rest, MSG_DONTWAIT);
        if (count <= 0)
            HasEnded(10);
    }
    kill(-mPid, SIGKILL);
    while (!mReaped && waitpid(mPid, &mStatus, 0) < 0 && errno == EINTR) { }
}

bool ScanProcess::HasEnded(int waitMs)
{
    if (mReaped)
        return true;
    if (waitMs > 0) {
        pollfd end{mEnd.Fd(), POLLIN, 0};
        poll(&end, mEnd.IsOpen() ? 1 : 0, waitMs);
    }
    // Left to be reaped until its group is gone: the number must not be given away.
    siginfo_t info{};
    return waitid(P_PID, id_t(mPid), &info, WEXITED | WNOHANG | WNOWAIT) == 0
        && info.si_pid == mPid;
}

void ScanProcess::FailAsGone()
{
    // Its socket closes a little before it has ended.
    HasEnded(kScanEnd);
    siginfo_t info{};
    QString how = QStringLiteral("has ended");
    if (waitid(P_PID, id_t(mPid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == mPid
        && info.si_code != CLD_EXITED)
        how = QStringLiteral("has crashed (signal %1)").arg(info.si_status);
    throw Failure(kFailureWorker,
                  QStringLiteral("The driver of the scanner %1. Switch the scanner off and on, "
                                 "and try again.")
                      .arg(how));
}

bool ScanProcess::Fill(QByteArray& bytes, qsizetype size, const ScanProgress& progress, double part)
{
    bytes.resize(size);
    QElapsedTimer quiet;
    quiet.start();
    for (qsizetype at = 0; at < size;) {
        // First the end, then the socket: what was sent before the end is read all the same.
        const bool ended = HasEnded(0);
        const ssize_t count =
            recv(mSocket.Fd(), bytes.data() + at, size_t(size - at), MSG_DONTWAIT);
        if (count > 0) {
            at += count;
            quiet.restart();
            continue;
        }
        if (count == 0 || ended || (errno != EAGAIN && errno != EINTR))
            return false;
        if (progress && !progress(part)) {
            throw Failure(kFailureCancelled, QStringLiteral("The scan was cancelled."));
        }
        if (quiet.elapsed() > mPatience.quiet) {
            mPatience.stop = std::min(mPatience.stop, kScanLook);
            throw Failure(kFailureWorker,
                          QStringLiteral("The scanner does not answer. Look whether it is "
                                         "switched on and connected, and try again."));
        }
        pollfd both[2] = {{mSocket.Fd(), POLLIN, 0}, {mEnd.Fd(), POLLIN, 0}};
        poll(both, mEnd.IsOpen() ? 2 : 1, kScanLook);
    }
    return true;
}

ScanProcess::Message ScanProcess::Next(const ScanProgress& progress, double part)
{
    QByteArray bytes;
    if (!Fill(bytes, sizeof(scan::Head), progress, part))
        FailAsGone();
    scan::Head head;
    std::memcpy(&head, bytes.constData(), sizeof head);
    if (head.mark != scan::kMark || head.size > scan::kMostMessage) {
        EndAtOnce();
        throw Failure(kFailureWorker,
                      QStringLiteral("The driver of the scanner sends what cannot be understood."));
    }
    if (!Fill(bytes, qsizetype(head.size), progress, part))
        FailAsGone();
    return {head.kind, bytes};
}

} // namespace quillane
