#pragma once
// One run of quillane-scan.
#include "core/native_path.h"
#include "platform/desktop/scan_protocol.h"
#include "platform/scanner.h"
#include <sys/types.h>

namespace quillane {

/// How long the driver of a scanner may say nothing, and how long it may take to stop, before it
/// is given up. Milliseconds.
struct ScanPatience {
    int quiet = 120'000; ///< lamps warm up, carriages come home
    int stop = 12'000;   ///< as quillane-scan itself grants a driver, and a little more
};

class ScanProcess {
public:
    /// Starts the program with its orders in a group of its own. Failure kFailureWorker.
    ScanProcess(const QString& program, const QList<QByteArray>& orders, ScanPatience patience);
    /// Asks it to stop if it has not come to its end, and ends it for good when it does not.
    ~ScanProcess();
    ScanProcess(const ScanProcess&) = delete;
    ScanProcess& operator=(const ScanProcess&) = delete;

    struct Message {
        scan::Kind kind = scan::Kind::Alive;
        QByteArray bytes;
    };
    /// The next message. progress is told `part` while none comes. Failure kFailureWorker for a
    /// process that crashed, hangs or breaks the rules, kFailureCancelled.
    Message Next(const ScanProgress& progress, double part);
    /// Nothing more is wanted, and what it does now is of no worth: it is ended at once.
    void EndAtOnce() { mPatience.stop = 0; }

private:
    bool Fill(QByteArray& bytes, qsizetype size, const ScanProgress& progress, double part);
    [[noreturn]] void FailAsGone();
    bool HasEnded(int waitMs);

    pid_t mPid = -1;
    FileHandle mSocket, mEnd; ///< mEnd is readable when the process has ended
    ScanPatience mPatience;
    bool mReaped = false;
    int mStatus = 0;
};

} // namespace quillane
