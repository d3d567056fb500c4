#include "imaging/worker_main/service/ring_sink.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/socket_message.h"
#include <algorithm>
#include <cstddef>
#include <sys/mman.h>
#include <unistd.h>

namespace quillane::worker {

namespace {

void Say(const void* message, size_t bytes)
{
    if (!SendPacket(kSocketDescriptor, message, bytes)) {
        ::_exit(0);
    }
}

} // namespace

Window::~Window()
{
    if (mData) {
        ::munmap(mData, size_t(kWindowBytes));
    }
}

bool Window::Map(int descriptor)
{
    if (mData || ::lseek(descriptor, 0, SEEK_END) < kWindowBytes) {
        return false;
    }
    void* data =
        ::mmap(nullptr, size_t(kWindowBytes), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    mData = data == MAP_FAILED ? nullptr : static_cast<uchar*>(data);
    return mData != nullptr;
}

void RingSink::Begin(const PictureShape& shape)
{
    mRowBytes = RowBytes(shape.width, BitsOf(shape.layout));
    mHeight = shape.height;
    if (shape.width < 1 || shape.height < 1 || shape.width > limits::kMaxSide
        || shape.height > limits::kMaxSide || mRowBytes * mHeight > limits::kMaxPictureBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This %1 picture is too large: %2 by %3 pixels.")
                          .arg(mFormat)
                          .arg(shape.width)
                          .arg(shape.height));
    }
    mRing = RowsInWindow(mRowBytes);
    mStep = mHeight <= mRing ? mHeight + 1
                             : std::clamp<qint64>(kRowsStepBytes / mRowBytes, 1, mRing / 2);
    mListenStep = std::max<qint64>(1, kListenStepBytes / mRowBytes);

    for (qsizetype at = 0; at < shape.profile.size(); at += kMaxTextBytes) {
        PieceMessage piece;
        piece.head = {kProtocolMark, MessageKind::Profile, mTicket};
        piece.slot = 0;
        piece.count = qint32(std::min<qsizetype>(kMaxTextBytes, shape.profile.size() - at));
        std::memcpy(piece.bytes, shape.profile.constData() + at, size_t(piece.count));
        Say(&piece, offsetof(PieceMessage, bytes) + size_t(piece.count));
    }
    AnnounceMessage announce{};
    announce.head = {kProtocolMark, MessageKind::Announce, mTicket};
    announce.width = shape.width;
    announce.height = shape.height;
    announce.layout = shape.layout;
    announce.fileDepth = shape.fileDepth;
    announce.exact = shape.exact ? 1 : 0;
    announce.colourCount = qint32(std::min<size_t>(shape.colours.size(), kMaxColours));
    std::copy_n(shape.colours.begin(), announce.colourCount, announce.colours);
    Say(&announce, sizeof(announce));
    while (!mGranted) {
        Listen(true);
    }
}

void RingSink::Listen(bool wait)
{
    union {
        MessageHead head;
        GrantMessage grant;
        TakenMessage taken;
        RequestMessage largest;
    } said;
    const Packet packet =
        ReceivePacket(kSocketDescriptor, &said, sizeof(said), wait ? 0 : MSG_DONTWAIT);
    if (packet.bytes < 0) {
        return;
    }
    if (packet.bytes == 0 || !packet.whole || packet.bytes < ssize_t(sizeof(MessageHead))) {
        ::_exit(0);
    }
    if (said.head.ticket == mTicket) {
        switch (said.head.kind) {
        case MessageKind::Grant:
            if (said.grant.fresh && !mWindow.Map(packet.descriptor.Fd())) {
                throw Failure(kFailureLimit,
                              QStringLiteral("There is not enough memory for this picture."));
            }
            mGranted = mWindow.Data() != nullptr;
            break;
        case MessageKind::Taken:
            mTaken = std::max<qint64>(mTaken, said.taken.rows);
            break;
        case MessageKind::Cancel:
            throw Failure(kFailureCancelled, QStringLiteral("Cancelled."));
        default:
            break;
        }
    }
    if (!wait) {
        Listen(false);
    }
}

void RingSink::SendRows()
{
    const RowsMessage rows{{kProtocolMark, MessageKind::Rows, mTicket}, qint32(mGiven)};
    Say(&rows, sizeof(rows));
    mSaid = mGiven;
}

uchar* RingSink::NextRow()
{
    if (mGiven >= mHeight) {
        throw Failure(kFailureGeneral, QStringLiteral("A decoder gave too many rows."));
    }
    if (mGiven - mSaid >= mStep) {
        SendRows();
    }
    if (mGiven - mHeard >= mListenStep) {
        mHeard = mGiven;
        Listen(false);
    }
    while (mGiven - mTaken >= mRing) {
        Listen(true);
    }
    return mWindow.Data() + mGiven++ % mRing * mRowBytes;
}

} // namespace quillane::worker
