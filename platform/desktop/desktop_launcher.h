#pragma once
#include "platform/launcher.h"

namespace quillane {

/// Opens by the desktop's opener portal, else by xdg-open; never waits for what it started.
class DesktopLauncher : public Launcher {
public:
    void OpenPath(const QString& path) override;
    void OpenAddress(const QString& address) override;
    void FindIn(const QString& folder) override;
    void Run(const QString& program, const QStringList& arguments,
             const QString& workingFolder) override;
};

/// file: address of a path, every byte that is not plain escaped.
QByteArray FileAddress(const QString& path);
/// Full path of a program found in PATH; empty when there is none.
QString FindProgram(const QString& name);

} // namespace quillane
