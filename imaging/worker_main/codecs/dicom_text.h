#pragma once
#include <QByteArrayView>
#include <QString>

namespace quillane::worker {

/// Unicode of a value in the character sets that a file names: `characterSets` is its Specific
/// Character Set as stored, several divided by backslashes. Escape sequences switch between
/// them. Bytes that mean nothing become U+FFFD; a set that is not known reads as Windows-1252.
QString DicomText(QByteArrayView value, QByteArrayView characterSets);

} // namespace quillane::worker
