#pragma once
// File lists of clipboard and drops, on their way into the album.
#include <QMimeData>
#include <memory>

namespace quillane {

/// Whether there may be a file list: one of its own kinds, or text, which is not looked at, as who
/// offers it may be slow to hand it over.
bool MayHoldFileList(const QMimeData& data);
/// Whether there is a file list, even one of no files.
bool HoldsFileList(const QMimeData& data);
/// What ReadFileList looks at, for another thread.
std::shared_ptr<QMimeData> FileListCopy(const QMimeData& data);

} // namespace quillane
