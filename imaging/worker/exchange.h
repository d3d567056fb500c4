#pragma once
#include "imaging/worker/protocol.h"
#include "imaging/worker/worker_pool.h"
#include <QByteArray>
#include <chrono>

namespace quillane::worker {

/// One request to one decoding process: taken from the pool at the beginning, given back at
/// the end when everything went by the protocol, ended otherwise.
class Exchange {
public:
    /// codecName names the format in the words of failures. Failure as WorkerPool::Take.
    Exchange(WorkerPool& pool, const char* codecName, const std::atomic<bool>* cancelled);
    ~Exchange();
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    /// Sends the request; from here the process has `seconds` for everything.
    void Ask(MessageKind kind, int fileDescriptor, qint64 fileBytes, qint32 page, qint32 minWidth,
             qint32 minHeight, int seconds);
    /// Waits for the next message of this request. Failure: kFailureWorker when the process
    /// ended, was too slow or broke the protocol; kFailureCancelled; what the process refused
    /// the file with.
    MessageKind Next();
    /// The message Next found; broken protocol when it is not exactly that long.
    template <typename Message> const Message& As()
    {
        if (mBytes != qint64(sizeof(Message))) {
            Lied();
        }
        return *reinterpret_cast<const Message*>(mStorage->bytes);
    }
    /// The message Next found, which ends behind its last byte.
    const PieceMessage& AsPiece();
    /// Tells the process that it may write; the first time with the window. The window.
    const uchar* Grant();
    /// Tells how many rows have been copied.
    void Taken(qint32 rows);
    /// The request came to its end: the process can serve the next one.
    void Finish() { mHealthy = true; }
    /// Failure: the process said what makes no sense.
    [[noreturn]] void Lied();
    QString Format() const { return mFormat; }

private:
    using Clock = std::chrono::steady_clock;
    [[noreturn]] void Stopped();
    [[noreturn]] void Slow();
    [[noreturn]] void Abandon();
    [[noreturn]] void Refuse();
    /// False at the deadline; Failure when cancelled.
    bool Wait(Clock::time_point until, bool mayCancel);
    bool Read();
    void AwaitReady();

    WorkerPool& mPool;
    QString mFormat;
    QByteArray mCodec;
    const std::atomic<bool>* mCancelled;
    quint64 mGeneration;
    std::unique_ptr<WorkerProcess> mProcess;
    struct Aligned {
        alignas(16) char bytes[kMaxMessageBytes];
    };
    std::unique_ptr<Aligned> mStorage;
    Clock::time_point mDeadline;
    quint64 mTicket = 0;
    qint64 mBytes = 0;
    bool mHealthy = false;
};

} // namespace quillane::worker
