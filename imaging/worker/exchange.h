#pragma once
#include "imaging/worker/protocol.h"
#include "imaging/worker/request_time.h"
#include "imaging/worker/worker_pool.h"
#include <QByteArray>
#include <chrono>

namespace quillane::worker {

/// One request to one decoding process: taken from the pool at the beginning, given back at
/// the end when everything went by the protocol, ended otherwise.
class Exchange {
public:
    /// What the process is asked for, in the words of failures.
    enum class Task : quint8 { Decoding, Encoding };
    /// codecName names the format in the words of failures. Failure as WorkerPool::Take.
    Exchange(WorkerPool& pool, const char* codecName, const std::atomic<bool>* cancelled,
             Task task = Task::Decoding);
    ~Exchange();
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    /// Sends the request; from here the process has `seconds` for everything.
    void Ask(MessageKind kind, int fileDescriptor, qint64 fileBytes, qint32 page, qint32 minWidth,
             qint32 minHeight, int seconds);
    /// Sends the request to encode, its head, codec and `originalBytes` filled in here (0 bytes
    /// or more with a descriptor), then the window. `seconds` as above.
    void AskToEncode(EncodeMessage& request, int originalDescriptor, qint64 originalBytes,
                     int seconds);
    /// The window, made when it was not there; what is written before AskToEncode is read by it.
    uchar* Window();
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
    /// Tells how many rows of a picture to encode lie in the window or have lain there.
    void Filled(qint32 rows);
    /// Tells that a slot of the encoded file has been copied.
    void Copied();
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
    void StartTime(int seconds);
    [[noreturn]] void Fail(const char* words);
    template <typename Message> void Say(const Message& message, int descriptor = -1);

    WorkerPool& mPool;
    QString mFormat;
    QByteArray mCodec;
    const std::atomic<bool>* mCancelled;
    Task mTask;
    quint64 mGeneration;
    std::unique_ptr<WorkerProcess> mProcess;
    struct Aligned {
        alignas(16) char bytes[kMaxMessageBytes];
    };
    std::unique_ptr<Aligned> mStorage;
    RequestTime mTime;
    quint64 mTicket = 0;
    qint64 mBytes = 0;
    bool mHealthy = false;
    bool mWindowIsNew = false; ///< made here, and the process has not got it yet
};

} // namespace quillane::worker
