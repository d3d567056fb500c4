#pragma once
// Hands files, folders and addresses to other programs.
#include <QString>
#include <QStringList>

namespace quillane {

class Launcher {
public:
    virtual ~Launcher() = default;
    /// The system's "Open" action on a file or folder: the desktop's opener portal, else
    /// xdg-open. A missing file is refused here. Failure when nothing takes it.
    virtual void OpenPath(const QString& path) = 0;
    /// The same for an address (https:, mailto:).
    virtual void OpenAddress(const QString& address) = 0;
    /// The system's "find" action: the file manager's search in that folder, else the folder.
    virtual void FindIn(const QString& folder) = 0;
    /// Starts a program detached in a working folder (empty: the current one); Failure when it
    /// cannot be started.
    virtual void Run(const QString& program, const QStringList& arguments,
                     const QString& workingFolder = {}) = 0;
};

} // namespace quillane
