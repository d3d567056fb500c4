#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker_main/codecs/clip_input.h"
#include "imaging/worker_main/codecs/clip_picture.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <algorithm>
#include <cmath>
#include <new>

namespace quillane::worker {

namespace {

constexpr ClipKind kClipMov{"MOV", "mov"};
constexpr ClipKind kClipAvi{"AVI", "avi"};
constexpr ClipKind kClipMpeg{"MPEG", nullptr};

constexpr int kClipMostPackets = 400;
/// So many packets later a damaged picture is taken for want of a better one.
constexpr int kClipPatience = 100;

/// Decodes a clip until it has given its first picture.
class ClipDecoder {
public:
    explicit ClipDecoder(ClipInput& input) : mInput(input), mLibrary(input.Library())
    {
        mContext = mLibrary.AllocCodec(&input.Decoder());
        mPacket = mLibrary.PacketAlloc();
        mFrame = mLibrary.FrameAlloc();
        mNext = mLibrary.FrameAlloc();
        try {
            Open();
        } catch (...) {
            Close();
            throw;
        }
    }
    ~ClipDecoder() { Close(); }
    ClipDecoder(const ClipDecoder&) = delete;
    ClipDecoder& operator=(const ClipDecoder&) = delete;

    /// The first picture that is whole, else the first one. Failure when there is none.
    const AVFrame& First()
    {
        for (int packets = 0; !mWhole && packets < kClipMostPackets; ++packets) {
            if ((mFound && packets > kClipPatience) || !mInput.ReadPacket(*mPacket)) {
                break;
            }
            mAny = true;
            mDamaged = mDamaged || (mPacket->flags & AV_PKT_FLAG_CORRUPT) != 0;
            Send(mPacket);
        }
        if (!mWhole) {
            Send(nullptr); // what it still holds back
        }
        if (!mAny) {
            mInput.Empty();
        }
        if (!mFound) {
            mInput.Damaged();
        }
        return *mFrame;
    }
    bool IsPartial() const { return !mWhole; }

private:
    void Open()
    {
        if (!mContext || !mPacket || !mFrame || !mNext) {
            throw std::bad_alloc();
        }
        if (mLibrary.ParametersToContext(mContext, mInput.Stream().codecpar) < 0) {
            mInput.Damaged();
        }
        mContext->thread_count = 1;
        mContext->pkt_timebase = mInput.Stream().time_base;
        mContext->max_pixels = limits::kMaxPixels;
        mContext->flags |= AV_CODEC_FLAG_OUTPUT_CORRUPT;
        mContext->err_recognition = AV_EF_CRCCHECK;
        Expect(mLibrary.OpenCodec(mContext, &mInput.Decoder(), nullptr));
    }
    void Close()
    {
        mLibrary.FrameFree(&mNext);
        mLibrary.FrameFree(&mFrame);
        mLibrary.PacketFree(&mPacket);
        mLibrary.FreeCodec(&mContext);
    }
    void Expect(int done) const
    {
        if (done == AVERROR(ENOMEM)) {
            throw std::bad_alloc();
        }
        if (done < 0) {
            mInput.Damaged();
        }
    }
    void Send(const AVPacket* packet)
    {
        const int sent = mLibrary.SendPacket(mContext, packet);
        if (sent == AVERROR(ENOMEM)) {
            throw std::bad_alloc();
        }
        mDamaged = mDamaged || (sent < 0 && packet);
        while (!mWhole && mLibrary.ReceiveFrame(mContext, mNext) >= 0) {
            const bool usable = mNext->width > 0 && mNext->height > 0 && mNext->data[0];
            const bool whole = usable && !mDamaged && mNext->decode_error_flags == 0
                && (mNext->flags & AV_FRAME_FLAG_CORRUPT) == 0;
            if (whole || (usable && !mFound)) {
                mLibrary.FrameUnref(mFrame);
                mLibrary.FrameMoveRef(mFrame, mNext);
                mFound = true;
                mWhole = whole;
            }
            mLibrary.FrameUnref(mNext);
            mDamaged = false; // that was this picture's
        }
    }

    ClipInput& mInput;
    const ClipLibrary& mLibrary;
    AVCodecContext* mContext = nullptr;
    AVPacket* mPacket = nullptr;
    AVFrame* mFrame = nullptr; ///< the best one so far
    AVFrame* mNext = nullptr;
    bool mAny = false; ///< packet of pictures
    bool mFound = false;
    bool mWhole = false;
    bool mDamaged = false; ///< something went wrong since the last picture
};

ImageFacts ProbeClip(const ClipKind& kind, ByteSource& source)
{
    return ClipInput(kind, source).Facts();
}

bool DecodeClip(const ClipKind& kind, ByteSource& source, const PictureWish& wish,
                PictureSink& sink)
{
    if (wish.page != 0) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("Of this %1 there is one picture, the first.")
                          .arg(QLatin1String(kind.name)));
    }
    ClipInput input(kind, source);
    const ImageFacts facts = input.Facts();
    ClipDecoder decoder(input);
    const AVFrame& frame = decoder.First();
    // The container's word holds for the size: programs that play it go by that.
    qint32 width = facts.width, height = facts.height;
    if (wish.atLeastWidth > 0 && wish.atLeastHeight > 0) {
        const double scale =
            std::max(double(wish.atLeastWidth) / width, double(wish.atLeastHeight) / height);
        if (scale < 1) {
            width = std::max(1, int(std::ceil(width * scale)));
            height = std::max(1, int(std::ceil(height * scale)));
        }
    }
    if (qint64(width) * height > limits::kMaxPixels) {
        throw Failure(kFailureLimit,
                      QStringLiteral("This %1 has %2 x %3 pixels, which is more "
                                     "than can be read.")
                          .arg(QLatin1String(kind.name))
                          .arg(width)
                          .arg(height));
    }
    GiveClipFrame(input.Library(), frame, kind.name, width, height, sink);
    return decoder.IsPartial();
}

} // namespace

void PrepareClips()
{
    LoadClipLibrary();
}

ImageFacts ProbeMov(ByteSource& source)
{
    return ProbeClip(kClipMov, source);
}

bool DecodeMov(ByteSource& source, const PictureWish& wish, PictureSink& sink)
{
    return DecodeClip(kClipMov, source, wish, sink);
}

ImageFacts ProbeAvi(ByteSource& source)
{
    return ProbeClip(kClipAvi, source);
}

bool DecodeAvi(ByteSource& source, const PictureWish& wish, PictureSink& sink)
{
    return DecodeClip(kClipAvi, source, wish, sink);
}

ImageFacts ProbeMpeg(ByteSource& source)
{
    return ProbeClip(kClipMpeg, source);
}

bool DecodeMpeg(ByteSource& source, const PictureWish& wish, PictureSink& sink)
{
    return DecodeClip(kClipMpeg, source, wish, sink);
}

} // namespace quillane::worker
