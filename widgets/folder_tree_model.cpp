#include "widgets/folder_tree_model.h"

#include "core/native_path.h"
#include "core/paths.h"
#include "widgets/label_lines.h"

#include <QHash>
#include <algorithm>

namespace quillane {

namespace {

constexpr int kMostReaders = 4;  // threads
constexpr int kMostProbed = 300; // folders of one folder that are looked into for their arrows

QString JoinedPath(const QString& folder, const QString& name)
{
    return WithSeparator(folder) + name;
}

/// Order of the tree: folders first, then by name without regard to case.
bool TreeBefore(const QString& left, bool leftFolder, const QString& right, bool rightFolder)
{
    if (leftFolder != rightFolder) {
        return leftFolder;
    }
    const int order = QString::compare(left.toCaseFolded(), right.toCaseFolded());
    return order != 0 ? order < 0 : left < right;
}

} // namespace

struct FolderTreeModel::Node {
    Node* parent = nullptr;
    QString name; ///< leaf name; of a top node what is shown
    QString path; ///< of a top node only
    QString icon; ///< of a top node only
    bool isFolder = true;
    enum class State : quint8 { Unread, Reading, Read } state = State::Unread;
    enum class Inside : quint8 { Unknown, Something, Nothing } inside = Inside::Unknown;
    bool readAgain = false; ///< another reading is wanted behind the one on its way
    quint64 id = 0;         ///< to tell whether a node asked about is still there
    QString failure;        ///< why it cannot be read
    std::vector<std::unique_ptr<Node>> children;

    int Row() const
    {
        const auto& siblings = parent->children;
        return int(std::find_if(siblings.begin(), siblings.end(),
                                [&](const auto& node) { return node.get() == this; })
                   - siblings.begin());
    }
    QString Path() const
    {
        if (!path.isEmpty() || !parent) {
            return path;
        }
        return JoinedPath(parent->Path(), name);
    }
    Node* Child(const QString& wanted) const
    {
        for (const auto& child : children) {
            if (child->name == wanted) {
                return child.get();
            }
        }
        return nullptr;
    }
};

FolderTreeModel::FolderTreeModel(QObject* parent)
    : QAbstractItemModel(parent),
      mRoot(std::make_unique<Node>()),
      mJobs(kMostReaders)
{
    mRoot->state = Node::State::Read;
}

FolderTreeModel::~FolderTreeModel() = default;

void FolderTreeModel::SetPlaces(const QVector<Place>& places)
{
    beginResetModel();
    mRoot->children.clear();
    mNodes.clear();
    for (const Place& place : places) {
        Node& node = *mRoot->children.emplace_back(std::make_unique<Node>());
        node.parent = mRoot.get();
        node.name = place.name;
        node.path = WithoutSeparator(place.path);
        node.icon = place.icon;
        Register(node);
    }
    endResetModel();
}

void FolderTreeModel::Register(Node& node)
{
    node.id = ++mLastId;
    mNodes.insert(node.id, &node);
}

void FolderTreeModel::Unregister(const Node& node)
{
    mNodes.remove(node.id);
    for (const auto& child : node.children) {
        Unregister(*child);
    }
}

FolderTreeModel::Node* FolderTreeModel::NodeOf(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<Node*>(index.internalPointer()) : mRoot.get();
}

QModelIndex FolderTreeModel::IndexOf(const Node& node) const
{
    return &node == mRoot.get() ? QModelIndex()
                                : createIndex(node.Row(), 0, const_cast<Node*>(&node));
}

QModelIndex FolderTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const Node* node = NodeOf(parent);
    if (column != 0 || row < 0 || size_t(row) >= node->children.size()) {
        return {};
    }
    return createIndex(row, 0, node->children[size_t(row)].get());
}

QModelIndex FolderTreeModel::parent(const QModelIndex& index) const
{
    return index.isValid() ? IndexOf(*NodeOf(index)->parent) : QModelIndex();
}

int FolderTreeModel::rowCount(const QModelIndex& parent) const
{
    return parent.column() > 0 ? 0 : int(NodeOf(parent)->children.size());
}

int FolderTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

bool FolderTreeModel::hasChildren(const QModelIndex& parent) const
{
    const Node* node = NodeOf(parent);
    if (!node->isFolder || !node->children.empty()) {
        return node->isFolder;
    }
    return node->state != Node::State::Read && node->inside != Node::Inside::Nothing;
}

bool FolderTreeModel::canFetchMore(const QModelIndex& parent) const
{
    const Node* node = NodeOf(parent);
    return node->isFolder && node->state == Node::State::Unread;
}

