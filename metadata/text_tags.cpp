#include "metadata/text_tags.h"

#include "core/file_kinds.h"
#include "core/strings.h"
#include "metadata/blanks.h"

#include <algorithm>

namespace quillane {

QString GetTextTag(const QString& key, const QString& text, const qint16& caseSensitive)
{
    const Qt::CaseSensitivity cases =
        caseSensitive == kTrue ? Qt::CaseSensitive : Qt::CaseInsensitive;
    const QStringView all(text);
    for (qsizetype start = 0; start < all.size();) {
        qsizetype end = all.indexOf(u'\n', start);
        if (end < 0) {
            end = all.size();
        }
        const QStringView line = TrimBlanks(all.sliced(start, end - start));
        if (line == kNotFound) {
            break;
        }
        const qsizetype divider = line.indexOf(u'=');
        if (divider >= 0 && TrimBlanks(line.first(divider)).compare(key, cases) == 0) {
            const QStringView value = TrimBlanks(line.sliced(divider + 1));
            const qsizetype lineEnd = value.indexOf(u'\r');
            return (lineEnd < 0 ? value : TrimBlanks(value.first(lineEnd))).toString();
        }
        start = end + 1;
    }
    return {};
}

QString SetTextTag(const QString& key, const QString& value, const QString& text)
{
    const QLatin1String lineEnd("\r\n");
    const QString old = GetTextTag(key, text, kFalse);
    if (old.isEmpty()) {
        const QString line = key + u'=' + value + lineEnd;
        return text.isEmpty() || text.endsWith(u'\n') ? text + line : text + lineEnd + line;
    }
    if (value.compare(old, Qt::CaseInsensitive) == 0) {
        return text;
    }
    const qsizetype found = text.indexOf(key, 0, Qt::CaseInsensitive);
    const qsizetype divider = text.indexOf(u'=', std::max<qsizetype>(found, 0));
    const qsizetype head = divider + 1;
    // Counted from the end: where the first occurrence is not the tag's own line, the old value's
    // length is taken off behind that other "=".
    const qsizetype tail = std::max<qsizetype>(text.size() - head - old.size(), 0);
    return text.first(head) + value + text.last(tail);
}

} // namespace quillane
