#pragma once
#include "core/native_path.h"
#include <memory>

namespace quillane {

/// Reads a folder entry by entry, "." and ".." left out, in the system's order. What nobody asks
/// for is not looked up: a stat is made for the entries alone whose facts are wanted.
class FolderCursor {
public:
    /// Failure when the folder cannot be read.
    explicit FolderCursor(const QString& folder);
    ~FolderCursor();
    FolderCursor(const FolderCursor&) = delete;
    FolderCursor& operator=(const FolderCursor&) = delete;

    /// Moves to the next entry, the first one at first; false behind the last. Failure when the
    /// folder cannot be read any further.
    bool Next();

    QString Name() const;                 ///< leaf name
    FileType Type() const;                ///< links followed; Missing for one that leads nowhere
    bool IsLink() const { return mLink; } ///< a symbolic link, wherever it leads
    /// Facts, links followed; Missing when the entry is gone.
    FileStat Stat() const;

private:
    struct Stream;
    QString mFolder;
    std::unique_ptr<Stream> mStream;
    bool mLink = false;
};

} // namespace quillane
