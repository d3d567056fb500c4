#pragma once
#include <QByteArray>
#include <QList>
#include <QString>
#include <sys/types.h>

namespace quillane {

/// Starts a program that outlives this one, in a session of its own, with the arguments as
/// bytes, in `folder` (empty: the current one). Its input and output go nowhere, and nobody
/// waits for it. Failure with words: kFailureNoFile when program or folder is missing,
/// kFailureDenied when it may not be run, kFailureGeneral for any other reason.
void SpawnDetached(const QString& program, const QList<QByteArray>& arguments,
                   const QString& folder = {});

/// Where the output of a program goes: open descriptors, or nowhere.
struct SpawnStreams {
    int output = -1;
    int errors = -1;
};
/// The same, for a caller that takes the exit status of the child itself (waitpid): the child's
/// process, which leads a process group of its own.
pid_t Spawn(const QString& program, const QList<QByteArray>& arguments, const QString& folder,
            const SpawnStreams& streams);
/// Takes that status for a caller that no longer wants it, when the child ends. Does nothing
/// without the application object.
void ReapWhenEnded(pid_t child);

} // namespace quillane
