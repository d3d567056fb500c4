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
    try {
        return QApplication::notify(receiver, event);
    } catch (const Failure& failure) {
        DesktopDialogs dialogs;
        ShowFailure(dialogs, failure);
        return false;
    }
}

} // namespace quillane
