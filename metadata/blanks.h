#pragma once
#include <QStringView>

namespace quillane {

/// The text without the blanks (U+0020 alone: no tab, no line end) at its beginning and end.
inline QStringView TrimBlanks(QStringView text)
{
    while (!text.isEmpty() && text.front() == u' ') {
        text = text.sliced(1);
    }
    while (!text.isEmpty() && text.back() == u' ') {
        text.chop(1);
    }
    return text;
}

} // namespace quillane
