#include "imaging/carry/carry_support.h"
#include "imaging/carry/gif_parts.h"
#include "imaging/comments/carriers.h"
#include "imaging/comments/slots.h"
#include "imaging/comments/text_bytes.h"
#include "imaging/limits.h"
#include <algorithm>

namespace quillane::carry {

namespace {

constexpr qsizetype kCarryGifXmpHead = 14;  ///< of its extension, through "XMP DataXMP"
constexpr qsizetype kCarryGifXmpTail = 258; ///< bytes that lead any reader of blocks to the end

/// The description becomes another one: the first comment that says anything is replaced, or all
/// go when there is to be none.
void CarryGifDescribe(GifParts& parts, const QString& text)
{
    const auto isComment = [](const GifPart& part) { return part.kind == GifPart::Kind::Comment; };
    if (text.isEmpty()) {
        std::erase_if(parts.blocks, isComment);
        return;
    }
    const GifPart comment = MakeGifComment(text.toUtf8());
    const auto said =
        std::find_if(parts.blocks.begin(), parts.blocks.end(), [&](const GifPart& part) {
            return isComment(part) && !TextFromFieldBytes(GifContent(part)).isEmpty();
        });
    if (said != parts.blocks.end()) {
        *said = comment;
        return;
    }
    const auto frame =
        std::find_if(parts.blocks.begin(), parts.blocks.end(), [](const GifPart& part) {
            return part.kind == GifPart::Kind::Control || part.kind == GifPart::Kind::Frame;
        });
    parts.blocks.insert(frame, comment);
    parts.head.replace(0, 6, "GIF89a"); // the first version has no extensions
}

/// XMP lies in its extension as it is, not in sub-blocks.
void CarryGifXmp(GifParts& parts, const XmpWishes& wishes)
{
    for (GifPart& part : parts.blocks) {
        const qsizetype size = part.bytes.size() - kCarryGifXmpHead - kCarryGifXmpTail;
        if (part.kind != GifPart::Kind::OtherExtension || size <= 0
            || !part.bytes.startsWith("\x21\xff\x0bXMP DataXMP")
            || quint8(part.bytes[kCarryGifXmpHead + size]) != 1) {
            continue;
        }
        const QByteArray packet = part.bytes.sliced(kCarryGifXmpHead, size);
        part.bytes.replace(kCarryGifXmpHead, size, PatchXmp(packet, wishes));
    }
}

/// How a frame is shown: time and disposal as they were, transparency as the new picture has it.
QByteArray CarryGifControl(const QByteArray& old, const QByteArray& made)
{
    if (old.size() != 8 || made.size() > 8 || (!made.isEmpty() && made.size() != 8)) {
        return made.isEmpty() ? old : made;
    }
    QByteArray control = old;
    const bool transparent = !made.isEmpty() && (made[3] & 1) != 0;
    control[3] = char((old[3] & ~1) | (transparent ? 1 : 0));
    control[6] = transparent ? made[6] : '\0';
    return control;
}

/// The control block that a frame has: the last one before it with no other frame between.
qsizetype CarryGifControlOf(const GifParts& parts, qsizetype frame)
{
    for (qsizetype at = frame - 1; at >= 0; --at) {
        if (parts.blocks[size_t(at)].kind == GifPart::Kind::Control) {
            return at;
        }
    }
    return -1;
}

/// The frame with its palette as its own: the file's palette is another one's.
QByteArray CarryGifOwnPalette(const QByteArray& frame, const GifParts& parts)
{
    if ((frame[9] & 0x80) != 0 || parts.palette.isEmpty()) {
        return frame;
    }
    QByteArray own = frame;
    own[9] = char((frame[9] & 0x40) | 0x80 | (parts.head[10] & 7));
    return own.insert(10, parts.palette);
}

/// The first frame of one GIF in the place of another's.
GifParts CarryGifFrame(const GifParts& made, GifParts old)
{
    const qsizetype from = made.FirstFrame();
    const qsizetype to = old.FirstFrame();
    if (from < 0 || to < 0) {
        throw Failure(kFailureUnreadable,
                      QStringLiteral("This GIF is damaged: it holds no picture, so its metadata "
                                     "cannot be carried over."));
    }
    GifPart frame = made.blocks[size_t(from)];
    if (old.FrameCount() == 1) {
        const char aspect = old.head[12];
        old.head = made.head;
        old.head[12] = aspect;
        old.palette = made.palette;
    } else if (old.Width() != made.Width() || old.Height() != made.Height()) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("This GIF is an animation of %1 frames, and the others do not "
                                     "fit a picture of another size. Save under another name.")
                          .arg(old.FrameCount()));
    } else {
        frame.bytes = CarryGifOwnPalette(frame.bytes, made);
    }
    const qsizetype madeControl = CarryGifControlOf(made, from);
    const qsizetype control = CarryGifControlOf(old, to);
    const QByteArray shown =
        CarryGifControl(control < 0 ? QByteArray() : old.blocks[size_t(control)].bytes,
                        madeControl < 0 ? QByteArray() : made.blocks[size_t(madeControl)].bytes);
    old.blocks[size_t(to)] = frame;
    if (control >= 0) {
        old.blocks[size_t(control)].bytes = shown;
    } else if (!shown.isEmpty()) {
        old.blocks.insert(old.blocks.begin() + to, {GifPart::Kind::Control, shown});
    }
    const bool extended =
        std::any_of(old.blocks.begin(), old.blocks.end(),
                    [](const GifPart& part) { return part.kind != GifPart::Kind::Frame; });
    if (extended) {
        old.head.replace(0, 6, "GIF89a");
    }
    if (old.behind.isEmpty()) {
        old.behind = ";"; // it was cut off
    }
    return old;
}

} // namespace

} // namespace quillane::carry

namespace quillane {

QByteArray CarryIntoGif(const QByteArray& encoded, const CarryPlan& plan)
{
    const QByteArray original = carry::OriginalBytes(plan);
    const CommentSet before = carry::SlotsBefore(plan, ReadGifComments);
    carry::GifParts parts = carry::CutGif(encoded);
    if (!original.isEmpty()) {
        parts = carry::CarryGifFrame(parts, carry::CutGif(original));
    }
    const QString now = carry::SlotText(plan.wanted, kDescriptionSlot);
    if (carry::SlotText(before, kDescriptionSlot) != now) {
        carry::CarryGifDescribe(parts, now);
    }
    carry::CarryGifXmp(parts, carry::XmpWishesOf(before, plan.wanted, true));
    return parts.Joined();
}

QByteArray ReplaceCommentsInGif(ByteSource& original, std::span<const CommentChange> changes)
{
    CommentSet before;
    ReadGifComments(original, before);
    CommentSet wanted = before;
    for (const CommentChange& change : changes) {
        wanted.Set(change.slot, change.value);
    }
    carry::GifParts parts = carry::CutGif(original.All(limits::kMaxFileBytes));
    const QString now = carry::SlotText(wanted, kDescriptionSlot);
    if (carry::SlotText(before, kDescriptionSlot) != now) {
        carry::CarryGifDescribe(parts, now);
    }
    carry::CarryGifXmp(parts, carry::XmpWishesOf(before, wanted, false));
    const QByteArray changed = parts.Joined();
    carry::RequireDescription(changed, ReadGifComments, now);
    return changed;
}

} // namespace quillane
