#include "imaging/saving/save_plan.h"
#include "core/failure.h"
#include "imaging/format_facts.h"
#include "imaging/format_table.h"
#include <cstring>

namespace quillane {

namespace {

const SaveVariant& SaveVariantFor(qint16 format)
{
    if (const SaveVariant* variant = FindSaveVariant(format)) {
        return *variant;
    }
    const QString words = FormatDescription(format);
    throw Failure(kFailureGeneral,
                  words.isEmpty()
                      ? QStringLiteral("There is no file format with the number %1.").arg(format)
                      : QStringLiteral("Files of the format \"%1\" cannot be written: %2. "
                                       "Choose another format.")
                            .arg(words, WhyNotWritten(format)));
}

} // namespace

QString SaveLeaf(const QString& path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

void RefuseChangedFile(const SaveJob& job)
{
    throw Failure(kFailureIo,
                  QStringLiteral("\"%1\" has been changed by another program since it was "
                                 "loaded. Load it again, or save under another name.")
                      .arg(SaveLeaf(job.path)));
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
        plan.replaced = !plan.inPlace && job.path == loaded->path
            && StatPath(job.path).type != FileType::Missing;
        plan.sameCodec = std::strcmp(loaded->codec->name, plan.variant->codec) == 0;
        plan.pixelsUntouched = loaded->pixels == job.picture.Pixels().cacheKey();
        const ImageFacts& facts = loaded->facts;
        plan.pixelsStay = plan.sameCodec && plan.pixelsUntouched && !job.picture.IsPartial()
            && !job.stamp && plan.variant->carrier != CommentCarrier::Jpeg
            && facts.format == job.request.format && facts.orientation <= 1 && loaded->IsUnchanged()
            && (job.request.bits == 0 || job.request.bits == facts.bits);
    }
    return plan;
}

void RefuseLosses(const SaveJob& job, const SavePlan& plan)
{
    const QString leaf = SaveLeaf(job.path);
    if (!plan.inPlace && !plan.replaced) {
        return;
    }
    if (plan.replaced || !job.loaded->IsUnchanged()) {
        RefuseChangedFile(job);
    }
    if (job.picture.IsPartial()) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("Part of \"%1\" could not be read and would be lost. Save "
                                     "under another name.")
                          .arg(leaf));
    }
    if (!job.loaded->exact && !plan.pixelsStay) {
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

} // namespace quillane
