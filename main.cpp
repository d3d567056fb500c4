#include "browser/ui/program.h"
#include "platform/ui/application.h"
#include "platform/ui/desktop_platform.h"

int main(int argc, char** argv)
{
    quillane::Application application(argc, argv);
    quillane::DesktopPlatform platform;
    quillane::Program program(platform.Services());
    program.Load();
    return quillane::Application::exec();
}
