#include "platform/desktop/spawn.h"

#include "core/failure.h"
#include "core/native_path.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QThread>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace quillane {

namespace {

/// What posix_spawn is told besides the program; freed at the end of its life.
class SpawnPlan {
public:
    explicit SpawnPlan(const SpawnStreams& streams)
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        Lead(STDOUT_FILENO, streams.output);
        Lead(STDERR_FILENO, streams.errors);
        // The program gets signals as if a person had started it, whatever is blocked here.
        sigset_t all, none;
        sigfillset(&all);
        sigemptyset(&none);
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(
            &attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnPlan()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

private:
    void Lead(int stream, int to)
    {
        if (to >= 0) {
            posix_spawn_file_actions_adddup2(&actions, to, stream);
        } else {
            posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
        }
    }
};

bool FolderMayBeEntered(const QByteArray& path)
{
    return ::faccessat(AT_FDCWD, path.constData(), X_OK, AT_EACCESS) == 0;
}

Failure SpawnFailure(int error, const QString& program, const QString& folder)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        if (StatPath(program).type == FileType::Regular) {
            return {kFailureNoFile,
                    QStringLiteral("%1 needs another program to run, which is not there; a script "
                                   "names it in its first line.")
                        .arg(program)};
        }
        return {kFailureNoFile, QStringLiteral("There is no program %1.").arg(program)};
    case EACCES:
    case EPERM:
        if (!folder.isEmpty() && !FolderMayBeEntered(BytesFromPath(folder))) {
            return {kFailureDenied,
                    QStringLiteral("The folder %1 may not be entered.").arg(folder)};
        }
        return {kFailureDenied, QStringLiteral("%1 may not be run as a program.").arg(program)};
    case ENOEXEC:
        return {kFailureGeneral,
                QStringLiteral("%1 is no program that this computer can run. A script needs a "
                               "first line such as \"#!/bin/sh\".")
                    .arg(program)};
    default:
        return {kFailureGeneral,
                QStringLiteral("%1 could not be started: %2.")
                    .arg(program, QString::fromLocal8Bit(std::strerror(error)))};
    }
}

} // namespace

pid_t Spawn(const QString& program, const QList<QByteArray>& arguments, const QString& folder,
            const SpawnStreams& streams)
{
    SpawnPlan plan(streams);
    const QByteArray startIn = BytesFromPath(folder);
    if (!folder.isEmpty()) {
        if (StatPath(folder).type != FileType::Folder) {
            throw Failure(kFailureNoFile, QStringLiteral("There is no folder %1.").arg(folder));
        }
        posix_spawn_file_actions_addchdir_np(&plan.actions, startIn.constData());
    }
    QList<QByteArray> words{BytesFromPath(program)};
    words.append(arguments);
    std::vector<char*> argv;
    argv.reserve(size_t(words.size()) + 1);
    for (QByteArray& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    pid_t child = 0;
    const int error =
        ::posix_spawn(&child, argv.front(), &plan.actions, &plan.attributes, argv.data(), environ);
    if (error != 0) {
        throw SpawnFailure(error, program, folder);
    }
    return child;
}

void ReapWhenEnded(pid_t child)
{
    auto* const application = QCoreApplication::instance();
    auto ended = std::make_shared<FileHandle>(int(::syscall(SYS_pidfd_open, child, 0)));
    if (!ended->IsOpen() || !application || QThread::currentThread() != application->thread()) {
        return;
    }
    auto* const notifier = new QSocketNotifier(ended->Fd(), QSocketNotifier::Read, application);
    QObject::connect(notifier, &QSocketNotifier::activated, application, [=] {
        notifier->setEnabled(false);
        ::waitpid(child, nullptr, WNOHANG);
        notifier->deleteLater();
    });
    QObject::connect(notifier, &QObject::destroyed, [ended] { *ended = FileHandle(); });
}

void SpawnDetached(const QString& program, const QList<QByteArray>& arguments,
                   const QString& folder)
{
    ReapWhenEnded(Spawn(program, arguments, folder, {}));
}

} // namespace quillane
