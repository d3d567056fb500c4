#include "imaging/worker_main/service/encode_link.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/socket_message.h"
#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace quillane::worker {

namespace {

template <typename Message> void Tell(const Message& message)
{
    if (!SendPacket(kSocketDescriptor, &message, sizeof(message))) {
        ::_exit(0);
    }
}

[[noreturn]] void RefuseRequest()
{
    throw Failure(kFailureGeneral, QStringLiteral("This picture cannot be encoded."));
}

bool IsSound(const EncodeMessage& said)
{
    const auto piece = [](qint64 bytes) { return bytes >= 0 && bytes <= limits::kMaxFieldBytes; };
    const bool none = said.width == 0 && said.height == 0;
    const bool some = said.width >= 1 && said.height >= 1 && said.width <= limits::kMaxSide
        && said.height <= limits::kMaxSide && qint64(said.width) * said.height <= limits::kMaxPixels
        && BitsOf(said.layout) > 0;
    return (none || some) && piece(said.profileBytes) && piece(said.textBytes)
        && qint64(said.profileBytes) + said.textBytes <= kWindowBytes && said.colourCount >= 0
        && said.colourCount <= kMaxColours && said.originalBytes >= -1;
}

} // namespace

EncodeLink::EncodeLink(Window& window, const EncodeMessage& request)
    : mWindow(window),
      mRequest(request)
{
    while (!mGranted) {
        Listen();
    }
}

void EncodeLink::Begin(EncodeWish& wish)
{
    if (!IsSound(mRequest)) {
        RefuseRequest();
    }
    mShape.width = mRequest.width;
    mShape.height = mRequest.height;
    mShape.layout = mRequest.layout;
    mShape.fileDepth = mRequest.fileDepth;
    mShape.colours.assign(mRequest.colours, mRequest.colours + mRequest.colourCount);
    const auto* at = reinterpret_cast<const char*>(mWindow.Data());
    mShape.profile = QByteArray(at, mRequest.profileBytes);
    const QByteArray texts(at + mRequest.profileBytes, mRequest.textBytes);
    for (qsizetype i = 0; i < texts.size();) {
        TextChangeHead head;
        if (texts.size() - i < qsizetype(sizeof(head))) {
            RefuseRequest();
        }
        std::memcpy(&head, texts.constData() + i, sizeof(head));
        i += qsizetype(sizeof(head));
        if (head.bytes < 0 || head.bytes > texts.size() - i) {
            RefuseRequest();
        }
        wish.texts.push_back({qint16(head.slot), texts.mid(i, head.bytes)});
        i += head.bytes;
    }
    wish.format = qint16(mRequest.format);
    wish.bits = mRequest.bits;
    wish.quality = mRequest.quality;
    wish.xResolution = mRequest.xResolution;
    wish.yResolution = mRequest.yResolution;
    wish.layout = {quint8(mRequest.horizontal), quint8(mRequest.vertical),
                   quint16(mRequest.compression), mRequest.progressive != 0};
    if (mShape.width > 0) {
        mRowBytes = RowBytes(mShape.width, BitsOf(mShape.layout));
        mRing = RowsWhileEncoding(mRowBytes);
    }
    SayTaken();
}

void EncodeLink::SayTaken()
{
    Tell(TakenMessage{{kProtocolMark, MessageKind::Taken, mRequest.head.ticket}, qint32(mUsed)});
    mSaid = mUsed;
}

const uchar* EncodeLink::NextRow()
{
    if (mUsed >= mShape.height) {
        throw Failure(kFailureGeneral, QStringLiteral("An encoder asked for too many rows."));
    }
    // The encoder is done with all rows before this one.
    if (mUsed - mSaid >= std::max<qint64>(1, mRing / 2) && mSaid + mRing < mShape.height) {
        SayTaken();
    }
    while (mUsed >= mFilled) {
        Listen();
    }
    return mWindow.Data() + mUsed++ % mRing * mRowBytes;
}

uchar* EncodeLink::Slot() const
{
    return mWindow.Data() + kEncodeRowsBytes + mSlots % kOutputSlots * kOutputSlotBytes;
}

void EncodeLink::SendSlot()
{
    if (mInSlot == 0) {
        return;
    }
    Tell(OutputMessage{
        {kProtocolMark, MessageKind::Output, mRequest.head.ticket}, mSlotAt, qint32(mInSlot)});
    ++mSlots;
    ++mWaiting;
    mInSlot = 0;
    while (mWaiting >= kOutputSlots) {
        Listen();
    }
}

void EncodeLink::WriteAt(qint64 position, const void* bytes, qint64 count)
{
    if (count <= 0) {
        return;
    }
    if (position < 0 || position > mSize + kMaxOutputGap
        || position + count > limits::kMaxEncodedBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("The file of this picture would become larger than %1 MB.")
                          .arg(limits::kMaxEncodedBytes >> 20));
    }
    const auto* from = static_cast<const uchar*>(bytes);
    mSize = std::max(mSize, position + count);
    while (count > 0) {
        // Writing on behind the slot's end or over what it holds stays within it.
        const qint64 place = position - mSlotAt;
        if (mInSlot > 0 && (place < 0 || place > mInSlot || place >= kOutputSlotBytes)) {
            SendSlot();
            continue;
        }
        if (mInSlot == 0) {
            mSlotAt = position;
        }
        const qint64 in = position - mSlotAt;
        const qint64 part = std::min(count, kOutputSlotBytes - in);
        std::memcpy(Slot() + in, from, size_t(part));
        mInSlot = std::max(mInSlot, in + part);
        position += part;
        from += part;
        count -= part;
    }
}

void EncodeLink::Finish()
{
    SendSlot();
    while (mWaiting > 0) {
        Listen();
    }
}

void EncodeLink::Listen()
{
    union {
        MessageHead head;
        GrantMessage grant;
        RowsMessage rows;
    } said;
    const Packet packet = ReceivePacket(kSocketDescriptor, &said, sizeof(said));
    if (packet.bytes < ssize_t(sizeof(MessageHead)) || !packet.whole) {
        ::_exit(0);
    }
    if (said.head.ticket != mRequest.head.ticket) {
        return;
    }
    switch (said.head.kind) {
    case MessageKind::Grant:
        if (said.grant.fresh && !mWindow.Map(packet.descriptor.Fd())) {
            // Without the window no request can be served any more.
            ::_exit(0);
        }
        mGranted = mWindow.Data() != nullptr;
        break;
    case MessageKind::Rows:
        if (said.rows.rows > mShape.height || said.rows.rows - mSaid > mRing) {
            RefuseRequest();
        }
        mFilled = std::max<qint64>(mFilled, said.rows.rows);
        break;
    case MessageKind::Copied:
        mWaiting = std::max(0, mWaiting - 1);
        break;
    case MessageKind::Cancel:
        throw Failure(kFailureCancelled, QStringLiteral("Cancelled."));
    default:
        break;
    }
}

} // namespace quillane::worker
