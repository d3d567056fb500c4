#pragma once
#include <QByteArrayView>
#include <optional>

namespace quillane {

/// The lines of a text file without their ends, one at a time. A line ends with CR LF or with a
/// bare LF; in a text that has no LF at all, as old systems wrote it, with a bare CR. Elsewhere a
/// CR is part of its line. A byte order mark of UTF-8 in front is passed over. Copies nothing.
class TextLines {
public:
    /// The bytes stay as long as lines are asked for.
    explicit TextLines(QByteArrayView bytes);
    /// The next line; nothing at the end. Behind the last line end there is no empty line.
    std::optional<QByteArrayView> Next();
    /// Of the last line, from 1; 0 before the first.
    qint64 Number() const { return mNumber; }

private:
    QByteArrayView mBytes;
    char mEnd = '\n';
    qint64 mNumber = 0;
};

} // namespace quillane
