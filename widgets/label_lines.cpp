#include "widgets/label_lines.h"

#include <algorithm>

namespace quillane {

namespace {

constexpr int kLongestLabel = 512; // units; no screen shows more in two lines

bool BreaksBehind(QChar unit)
{
    return unit == u' ' || unit == u'-' || unit == u'_' || unit == u'.' || unit == u',';
}

/// How many units of a text fit into a width; at least one, and no half of a pair.
qsizetype UnitsThatFit(const QString& text, const QFontMetrics& metrics, int width)
{
    qsizetype low = 1, high = text.size();
    while (low < high) {
        const qsizetype middle = (low + high + 1) / 2;
        if (metrics.horizontalAdvance(text, int(middle)) <= width) {
            low = middle;
        } else {
            high = middle - 1;
        }
    }
    if (low < text.size() && text.at(low).isLowSurrogate() && low > 1) {
        --low;
    }
    return low;
}

} // namespace

QString DisplayName(const QString& name)
{
    QString shown = name;
    for (qsizetype at = 0; at < shown.size(); ++at) {
        const QChar unit = shown.at(at);
        if (unit.isHighSurrogate() && at + 1 < shown.size() && shown.at(at + 1).isLowSurrogate()) {
            ++at;
        } else if (unit.isSurrogate() || unit.category() == QChar::Other_Control
                   || unit == QChar::LineSeparator || unit == QChar::ParagraphSeparator) {
            shown[at] = QChar::ReplacementCharacter;
        }
    }
    return shown;
}

QStringList LabelLines(const QString& name, const QFontMetrics& metrics, int width)
{
    QString text = DisplayName(name);
    if (text.size() > kLongestLabel) {
        text = text.left(kLongestLabel / 2) + QChar(0x2026) + text.right(kLongestLabel / 2);
    }
    if (text.isEmpty() || metrics.horizontalAdvance(text) <= width) {
        return {text};
    }
    qsizetype cut = UnitsThatFit(text, metrics, width);
    // A break behind a blank or a mark reads better, if it does not leave half the line empty.
    for (qsizetype at = cut; at > cut / 2; --at) {
        if (BreaksBehind(text.at(at - 1))) {
            cut = at;
            break;
        }
    }
    const QString rest = text.mid(cut).trimmed();
    return {text.left(cut).trimmed(), metrics.elidedText(rest, Qt::ElideMiddle, width)};
}

} // namespace quillane
