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

/// A file list as such data holds it.
struct FileList {
    bool present = false; ///< there is a list, even one of no files
    bool isCut = false;   ///< whoever put it there wants the files moved
    QStringList files;    ///< the local ones, in its order; addresses of other machines left out
};
/// Reads a file list. Plain text is one if each of its lines is a whole path or an address, and one
/// of them at least a local file. What lies beyond a limit of 64 MB is left out.
FileList ReadFileList(const QMimeData& data);
/// The local files that such data names, in its order; empty when it names none.
QStringList FilesOfMimeData(const QMimeData& data);

} // namespace quillane
