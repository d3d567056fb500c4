#include "core/strings.h"
#include "core/failure.h"

namespace quillane {

QString GetField(const QString& text, qint16 index, const QString& delimiter)
{
    qsizetype start = 0;
    qsizetype end = delimiter.isEmpty() ? -1 : text.indexOf(delimiter);
    if (index == 0)
        return end < 0 ? text : text.first(end);
    if (index < 0)
        return kNotFound;
    for (qint16 field = 0; field < index; ++field) {
        if (end < 0)
            return kNotFound;
        start = end + delimiter.size();
        end = text.indexOf(delimiter, start);
    }
    if (start >= text.size())
        return kNotFound;
    return end < 0 ? text.sliced(start) : text.sliced(start, end - start);
}

QString NormaliseLineEnds(QString& text)
{
    qsizetype length = text.size();
    while (length > 0 && text[length - 1].isNull())
        --length;
    text.truncate(length);

    QString result;
    result.reserve(length + 2);
    qsizetype copied = 0;
    for (qsizetype at = text.indexOf(u'\n'); at >= 0; at = text.indexOf(u'\n', at + 1)) {
        if (at == 0)
            throw Failure(kFailureGeneral, QStringLiteral("The text begins with a line end."));
        if (text[at - 1] == u'\r')
            continue;
        result += QStringView(text).sliced(copied, at - copied);
        result += QLatin1String("\r\n");
        copied = at + 1;
    }
    result += QStringView(text).sliced(copied);
    if (!result.endsWith(QLatin1String("\r\n")))
        result += QLatin1String("\r\n");
    text = result;
    return text;
}

} // namespace quillane
