#include "search/row_texts.h"

#include "core/numbers.h"

namespace quillane {

qint16 BoundOfText(const QString& text)
{
    return text.isEmpty() ? kNoBound : ToInt16(NumericPrefix(text));
}

void ReadSearchRows(const SearchWindowTexts& window, SearchCriteria& criteria)
{
    for (size_t i = 0; i < window.character.size(); ++i) {
        const SearchRowTexts& from = window.character[i];
        SearchCriterion& row = criteria.searchCharacter[i];
        row.checked = from.checked ? kTrue : kFalse;
        row.text = from.text;
        row.keyword = from.keyword;
    }
    for (size_t i = 0; i < window.numeric.size(); ++i) {
        const SearchRowTexts& from = window.numeric[i];
        SearchCriterion& row = criteria.searchNumeric[i];
        row.checked = from.checked ? kTrue : kFalse;
        row.value = BoundOfText(from.value);
        row.valueHigh = BoundOfText(from.valueHigh);
        row.keyword = from.keyword;
    }
}

} // namespace quillane
