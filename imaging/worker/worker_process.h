#pragma once
#include "core/native_path.h"
#include "imaging/worker/shared_memory.h"
#include <memory>
#include <sys/types.h>

namespace quillane::worker {

/// One running decoding process with the program's end of its socket. Used by one thread at a
/// time. Its end kills and reaps the process, which holds nothing worth a farewell.
class WorkerProcess {
public:
    /// Starts the program, with an argument unless that is null. The calling thread must outlive
    /// the process: the system ends a process together with the thread that started it. Failure
    /// kFailureWorker.
    static std::unique_ptr<WorkerProcess> Spawn(const QString& program,
                                                const char* argument = nullptr);
    ~WorkerProcess();
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    int Socket() const { return mSocket.Fd(); }
    pid_t Pid() const { return mPid; }
    /// Whether the process is there and silent, as it has to be between requests. One that
    /// has not said yet that it is ready is silent or says just that.
    bool IsUsable() const;
    bool IsReady() const { return mReady; }
    void SetReady() { mReady = true; }
    /// A ticket no request of this process had.
    quint64 NextTicket() { return ++mTicket; }
    SharedMemory& Memory() { return mMemory; }

private:
    WorkerProcess(pid_t pid, FileHandle socket) : mPid(pid), mSocket(std::move(socket)) { }
    pid_t mPid;
    FileHandle mSocket;
    SharedMemory mMemory;
    quint64 mTicket = 0;
    bool mReady = false;
};

} // namespace quillane::worker
