#pragma once
#include <QString>
#include <span>

namespace quillane {

struct FormatRow {
    qint16 code;
    const char16_t* text;
};
/// The rows in their order; a code that stands twice is described by its first row.
std::span<const FormatRow> FormatTable();
/// Words for a format code; empty for a code that is not in the table.
QString FormatDescription(const qint16& code);
/// 96, 97, 98 and 101: the formats with an Exif block.
bool IsExifFormat(qint16 code);

} // namespace quillane