void FolderTreeModel::fetchMore(const QModelIndex& parent)
{
    if (canFetchMore(parent)) {
        Read(*NodeOf(parent));
    }
}

QVariant FolderTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid()) {
        return {};
    }
    const Node& node = *NodeOf(index);
    switch (role) {
    case Qt::DisplayRole:
        return DisplayName(node.name);
    case Qt::EditRole:
        return node.name;
    case Qt::ToolTipRole: {
        const QString path = DisplayName(node.Path());
        return QStringLiteral("<p style='white-space:pre-wrap'>%1%2</p>")
            .arg(path.toHtmlEscaped(),
                 node.failure.isEmpty() ? QString()
                                        : QStringLiteral("<br>") + node.failure.toHtmlEscaped());
    }
    case kPathRole:
        return node.Path();
    case kIsFolderRole:
        return node.isFolder;
    case kIconNameRole:
        return !node.icon.isEmpty() ? node.icon
            : node.isFolder         ? QStringLiteral("folder")
                                    : QStringLiteral("text-x-generic");
    default:
        return {};
    }
}

bool FolderTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index != mEditable) {
        return false;
    }
    Q_EMIT renameWanted(index, value.toString());
    return true;
}

Qt::ItemFlags FolderTreeModel::flags(const QModelIndex& index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return index == mEditable ? flags | Qt::ItemIsEditable : flags;
}

void FolderTreeModel::SetEditable(const QModelIndex& index)
{
    mEditable = index;
}

void FolderTreeModel::SetName(const QModelIndex& index, const QString& name)
{
    if (!index.isValid() || !NodeOf(index)->path.isEmpty()) {
        return;
    }
    Node& node = *NodeOf(index);
    node.name = name;
    // The node goes to where its new name belongs.
    Node& above = *node.parent;
    const int from = node.Row();
    int to = 0;
    for (const auto& sibling : above.children) {
        if (sibling.get() != &node
            && TreeBefore(sibling->name, sibling->isFolder, name, node.isFolder)) {
            ++to;
        }
    }
    if (to != from) {
        const QModelIndex parentIndex = IndexOf(above);
        beginMoveRows(parentIndex, from, from, parentIndex, to > from ? to + 1 : to);
        auto moved = std::move(above.children[size_t(from)]);
        above.children.erase(above.children.begin() + from);
        above.children.insert(above.children.begin() + to, std::move(moved));
        endMoveRows();
    }
    Q_EMIT dataChanged(IndexOf(node), IndexOf(node));
}

QString FolderTreeModel::Path(const QModelIndex& index) const
{
    return index.isValid() ? NodeOf(index)->Path() : QString();
}

bool FolderTreeModel::IsFolder(const QModelIndex& index) const
{
    return index.isValid() && NodeOf(index)->isFolder;
}

void FolderTreeModel::SetShowFiles(bool on)
{
    if (on != mShowFiles) {
        mShowFiles = on;
        Refresh();
    }
}

void FolderTreeModel::Refresh()
{
    const QList<Node*> nodes = mNodes.values();
    for (Node* node : nodes) {
        node->inside = Node::Inside::Unknown;
        if (node->isFolder && node->state != Node::State::Unread) {
            Read(*node);
        }
    }
}

void FolderTreeModel::Read(Node& node)
{
    if (node.state == Node::State::Reading) {
        node.readAgain = true;
        return;
    }
    node.state = Node::State::Reading;
    ++mReading;
    const auto content = std::make_shared<FolderContent>();
    mJobs.Run(
        [content, path = node.Path(), files = mShowFiles] { *content = ReadFolder(path, files); },
        [this, content, id = node.id] {
            --mReading;
            if (Node* read = mNodes.value(id)) {
                Take(*read, *content);
            }
        });
}

