#pragma once
#include "platform/ui_loop.h"
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

namespace quillane {

/// What a scan needs to know of a folder before it begins.
struct FolderFiles {
    QString folder;    ///< as its files' paths begin
    QStringList names; ///< of the hidden file list: every file of the mask, once, by name
    std::vector<QStringList> filesOfMasks; ///< full paths, one list for each pattern
};

struct FolderQuestion {
    QString folder;    ///< with its separator
    QString filter;    ///< mask of the names
    QStringList masks; ///< patterns whose files are wanted; may be empty
    bool deep = false; ///< the patterns' files of sub-folders too
};

/// Reads a folder on another thread while window events flow; a folder on a slow disk does not
/// stop the window. Nothing when `generation` is no longer the newest before it is read; the
/// reading then ends by itself.
std::optional<FolderFiles> ReadFolderFiles(const FolderQuestion& question, UiLoop& loop,
                                           Generation generation);

} // namespace quillane
