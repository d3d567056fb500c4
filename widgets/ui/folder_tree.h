#pragma once
#include "platform/dialogs.h"
#include "widgets/folder_reader.h"
#include "widgets/folder_tree_model.h"
#include <QTreeView>

namespace quillane {

/// The folder tree tvExplore. Folders are read off the window thread as they are opened; hidden
/// ones are left out. A path is without a separator at its end, but for "/".
class FolderTree : public QTreeView {
    Q_OBJECT
public:
    explicit FolderTree(Dialogs& dialogs, QWidget* parent = nullptr);
    ~FolderTree() override;

    /// Opens the tree down to a path and selects it; nodeSelected follows from the message loop,
    /// also when it is selected already. Where there is no such path it is the nearest folder
    /// above. A newer call, or a choice by a person, takes the place of one that is not through.
    void Select(const QString& path);
    /// Whether a Select is still on its way.
    bool IsSelecting() const { return mSelecting != 0; }
    QString SelectedPath() const; ///< empty when nothing is selected

    /// Shows files too, or folders alone.
    void SetShowFiles(bool on);
    bool ShowFiles() const;
    /// Whether Enter opens and closes the selected folder, as at first, or is left to the dialog
    /// around the tree.
    void SetEnterOpens(bool on) { mEnterOpens = on; }
    /// Reads the open folders again; selection and what is open stay.
    void Refresh();
    /// Makes "New Folder" in the selected folder and selects it; with `edit` its name is typed in
    /// place. What fails is told in a message box.
    void NewFolder(bool edit);

    FolderTreeModel& FolderModel() { return *mModel; }

Q_SIGNALS:
    /// A node was selected: its name as shown and its full path. Once for each change and for each
    /// Select.
    void nodeSelected(const QString& name, const QString& fullPath);
    void nodeDoubleClicked(const QString& fullPath);

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    QSize sizeHint() const override;

private:
    void Locate(const QString& path);
    void Located(quint64 ticket, const LocatedPath& located);
    void TellSelected(const QModelIndex& index);
    void Renamed(const QModelIndex& index, const QString& name);
    void RowsGoing(const QModelIndex& parent, int first, int last);
    void FolderRead(const QString& path);
    void BringInSight(const QModelIndex& index);
    void FitColumn();

    Dialogs& mDialogs;
    FolderTreeModel* mModel;
    quint64 mTickets = 0;
    quint64 mSelecting = 0; ///< ticket of the selection on its way, 0 for none
    bool mQuiet = false;    ///< the tree itself moves the current node
    bool mEnterOpens = true;
    bool mEditNext = false;    ///< the folder being selected is a new one, to be named
    bool mKeepInSight = false; ///< folders above the selected one are still being read
};

} // namespace quillane
