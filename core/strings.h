#pragma once
#include <QString>

namespace quillane {

/// The in-band answer of GetField for a field that does not exist.
inline constexpr QLatin1String kNotFound{"NOT FOUND"};

/// Field `index` (from 0) of a text divided by `delimiter`; "NOT FOUND" when there is none.
/// Index 0 of a text without a delimiter is the whole text.
QString GetField(const QString& text, qint16 index, const QString& delimiter);

/// Cuts NULs from the end, makes every line end CR LF and appends one where the text has none
/// at its end; changes `text` and returns it. A text that begins with a line feed fails
/// (kFailureGeneral), as there is no character to look back at.
QString NormaliseLineEnds(QString& text);

} // namespace quillane
