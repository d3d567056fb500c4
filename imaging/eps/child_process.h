#pragma once
#include "core/native_path.h"
#include <QList>
#include <sys/types.h>

namespace quillane::eps {

/// What a program may use at most.
struct ChildLimits {
    int cpuSeconds = 10;
    qint64 memoryBytes = qint64(512) << 20;
    qint64 fileBytes = qint64(64) << 20; ///< that it may write into one file
};

/// A program that reads one file and writes into two pipes; it is ended when this object goes.
class ChildProcess {
public:
    /// Starts it in the root folder with hardly any variables. Failure when it cannot be.
    ChildProcess(const QByteArray& program, const QList<QByteArray>& arguments,
                 const FileHandle& input, const ChildLimits& limits);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    int Output() const { return mOutput.Fd(); }     ///< to be read without waiting
    int Messages() const { return mMessages.Fd(); } ///< the same

private:
    FileHandle mOutput;
    FileHandle mMessages;
    pid_t mPid = -1;
};

} // namespace quillane::eps
