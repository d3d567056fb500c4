#include "imaging/saving/saver.h"
#include "core/atomic_save.h"
#include "core/failure.h"
#include "imaging/carry/carry.h"
#include "imaging/comments/slots.h"
#include "imaging/format_table.h"
#include "imaging/limits.h"
#include "imaging/reader.h"
#include "imaging/saving/stamp.h"
#include "imaging/thumbs/exif_preview.h"
#include "imaging/worker/worker_host.h"
#include <QSize>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace quillane {

namespace {

/// What a job is found to be before anything is made.
struct SavePlan {
    const SaveVariant* variant = nullptr;
    bool inPlace = false;         ///< the target is the file that was loaded
    bool sameCodec = false;       ///< the loaded file is of the format that is written
    bool pixelsUntouched = false; ///< the pixels are those that were loaded
};

QString SaveLeaf(const QString& path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

const SaveVariant& SaveVariantFor(qint16 format)
{
    if (const SaveVariant* variant = FindSaveVariant(format)) {
        return *variant;
    }
    const QString words = FormatDescription(format);
    throw Failure(kFailureGeneral,
                  words.isEmpty()
                      ? QStringLiteral("There is no file format with the number %1.").arg(format)
                      : QStringLiteral("Files of the format \"%1\" cannot be written. Choose "
                                       "another format.")
                            .arg(words));
}

SavePlan PlanSave(const SaveJob& job)
{
    if (job.picture.IsNull()) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no picture to save."));
    }
    SavePlan plan;
    plan.variant = &SaveVariantFor(job.request.format);
    const LoadedFile* loaded = job.loaded.get();
    if (loaded) {
        plan.inPlace = loaded->IsAt(job.path);
        plan.sameCodec = std::strcmp(loaded->codec->name, plan.variant->codec) == 0;
        plan.pixelsUntouched = loaded->pixels == job.picture.Pixels().cacheKey();
    }
    return plan;
}

/// Refuses what would lose part of the loaded file.
void RefuseLosses(const SaveJob& job, const SavePlan& plan)
{
    if (!plan.inPlace) {
        return;
    }
    const QString leaf = SaveLeaf(job.path);
    if (!job.loaded->IsUnchanged()) {
        throw Failure(kFailureIo,
                      QStringLiteral("\"%1\" has been changed by another program since it was "
                                     "loaded. Load it again, or save under another name.")
                          .arg(leaf));
    }
    if (job.picture.IsPartial()) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("Part of \"%1\" could not be read and would be lost. Save "
                                     "under another name.")
                          .arg(leaf));
    }
    if (!job.picture.IsExact() && !plan.pixelsUntouched) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("\"%1\" holds samples that the program only shows, and they "
                                     "would be lost. Save under another name.")
                          .arg(leaf));
    }
    const CommentCarrier carrier = plan.variant->carrier;
    const bool carriesPages = plan.sameCodec
        && (carrier == CommentCarrier::Tiff || carrier == CommentCarrier::Gif
            || carrier == CommentCarrier::Png);
    if (job.loaded->facts.pages > 1 && !carriesPages) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("\"%1\" holds %2 pictures, and all but the first would be "
                                     "lost. Save under another name.")
                          .arg(leaf)
                          .arg(job.loaded->facts.pages));
    }
}

