#pragma once
// Whether a file meets a search. On the hot path of a scan: any thread, headers only.
#include "search/criteria.h"

namespace quillane {

/// The options of the text test.
struct SearchOptions {
    bool matchCase = false; ///< keyword and value must have the wanted case
    bool matchWord = false; ///< the whole value must equal the wanted text
};

/// What one scan asks of every file; a copy, so that a dialog opened meanwhile changes nothing.
struct SearchQuestion {
    SearchCriteria criteria;
    SearchOptions options;
};

/// -1 if the tag `keyword` of `text` meets the bounds, else 0. Its number is its numeric prefix,
/// 0 where there is none or no such tag. Met: any positive number where neither bound is set;
/// exactly `value` where the high bound is not set; or a number from `value` to `valueHigh`.
/// A bound that is not set counts as -1 in the last two.
qint16 NumericMatches(const QString& keyword, const QString& text, const qint16& value,
                      const qint16& valueHigh);

/// -1 if the value of the tag `keyword` of `text` meets `wanted`, else 0: equals it with
/// matchWord, else contains it (an empty value contains nothing, not even an empty text). Cases
/// count with matchCase only, then in the keyword too.
qint16 TextMatches(const QString& keyword, const QString& text, const QString& wanted,
                   const SearchOptions& options);

/// -1 if as many criteria are met by a description as take part, none included; else 0.
qint16 TextMatchesSearch(const QString& text, const SearchQuestion& question);

/// -1 if the file is an image file by its name and its description passes; else 0. A file without
/// a description has an empty one. Failure when the file cannot be opened.
qint16 FileMatchesSearch(const QString& path, const SearchQuestion& question);

} // namespace quillane
