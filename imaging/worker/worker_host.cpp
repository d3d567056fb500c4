#include "imaging/worker/worker_host.h"
#include "core/failure.h"
#include "imaging/comments/slots.h"
#include "imaging/limits.h"
#include "imaging/worker/exchange.h"
#include "imaging/worker/reply_check.h"
#include <algorithm>
#include <cstring>

namespace quillane::worker {

namespace {

/// Copies the rows that became ready since the last call out of the window, which the process
/// can write to at any time, into the picture, which it cannot reach.
class RowCopier {
public:
    RowCopier(const CheckedPicture& picture, const uchar* window, QImage& to)
        : mRowBytes(picture.rowBytes),
          mHeight(picture.said.height),
          mRing(RowsInWindow(mRowBytes)),
          mWindow(window),
          mTo(to.bits())
    { }
    /// False when the number of rows makes no sense.
    bool CopyUpTo(qint64 rows)
    {
        if (rows < mRows || rows > mHeight || rows - mRows > mRing) {
            return false;
        }
        while (mRows < rows) {
            const qint64 place = mRows % mRing;
            const qint64 count = std::min(rows - mRows, mRing - place);
            std::memcpy(mTo + mRows * mRowBytes, mWindow + place * mRowBytes,
                        size_t(count * mRowBytes));
            mRows += count;
        }
        return true;
    }
    /// Whether the process has to hear how far the copy is.
    bool NeedsWindowAgain() const { return mHeight > mRing; }

private:
    qint64 mRowBytes, mHeight, mRing;
    const uchar* mWindow;
    uchar* mTo;
    qint64 mRows = 0;
};

} // namespace

void Configure(const QString& program, int maxProcesses)
{
    SharedPool().Configure(program, maxProcesses);
    constexpr int kMostForClips = 2; // they are larger, and clips are fewer than pictures
    ClipPool().Configure(program, std::min(maxProcesses, kMostForClips));
}

void WarmUp()
{
    SharedPool().WarmUp();
}

void Shutdown()
{
    SharedPool().Shutdown();
    ClipPool().Shutdown();
}

ImageFacts Probe(FileSource& source, const char* codecName)
{
    Exchange exchange(PoolFor(codecName), codecName, nullptr);
    exchange.Ask(MessageKind::Probe, source.Fd(), source.Size(), 0, 0, 0, limits::kWorkerSeconds);
    if (exchange.Next() != MessageKind::Facts) {
        exchange.Lied();
    }
    const FactsMessage said = exchange.As<FactsMessage>();
    exchange.Finish();
    std::optional<ImageFacts> facts = CheckFacts(said, source.Size(), exchange.Format());
    if (!facts) {
        exchange.Lied();
    }
    return *facts;
}

Bitmap Decode(FileSource& source, const char* codecName, const DecodeRequest& request)
{
    Exchange exchange(PoolFor(codecName), codecName, request.cancelled);
    exchange.Ask(MessageKind::Decode, source.Fd(), source.Size(), request.page,
                 request.atLeast.width(), request.atLeast.height(), limits::kWorkerDecodeSeconds);
    QByteArray profile;
    MessageKind kind;
    while ((kind = exchange.Next()) == MessageKind::Profile) {
        const PieceMessage& piece = exchange.AsPiece();
        if (piece.count < 1 || profile.size() + piece.count > limits::kMaxFieldBytes) {
            exchange.Lied();
        }
        profile.append(piece.bytes, piece.count);
    }
    if (kind != MessageKind::Announce) {
        exchange.Lied();
    }
    const std::optional<CheckedPicture> picture =
        CheckAnnouncement(exchange.As<AnnounceMessage>(), exchange.Format());
    if (!picture) {
        exchange.Lied();
    }
    const uchar* window = exchange.Grant();
    QImage image = MakeImage(*picture);
    RowCopier copier(*picture, window, image);
    while ((kind = exchange.Next()) == MessageKind::Rows) {
        const qint32 rows = exchange.As<RowsMessage>().rows;
        if (!copier.CopyUpTo(rows)) {
            exchange.Lied();
        }
        if (copier.NeedsWindowAgain()) {
            exchange.Taken(rows);
        }
    }
    if (kind != MessageKind::Done || !copier.CopyUpTo(picture->said.height)) {
        exchange.Lied();
    }
    const bool partial = exchange.As<DoneMessage>().partial != 0;
    exchange.Finish();

    Bitmap bitmap(std::move(image), ModelOf(picture->said.layout), picture->said.fileDepth);
    bitmap.SetIcc(profile);
    bitmap.SetExact(picture->said.exact != 0);
    bitmap.SetPartial(partial);
    return bitmap;
}

CommentSet Comments(FileSource& source, const char* codecName)
{
    Exchange exchange(SharedPool(), codecName, nullptr);
    exchange.Ask(MessageKind::Comments, source.Fd(), source.Size(), 0, 0, 0,
                 limits::kWorkerSeconds);
    CommentSet set;
    MessageKind kind;
    for (int texts = 0; (kind = exchange.Next()) == MessageKind::Text; ++texts) {
        const PieceMessage& said = exchange.AsPiece();
        if (texts >= kMaxTexts || said.slot < kFirstSlot || said.slot > kLastSlot) {
            exchange.Lied();
        }
        set.Set(qint16(said.slot), QString::fromUtf8(said.bytes, said.count));
    }
    if (kind != MessageKind::Done) {
        exchange.Lied();
    }
    exchange.Finish();
    return set;
}

} // namespace quillane::worker
