#pragma once
#include "widgets/background_jobs.h"
#include "widgets/folder_reader.h"
#include <QTimer>
#include <QTreeWidget>

namespace quillane {

/// A folder to choose: those it lies in above it, those in it below. Folders are read off the
/// window thread; hidden ones are left out.
class DirList : public QTreeWidget {
    Q_OBJECT
public:
    explicit DirList(QWidget* parent = nullptr);

    /// The folder, without a separator at its end, but for "/".
    const QString& Path() const { return mPath; }
    /// Goes to a folder; an empty path is "/". pathChanged follows when it is another one.
    void SetPath(const QString& path);
    /// Whether the folder's content is still on its way.
    bool IsReading() const { return mReading; }

Q_SIGNALS:
    /// It is another folder now.
    void pathChanged(const QString& path);

protected:
    QSize sizeHint() const override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void ShowAncestors();
    void ShowContent(FolderContent&& content);
    void ShowMore();
    QTreeWidgetItem* AddAncestor(QTreeWidgetItem* parent, const QString& name, const QString& path);

    QString mPath;
    QTreeWidgetItem* mOpen = nullptr; ///< the folder's own node
    BackgroundJobs mJobs;
    quint64 mTicket = 0;
    FolderContent mContent; ///< of the folder
    qsizetype mShown = 0;   ///< so many of its entries are in the list
    QTimer mMore;           ///< adds the others by and by
    bool mReading = false;
};

} // namespace quillane
