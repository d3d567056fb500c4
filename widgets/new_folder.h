#pragma once
#include <QString>

namespace quillane {

/// Makes a folder "New Folder" in another one, or "New Folder (2)" and so on where that is taken,
/// and returns its full path. Failure kFailureDenied or kFailureIo in words when it cannot be made.
QString MakeNewFolder(const QString& parent);
/// Gives a folder another name where it stands and returns its new path. Failure when the name is
/// empty, "." or "..", holds a separator, or is taken, or when the system refuses.
QString RenameFolder(const QString& path, const QString& name);

} // namespace quillane
