#pragma once
#include "imaging/comments/comment_set.h"
#include <span>
#include <vector>

namespace quillane {

struct CommentChange {
    qint16 slot;
    CommentValue value; ///< empty: the field goes
};
/// Where two sets differ, by slot. An empty text or list is no value; zeros behind a text do not
/// count.
std::vector<CommentChange> CommentChanges(const CommentSet& before, const CommentSet& wanted);

/// A value as files hold it: text ends before its first zero, and what has no content is empty.
CommentValue HeldValue(const CommentValue& value);

} // namespace quillane
