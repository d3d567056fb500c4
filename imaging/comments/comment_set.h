#pragma once
#include "imaging/byte_source.h"
#include "imaging/comments/comment_value.h"
#include <utility>
#include <vector>

namespace quillane {

/// All comment slots of one file.
class CommentSet {
public:
    /// The value of a slot; an empty value for a slot that the file lacks.
    const CommentValue& At(qint16 slot) const;
    void Set(qint16 slot, CommentValue value);
    bool IsEmpty() const { return mValues.empty(); }
    bool operator==(const CommentSet&) const = default;

private:
    std::vector<std::pair<qint16, CommentValue>> mValues; ///< by slot
};

/// Parses the file's metadata once. What cannot be parsed is absent; Failure only when the
/// file cannot be opened. Any thread.
CommentSet ReadComments(const QString& path);
/// The same of a file that is open; its name is only a hint at what it holds. Never fails.
CommentSet ReadComments(FileSource& source, const QString& path);
/// How many files ReadComments has looked into since the program began, over all threads.
qint64 CommentParseCount();

} // namespace quillane
