#pragma once
// File lists on the clipboard and in drags, in the forms that other programs read and write.
#include <QMimeData>
#include <QStringList>
#include <memory>

namespace quillane {

/// Files as `text/uri-list`, `x-special/gnome-copied-files` (as a copy) and plain paths, one a
/// line. File names are bytes: those that are no UTF-8 survive in the first two. The caller, or
/// the clipboard it is handed to, owns the result.
QMimeData* FileListMimeData(const QStringList& paths);
/// The local files that such data names, in its order; empty when it names none.
QStringList FilesOfMimeData(const QMimeData& data);

} // namespace quillane
