#include "imaging/comments/comment_reader.h"
#include <algorithm>

namespace quillane {

namespace {

constexpr size_t kCommentReaderFiles = 4;

/// Whether the file is the one that was read, unchanged.
bool CommentStatSame(const FileStat& a, const FileStat& b)
{
    return a.type == b.type && a.size == b.size && a.modifiedSeconds == b.modifiedSeconds
        && a.modifiedNanos == b.modifiedNanos && a.device == b.device && a.inode == b.inode;
}

} // namespace

CommentValue CommentReader::ReadComment(const QString& file, qint32 page, qint16 slot)
{
    if (page != 0) {
        throw Failure(kFailureIndex,
                      QStringLiteral("Comments are read of a file's first page only."), file);
    }
    return All(file)->At(slot);
}

std::shared_ptr<const CommentSet> CommentReader::All(const QString& file)
{
    const auto found = std::find_if(mEntries.begin(), mEntries.end(),
                                    [&](const Entry& entry) { return entry.file == file; });
    if (found != mEntries.end() && found->fresh) {
        mEntries.splice(mEntries.begin(), mEntries, found);
        return mEntries.front().set;
    }
    if (found != mEntries.end()) {
        if (CommentStatSame(found->stat, StatPath(file))) {
            found->fresh = true;
            mEntries.splice(mEntries.begin(), mEntries, found);
            return mEntries.front().set;
        }
        mEntries.erase(found);
    }
    FileSource source(file);
    // The stat is from before the reading: a change meanwhile shows at the next look.
    Adopt(file, source.Stat(), std::make_shared<const CommentSet>(ReadComments(source, file)));
    return mEntries.front().set;
}

void CommentReader::Adopt(const QString& file, const FileStat& stat,
                          std::shared_ptr<const CommentSet> set)
{
    mEntries.remove_if([&](const Entry& entry) { return entry.file == file; });
    mEntries.push_front({file, stat, std::move(set), true});
    if (mEntries.size() > kCommentReaderFiles) {
        mEntries.pop_back();
    }
}

void CommentReader::Revalidate()
{
    for (Entry& entry : mEntries) {
        entry.fresh = false;
    }
}

} // namespace quillane
