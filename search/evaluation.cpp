#include "search/evaluation.h"

#include "core/numbers.h"
#include "imaging/comments/comment_set.h"
#include "imaging/comments/slots.h"
#include "metadata/text_tags.h"

namespace quillane {

qint16 NumericMatches(const QString& keyword, const QString& text, const qint16& value,
                      const qint16& valueHigh)
{
    const double number = NumericPrefix(GetTextTag(keyword, text, kFalse));
    const bool present = value == kNoBound && valueHigh == kNoBound && number > 0;
    const bool exact = valueHigh == kNoBound && number == double(value);
    const bool within = number >= value && number <= valueHigh;
    return present || exact || within ? kTrue : kFalse;
}

qint16 TextMatches(const QString& keyword, const QString& text, const QString& wanted,
                   const SearchOptions& options)
{
    QString value = GetTextTag(keyword, text, options.matchCase ? kTrue : kFalse);
    QString sought = wanted;
    if (!options.matchCase) {
        value = value.toUpper();
        sought = sought.toUpper();
    }
    const bool met =
        options.matchWord ? value == sought : !value.isEmpty() && value.contains(sought);
    return met ? kTrue : kFalse;
}

qint16 TextMatchesSearch(const QString& text, const SearchQuestion& question)
{
    int takingPart = 0, matched = 0;
    for (const SearchArrayRow& array : kSearchArrays) {
        for (const SearchCriterion& row : RowsOf(question.criteria, array.array)) {
            if (row.checked != kTrue) {
                continue;
            }
            ++takingPart;
            const qint16 met = array.kind == SearchKind::Numeric
                ? NumericMatches(row.keyword, text, row.value, row.valueHigh)
                : TextMatches(row.keyword, text, row.text, question.options);
            matched += met == kTrue ? 1 : 0;
        }
    }
    return takingPart == matched ? kTrue : kFalse;
}

qint16 FileMatchesSearch(const QString& path, const SearchQuestion& question)
{
    if (IsImageFile(path) != kTrue) {
        return kFalse;
    }
    const CommentSet comments = ReadComments(path);
    const QString* description = comments.At(kDescriptionSlot).If<QString>();
    return TextMatchesSearch(description ? *description : QString(), question);
}

} // namespace quillane
