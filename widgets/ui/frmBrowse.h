#pragma once
#include "core/session.h"
#include "platform/dialogs.h"
#include <QDialog>
#include <QPushButton>

namespace quillane {

class FolderTree;

/// The dialog that picks a folder, or a file. What is selected in the tree is in browsePath all the
/// time, with a separator behind it; a cancel empties it. The caller sets the caption.
class frmBrowse : public QDialog {
    Q_OBJECT
public:
    /// home: selected when browsePath is empty.
    frmBrowse(Session& session, Dialogs& dialogs, const QString& home, QWidget* parent = nullptr);

    /// Shows files in the tree, selects this one and takes "New Folder" away.
    void PickFiles(const QString& selected);
    FolderTree* Tree() const { return mTree; }
    /// The size it opens with where the desktop leaves that room; logical pixels.
    static QSize FirstSizeIn(const QSize& room);

public Q_SLOTS:
    void reject() override;

private:
    void NodeSelected(const QString& path);

    Session& mSession;
    FolderTree* mTree;       ///< FolderView1
    QPushButton* mSelect;    ///< cmdSelect
    QPushButton* mNewFolder; ///< cmdNewFolder
};

} // namespace quillane
