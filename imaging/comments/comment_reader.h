#pragma once
#include "core/native_path.h"
#include "imaging/comments/comment_set.h"
#include <list>
#include <memory>

namespace quillane {

/// Thin front over the sets of the last few files: reading slot after slot of one file parses
/// it once. A set is believed until Revalidate, then its file is looked at again (one stat).
/// One thread.
class CommentReader {
public:
    /// One field; page is always 0. An absent field is an empty value; Failure when the file
    /// cannot be opened or the page is another.
    CommentValue ReadComment(const QString& file, qint32 page, qint16 slot);
    std::shared_ptr<const CommentSet> All(const QString& file);
    /// Takes over a set that another thread has read, with the stat from before its reading.
    void Adopt(const QString& file, const FileStat& stat, std::shared_ptr<const CommentSet> set);
    /// Called once per yield: files may have changed since.
    void Revalidate();

private:
    struct Entry {
        QString file;
        FileStat stat;
        std::shared_ptr<const CommentSet> set;
        bool fresh;
    };
    std::list<Entry> mEntries; ///< newest first, a handful
};

} // namespace quillane
