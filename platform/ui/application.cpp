#include "platform/ui/application.h"

#include "platform/ui/command_connector.h"
#include "platform/ui/desktop_dialogs.h"

namespace quillane {

Application::Application(int& argc, char** argv) : QApplication(argc, argv)
{
    setApplicationName(QStringLiteral("quillane"));
    setDesktopFileName(QStringLiteral("io.github.quillane.Quillane"));
    setQuitOnLastWindowClosed(false);
}

bool Application::notify(QObject* receiver, QEvent* event)
{
    bool handled = false;
    DesktopDialogs dialogs;
    RunCommand(dialogs, [&] { handled = QApplication::notify(receiver, event); });
    return handled;
}

} // namespace quillane
