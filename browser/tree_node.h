#pragma once
#include <QString>

namespace quillane {

/// What selecting a node of the folder tree means.
struct TreeNodeChoice {
    QString path;        ///< the new gsPath
    bool isFile = false; ///< the node counts as a file: it is shown, not scanned
};

/// While files are shown in the tree, a path whose fourth character from the end is "." counts
/// as a file, so a folder named a.bcd does too and a file named a.bc does not.
bool LooksLikeFile(const QString& path);

/// A drive root stays as it is. Else a folder gets a separator at its end, unless files are
/// shown in the tree: then the path stays bare and may count as a file.
TreeNodeChoice ChooseTreeNode(const QString& nodePath, bool showAll);

} // namespace quillane
