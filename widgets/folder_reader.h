#pragma once
// Reads folders for the tree away from the window thread. A folder of a network that does not
// answer holds up one thread of a few and nothing else, not even the end of the program.
#include <QObject>
#include <QString>
#include <QVector>
#include <functional>
#include <memory>

namespace quillane {

struct FolderEntry {
    QString name;
    bool isFolder = true;
    bool operator==(const FolderEntry&) const = default;
};

/// What a folder holds: folders before files, each by name without regard to case; hidden entries
/// left out.
struct FolderContent {
    bool readable = false;
    QString failure; ///< why it could not be read, in words
    QVector<FolderEntry> entries;
};
/// Reads a folder now. Any thread.
FolderContent ReadFolder(const QString& path, bool withFiles);
/// Whether there is anything the tree would show in a folder; a folder that cannot be read has
/// nothing. Any thread.
bool HasEntries(const QString& path, bool withFiles);

/// The nearest path, from `path` upwards, that is there: a folder or, with files, a regular file.
struct LocatedPath {
    QString path; ///< without a separator at its end, but for "/"; empty when nothing is there
    bool isFolder = true;
};
LocatedPath LocatePath(const QString& path, bool withFiles);

/// Does these jobs in the order of asking on a few threads and answers on the thread of its own.
class FolderReader : public QObject {
    Q_OBJECT
public:
    explicit FolderReader(QObject* parent = nullptr);
    ~FolderReader() override;

    /// Runs `work` away from this thread and then, if this object still lives, `done` on it.
    void Run(std::function<void()> work, std::function<void()> done);
    /// Jobs asked for and not answered yet.
    int Waiting() const { return mWaiting; }

private:
    struct Shared;
    std::shared_ptr<Shared> mShared;
    int mWaiting = 0;
};

} // namespace quillane
