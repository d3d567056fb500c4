#include "locator/walk.h"

#include "core/folder_cursor.h"
#include "core/name_order.h"
#include "core/paths.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace quillane {

namespace {

/// One folder's part of a search.
class FolderSearch {
public:
    FolderSearch(const QString& folder, FindResult& result, FindSink& sink)
        : mFolder(folder),
          mResult(result),
          mSink(sink),
          mExact(result.Patterns.size())
    { }

    /// Reads the folder; names of the folders in it go to `below`.
    void Read(QStringList& below)
    {
        FolderCursor cursor(mFolder);
        while (!mStopped && cursor.Next()) {
            const FileType type = cursor.Type();
            if (type == FileType::Regular) {
                Look(cursor);
            } else if (type == FileType::Folder && !cursor.IsLink()) {
                below.append(cursor.Name());
            }
        }
    }

    bool Stopped() const { return mStopped; }

    /// The files found, in the order of their rows; counts them.
    std::vector<FoundFile> TakeFound()
    {
        std::vector<Found> rows;
        rows.reserve(mFound.size() + mExact.size());
        for (size_t n = 0; n < mExact.size(); ++n) {
            if (mExact[n].wanted && FindExact(n)) {
                Exact& exact = mExact[n];
                rows.push_back({std::move(exact.upper),
                                std::move(exact.turn),
                                {std::move(exact.name), 0, 0, true}});
            }
        }
        std::move(mFound.begin(), mFound.end(), std::back_inserter(rows));
        std::stable_sort(rows.begin(), rows.end(), [](const Found& a, const Found& b) {
            const int order = a.upper.compare(b.upper);
            return order != 0 ? order < 0 : a.turn < b.turn;
        });
        std::vector<FoundFile> found;
        found.reserve(rows.size());
        for (Found& row : rows) {
            found.push_back(std::move(row.file));
        }
        mResult.rows += qint64(found.size());
        return found;
    }

private:
    struct Found {
        QString upper; ///< upper-cased name of the file whose turn brought the row
        QString turn;  ///< that file's name
        FoundFile file;
    };
    struct Exact {
        bool wanted = false; ///< some file's turn came to this pattern
        QString upper, turn; ///< the first of these files by name, as in Found
        QString name;        ///< the file that the pattern names
    };

    void Look(const FolderCursor& cursor)
    {
        const QString name = cursor.Name();
        QString upper = UpperCased(name);
        NoteExact(name, upper);
        for (size_t n = 0; n < mResult.Patterns.size(); ++n) {
            const LocatorPattern& pattern = mResult.Patterns[n];
            if (pattern.IsExact() && !pattern.ExactFound) {
                NoteTurn(mExact[n], name, upper);
            }
            const NameTest test = TestName(pattern, upper);
            if (test == NameTest::NextFile) {
                return;
            }
            if (test == NameTest::Matches) {
                const FileStat stat = cursor.Stat();
                if (stat.type == FileType::Regular) { // it may be gone by now
                    mFound.push_back(
                        {std::move(upper), name, {name, stat.size, stat.modifiedSeconds, false}});
                    ++mResult.HitCount[n];
                }
                return;
            }
            if (mSink.SearchStopped()) {
                mStopped = true;
                return;
            }
        }
    }

    static void NoteTurn(Exact& exact, const QString& name, const QString& upper)
    {
        const int order = exact.wanted ? upper.compare(exact.upper) : -1;
        if (order < 0 || (order == 0 && name < exact.turn)) {
            exact.wanted = true;
            exact.upper = upper;
            exact.turn = name;
        }
    }

    /// Remembers a file that an exact pattern names; of several that differ in case the one as
    /// typed, else the first by its name.
    void NoteExact(const QString& name, const QString& upper)
    {
        for (size_t n = 0; n < mExact.size(); ++n) {
            const LocatorPattern& pattern = mResult.Patterns[n];
            if (!pattern.IsExact() || pattern.ExactFound || pattern.upper != upper) {
                continue;
            }
            QString& kept = mExact[n].name;
            if (kept.isEmpty() || name == pattern.text || (kept != pattern.text && name < kept)) {
                kept = name;
            }
        }
    }

    bool FindExact(size_t n)
    {
        LocatorPattern& pattern = mResult.Patterns[n];
        // A pattern may name a file in a folder below; the folder's own entries do not tell.
        if (mExact[n].name.isEmpty() && pattern.text.contains(NativeSeparator())
            && StatPath(mFolder + pattern.text).type == FileType::Regular) {
            mExact[n].name = pattern.text;
        }
        if (mExact[n].name.isEmpty()) {
            return false;
        }
        pattern.ExactFound = true;
        ++mResult.HitCount[n];
        return true;
    }

    const QString& mFolder;
    FindResult& mResult;
    FindSink& mSink;
    std::vector<Exact> mExact; ///< one for each pattern
    std::vector<Found> mFound;
    bool mStopped = false;
};

} // namespace

QString AddBackslash(const QString& path)
{
    const QChar separator = path.isEmpty() ? NativeSeparator() : SeparatorOf(path);
    return path.endsWith(separator) ? path : path + separator;
}

FindResult FindFiles(const QString& startFolder, QStringList& Dirs, const QString& searchString,
                     FindSink& sink)
{
    FindResult result;
    if (searchString.isEmpty()) {
        return result;
    }
    result.Patterns = ParsePatterns(searchString);
    result.HitCount.assign(result.Patterns.size(), 0);
    Dirs = {AddBackslash(startFolder)};
    for (qsizetype i = 0; i < Dirs.size() && !result.stopped; ++i) {
        const QString folder = Dirs[i];
        sink.ShowFolder(folder);
        FolderSearch search(folder, result, sink);
        QStringList below;
        search.Read(below);
        if (std::vector<FoundFile> found = search.TakeFound(); !found.empty()) {
            sink.AddFound(folder, std::move(found));
        }
        if (sink.IncludesSubfolders()) {
            SortNamesIgnoringCase(below);
            for (const QString& name : std::as_const(below)) {
                Dirs.append(folder + name + NativeSeparator());
            }
        }
        // A folder of nothing but hits never comes to the look inside it.
        result.stopped = search.Stopped() || sink.SearchStopped();
    }
    if (result.stopped) {
        result.Patterns.clear();
    }
    return result;
}

} // namespace quillane
