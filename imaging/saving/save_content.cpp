#include "imaging/saving/save_content.h"
#include "core/failure.h"
#include "imaging/carry/carry.h"
#include "imaging/comments/slots.h"
#include "imaging/format_table.h"
#include "imaging/limits.h"
#include "imaging/saving/stamp.h"
#include "imaging/thumbs/exif_preview.h"
#include "imaging/worker/worker_host.h"
#include <functional>
#include <sys/mman.h>
#include <unistd.h>

namespace quillane {

namespace {

/// The functions that put metadata into a kind of file.
struct SaveCarrier {
    CommentCarrier carrier;
    QByteArray (*carry)(const QByteArray& encoded, const CarryPlan& plan);
    /// With pixels as they lie in the file; nullptr where they are always encoded anew.
    QByteArray (*replace)(ByteSource& original, std::span<const CommentChange> changes);
};
constexpr SaveCarrier kSaveCarriers[] = {
    {CommentCarrier::Jpeg, CarryIntoJpeg, nullptr},
    {CommentCarrier::Tiff, CarryIntoTiff, ReplaceCommentsInTiff},
    {CommentCarrier::Png, CarryIntoPng, ReplaceCommentsInPng},
    {CommentCarrier::Gif, CarryIntoGif, ReplaceCommentsInGif},
};

const SaveCarrier* SaveCarrierOf(CommentCarrier carrier)
{
    for (const SaveCarrier& one : kSaveCarriers) {
        if (one.carrier == carrier) {
            return &one;
        }
    }
    return nullptr;
}

/// The file as it is with other comments, when its pixels may stay as they lie in it.
std::optional<QByteArray> WithPixelsAsTheyLie(const SaveJob& job, const SavePlan& plan,
                                              const CommentSet& before)
{
    if (!plan.pixelsStay) {
        return {};
    }
    FileSource& original = *job.loaded->source;
    const std::vector<CommentChange> changes = CommentChanges(before, job.comments);
    if (plan.variant->carrier == CommentCarrier::None) {
        return original.All(limits::kMaxFileBytes);
    }
    const SaveCarrier* carrier = SaveCarrierOf(plan.variant->carrier);
    if (!carrier || !carrier->replace) {
        return {};
    }
    return carrier->replace(original, changes);
}

/// The preview to embed; `keep` when the original's own stays.
QByteArray PreviewFor(const SaveJob& job, const SavePlan& plan, bool& keep)
{
    keep = false;
    if (job.stamp) {
        if (!plan.variant->stamp) {
            throw Failure(kFailureGeneral,
                          QStringLiteral("Files of the format \"%1\" hold no stamp.")
                              .arg(FormatDescription(job.request.format)));
        }
        return MakeStamp(job.picture, job.stamp->box, job.stamp->bits);
    }
    if (!job.loaded || !plan.sameCodec || !plan.variant->stamp) {
        return {};
    }
    if (plan.pixelsUntouched && job.loaded->facts.orientation <= 1) {
        keep = true;
        return {};
    }
    if (ReadEmbeddedPreview(*job.loaded->source).isEmpty()) {
        return {};
    }
    constexpr QSizeF kUsual(160, 160); // sides of most cameras' previews
    QByteArray renewed;
    ResumeNext([&] { renewed = MakeStamp(job.picture, kUsual, 24); });
    return renewed;
}

/// What a DICOM file has elements for among the comments that differ; it drops the others.
std::vector<CommentChange> DicomChanges(const CommentSet& before, const CommentSet& wanted)
{
    std::vector<CommentChange> changes = CommentChanges(before, wanted);
    std::erase_if(changes, [](const CommentChange& change) {
        const CommentSlot* slot = FindSlot(change.slot);
        return change.slot != kDescriptionSlot && (!slot || slot->home != SlotHome::Dicom);
    });
    return changes;
}

/// A DICOM file goes through its library as a whole, so its elements are set in a file.
QByteArray WithDicomComments(const QByteArray& encoded, const SaveJob& job, const SavePlan& plan)
{
    const std::vector<CommentChange> changes = DicomChanges({}, job.comments);
    if (changes.empty()) {
        return encoded;
    }
    FileHandle memory(::memfd_create("quillane-save", MFD_CLOEXEC));
    for (qint64 done = 0; done < encoded.size();) {
        const ssize_t wrote =
            ::pwrite(memory.Fd(), encoded.constData() + done, size_t(encoded.size() - done), done);
        if (wrote <= 0) {
            throw Failure(kFailureLimit,
                          QStringLiteral("There is no memory to save a picture of "
                                         "that size."));
        }
        done += wrote;
    }
    FileSource source(std::move(memory), encoded.size());
    return worker::Rewrite(source, {}, job.request, changes, plan.variant->codec);
}

/// The loaded DICOM file with other elements, and with other pixels where they were changed.
QByteArray RewrittenDicom(const SaveJob& job, const SavePlan& plan, const CommentSet& before)
{
    return worker::Rewrite(*job.loaded->source, plan.pixelsStay ? Bitmap() : job.picture,
                           job.request, DicomChanges(before, job.comments), plan.variant->codec);
}

/// Takes a step that carries over what is in the loaded file. Where only a part of that could be
/// read, its pixels are saved even so, under another name: false when the step failed.
bool UnlessDamaged(const SaveJob& job, const std::function<void()>& step)
{
    if (job.picture.IsPartial()) {
        return ResumeNext(step);
    }
    step();
    return true;
}

QByteArray EncodedAnew(const SaveJob& job, const SavePlan& plan, const CommentSet& before)
{
    if (plan.variant->carrier == CommentCarrier::Dicom && job.loaded && plan.sameCodec) {
        QByteArray file;
        const auto rewrite = [&] { file = RewrittenDicom(job, plan, before); };
        if (UnlessDamaged(job, rewrite)) {
            return file;
        }
    }
    EncodeRequest request = job.request;
    CarryPlan carry;
    carry.preview = PreviewFor(job, plan, carry.keepPreview);
    if (request.icc.isEmpty()) {
        request.icc = job.picture.Icc();
    }
    if (job.loaded) {
        const ImageFacts& facts = job.loaded->facts;
        if (request.xResolution == 0) {
            request.xResolution = facts.xResolution;
            request.yResolution = facts.yResolution;
        }
        if (plan.sameCodec) {
            carry.original = job.loaded->source.get();
            carry.before = &before;
            if (facts.format == request.format) {
                request.layout = facts.layout;
            }
        }
    }
    carry.wanted = job.comments;
    carry.width = job.picture.Width();
    carry.height = job.picture.Height();
    carry.exif = IsExifFormat(request.format);
    const QByteArray encoded = EncodePicture(job.picture, request);
    switch (plan.variant->carrier) {
    case CommentCarrier::None:
        return encoded;
    case CommentCarrier::Dicom:
        return WithDicomComments(encoded, job, plan);
    default:
        break;
    }
    const SaveCarrier* carrier = SaveCarrierOf(plan.variant->carrier);
    if (!carrier) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("Comments cannot be written into files of the format \"%1\".")
                          .arg(FormatDescription(request.format)));
    }
    QByteArray file;
    if (!UnlessDamaged(job, [&] { file = carrier->carry(encoded, carry); })) {
        carry.original = nullptr;
        carry.before = nullptr;
        carry.keepPreview = false;
        file = carrier->carry(encoded, carry);
    }
    return file;
}

} // namespace

QByteArray SaveContent(const SaveJob& job, const SavePlan& plan)
{
    CommentSet before;
    if (job.loaded && plan.sameCodec) {
        before = ReadComments(*job.loaded->source, job.loaded->path);
    }
    if (std::optional<QByteArray> bytes = WithPixelsAsTheyLie(job, plan, before)) {
        return *bytes;
    }
    return EncodedAnew(job, plan, before);
}

} // namespace quillane
