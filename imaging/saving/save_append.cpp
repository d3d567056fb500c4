#include "imaging/saving/save_append.h"
#include "core/atomic_save.h"
#include "core/failure.h"
#include "imaging/carry/append_tiff.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/slots.h"
#include "imaging/format_table.h"
#include "imaging/limits.h"
#include "imaging/reader.h"
#include "imaging/saving/save_content.h"
#include <cstring>

namespace quillane {

namespace {

constexpr const char* kAppendCodec = "TIFF";
constexpr qint64 kAppendHead = 512; ///< bytes that codecs know a file by

/// The file to add to, opened and looked at. Failure when it takes no page.
FileSource OpenedForAppending(const SaveJob& job, const SavePlan& plan)
{
    const QString leaf = SaveLeaf(job.path);
    if (std::strcmp(plan.variant->codec, kAppendCodec) != 0) {
        throw Failure(
            kFailureGeneral,
            QStringLiteral("\"%1\" is there already, and pages of the format \"%2\" cannot be "
                           "added to a file. Choose a TIFF format, or save under another name.")
                .arg(leaf, FormatDescription(job.request.format)));
    }
    FileSource target(job.path);
    const Codec* codec = FindCodec(target.Head(kAppendHead), {});
    if (!codec || std::strcmp(codec->name, kAppendCodec) != 0) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("\"%1\" is no TIFF file, and no page can be added to it. "
                                     "Save under another name.")
                          .arg(leaf));
    }
    return target;
}

/// The page as a file of its own.
QByteArray AppendedPage(const SaveJob& job, const SavePlan& plan)
{
    QByteArray page = SaveContent(job, plan);
    if (!TiffPageCanMove(page)) {
        SavePlan anew = plan;
        anew.pixelsStay = false;
        page = SaveContent(job, anew);
    }
    return page;
}

void ReadPageBack(const QString& draft, const SaveJob& job, const TiffWithPage& made)
{
    FileSource source(draft);
    bool good = ProbeSource(source, job.path).pages == made.pages;
    const CommentValue& wanted = job.comments.At(kDescriptionSlot);
    if (good && !wanted.IsEmpty()) {
        MemorySource page(TiffFromDirectory(source.All(limits::kMaxFileBytes), made.directory));
        CommentSet found;
        ReadTiffComments(page, found);
        good = found.At(kDescriptionSlot) == wanted;
    }
    if (!good) {
        throw Failure(kFailureIo,
                      QStringLiteral("No page could be added to \"%1\": what was written does not "
                                     "read back as it should. The file is as it was.")
                          .arg(SaveLeaf(job.path)));
    }
}

} // namespace

bool AppendsToAFile(const SaveJob& job)
{
    return job.mode != kSaveReplace && job.mode != kSaveCreate
        && StatPath(job.path).type != FileType::Missing;
}

std::shared_ptr<const LoadedFile> AppendPicture(const SaveJob& job, const SavePlan& plan)
{
    FileSource target = OpenedForAppending(job, plan);
    if (plan.inPlace && !job.loaded->IsUnchanged()) {
        RefuseChangedFile(job);
    }
    ProbeSource(target, job.path); // damage at its beginning is told before the work
    const QByteArray page = AppendedPage(job, plan);
    const TiffWithPage made =
        AppendTiffPage(target.All(limits::kMaxFileBytes), page, limits::kMaxFileBytes);
    SaveOptions options;
    options.expected = target.Stat();
    options.probe = job.probe;
    options.verify = [&](const QString& draft) { ReadPageBack(draft, job, made); };
    SaveAtomically(job.path, made.file, options);
    if (!plan.inPlace) {
        return job.loaded;
    }
    // The picture is that of the first page still, which lies in the new file as it did.
    auto source = std::make_shared<FileSource>(job.path);
    const ImageFacts facts = ProbeSource(*source, job.path);
    return std::make_shared<LoadedFile>(job.path, std::move(source), job.loaded->codec, facts,
                                        job.loaded->pixels, job.loaded->exact);
}

} // namespace quillane
