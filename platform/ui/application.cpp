#include "platform/ui/application.h"

#include "platform/ui/command_connector.h"
#include "platform/ui/desktop_dialogs.h"

#include <cstdlib>

namespace quillane {

namespace {

/// Without a zone in the environment the C library asks for the system's zone file again at
/// every conversion of a time, some microseconds each, felt in a list of 100,000 rows. Named,
/// the file is read once. Must run before there are threads.
int& WithNamedTimeZone(int& argc)
{
    ::setenv("TZ", ":/etc/localtime", 0);
    return argc;
}

} // namespace

Application::Application(int& argc, char** argv) : QApplication(WithNamedTimeZone(argc), argv)
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
