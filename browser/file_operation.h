#pragma once
#include "browser/file_walk.h"
#include "core/session.h"
#include "platform/platform.h"
#include <functional>

namespace quillane {

enum FileOperationCode : qint16 {
    kDeleteFiles = 0,
    kCopyFiles = 1,
    kMoveFiles = 2,
    kPickProgram = 3,
    kRenameFile = 4,
};

/// What FileOperation asks of the main window.
class FileOperationView {
public:
    virtual ~FileOperationView() = default;
    /// Selected flags of the visible view, one for each entry of lbFilTiffs.
    virtual QVector<bool> SelectedFlags() const = 0;
    /// Shows frmBrowse with this caption; it sets browsePath, and empties it on cancel.
    virtual void PickFolder(const QString& caption) = 0;
    /// The same with files in the tree, exePath selected and no new folders.
    virtual void PickProgram(const QString& caption) = 0;
    /// Shows frmRename; it sets gsNewName, and empties it on cancel.
    virtual void AskNewName() = 0;
    /// Shows proTile with this maximum.
    virtual void ShowProgress(int maximum) = 0;
    virtual void SetProgress(int value) = 0;
    virtual void HideProgress() = 0;
    /// Runs `work` on another thread until it is done, with nothing that a person does reaching the
    /// program meanwhile; runs `tick` on this one now and then.
    virtual void RunAlone(const std::function<void()>& work, const std::function<void()>& tick) = 0;
    virtual void RefreshFiles() = 0;
    /// The file of a position has another path; where the large icons are on, its row shows the
    /// new name, everywhere else the old text stays.
    virtual void FileRenamed(int position, const QString& path) = 0;
    /// Makes the file of a position current, as a click on it does.
    virtual void MakeFileCurrent(int position) = 0;
    virtual void Tell(const QString& line) = 0;
};

/// Delete, copy, move, rename, and the trash, over the files of the browser.
class FileOperations {
public:
    FileOperations(Session& session, Platform platform, FileOperationView& view)
        : mSession(session),
          mPlatform(platform),
          mView(view)
    { }

    /// Runs an operation (FileOperationCode). The result is the picked path for kPickProgram, else
    /// empty. A code without an operation walks over the selection and does nothing to it. Failure
    /// kFailureGeneral when the picking of a program is cancelled.
    QString FileOperation(qint16 op);
    /// The Delete key: the selected files go into the trash, without a question.
    void TrashSelected();
    /// Brings back what went into the trash last.
    void BringBack();
    bool CanBringBack() const { return !mTrashed.isEmpty(); }
    bool IsBusy() const { return mBusy; } ///< a walk is running

private:
    void RenameCurrent();
    bool ShellFileOperation(qint16 op, const QString& from, const QString& to);
    WalkResult Walk(WalkKind kind);
    void RunWithProgress(int steps, const std::function<void(std::atomic<int>&)>& work);
    void Remember(const QVector<TrashedFile>& trashed);

    Session& mSession;
    Platform mPlatform;
    FileOperationView& mView;
    QVector<QVector<TrashedFile>> mTrashed; ///< what can be brought back, the last at the end
    bool mBusy = false;
};

} // namespace quillane
