#include "widgets/folder_reader.h"

#include "core/failure.h"
#include "core/name_order.h"
#include "core/native_path.h"
#include "core/paths.h"

#include <QStringList>

namespace quillane {

namespace {

constexpr int kMostTreeEntries = 50'000; // of one folder; a tree with more is of no use

bool IsShownInTree(const DirEntry& entry, bool withFiles)
{
    return !entry.hidden
        && (entry.type == FileType::Folder || (withFiles && entry.type == FileType::Regular));
}

} // namespace

FolderContent ReadFolder(const QString& path, bool withFiles)
{
    FolderContent content;
    QStringList folders, files;
    try {
        ListFolder(path, [&](DirEntry&& entry) {
            if (IsShownInTree(entry, withFiles)) {
                (entry.type == FileType::Folder ? folders : files).append(std::move(entry.name));
            }
            return folders.size() + files.size() < kMostTreeEntries;
        });
        content.readable = true;
    } catch (const Failure& failure) {
        content.failure = failure.Description();
    }
    SortNamesIgnoringCase(folders);
    SortNamesIgnoringCase(files);
    content.entries.reserve(folders.size() + files.size());
    for (const QString& name : folders) {
        content.entries.append({name, true});
    }
    for (const QString& name : files) {
        content.entries.append({name, false});
    }
    return content;
}

bool HasEntries(const QString& path, bool withFiles)
{
    bool found = false;
    ResumeNext([&] {
        ListFolder(path, [&](DirEntry&& entry) {
            found = IsShownInTree(entry, withFiles);
            return !found;
        });
    });
    return found;
}

LocatedPath LocatePath(const QString& path, bool withFiles)
{
    QString candidate = WithoutSeparator(path);
    while (!candidate.isEmpty()) {
        const FileType type = StatPath(candidate).type;
        if (type == FileType::Folder || (withFiles && type == FileType::Regular)) {
            return {candidate, type == FileType::Folder};
        }
        const QString above = WithoutSeparator(FolderOf(candidate));
        if (above == candidate) {
            break;
        }
        candidate = above;
    }
    return {};
}

} // namespace quillane