void FolderTreeModel::Take(Node& node, const FolderContent& content)
{
    const QString path = node.Path();
    node.state = Node::State::Read;
    node.failure = content.failure;
    node.inside = Node::Inside::Unknown;
    const QModelIndex index = IndexOf(node);
    Q_EMIT dataChanged(index, index);

    // Both are in the same order: what is gone goes, what is new is put in, by whole runs.
    QHash<QString, bool> there;
    for (const FolderEntry& entry : content.entries) {
        there.insert(entry.name, entry.isFolder);
    }
    for (int row = int(node.children.size()) - 1; row >= 0; --row) {
        const Node& child = *node.children[size_t(row)];
        const auto found = there.constFind(child.name);
        if (found == there.constEnd() || *found != child.isFolder) {
            beginRemoveRows(index, row, row);
            Unregister(child);
            node.children.erase(node.children.begin() + row);
            endRemoveRows();
        }
    }
    size_t at = 0;
    for (qsizetype next = 0; next < content.entries.size();) {
        const bool same =
            at < node.children.size() && node.children[at]->name == content.entries[next].name;
        if (same) {
            ++at;
            ++next;
            continue;
        }
        qsizetype end = next;
        while (end < content.entries.size()
               && (at >= node.children.size()
                   || content.entries[end].name != node.children[at]->name)) {
            ++end;
        }
        beginInsertRows(index, int(at), int(at) + int(end - next) - 1);
        std::vector<std::unique_ptr<Node>> fresh;
        for (; next < end; ++next) {
            Node& child = *fresh.emplace_back(std::make_unique<Node>());
            child.parent = &node;
            child.name = content.entries[next].name;
            child.isFolder = content.entries[next].isFolder;
            Register(child);
        }
        node.children.insert(node.children.begin() + qsizetype(at),
                             std::make_move_iterator(fresh.begin()),
                             std::make_move_iterator(fresh.end()));
        at += fresh.size();
        endInsertRows();
    }
    if (std::exchange(node.readAgain, false)) {
        Read(node);
    } else {
        AskForSubfolders(node);
    }
    Q_EMIT folderRead(path);
}

void FolderTreeModel::AskForSubfolders(Node& node)
{
    struct Probe {
        quint64 id;
        QString path;
        bool something;
    };
    const auto probes = std::make_shared<std::vector<Probe>>();
    for (const auto& child : node.children) {
        if (child->isFolder && child->state == Node::State::Unread && child->children.empty()
            && child->inside == Node::Inside::Unknown && probes->size() < kMostProbed) {
            probes->push_back({child->id, child->Path(), false});
        }
    }
    if (probes->empty()) {
        return;
    }
    mJobs.Run(
        [probes, files = mShowFiles] {
            for (Probe& probe : *probes) {
                probe.something = HasEntries(probe.path, files);
            }
        },
        [this, probes] {
            for (const Probe& probe : *probes) {
                if (Node* child = mNodes.value(probe.id)) {
                    child->inside =
                        probe.something ? Node::Inside::Something : Node::Inside::Nothing;
                    Q_EMIT dataChanged(IndexOf(*child), IndexOf(*child));
                }
            }
        });
}

FolderTreeModel::Node& FolderTreeModel::EnsureChild(Node& parent, const QString& name,
                                                    bool isFolder)
{
    if (Node* child = parent.Child(name)) {
        return *child;
    }
    size_t at = 0;
    while (
        at < parent.children.size()
        && TreeBefore(parent.children[at]->name, parent.children[at]->isFolder, name, isFolder)) {
        ++at;
    }
    beginInsertRows(IndexOf(parent), int(at), int(at));
    auto child = std::make_unique<Node>();
    Node& made = *child;
    made.parent = &parent;
    made.name = name;
    made.isFolder = isFolder;
    parent.children.insert(parent.children.begin() + qsizetype(at), std::move(child));
    Register(made);
    endInsertRows();
    return made;
}

FolderTreeModel::Node* FolderTreeModel::TopFor(const QString& path, const QModelIndex& near) const
{
    const auto leads = [&](const Node& top) {
        return path == top.path || path.startsWith(WithSeparator(top.path));
    };
    if (near.isValid()) {
        Node* top = NodeOf(near);
        while (top->parent != mRoot.get()) {
            top = top->parent;
        }
        if (leads(*top)) {
            return top;
        }
    }
    Node* closest = nullptr;
    for (const auto& top : mRoot->children) {
        if (leads(*top) && (!closest || top->path.size() > closest->path.size())) {
            closest = top.get();
        }
    }
    return closest;
}

QModelIndex FolderTreeModel::MakeNode(const QString& path, bool isFolder, const QModelIndex& near)
{
    const QString wanted = WithoutSeparator(path);
    Node* node = TopFor(wanted, near);
    if (!node) {
        return {};
    }
    const QString rest = wanted.mid(node->path.size());
    const QStringList names = rest.split(NativeSeparator(), Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < names.size(); ++i) {
        node = &EnsureChild(*node, names[i], i + 1 < names.size() || isFolder);
    }
    return IndexOf(*node);
}

QModelIndex FolderTreeModel::Find(const QString& path, const QModelIndex& near) const
{
    const QString wanted = WithoutSeparator(path);
    Node* node = TopFor(wanted, near);
    if (!node) {
        return {};
    }
    const QString rest = wanted.mid(node->path.size());
    for (const QString& name : rest.split(NativeSeparator(), Qt::SkipEmptyParts)) {
        node = node->Child(name);
        if (!node) {
            return {};
        }
    }
    return IndexOf(*node);
}

} // namespace quillane
