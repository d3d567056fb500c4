#pragma once
#include "widgets/background_jobs.h"
#include "widgets/folder_reader.h"
#include <QAbstractItemModel>
#include <QHash>
#include <functional>
#include <memory>
#include <vector>

namespace quillane {

/// Folders as a tree that is read as far as it is opened. At the top stand Home, Pictures, "/" and
/// mounted volumes.
class FolderTreeModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Role : int { kPathRole = Qt::UserRole, kIsFolderRole, kIconNameRole };
    struct Place {
        QString name, path, icon; ///< as shown; full path; theme name of the icon
    };
    explicit FolderTreeModel(QObject* parent = nullptr);
    ~FolderTreeModel() override;

    /// The top nodes. Takes the place of what was there.
    void SetPlaces(const QVector<Place>& places);
    /// Home, the Pictures folder if there is one, "/", and volumes under the usual places; asks
    /// the mount table alone, so that a volume that does not answer holds up nothing.
    static QVector<Place> SystemPlaces();

    /// Files too, or folders alone; what has been read is read again.
    void SetShowFiles(bool on);
    bool ShowFiles() const { return mShowFiles; }
    /// Reads every folder again that has been read; nodes that are still there stay.
    void Refresh();
    bool IsReading() const { return mReading > 0; } ///< some folder's content is on its way

    /// The node of a path, in the branch of `near` if it is there, else of the top node that is
    /// closest; nodes on the way are made where they are missing. Invalid for a path under no top
    /// node.
    QModelIndex MakeNode(const QString& path, bool isFolder, const QModelIndex& near);
    /// The node of a path if it is there already.
    QModelIndex Find(const QString& path, const QModelIndex& near = {}) const;
    QString Path(const QModelIndex& index) const; ///< without a separator at its end, but for "/"
    bool IsFolder(const QModelIndex& index) const;
    /// Runs something off this thread with an answer on it.
    BackgroundJobs& Jobs() { return mJobs; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Which node may be named in place; none at first. Its new name is in renameWanted.
    void SetEditable(const QModelIndex& index);
    /// Gives a node its new name after the file was renamed.
    void SetName(const QModelIndex& index, const QString& name);

Q_SIGNALS:
    /// A person typed a new name for the node that may be edited.
    void renameWanted(const QModelIndex& index, const QString& name);
    /// A folder has been read.
    void folderRead(const QString& path);

private:
    struct Node;
    Node* NodeOf(const QModelIndex& index) const;
    QModelIndex IndexOf(const Node& node) const;
    void Register(Node& node);
    void Unregister(const Node& node);
    void Read(Node& node);
    void Take(Node& node, const FolderContent& content);
    void AskForSubfolders(Node& node);
    Node& EnsureChild(Node& parent, const QString& name, bool isFolder);
    Node* TopFor(const QString& path, const QModelIndex& near) const;

    std::unique_ptr<Node> mRoot;
    QHash<quint64, Node*> mNodes; ///< by their numbers
    quint64 mLastId = 0;
    BackgroundJobs mJobs;
    QPersistentModelIndex mEditable;
    int mReading = 0; ///< folders being read
    bool mShowFiles = false;
};

} // namespace quillane
