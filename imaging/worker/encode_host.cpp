#include "core/failure.h"
#include "imaging/comments/slots.h"
#include "imaging/limits.h"
#include "imaging/worker/exchange.h"
#include "imaging/worker/picture_rows.h"
#include "imaging/worker/worker_host.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace quillane::worker {

namespace {

/// The changed comments as they go over.
QByteArray EncodeTexts(std::span<const CommentChange> changes)
{
    QByteArray bytes;
    for (const CommentChange& change : changes) {
        const QByteArray utf8 =
            change.value.IsEmpty() ? QByteArray() : change.value.Text().toUtf8();
        const TextChangeHead head{change.slot, qint32(utf8.size())};
        bytes.append(reinterpret_cast<const char*>(&head), qsizetype(sizeof(head)));
        bytes.append(utf8);
    }
    return bytes;
}

/// Takes the encoded file out of the slots.
class OutputCollector {
public:
    explicit OutputCollector(const uchar* window) : mSlots(window + kEncodeRowsBytes) { }
    /// False for bytes that no honest process sends.
    bool Take(const OutputMessage& said)
    {
        if (said.count < 1 || said.count > kOutputSlotBytes || said.position < 0
            || said.position > mFile.size() + kMaxOutputGap
            || said.position > limits::kMaxEncodedBytes - said.count) {
            return false;
        }
        const qint64 end = said.position + said.count;
        if (end > mFile.capacity()) {
            mFile.reserve(std::min(limits::kMaxEncodedBytes, std::max(end, mFile.size() * 3 / 2)));
        }
        if (end > mFile.size()) {
            const qint64 gap = said.position - mFile.size();
            if (gap > 0) {
                mFile.append(gap, '\0');
            }
            mFile.resize(end);
        }
        std::memcpy(mFile.data() + said.position, mSlots + mNext * kOutputSlotBytes,
                    size_t(said.count));
        mNext = (mNext + 1) % kOutputSlots;
        return true;
    }
    QByteArray& File() { return mFile; }

private:
    const uchar* mSlots;
    QByteArray mFile;
    int mNext = 0;
};

/// Fills the ring when the process says how far it has read.
class RowFiller {
public:
    RowFiller(const PictureRowReader& picture, uchar* window)
        : mPicture(picture),
          mWindow(window),
          mRing(picture.Height() > 0 ? RowsWhileEncoding(picture.RowBytes()) : 0)
    { }
    /// False when the number of rows makes no sense.
    bool FillBehind(qint64 taken)
    {
        if (taken < mTaken || taken > mFilled) {
            return false;
        }
        mTaken = taken;
        for (; mFilled < std::min(mPicture.Height(), mTaken + mRing); ++mFilled) {
            mPicture.CopyRow(mFilled, mWindow + mFilled % mRing * mPicture.RowBytes());
        }
        return true;
    }
    qint32 Filled() const { return qint32(mFilled); }

private:
    const PictureRowReader& mPicture;
    uchar* mWindow;
    qint64 mRing, mTaken = 0, mFilled = 0;
};

void CheckEncodeSizes(const Bitmap& picture, qsizetype profile, qsizetype texts)
{
    if (picture.Width() > limits::kMaxSide || picture.Height() > limits::kMaxSide
        || qint64(picture.Width()) * picture.Height() > limits::kMaxPixels) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This picture is too large to be written: %1 by %2 pixels.")
                          .arg(picture.Width())
                          .arg(picture.Height()));
    }
    if (profile > limits::kMaxFieldBytes || texts > limits::kMaxFieldBytes
        || profile + texts > kWindowBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("The colour profile or the texts of this picture are too "
                                     "long."));
    }
}

QByteArray RunEncoding(const Bitmap& bitmap, const EncodeRequest& request, FileSource* original,
                       std::span<const CommentChange> changes, const char* codecName)
{
    const QByteArray texts = EncodeTexts(changes);
    CheckEncodeSizes(bitmap, request.icc.size(), texts.size());
    const PictureRowReader picture(bitmap);
    EncodeMessage message{};
    picture.Describe(message);
    message.format = request.format;
    message.bits = request.bits;
    message.quality = request.quality;
    message.xResolution = request.xResolution;
    message.yResolution = request.yResolution;
    message.horizontal = request.layout.horizontal;
    message.vertical = request.layout.vertical;
    message.compression = request.layout.compression;
    message.progressive = request.layout.progressive ? 1 : 0;
    message.profileBytes = qint32(request.icc.size());
    message.textBytes = qint32(texts.size());

    Exchange exchange(SharedPool(), codecName, nullptr, Exchange::Task::Encoding);
    uchar* window = exchange.Window();
    std::copy_n(request.icc.constData(), request.icc.size(), window);
    std::copy_n(texts.constData(), texts.size(), window + request.icc.size());
    exchange.AskToEncode(
        message, original ? original->Fd() : -1, original ? original->Size() : 0,
        EncodeSeconds(message.width, message.height, original ? original->Size() : 0));

    RowFiller filler(picture, window);
    OutputCollector output(window);
    for (;;) {
        switch (exchange.Next()) {
        case MessageKind::Taken:
            if (!filler.FillBehind(exchange.As<TakenMessage>().rows)) {
                exchange.Lied();
            }
            exchange.Filled(filler.Filled());
            break;
        case MessageKind::Output:
            if (!output.Take(exchange.As<OutputMessage>())) {
                exchange.Lied();
            }
            exchange.Copied();
            break;
        case MessageKind::Done:
            if (output.File().isEmpty()) {
                exchange.Lied();
            }
            exchange.As<DoneMessage>();
            exchange.Finish();
            return std::move(output.File());
        default:
            exchange.Lied();
        }
    }
}

} // namespace

QByteArray Encode(const Bitmap& picture, const EncodeRequest& request, const char* codecName)
{
    if (picture.IsNull()) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no picture to write."));
    }
    return RunEncoding(picture, request, nullptr, {}, codecName);
}

QByteArray Rewrite(FileSource& original, const Bitmap& picture, const EncodeRequest& request,
                   std::span<const CommentChange> changes, const char* codecName)
{
    return RunEncoding(picture, request, &original, changes, codecName);
}

QByteArray Rewrite(const QByteArray& original, const Bitmap& picture, const EncodeRequest& request,
                   std::span<const CommentChange> changes, const char* codecName)
{
    FileHandle file(::memfd_create("quillane-file", MFD_CLOEXEC));
    qint64 done = 0;
    while (file.IsOpen() && done < original.size()) {
        const ssize_t wrote =
            ::write(file.Fd(), original.constData() + done, size_t(original.size() - done));
        if (wrote <= 0 && errno != EINTR) {
            file = FileHandle();
        }
        done += std::max<ssize_t>(0, wrote);
    }
    if (!file.IsOpen()) {
        throw Failure(kFailureLimit,
                      QStringLiteral("There is not enough memory for this picture."));
    }
    FileSource source(std::move(file), original.size());
    return RunEncoding(picture, request, &source, changes, codecName);
}

} // namespace quillane::worker
