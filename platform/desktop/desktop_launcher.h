#pragma once
#include "platform/launcher.h"
#include <QByteArray>
#include <QObject>

namespace quillane {

/// Opens by the desktop's opener portal, else by xdg-open. Waits neither for the desktop's
/// answer nor for what it started.
class DesktopLauncher : public QObject, public Launcher {
    Q_OBJECT
public:
    void OpenPath(const QString& path) override;
    void OpenAddress(const QString& address) override;
    void FindIn(const QString& folder) override;
    void Run(const QString& program, const QStringList& arguments, const QString& workingFolder,
             RunFailed failed = {}) override;
};

/// file: address of a path, every byte that is not plain escaped.
QByteArray FileAddress(const QString& path);

} // namespace quillane
