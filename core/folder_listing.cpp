#include "core/folder_listing.h"
#include "core/failure.h"
#include "core/file_kinds.h"
#include "core/name_order.h"
#include "core/native_path.h"
#include "core/paths.h"
#include <algorithm>
#include <set>
#include <utility>

namespace quillane {

namespace {

constexpr int kDeepestFolder = 64;          // sub-folders below the one that is read
constexpr int kMostListedFolders = 100'000; // of one deep reading

// The extension of a name packed into one number, folded: up to four units behind the last
// point. 0 for a name without one or with a longer one.
quint64 PackedExtension(QStringView name)
{
    quint64 packed = 0;
    for (qsizetype at = name.size() - 1, units = 0; at >= 0; --at, ++units) {
        const char16_t unit = name[at].unicode();
        if (unit == u'.')
            return packed;
        if (units == 4)
            return 0;
        packed = packed << 16 | name[at].toCaseFolded().unicode();
    }
    return 0;
}

// The packed extension that a pattern "*.EXT" asks for; 0 for any other pattern.
quint64 PatternExtension(QStringView pattern)
{
    if (!pattern.startsWith(QLatin1String("*.")) || pattern.sliced(1).contains(u'*')
        || pattern.contains(u'?') || pattern.sliced(2).contains(u'.'))
        return 0;
    return PackedExtension(pattern);
}

// A mask made ready to be asked for many names.
class ReadyMask {
public:
    explicit ReadyMask(const QString& mask)
    {
        for (const QString& pattern : PatternsOf(mask)) {
            if (const quint64 extension = PatternExtension(pattern))
                mExtensions.push_back(extension);
            else
                mPatterns.append(pattern);
        }
        std::sort(mExtensions.begin(), mExtensions.end());
    }
    bool Matches(const QString& name, quint64 extension) const
    {
        return std::binary_search(mExtensions.begin(), mExtensions.end(), extension)
            || std::any_of(mPatterns.begin(), mPatterns.end(),
                           [&](const QString& pattern) { return MatchesPattern(name, pattern); });
    }

private:
    std::vector<quint64> mExtensions;
    QStringList mPatterns;
};

} // namespace

// Walks a folder and, when asked, those below it, each folder once whatever links lead to it.
class FolderListing::Walk {
public:
    Walk(FolderListing& listing, bool deep, const std::function<bool()>& keepGoing)
        : mListing(listing),
          mDeep(deep),
          mKeepGoing(keepGoing)
    { }

    bool Visit(const QString& folder, int depth)
    {
        if (mListing.mFolders.size() >= kMostListedFolders || (mKeepGoing && !mKeepGoing()))
            return true;
        if (mDeep) {
            const FileStat stat = StatPath(folder);
            if (!mSeen.emplace(stat.device, stat.inode).second)
                return true;
        }
        OneFolder content{folder, {}, {}};
        QStringList below;
        const bool readable = ResumeNext([&] {
            ListFolder(folder, [&](DirEntry&& entry) {
                if (!entry.hidden && entry.type == FileType::Regular)
                    content.names.append(std::move(entry.name));
                else if (mDeep && !entry.hidden && entry.type == FileType::Folder)
                    below.append(std::move(entry.name));
                return true;
            });
        });
        SortNamesIgnoringCase(content.names);
        content.extensions.reserve(size_t(content.names.size()));
        for (const QString& name : std::as_const(content.names))
            content.extensions.push_back(PackedExtension(name));
        if (depth == 0 || !content.names.isEmpty())
            mListing.mFolders.append(std::move(content));
        if (depth < kDeepestFolder) {
            SortNamesIgnoringCase(below);
            for (const QString& name : std::as_const(below))
                Visit(WithSeparator(folder) + name + NativeSeparator(), depth + 1);
        }
        return readable;
    }

private:
    FolderListing& mListing;
    bool mDeep;
    const std::function<bool()>& mKeepGoing;
    std::set<std::pair<quint64, quint64>> mSeen; // device and inode
};

void FolderListing::Read(const QString& folder, bool deep, const std::function<bool()>& keepGoing)
{
    mFolder = folder;
    mFolders.clear();
    mReadable = Walk(*this, deep, keepGoing).Visit(folder, 0);
}

QStringList FolderListing::Names(const QString& mask) const
{
    QStringList matching;
    if (mFolders.isEmpty())
        return matching;
    const OneFolder& own = mFolders.first();
    const ReadyMask ready(mask);
    for (qsizetype i = 0; i < own.names.size(); ++i) {
        if (ready.Matches(own.names[i], own.extensions[size_t(i)]))
            matching.append(own.names[i]);
    }
    return matching;
}

QStringList FolderListing::Paths(const QString& pattern) const
{
    QStringList matching;
    const quint64 extension = PatternExtension(pattern);
    for (const OneFolder& folder : mFolders) {
        for (qsizetype i = 0; i < folder.names.size(); ++i) {
            if (extension != 0 ? folder.extensions[size_t(i)] == extension
                               : MatchesPattern(folder.names[i], pattern))
                matching.append(JoinAsIs(folder.path, folder.names[i]));
        }
    }
    return matching;
}

QStringList PatternsOf(const QString& mask)
{
    return mask.split(u';', Qt::SkipEmptyParts);
}

} // namespace quillane