/// The file as it is with other comments, when its pixels may stay as they lie in it.
std::optional<QByteArray> WithPixelsAsTheyLie(const SaveJob& job, const SavePlan& plan,
                                              const CommentSet& before)
{
    const ImageFacts* facts = job.loaded ? &job.loaded->facts : nullptr;
    if (!facts || !plan.sameCodec || !plan.pixelsUntouched || plan.variant->lossy || job.stamp
        || facts->format != job.request.format || facts->orientation > 1
        || (job.request.bits != 0 && job.request.bits != facts->bits)) {
        return {};
    }
    FileSource& original = *job.loaded->source;
    const std::vector<CommentChange> changes = CommentChanges(before, job.comments);
    switch (plan.variant->carrier) {
    case CommentCarrier::Tiff:
        return ReplaceCommentsInTiff(original, changes);
    case CommentCarrier::Png:
        return ReplaceCommentsInPng(original, changes);
    case CommentCarrier::Gif:
        return ReplaceCommentsInGif(original, changes);
    case CommentCarrier::None:
        return original.All(limits::kMaxFileBytes);
    default:
        return {};
    }
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

/// A DICOM file goes through its library as a whole, so its elements are set in a file.
QByteArray WithDicomComments(const QByteArray& encoded, const SaveJob& job, const SavePlan& plan)
{
    const std::vector<CommentChange> changes = CommentChanges({}, job.comments);
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
    const bool pixelsStay = plan.pixelsUntouched && job.loaded->facts.format == job.request.format
        && (job.request.bits == 0 || job.request.bits == job.loaded->facts.bits);
    return worker::Rewrite(*job.loaded->source, pixelsStay ? Bitmap() : job.picture, job.request,
                           CommentChanges(before, job.comments), plan.variant->codec);
}

QByteArray EncodedAnew(const SaveJob& job, const SavePlan& plan, const CommentSet& before)
{
    if (plan.variant->carrier == CommentCarrier::Dicom && job.loaded && plan.sameCodec) {
        return RewrittenDicom(job, plan, before);
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
    case CommentCarrier::Jpeg:
        return CarryIntoJpeg(encoded, carry);
    case CommentCarrier::Tiff:
        return CarryIntoTiff(encoded, carry);
    case CommentCarrier::Png:
        return CarryIntoPng(encoded, carry);
    case CommentCarrier::Gif:
        return CarryIntoGif(encoded, carry);
    case CommentCarrier::Dicom:
        return WithDicomComments(encoded, job, plan);
    default:
        return encoded;
    }
}

/// Reads a finished draft back: what it says of itself, and the text that people type.
void ReadBack(const QString& draft, const SaveJob& job, const SavePlan& plan)
{
    bool readable = false;
    for (const Codec& codec : AllCodecs()) {
        readable |= std::strcmp(codec.name, plan.variant->codec) == 0;
    }
    if (!readable) {
        return;
    }
    FileSource source(draft);
    const ImageFacts facts = ProbeSource(source, job.path);
    QSize found(facts.width, facts.height);
    if (facts.orientation >= 5) {
        found.transpose();
    }
    bool good = found == QSize(job.picture.Width(), job.picture.Height());
    if (good && plan.variant->carrier != CommentCarrier::None) {
        const CommentValue& wanted = job.comments.At(kDescriptionSlot);
        good = wanted.IsEmpty() || ReadComments(source, job.path).At(kDescriptionSlot) == wanted;
    }
    if (!good) {
        throw Failure(kFailureIo,
                      QStringLiteral("\"%1\" could not be saved: what was written does not read "
                                     "back as it should. The file is as it was.")
                          .arg(SaveLeaf(job.path)));
    }
}

/// The file that was just written, as if the picture had been loaded from it.
std::shared_ptr<const LoadedFile> Reloaded(const SaveJob& job, const SavePlan& plan)
{
    auto source = std::make_shared<FileSource>(job.path);
    const ImageFacts facts = ProbeSource(*source, job.path);
    // Only where nothing was lost on the way do the pixels in memory stand for the new ones.
    const bool same = !plan.variant->lossy
        && (job.request.bits == 0 || job.request.bits == job.loaded->facts.bits);
    return std::make_shared<LoadedFile>(job.path, std::move(source), job.loaded->codec, facts,
                                        same ? job.picture.Pixels().cacheKey() : 0);
}

} // namespace

std::shared_ptr<const LoadedFile> SavePicture(const SaveJob& job)
{
    const SavePlan plan = PlanSave(job);
    RefuseLosses(job, plan);
    CommentSet before;
    if (job.loaded && plan.sameCodec) {
        before = ReadComments(*job.loaded->source, job.loaded->path);
    }
    std::optional<QByteArray> bytes = WithPixelsAsTheyLie(job, plan, before);
    if (!bytes) {
        bytes = EncodedAnew(job, plan, before);
    }
    SaveOptions options;
    options.mode = job.mode == kSaveCreate ? SaveMode::CreateOnly : SaveMode::Replace;
    if (plan.inPlace) {
        options.expected = job.loaded->source->Stat();
    }
    options.verify = [&](const QString& draft) { ReadBack(draft, job, plan); };
    SaveAtomically(job.path, *bytes, options);
    return plan.inPlace ? Reloaded(job, plan) : job.loaded;
}

} // namespace quillane
