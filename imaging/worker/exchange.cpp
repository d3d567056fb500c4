#include "imaging/worker/exchange.h"
#include "core/failure.h"
#include "imaging/worker/reply_check.h"
#include "imaging/worker/socket_message.h"
#include <algorithm>
#include <cstddef>
#include <poll.h>

namespace quillane::worker {

namespace {
constexpr std::chrono::seconds kStartSeconds{30};         ///< until a new process is ready
constexpr std::chrono::milliseconds kLookAtCancelled{10}; ///< how often the flag is looked at
constexpr std::chrono::milliseconds kFarewell{60};        ///< for the end of a cancelled request
} // namespace

Exchange::Exchange(WorkerPool& pool, const char* codecName, const std::atomic<bool>* cancelled,
                   Task task)
    : mPool(pool),
      mFormat(QString::fromLatin1(codecName)),
      mCodec(codecName),
      mCancelled(cancelled),
      mTask(task),
      mGeneration(pool.Generation()),
      mProcess(pool.Take(cancelled)),
      mStorage(std::make_unique_for_overwrite<Aligned>())
{ }

Exchange::~Exchange()
{
    if (!mHealthy) {
        mProcess.reset();
    }
    mPool.GiveBack(std::move(mProcess), mGeneration);
}

void Exchange::Fail(const char* words)
{
    const bool encoding = mTask == Task::Encoding;
    throw Failure(kFailureWorker,
                  QString::fromLatin1(words).arg(
                      mFormat, encoding ? QStringLiteral("encoder") : QStringLiteral("decoder"),
                      encoding ? QStringLiteral("picture") : QStringLiteral("file")),
                  mFormat);
}

void Exchange::Stopped()
{
    Fail("The %1 %2 stopped working on this %3.");
}

void Exchange::Slow()
{
    Fail("The %1 %2 took too long over this %3.");
}

void Exchange::Lied()
{
    mHealthy = false;
    Fail("The %1 %2 gave an answer that makes no sense for this %3.");
}

template <typename Message> void Exchange::Say(const Message& message, int descriptor)
{
    if (!SendPacket(mProcess->Socket(), &message, sizeof(message), descriptor)) {
        Stopped();
    }
}

bool Exchange::Wait(Clock::time_point until, bool mayCancel)
{
    for (;;) {
        if (mayCancel && mCancelled && mCancelled->load()) {
            Abandon();
        }
        // What has come counts, however late it is looked at.
        const auto left =
            std::max(std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()),
                     std::chrono::milliseconds(0));
        const auto slice = mayCancel && mCancelled ? std::min(left, kLookAtCancelled) : left;
        pollfd one{mProcess->Socket(), POLLIN, 0};
        if (::poll(&one, 1, int(slice.count())) > 0) {
            return true;
        }
        if (left.count() == 0) {
            return false;
        }
    }
}

bool Exchange::Read()
{
    const Packet packet =
        ReceivePacket(mProcess->Socket(), mStorage->bytes, sizeof(mStorage->bytes), MSG_DONTWAIT);
    if (packet.bytes < 0) {
        return false;
    }
    if (packet.bytes == 0) {
        Stopped();
    }
    mBytes = packet.bytes;
    if (!packet.whole || packet.descriptor.IsOpen() || mBytes < qint64(sizeof(MessageHead))
        || reinterpret_cast<const MessageHead*>(mStorage->bytes)->mark != kProtocolMark) {
        Lied();
    }
    return true;
}

void Exchange::AwaitReady()
{
    const Clock::time_point until = Clock::now() + kStartSeconds;
    while (!mProcess->IsReady()) {
        if (!Wait(until, true)) {
            Slow();
        }
        if (Read()) {
            if (As<ReadyMessage>().head.kind != MessageKind::Ready) {
                Lied();
            }
            mProcess->SetReady();
        }
    }
}

void Exchange::StartTime(int seconds)
{
    mTime.Start(std::chrono::seconds(seconds), Clock::now(), ProcessorTime(mProcess->Pid()));
}

void Exchange::Ask(MessageKind kind, int fileDescriptor, qint64 fileBytes, qint32 page,
                   qint32 minWidth, qint32 minHeight, int seconds)
{
    AwaitReady();
    mTicket = mProcess->NextTicket();
    RequestMessage request{};
    request.head = {kProtocolMark, kind, mTicket};
    request.fileBytes = fileBytes;
    request.page = page;
    request.atLeastWidth = minWidth;
    request.atLeastHeight = minHeight;
    std::copy_n(mCodec.constData(), std::min<qsizetype>(mCodec.size(), sizeof(request.codec) - 1),
                request.codec);
    StartTime(seconds);
    Say(request, fileDescriptor);
}

