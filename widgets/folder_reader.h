#pragma once
// What the tree wants to know of folders. All of it may take long and is for another thread.
#include <QString>
#include <QVector>

namespace quillane {

struct FolderEntry {
    QString name;
    bool isFolder = true;
    bool operator==(const FolderEntry&) const = default;
};

/// What a folder holds: folders before files, each by name without regard to case; hidden entries
/// left out.
struct FolderContent {
    bool readable = false;
    QString failure; ///< why it could not be read, in words
    QVector<FolderEntry> entries;
};
/// Reads a folder.
FolderContent ReadFolder(const QString& path, bool withFiles);
/// Whether there is anything the tree would show in a folder; a folder that cannot be read has
/// nothing.
bool HasEntries(const QString& path, bool withFiles);

/// The nearest path, from `path` upwards, that is there: a folder or, with files, a regular file.
struct LocatedPath {
    QString path; ///< without a separator at its end, but for "/"; empty when nothing is there
    bool isFolder = true;
};
/// Looks from `path` upwards for what is there.
LocatedPath LocatePath(const QString& path, bool withFiles);

} // namespace quillane
