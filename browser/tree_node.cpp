#include "browser/tree_node.h"

#include "core/paths.h"

namespace quillane {

bool LooksLikeFile(const QString& path)
{
    return path.size() >= 4 && path.at(path.size() - 4) == u'.';
}

TreeNodeChoice ChooseTreeNode(const QString& nodePath, bool showAll)
{
    if (IsDriveRoot(nodePath)) {
        return {nodePath, false};
    }
    const QString bare = WithoutSeparator(nodePath);
    if (!showAll) {
        return {bare + SeparatorOf(bare), false};
    }
    return {bare, LooksLikeFile(bare)};
}

} // namespace quillane
