#include "imaging/carry/carry_support.h"
#include "core/failure.h"
#include "imaging/comments/slots.h"
#include "imaging/comments/text_bytes.h"
#include "imaging/exif/exif_slots.h"
#include "imaging/limits.h"
#include <algorithm>

namespace quillane::carry {

QByteArray OriginalBytes(const CarryPlan& plan)
{
    return plan.original ? plan.original->All(limits::kMaxFileBytes) : QByteArray();
}

CommentSet SlotsBefore(const CarryPlan& plan, void (*read)(ByteSource&, CommentSet&))
{
    CommentSet set;
    if (plan.original && plan.before) {
        set = *plan.before;
    } else if (plan.original) {
        ResumeNext([&] { read(*plan.original, set); });
    }
    return set;
}

ExifFacts FactsOf(const CarryPlan& plan)
{
    ExifFacts facts;
    facts.width = plan.width;
    facts.height = plan.height;
    facts.upright = true;
    facts.previewJpeg = plan.preview;
    facts.preview = !plan.preview.isEmpty() ? ExifFacts::Preview::Replace
        : plan.keepPreview                  ? ExifFacts::Preview::Keep
                                            : ExifFacts::Preview::Remove;
    return facts;
}

QString SlotText(const CommentSet& set, qint16 slot)
{
    const CommentValue held = HeldValue(set.At(slot));
    const QString* text = held.If<QString>();
    return text ? *text : QString();
}

XmpWishes XmpWishesOf(const CommentSet& before, const CommentSet& wanted, bool upright)
{
    XmpWishes wishes;
    wishes.upright = upright;
    const QString was = SlotText(before, kDescriptionSlot);
    const QString now = SlotText(wanted, kDescriptionSlot);
    if (was != now) {
        wishes.description = {was, now};
    }
    return wishes;
}

void RequireDescription(const QByteArray& changed, void (*read)(ByteSource&, CommentSet&),
                        const QString& wanted)
{
    MemorySource source(changed);
    CommentSet after;
    read(source, after);
    const auto plain = [](const QString& text) { // zeros end a text, or become lines
        return TextFromFieldBytes(text.toUtf8()).replace(QChar(u'\0'), u'\n');
    };
    if (plain(SlotText(after, kDescriptionSlot)) != plain(wanted)) {
        throw Failure(
            kFailureUnreadable,
            QStringLiteral("This file is damaged: its description cannot be changed. Save "
                           "the picture under another name."));
    }
}

bool ProfileFits(const QByteArray& icc, int channels)
{
    // The colour space stands at byte 16 of a profile (ICC.1, table 17).
    const QByteArray space = icc.mid(16, 4);
    return space == "RGB " ? channels == 3
        : space == "GRAY"  ? channels == 1
        : space == "CMYK"  ? channels == 4
                           : true;
}

} // namespace quillane::carry
