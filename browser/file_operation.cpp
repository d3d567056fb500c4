#include "browser/file_operation.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "core/posix_error.h"

#include <QCoreApplication>
#include <QScopeGuard>
#include <QScopedValueRollback>
#include <QSet>
#include <algorithm>
#include <iterator>

namespace quillane {

namespace {

constexpr qsizetype kMostBatches = 100; // of what can be brought back

QString OperationText(const char* text)
{
    return QCoreApplication::translate("FileOperation", text);
}

/// The files that are looked at when these are gone: the next one that stays, and the one before.
QStringList NextFiles(const QVector<QString>& shown, const QVector<WalkFile>& gone)
{
    QSet<QString> goes;
    for (const WalkFile& file : gone) {
        goes.insert(file.path);
    }
    const auto stays = [&](const QString& path) { return !goes.contains(path); };
    const auto from = shown.begin() + gone.first().position;
    QStringList next;
    if (const auto after = std::find_if(from, shown.end(), stays); after != shown.end()) {
        next.append(*after);
    }
    const auto before = std::find_if(std::make_reverse_iterator(from), shown.rend(), stays);
    if (before != shown.rend()) {
        next.append(*before);
    }
    return next;
}

} // namespace

QString FileOperations::FileOperation(qint16 op)
{
    if (mBusy) {
        return {};
    }
    switch (op) {
    case kDeleteFiles:
        if (mPlatform.dialogs.Box(QStringLiteral("Delete Files?"),
                                  QStringLiteral("Confirm File Delete"), BoxIcon::Warning,
                                  BoxButtons::YesNo)
            != BoxAnswer::Yes) {
            return {};
        }
        break;
    case kCopyFiles:
    case kMoveFiles:
        mView.PickFolder(op == kCopyFiles ? QStringLiteral("Copy File(s) to...")
                                          : QStringLiteral("Move File(s) to..."));
        mPlatform.loop.ProcessEvents();
        if (mSession.browsePath.isEmpty()) {
            mSession.browsePath = mPlatform.places.Home();
            return {};
        }
        break;
    case kPickProgram:
        mView.PickProgram(QStringLiteral("Select Custom Tool Path..."));
        if (mSession.browsePath.isEmpty()) {
            throw Failure(kFailureGeneral, OperationText("No program was chosen."));
        }
        return mSession.browsePath.chopped(1);
    case kRenameFile:
        RenameCurrent();
        return {};
    default:
        break;
    }
    constexpr WalkKind kKinds[] = {WalkKind::Delete, WalkKind::Copy, WalkKind::Move};
    if (op < kDeleteFiles || op > kMoveFiles) {
        RunWithProgress(int(mSession.lbFilTiffs.size()), [](std::atomic<int>&) {});
        return {};
    }
    const WalkResult result = Walk(kKinds[op]);
    if (op != kCopyFiles) {
        mView.RefreshFiles();
    }
    mView.Tell(WalkLine(kKinds[op], result));
    return {};
}

void FileOperations::RunWithProgress(int steps, const std::function<void(std::atomic<int>&)>& work)
{
    const QScopedValueRollback<bool> busy(mBusy, true);
    const Hourglass hourglass(mPlatform.loop);
    std::atomic<int> progress = 0;
    mView.ShowProgress(steps < 2 ? 1 : steps - 1);
    const auto hide = qScopeGuard([this] { mView.HideProgress(); });
    mView.RunAlone([&] { work(progress); }, [&] { mView.SetProgress(progress); });
}

WalkResult FileOperations::Walk(WalkKind kind)
{
    // Taken before anything happens: no event can change what is done.
    const QVector<WalkFile> files =
        SelectedFiles(mSession.lbFilTiffs, mView.SelectedFlags(), mSession.gsPath);
    const QString target = mSession.browsePath;
    WalkResult result;
    RunWithProgress(int(mSession.lbFilTiffs.size()), [&](std::atomic<int>& progress) {
        result = RunWalk(mPlatform.files, kind, files, target, progress);
    });
    Remember(result.trashed);
    return result;
}

void FileOperations::Remember(const QVector<TrashedFile>& trashed)
{
    if (trashed.isEmpty()) {
        return;
    }
    mTrashed.append(trashed);
    if (mTrashed.size() > kMostBatches) {
        mTrashed.removeFirst();
    }
}

void FileOperations::TrashSelected()
{
    if (mBusy) {
        return;
    }
    const QVector<WalkFile> files =
        SelectedFiles(mSession.lbFilTiffs, mView.SelectedFlags(), mSession.gsPath);
    if (files.isEmpty()) {
        mView.Tell(WalkLine(WalkKind::Trash, {}));
        return;
    }
    const QStringList next = NextFiles(mSession.lbFilTiffs, files);
    const WalkResult result = Walk(WalkKind::Trash);
    mView.RefreshFiles();
    // The next file is looked at, as after one that was put aside; the scan may have another order.
    for (const QString& path : next) {
        if (const qsizetype at = mSession.lbFilTiffs.indexOf(path); at >= 0) {
            mView.MakeFileCurrent(int(at));
            break;
        }
    }
    mView.Tell(WalkLine(WalkKind::Trash, result));
}

void FileOperations::BringBack()
{
    if (mBusy) {
        return;
    }
    if (mTrashed.isEmpty()) {
        mView.Tell(OperationText("There is nothing to bring back."));
        return;
    }
    const QVector<TrashedFile> files = mTrashed.takeLast();
    int done = 0;
    QString failed, back;
    QVector<TrashedFile> kept; // another try may do better
    RunWithProgress(int(files.size()), [&](std::atomic<int>& progress) {
        for (int i = 0; i < files.size(); ++i) {
            progress = i;
            try {
                mPlatform.files.BringBack(files.at(i));
                ++done;
                back = back.isEmpty() ? files.at(i).original : back;
            } catch (const Failure& failure) {
                failed = failed.isEmpty() ? failure.Description() : failed;
                if (StatPath(files.at(i).trashed).type != FileType::Missing) {
                    kept.append(files.at(i));
                }
            }
        }
    });
    if (!kept.isEmpty()) {
        mTrashed.prepend(kept); // behind what can come back now
    }
    mView.RefreshFiles();
    if (const qsizetype at = mSession.lbFilTiffs.indexOf(back); at >= 0) {
        mView.MakeFileCurrent(int(at));
    }
    QString line = (files.size() == 1 ? OperationText("%1 of 1 file brought back from the trash.")
                                      : OperationText("%1 of %2 files brought back from the "
                                                      "trash."))
                       .arg(done);
    if (files.size() != 1) {
        line = line.arg(files.size());
    }
    if (!failed.isEmpty()) {
        line += u' ' + OperationText("First failed: %1").arg(failed);
    }
    mView.Tell(line);
}

void FileOperations::RenameCurrent()
{
    const QString old = mSession.gsFileName;
    if (old.isEmpty() || !old.startsWith(WithSeparator(mSession.gsPath))) {
        mView.Tell(OperationText("There is no current file in this folder to give another name."));
        return;
    }
    mView.AskNewName();
    mPlatform.loop.ProcessEvents();
    const QString fresh = mSession.gsNewName;
    if (fresh.isEmpty() || fresh == old) {
        return;
    }
    // The name may hold a separator, or the folder have none at its end to join a name to.
    if (FolderOf(fresh) != FolderOf(old) || LeafName(fresh).isEmpty()) {
        mView.Tell(OperationText("%1 keeps its name: the new one is none of a file in this folder.")
                       .arg(ShownName(old)));
        return;
    }
    try {
        if (!ShellFileOperation(kRenameFile, old, fresh)) {
            return;
        }
    } catch (const Failure& failure) {
        mView.Tell(failure.Description());
        return;
    }
    mSession.gsFileName = fresh;
    int at = mSession.gImageListIndex;
    if (mSession.lbFilTiffs.value(at) != old) {
        at = int(mSession.lbFilTiffs.indexOf(old)); // the last click went beside the files
    }
    if (at >= 0) {
        mSession.lbFilTiffs[at] = fresh;
        mView.FileRenamed(at, fresh);
    }
}

bool FileOperations::ShellFileOperation(qint16 op, const QString& from, const QString& to)
{
    FileService& files = mPlatform.files;
    bool replace = false;
    if (op == kRenameFile && files.WouldReplace(from, to)) {
        const QString question =
            OperationText("There is a file named %1 already. Replace it?").arg(ShownName(to));
        replace = mPlatform.dialogs.Box(question, OperationText("Confirm File Replace"),
                                        BoxIcon::Warning, BoxButtons::YesNo)
            == BoxAnswer::Yes;
        if (!replace) {
            return false;
        }
    }
    const Hourglass hourglass(mPlatform.loop);
    switch (op) {
    case kCopyFiles:
        files.Copy(from, to);
        return true;
    case kMoveFiles:
        files.Move(from, to);
        return true;
    case kRenameFile:
        files.Rename(from, to, replace);
        return true;
    default:
        return false;
    }
}

} // namespace quillane
