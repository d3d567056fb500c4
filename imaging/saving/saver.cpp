#include "imaging/saving/saver.h"
#include "core/atomic_save.h"
#include "core/failure.h"
#include "imaging/carry/comment_changes.h"
#include "imaging/comments/slots.h"
#include "imaging/reader.h"
#include "imaging/saving/save_append.h"
#include "imaging/saving/save_content.h"
#include <QSize>
#include <algorithm>
#include <cstring>
#include <iterator>

namespace quillane {

namespace {

/// Whether files of a codec can be read by their content alone and tell the picture's own size.
bool SavedFormatIsRead(const char* name)
{
    // The names of two tell their size, if anything; pages of the third are all of one, and those
    // of the fourth are drawn as large as they are in print.
    constexpr const char* kWithoutSize[] = {"RAW", "FAX", "MacPaint", "EPS"};
    const auto is = [name](const char* other) { return std::strcmp(other, name) == 0; };
    const std::span<const Codec> all = AllCodecs();
    return std::none_of(std::begin(kWithoutSize), std::end(kWithoutSize), is)
        && std::any_of(all.begin(), all.end(), [&](const Codec& codec) {
               return is(codec.name) && (codec.probe || codec.inWorker);
           });
}

/// A description as it is compared: kinds of file that cannot hold a zero have a line feed there.
CommentValue ComparedDescription(const CommentSet& comments)
{
    const CommentValue held = HeldValue(comments.At(kDescriptionSlot));
    const QString* const text = held.If<QString>();
    return text ? CommentValue(QString(*text).replace(QChar(u'\0'), u'\n')) : held;
}

/// Reads a finished draft back: what it says of itself, and the text that people type.
void ReadBack(const QString& draft, const SaveJob& job, const SavePlan& plan)
{
    if (!SavedFormatIsRead(plan.variant->codec)) {
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
        const CommentValue wanted = ComparedDescription(job.comments);
        good = wanted.IsEmpty() || ComparedDescription(ReadComments(source, job.path)) == wanted;
    }
    if (!good) {
        throw Failure(
            kFailureIo,
            QStringLiteral("\"%1\" could not be saved: what was written does not read "
                           "back as it should. The file is as it was. Save in another format, or "
                           "in another place.")
                .arg(SaveLeaf(job.path)));
    }
}

/// The file that was just written, in whichever format, as if the picture had been loaded from it.
std::shared_ptr<const LoadedFile> Reloaded(const SaveJob& job, const SavePlan& plan)
{
    auto source = std::make_shared<FileSource>(job.path);
    const ImageFacts facts = ProbeSource(*source, job.path);
    // Only where nothing was lost on the way do the pixels in memory stand for the new ones.
    const bool same = plan.pixelsStay
        || (!plan.variant->lossy
            && (job.request.bits == 0 || job.request.bits == job.loaded->facts.bits));
    constexpr qint64 kMarkBytes = 512; // that codecs know a file by
    const Codec* codec = FindCodec(source->Head(kMarkBytes), QStringView());
    if (!codec) {
        codec = job.loaded->codec;
    }
    return std::make_shared<LoadedFile>(job.path, std::move(source), codec, facts,
                                        same ? job.picture.Pixels().cacheKey() : 0,
                                        !plan.pixelsStay || job.loaded->exact);
}

} // namespace

std::shared_ptr<const LoadedFile> SavePicture(const SaveJob& job)
{
    const SavePlan plan = PlanSave(job);
    if (AppendsToAFile(job)) {
        return AppendPicture(job, plan);
    }
    RefuseLosses(job, plan);
    const QByteArray content = SaveContent(job, plan);
    SaveOptions options;
    options.mode = job.mode == kSaveCreate ? SaveMode::CreateOnly : SaveMode::Replace;
    if (plan.inPlace) {
        options.expected = job.loaded->source->Stat();
    } else if (job.mode != kSaveReplace && job.mode != kSaveCreate) {
        options.expected = FileStat(); // what came meanwhile is not replaced by a page
    }
    options.probe = job.probe;
    options.verify = [&](const QString& draft) { ReadBack(draft, job, plan); };
    SaveAtomically(job.path, content, options);
    std::shared_ptr<const LoadedFile> next = job.loaded;
    if (plan.inPlace || (job.loaded && job.path == job.loaded->path)) {
        // What happens to the file from here on does not undo that it was saved.
        ResumeNext([&] { next = Reloaded(job, plan); });
    }
    return next;
}

} // namespace quillane
