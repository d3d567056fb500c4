#pragma once
// The `key=value` lines inside an image's description (comment slot 3).
#include <QString>

namespace quillane {

/// Value of the first line of `text` whose name is `key`, empty when there is none. Blanks around
/// name and value do not count, and the value ends at a carriage return. Cases are told apart
/// only where `caseSensitive` is -1. A line that reads "NOT FOUND" and ends in a bare line feed
/// hides everything behind it. Never fails; the cost is linear in the text.
QString GetTextTag(const QString& key, const QString& text, const qint16& caseSensitive);

/// `text` with `value` as the value of `key`: the value GetTextTag finds is replaced, counted from
/// the first "=" behind the first occurrence of `key` anywhere in the text, whatever its case; a
/// change of case alone changes nothing. Where GetTextTag finds no value a line is appended.
/// Never fails.
QString SetTextTag(const QString& key, const QString& value, const QString& text);

} // namespace quillane
