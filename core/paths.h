#pragma once
// Path strings are the platform's own; here is what the program knows of their shape.
#include <QString>

namespace quillane {

/// '/' for a path that begins with "/", else '\'.
QChar SeparatorOf(QStringView path);
/// The separator of this platform's paths.
QChar NativeSeparator();
/// The text after the last separator; the whole text if it has none.
QString LeafName(const QString& path);
/// folder and name joined as they stand, with no separator put between them.
QString JoinAsIs(const QString& folder, const QString& name);
/// path with exactly one separator behind it (a root stays as it is).
QString WithSeparator(const QString& path);
/// path without a trailing separator; a root keeps its own.
QString WithoutSeparator(const QString& path);
/// The folder a path lies in, with its separator; empty when there is none.
QString FolderOf(const QString& path);
/// Whether a tree node's path is a drive root: "/" alone, or on other platforms fewer than
/// four characters.
bool IsDriveRoot(const QString& path);

} // namespace quillane
