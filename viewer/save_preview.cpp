#include "viewer/save_preview.h"

#include "core/failure.h"
#include "imaging/codec.h"
#include "imaging/encode_pixels.h"
#include "imaging/resize.h"
#include "imaging/worker/worker_host.h"
#include <QLocale>
#include <cmath>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr qint64 kPreviewPixels = 16'000'000;    // that are encoded as they are
constexpr qint64 kPreviewSlowPixels = 2'000'000; // of formats that take long

/// Whether encoding takes a second for a few megapixels.
bool PreviewIsSlow(const SaveVariant& variant)
{
    constexpr qint16 kTiffJpeg2000 = 166;
    return std::strcmp(variant.codec, "JPEG 2000") == 0 || variant.format == kTiffJpeg2000;
}

/// The encoded file as one that the decoding process can read.
FileSource PreviewFile(const QByteArray& content)
{
    FileHandle memory(::memfd_create("quillane-preview", MFD_CLOEXEC));
    for (qint64 done = 0; done < content.size();) {
        const ssize_t wrote =
            ::pwrite(memory.Fd(), content.constData() + done, size_t(content.size() - done), done);
        if (wrote <= 0) {
            throw Failure(kFailureLimit, QStringLiteral("There is no memory for a preview."));
        }
        done += wrote;
    }
    return {std::move(memory), content.size()};
}

/// What a reader will make of the file.
Bitmap PreviewDecoded(const QByteArray& content)
{
    constexpr qsizetype kMark = 512; // that codecs know a file by
    const Codec* const codec =
        FindCodec(QByteArrayView(content).first(qMin(kMark, content.size())), QStringView());
    if (codec && codec->inWorker) {
        FileSource file = PreviewFile(content);
        return worker::Decode(file, codec->name, {});
    }
    if (codec && codec->decode) {
        MemorySource memory(content);
        return codec->decode(memory, {});
    }
    throw Failure(kFailureUnreadable, QStringLiteral("There is no preview of this format."));
}

Bitmap PreviewPixels(const Bitmap& picture, const SaveVariant& variant,
                     const EncodeRequest& request, const QByteArray& content)
{
    // A picture that was not compressed with a loss looks like its pixels.
    QByteArray icc = picture.Icc();
    if (!variant.lossy) {
        Bitmap pixels = PixelsFor(variant, picture, request.bits, icc);
        pixels.SetIcc(icc);
        return pixels;
    }
    return PreviewDecoded(content);
}

} // namespace

SavePreview MakeSavePreview(const Bitmap& picture, const EncodeRequest& request, QSize box)
{
    SavePreview preview;
    try {
        const SaveVariant* const variant = FindSaveVariant(request.format);
        if (!variant || picture.IsNull()) {
            throw Failure(kFailureGeneral, QStringLiteral("There is no picture to show."));
        }
        const qint64 pixels = qint64(picture.Width()) * picture.Height();
        const qint64 most = PreviewIsSlow(*variant) ? kPreviewSlowPixels : kPreviewPixels;
        Bitmap shown = picture;
        EncodeRequest wanted = request;
        wanted.bits = WrittenDepth(*variant, picture, request.bits);
        if (wanted.icc.isEmpty()) {
            wanted.icc = picture.Icc();
        }
        if (pixels > most) {
            const double side = std::sqrt(double(most) / double(pixels));
            shown = Resized(
                picture,
                QSize(qMax(1, int(picture.Width() * side)), qMax(1, int(picture.Height() * side))),
                ResizeWay::Plain);
        }
        const QByteArray content = EncodePicture(shown, wanted);
        const double part = double(pixels) / double(qint64(shown.Width()) * qint64(shown.Height()));
        preview.exact = pixels <= most;
        preview.bytes = preview.exact ? content.size() : qint64(double(content.size()) * part);
        const QImage after = PreviewPixels(shown, *variant, wanted, content).ToDisplay();
        const QSize fitting = picture.Pixels().size().scaled(box, Qt::KeepAspectRatio);
        preview.whole = after.width() > fitting.width() || after.height() > fitting.height()
            ? after.scaled(fitting.expandedTo({1, 1}), Qt::IgnoreAspectRatio,
                           Qt::SmoothTransformation)
            : after;
        const QRect middle((after.width() - box.width()) / 2, (after.height() - box.height()) / 2,
                           box.width(), box.height());
        preview.detail = after.copy(middle.intersected(after.rect()));
    } catch (const Failure& failure) {
        preview.failure = failure.Description();
    }
    return preview;
}

QString PreviewSizeWords(const SavePreview& preview)
{
    const QLocale locale;
    const QString size = locale.formattedDataSize(preview.bytes, preview.exact ? 1 : 0);
    if (!preview.exact) {
        return QStringLiteral("about %1").arg(size);
    }
    constexpr qint64 kInBytesAlone = 1024;
    return preview.bytes < kInBytesAlone
        ? QStringLiteral("%1 bytes").arg(preview.bytes)
        : QStringLiteral("%1 (%2 bytes)").arg(size, locale.toString(preview.bytes));
}

} // namespace quillane
