#pragma once
// What stands in the rows of the search window, and the criteria that it makes.
#include "search/criteria.h"

namespace quillane {

struct SearchRowTexts {
    bool checked = false;
    QString keyword;
    QString text;  ///< of a text row
    QString value; ///< of a numeric row, and so on
    QString valueHigh;
};

struct SearchWindowTexts {
    std::array<SearchRowTexts, 4> character;
    std::array<SearchRowTexts, 4> numeric;
};

/// The bound that a box holds: not set when it is empty, else the number that its text begins
/// with, 0 where there is none, rounded to the nearest (ties to even). Failure kFailureOverflow
/// for what 16 bits do not hold.
qint16 BoundOfText(const QString& text);

/// Reads the rows of the window back into searchCharacter and then searchNumeric; blank ones
/// clear what stood there. A Failure of BoundOfText leaves the rows before it read.
void ReadSearchRows(const SearchWindowTexts& window, SearchCriteria& criteria);

} // namespace quillane
