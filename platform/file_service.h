#pragma once
// What is done to whole files: copied, moved, removed, put into the trash and brought back.
#include <QString>
#include <set>
#include <utility>

namespace quillane {

/// Device and inode: the same for two paths exactly if they lead to the same file.
using FileId = std::pair<quint64, quint64>;
using FileIds = std::set<FileId>;

/// A file in the trash.
struct TrashedFile {
    QString original; ///< where it stood
    QString trashed;  ///< where it stands now, absolute
    QString info;     ///< the note beside it that says so, absolute
    bool operator==(const TrashedFile&) const = default;
};

/// What a move came to.
struct MoveResult {
    FileId made;         ///< the file at the target
    QString sourceStays; ///< why the source could not be removed; empty when it was
    bool operator==(const MoveResult&) const = default;
};

/// Each call throws a Failure in words when it fails, and then everything is as it was. Only
/// regular files are taken, and links that lead to one. Any thread.
class FileService {
public:
    virtual ~FileService() = default;
    /// Copies a file with its attributes and times. What stands at `to` is replaced at once and
    /// whole; of a link there the link is, not what it leads to. Refused: a target that is the file
    /// itself, a folder, write-protected or one of `keep`. Returns what was made.
    virtual FileId Copy(const QString& from, const QString& to, const FileIds& keep = {}) = 0;
    /// Copies as Copy does, then removes `from`. Failure means that nothing was copied.
    virtual MoveResult Move(const QString& from, const QString& to, const FileIds& keep = {}) = 0;
    /// Removes a file for good; a link goes, not its target.
    virtual void Delete(const QString& path) = 0;
    /// Puts a file into the trash of its volume.
    virtual TrashedFile Trash(const QString& path) = 0;
    /// Brings a file back to where it stood; never replaces what stands there now.
    virtual void BringBack(const TrashedFile& file) = 0;
    /// Whether a rename to this name would replace something: another file stands there.
    virtual bool WouldReplace(const QString& from, const QString& to) = 0;
    /// Gives a file another name on the same volume. Replaces another file only when told to, and
    /// never a folder.
    virtual void Rename(const QString& from, const QString& to, bool replace) = 0;
};

} // namespace quillane
