#pragma once
// The text form of the settings store: "[section]" lines and "key=value" lines in UTF-8.
//
// What needs no quotes stands as it is, so that the file can be read and changed by hand;
// everything else stands in double quotes with backslash escapes, so that any text survives.
#include <QByteArray>
#include <QHash>
#include <QString>

namespace quillane {

using IniSections = QHash<QString, QHash<QString, QString>>;

/// Reads what can be read of a text and passes over the rest; never fails. Keys before the first
/// section line are in the section with the empty name; of equal keys the last one holds.
IniSections ParseIni(const QByteArray& content);
/// The text of sections, ordered by name.
QByteArray IniText(const IniSections& sections);

} // namespace quillane
