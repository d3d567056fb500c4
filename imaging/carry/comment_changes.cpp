#include "imaging/carry/comment_changes.h"
#include "imaging/comments/slots.h"

namespace quillane {

CommentValue HeldValue(const CommentValue& value)
{
    if (const QString* text = value.If<QString>()) {
        qsizetype end = text->size();
        while (end > 0 && text->at(end - 1).isNull()) {
            --end;
        }
        return end > 0 ? CommentValue(text->left(end)) : CommentValue();
    }
    const QVector<double>* rationals = value.If<QVector<double>>();
    const QByteArray* bytes = value.If<QByteArray>();
    const bool blank = (rationals && rationals->isEmpty()) || (bytes && bytes->isEmpty());
    return blank ? CommentValue() : value;
}

std::vector<CommentChange> CommentChanges(const CommentSet& before, const CommentSet& wanted)
{
    std::vector<CommentChange> changes;
    for (const CommentSlot& slot : CommentSlots()) {
        CommentValue value = HeldValue(wanted.At(slot.slot));
        if (value != HeldValue(before.At(slot.slot))) {
            changes.push_back({slot.slot, std::move(value)});
        }
    }
    return changes;
}

} // namespace quillane
