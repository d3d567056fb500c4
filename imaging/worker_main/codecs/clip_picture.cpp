#include "imaging/worker_main/codecs/clip_picture.h"
#include "core/failure.h"
#include <memory>
#include <vector>

namespace quillane::worker {

namespace {

constexpr int kClipAlignment = 64; ///< of rows that the scaler writes
/// From here a picture that does not tell its colours has those of high definition.
constexpr int kClipHighWidth = 1280, kClipHighHeight = 577;

struct ClipScalerDeleter {
    const ClipLibrary* library;
    void operator()(SwsContext* scaler) const { library->FreeScaler(scaler); }
};

bool IsFullRange(const AVFrame& frame)
{
    switch (frame.format) {
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ444P:
    case AV_PIX_FMT_YUVJ440P:
    case AV_PIX_FMT_YUVJ411P:
        return true;
    default:
        return frame.color_range == AVCOL_RANGE_JPEG;
    }
}

int ColoursOf(const AVFrame& frame)
{
    if (frame.colorspace != AVCOL_SPC_UNSPECIFIED && frame.colorspace != AVCOL_SPC_RGB) {
        return frame.colorspace;
    }
    const bool high = frame.width >= kClipHighWidth || frame.height >= kClipHighHeight;
    return high ? SWS_CS_ITU709 : SWS_CS_DEFAULT;
}

} // namespace

void GiveClipFrame(const ClipLibrary& library, const AVFrame& frame, const char* format,
                   qint32 width, qint32 height, PictureSink& sink)
{
    const bool smaller = width < frame.width || height < frame.height;
    const int way = (smaller ? SWS_AREA : SWS_BICUBIC) | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT
        | SWS_FULL_CHR_H_INP;
    const std::unique_ptr<SwsContext, ClipScalerDeleter> scaler(
        library.ScalerFor(frame.width, frame.height, AVPixelFormat(frame.format), width, height,
                          AV_PIX_FMT_RGB32, way, nullptr, nullptr, nullptr),
        ClipScalerDeleter{&library});
    if (!scaler) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This %1 has samples of a kind that is not supported.")
                          .arg(QLatin1String(format)));
    }
    // Samples that are colours already have no such details, and are left alone.
    constexpr int kOne = 1 << 16;
    library.SetColours(scaler.get(), library.Coefficients(ColoursOf(frame)), IsFullRange(frame),
                       library.Coefficients(SWS_CS_DEFAULT), 1, 0, kOne, kOne);

    const size_t rowBytes =
        (size_t(width) * 4 + kClipAlignment - 1) / kClipAlignment * kClipAlignment;
    std::vector<uchar> pixels(rowBytes * size_t(height) + 2 * kClipAlignment, 0xff);
    uchar* const planes[4] = {pixels.data(), nullptr, nullptr, nullptr};
    const int strides[4] = {int(rowBytes), 0, 0, 0};
    if (library.Scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides)
        <= 0) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This %1 has samples of a kind that is not supported.")
                          .arg(QLatin1String(format)));
    }
    PictureShape shape;
    shape.width = width;
    shape.height = height;
    shape.layout = PixelLayout::Rgb32;
    shape.fileDepth = 24;
    shape.exact = false; // one picture of many
    sink.Begin(shape);
    for (qint32 y = 0; y < height; ++y) {
        const auto* from = reinterpret_cast<const quint32*>(pixels.data() + rowBytes * size_t(y));
        auto* to = reinterpret_cast<quint32*>(sink.NextRow());
        for (qint32 x = 0; x < width; ++x) {
            to[x] = from[x] | 0xff000000;
        }
    }
}

} // namespace quillane::worker
