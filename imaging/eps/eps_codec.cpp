#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/codecs.h"
#include "imaging/eps/eps_file.h"
#include "imaging/eps/ghostscript.h"
#include "imaging/limits.h"
#include "imaging/vector/painter.h"
#include "imaging/worker/worker_host.h"
#include <sys/mman.h>
#include <unistd.h>

namespace quillane::codecs {

namespace {

constexpr qint64 kEpsMostPreview = 64ll << 20;

QSize EpsSize(const eps::EpsFile& file)
{
    return drawing::NaturalSize(file.box.width() / 72, file.box.height() / 72, false);
}

/// A TIFF is the decoding process's: it gets the preview as a file in memory.
Bitmap EpsTiffPreview(const QByteArray& bytes)
{
    FileHandle memory(::memfd_create("preview", MFD_CLOEXEC));
    if (!memory.IsOpen()
        || ::pwrite(memory.Fd(), bytes.constData(), size_t(bytes.size()), 0) != bytes.size()) {
        TooMuch("EPS", QStringLiteral("finds no memory"));
    }
    FileSource source(std::move(memory), bytes.size());
    return worker::Decode(source, "TIFF", {});
}

/// The small picture beside the script, made as large as the script's would be.
Bitmap EpsPreview(ByteSource& source, const eps::EpsFile& file, QSize size)
{
    if (file.previewSize > kEpsMostPreview) {
        TooMuch("EPS", QStringLiteral("has a preview of %1 MB").arg(file.previewSize >> 20));
    }
    PartSource part(source, file.previewAt, file.previewSize);
    const QByteArray bytes = part.All(kEpsMostPreview);
    QImage shown;
    if (file.preview == eps::Preview::Tiff) {
        shown = EpsTiffPreview(bytes).ToDisplay();
    } else {
        MemorySource memory(bytes);
        DecodeRequest request;
        request.atLeast = size;
        shown = WmfDecode(memory, request).ToDisplay();
    }
    Bitmap bitmap(shown.convertToFormat(QImage::Format_RGB32)
                      .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation),
                  ColourModel::Rgb, 24);
    bitmap.SetExact(false);
    return bitmap;
}

} // namespace

bool EpsMatches(QByteArrayView head, QStringView)
{
    return eps::IsEps(head);
}

ImageFacts EpsProbe(ByteSource& source)
{
    const eps::EpsFile file = eps::ReadEps(source);
    const QSize size = EpsSize(file);
    ImageFacts facts;
    facts.width = size.width();
    facts.height = size.height();
    facts.bits = 24;
    facts.xResolution = qRound(size.width() * 72 / file.box.width());
    facts.yResolution = qRound(size.height() * 72 / file.box.height());
    facts.format = file.preview == eps::Preview::Tiff ? 63
        : file.preview == eps::Preview::Wmf           ? 64
                                                      : 16;
    facts.compression = QStringLiteral("Uncompressed");
    return facts;
}

Bitmap EpsDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    const eps::EpsFile file = eps::ReadEps(source);
    const QSize size = drawing::ReducedSize(EpsSize(file), request.atLeast);
    PartSource script(source, file.scriptAt, file.scriptSize);
    eps::RenderJob job;
    job.script = &script;
    job.box = file.box;
    job.size = size;
    job.seconds = limits::kWorkerDecodeSeconds;
    job.cancelled = request.cancelled;
    try {
        eps::Rendered rendered = eps::RenderPostScript(job);
        Bitmap bitmap(std::move(rendered.image), ColourModel::Rgb, 24);
        bitmap.SetExact(false);
        bitmap.SetPartial(rendered.partial);
        return bitmap;
    } catch (const Failure& failure) {
        if (failure.Number() == kFailureCancelled || file.preview == eps::Preview::None) {
            throw;
        }
        Bitmap preview;
        if (ResumeNext([&] { preview = EpsPreview(source, file, size); })) {
            return preview;
        }
        throw;
    }
}

} // namespace quillane::codecs
