#include "browser/file_walk.h"

#include "core/failure.h"
#include "core/paths.h"

#include <QCoreApplication>
#include <QSet>

namespace quillane {

namespace {

QString WalkText(const char* text, int count = -1)
{
    return QCoreApplication::translate("FileWalk", text, nullptr, count);
}

QString FilesInWords(int count)
{
    return count == 1 ? WalkText("1 file") : WalkText("%1 files").arg(count);
}

QString DoneWords(WalkKind kind)
{
    switch (kind) {
    case WalkKind::Delete:
        return WalkText("deleted");
    case WalkKind::Copy:
        return WalkText("copied");
    case WalkKind::Move:
        return WalkText("moved");
    case WalkKind::Trash:
        break;
    }
    return WalkText("moved to the trash");
}

/// One walk with what it must remember.
class FileWalker {
public:
    FileWalker(FileService& files, WalkKind kind, QString target)
        : mFiles(files),
          mKind(kind),
          mTarget(std::move(target))
    { }

    void Take(const QString& path)
    {
        ++mResult.total;
        try {
            if (Do(path)) {
                ++mResult.done;
            }
        } catch (const Failure& failure) {
            Passed(failure.Description());
            if (mKind == WalkKind::Move) {
                TrashInstead(path);
            }
        }
    }
    WalkResult Result() && { return std::move(mResult); }

private:
    bool Do(const QString& path)
    {
        switch (mKind) {
        case WalkKind::Delete:
            mFiles.Delete(path);
            break;
        case WalkKind::Copy:
            mMade.insert(mFiles.Copy(path, JoinAsIs(mTarget, LeafName(path)), mMade));
            break;
        case WalkKind::Move: {
            const MoveResult moved = mFiles.Move(path, JoinAsIs(mTarget, LeafName(path)), mMade);
            mMade.insert(moved.made);
            if (!moved.sourceStays.isEmpty()) {
                Passed(moved.sourceStays);
                return false;
            }
            break;
        }
        case WalkKind::Trash:
            mResult.trashed.append(mFiles.Trash(path));
            break;
        }
        return true;
    }

    /// The delete of a move that follows a failed copy.
    void TrashInstead(const QString& path)
    {
        if (ResumeNext([&] { mResult.trashed.append(mFiles.Trash(path)); })) {
            ++mResult.trashedInstead;
        }
    }

    void Passed(const QString& reason)
    {
        if (mResult.firstFailed.isEmpty()) {
            mResult.firstFailed = reason;
        }
    }

    FileService& mFiles;
    const WalkKind mKind;
    const QString mTarget;
    FileIds mMade;
    WalkResult mResult;
};

} // namespace

QVector<WalkFile> SelectedFiles(const QVector<QString>& paths, const QVector<bool>& selected,
                                const QString& folder)
{
    const bool joined = folder.isEmpty() || folder.endsWith(SeparatorOf(folder));
    const QString inside = joined ? QString() : WithSeparator(folder);
    QVector<WalkFile> files;
    QSet<QString> seen;
    const int count = int(std::min(paths.size(), selected.size()));
    for (int i = 0; i < count; ++i) {
        const QString& path = paths.at(i);
        if (selected.at(i) && path.startsWith(inside) && !seen.contains(path)) {
            seen.insert(path);
            files.append({i, path});
        }
    }
    return files;
}

WalkResult RunWalk(FileService& files, WalkKind kind, const QVector<WalkFile>& walk,
                   const QString& target, std::atomic<int>& progress)
{
    FileWalker walker(files, kind, target);
    for (const WalkFile& file : walk) {
        progress = file.position;
        walker.Take(file.path);
    }
    return std::move(walker).Result();
}

QString WalkLine(WalkKind kind, const WalkResult& result)
{
    if (result.total == 0) {
        return WalkText("No file is selected.");
    }
    QString line =
        WalkText("%1 of %2 %3.").arg(result.done).arg(FilesInWords(result.total), DoneWords(kind));
    if (result.trashedInstead > 0) {
        line += u' '
            + WalkText("%1 went to the trash instead.").arg(FilesInWords(result.trashedInstead));
    }
    if (!result.trashed.isEmpty()) {
        line += u' '
            + (result.trashed.size() == 1 ? WalkText("Ctrl+Z brings it back.")
                                          : WalkText("Ctrl+Z brings them back."));
    }
    // Last, because nobody knows how long it is.
    if (!result.firstFailed.isEmpty()) {
        line += u' ' + WalkText("First failed: %1").arg(result.firstFailed);
    }
    return line;
}

} // namespace quillane