uchar* Exchange::Window()
{
    mWindowIsNew = mWindowIsNew || !mProcess->Memory().IsMade();
    mProcess->Memory().Make();
    return mProcess->Memory().WritableData();
}

void Exchange::AskToEncode(EncodeMessage& request, int originalDescriptor, qint64 originalBytes,
                           int seconds)
{
    Window();
    AwaitReady();
    mTicket = mProcess->NextTicket();
    request.head = {kProtocolMark, MessageKind::Encode, mTicket};
    request.originalBytes = originalDescriptor < 0 ? -1 : originalBytes;
    std::copy_n(mCodec.constData(), std::min<qsizetype>(mCodec.size(), sizeof(request.codec) - 1),
                request.codec);
    StartTime(seconds);
    Say(request, originalDescriptor);
    Grant();
}

MessageKind Exchange::Next()
{
    do {
        const bool answered = Wait(mTime.NextLook(), true);
        if (!mTime.MayGoOn(Clock::now(), ProcessorTime(mProcess->Pid()), answered)) {
            Slow();
        }
    } while (!Read());
    const auto& head = *reinterpret_cast<const MessageHead*>(mStorage->bytes);
    if (head.ticket != mTicket) {
        Lied();
    }
    if (head.kind == MessageKind::Refused) {
        Refuse();
    }
    return head.kind;
}

void Exchange::Refuse()
{
    const RefusedMessage said = As<RefusedMessage>();
    if (said.bytes < 1 || said.bytes >= qint32(sizeof(said.words))) {
        Lied();
    }
    std::optional<QString> words = CheckText(said.words, said.bytes + 1);
    if (!words || words->isEmpty()) {
        Lied();
    }
    words->removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
    switch (said.number) {
    case kFailureUnreadable:
    case kFailureLimit:
    case kFailureGeneral:
    case kFailureIo:
    case kFailureCancelled:
        break;
    default:
        Lied();
    }
    mHealthy = true;
    throw Failure(said.number, *words, mFormat);
}

void Exchange::Abandon()
{
    const auto cancelled = [this] {
        return Failure(kFailureCancelled, QStringLiteral("Cancelled."), mFormat);
    };
    if (mTicket == 0) {
        // Nothing was asked yet; a process that is still starting is as good as before.
        mHealthy = true;
        throw cancelled();
    }
    const CancelMessage cancel{{kProtocolMark, MessageKind::Cancel, mTicket}};
    const Clock::time_point until = Clock::now() + kFarewell;
    if (SendPacket(mProcess->Socket(), &cancel, sizeof(cancel))) {
        // One that cannot stop in time is ended by the destructor.
        ResumeNext([&] {
            while (!mHealthy && Wait(until, false)) {
                if (!Read()) {
                    continue;
                }
                const auto& head = *reinterpret_cast<const MessageHead*>(mStorage->bytes);
                if (head.ticket != mTicket) {
                    Lied();
                }
                mHealthy = head.kind == MessageKind::Refused || head.kind == MessageKind::Done
                    || head.kind == MessageKind::Facts;
            }
        });
    }
    throw cancelled();
}

const PieceMessage& Exchange::AsPiece()
{
    const auto& piece = *reinterpret_cast<const PieceMessage*>(mStorage->bytes);
    constexpr qint64 kHead = offsetof(PieceMessage, bytes);
    if (mBytes < kHead || piece.count < 0 || piece.count > kMaxTextBytes
        || mBytes != kHead + piece.count) {
        Lied();
    }
    return piece;
}

const uchar* Exchange::Grant()
{
    Window();
    const SharedMemory& window = mProcess->Memory();
    const GrantMessage grant{{kProtocolMark, MessageKind::Grant, mTicket}, mWindowIsNew ? 1u : 0u};
    Say(grant, mWindowIsNew ? window.Descriptor() : -1);
    mWindowIsNew = false;
    return window.Data();
}

void Exchange::Taken(qint32 rows)
{
    Say(TakenMessage{{kProtocolMark, MessageKind::Taken, mTicket}, rows});
}

void Exchange::Filled(qint32 rows)
{
    Say(RowsMessage{{kProtocolMark, MessageKind::Rows, mTicket}, rows});
}

void Exchange::Copied()
{
    Say(CopiedMessage{{kProtocolMark, MessageKind::Copied, mTicket}});
}

} // namespace quillane::worker
