#include "metadata/tag_writer.h"

#include "core/file_kinds.h"
#include "imaging/comments/slots.h"

namespace quillane {

void CopyComments(EngineInstance& lead, const QString& file)
{
    lead.SetMethodErrors(false);
    lead.Comments().Revalidate();
    for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
        lead.SetComment(slot, {});
        lead.SetComment(slot, lead.ReadComment(file, 0, slot));
    }
    lead.SetMethodErrors(true);
}

qint32 QualityFor(const QString& file, qint32 quality)
{
    return file.toUpper().contains(QStringLiteral(".PNG")) ? kBestQuality : quality;
}

void WriteTagText(EngineInstance& lead, const QString& file, const QString& text,
                  const ResaveSettings& settings)
{
    if (IsImageFile(file) != kTrue) {
        return;
    }
    // A file whose fields cannot be read would be saved without them.
    lead.Comments().Revalidate();
    lead.Comments().All(file);
    CopyComments(lead, file);
    lead.SetComment(kDescriptionSlot, text.isEmpty() ? CommentValue() : CommentValue(text));
    lead.Save(file, settings.format, settings.bits, QualityFor(file, settings.quality),
              settings.mode);
}

} // namespace quillane
