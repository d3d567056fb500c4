#pragma once
#include <QFontMetrics>
#include <QString>
#include <QStringList>

namespace quillane {

/// A file name fit to be shown: line breaks, other control characters and units that are no
/// character stand as a replacement character.
QString DisplayName(const QString& name);

/// A name in at most two lines of `width` pixels: broken where that is possible, cut in the middle
/// of the second line when both are full, so that the extension is seen.
QStringList LabelLines(const QString& name, const QFontMetrics& metrics, int width);

} // namespace quillane
