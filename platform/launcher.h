#pragma once
// Hands files, folders and addresses to other programs.
#include <QString>
#include <QStringList>
#include <functional>

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
    /// Told, on the window thread, why a program that had been started was of no use.
    using RunFailed = std::function<void(const QString& words)>;
    /// Starts a program in a working folder (empty: the current one) and goes on. Failure when it
    /// cannot be started; when it ends later with an error or by a crash, `failed` gets words that
    /// name it and say why. It outlives this program.
    virtual void Run(const QString& program, const QStringList& arguments,
                     const QString& workingFolder = {}, RunFailed failed = {}) = 0;
};

} // namespace quillane
