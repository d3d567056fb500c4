#pragma once
// The search over folders. It knows nothing of windows and may run on any thread.
#include "locator/pattern.h"
#include <QString>
#include <QStringList>
#include <vector>

namespace quillane {

/// A file that was found in a folder.
struct FoundFile {
    QString name;               ///< behind the folder's path
    qint64 size = 0;            ///< bytes
    qint64 modifiedSeconds = 0; ///< since 1970, UTC
    bool exact = false;         ///< found by its exact name: shown without size and date
};

/// What a search tells, and what it asks while it runs, on the thread it runs on.
class FindSink {
public:
    virtual ~FindSink() = default;
    /// A folder is about to be searched; its path ends in a separator.
    virtual void ShowFolder(const QString& folder) = 0;
    /// The files found in that folder, in the order of rows: by name, and one of an exact name
    /// before the file, by name, whose turn first came to that pattern.
    virtual void AddFound(const QString& folder, std::vector<FoundFile>&& files) = 0;
    /// Asked for each folder: whether those in it are searched too.
    virtual bool IncludesSubfolders() = 0;
    /// Whether the search is to end.
    virtual bool SearchStopped() = 0;
};

/// How a search ended.
struct FindResult {
    std::vector<LocatorPattern> Patterns; ///< none when it was stopped
    std::vector<qint32> HitCount;         ///< one for each pattern
    qint64 rows = 0;                      ///< files found in all
    bool stopped = false;
};

/// path with a separator behind it, if it has none.
QString AddBackslash(const QString& path);

/// Searches startFolder and, where the sink wants it, the folders below it, level by level. Dirs
/// becomes the list of the folders visited, each with a separator behind it; linked folders are
/// not. Any folder that cannot be read ends the search with a Failure. An empty search string
/// leaves everything as it is.
FindResult FindFiles(const QString& startFolder, QStringList& Dirs, const QString& searchString,
                     FindSink& sink);

} // namespace quillane
