#pragma once
// The walk over the selected files of a delete, a copy or a move. Its paths are taken first; a file
// that fails is passed over.
#include "platform/file_service.h"
#include <QString>
#include <QVector>
#include <atomic>

namespace quillane {

enum class WalkKind : quint8 { Delete, Copy, Move, Trash };

/// A selected file and its position in the view.
struct WalkFile {
    int position = 0;
    QString path;
    bool operator==(const WalkFile&) const = default;
};

/// What became of the files.
struct WalkResult {
    int total = 0;
    int done = 0;                 ///< deleted, copied, moved or put into the trash as was asked for
    QString firstFailed;          ///< why the first of the others was not; names it
    int trashedInstead = 0;       ///< of a move: not copied, and in the trash now
    QVector<TrashedFile> trashed; ///< what can be brought back
};

/// The selected files in view order, a path that stands there twice once. A path that does not lie
/// in the listed folder is left out: in "Show All Files" mode `folder` has no separator at its end,
/// and the paths that were joined to it are none of files.
QVector<WalkFile> SelectedFiles(const QVector<QString>& paths, const QVector<bool>& selected,
                                const QString& folder);

/// Walks. target: the folder of a copy or a move, with its separator. In a move a file that could
/// not be copied goes into the trash; where that fails too it stays. No file is replaced that this
/// walk has made. progress is set to the position of the file in hand. Any thread.
WalkResult RunWalk(FileService& files, WalkKind kind, const QVector<WalkFile>& walk,
                   const QString& target, std::atomic<int>& progress);

/// The quiet line after a walk: how many of how many, and which failed first.
QString WalkLine(WalkKind kind, const WalkResult& result);

} // namespace quillane
