#include "browser/ui/program.h"
#include "core/atomic_save.h"
#include "platform/ui/application.h"
#include "platform/ui/desktop_platform.h"

int main(int argc, char** argv)
{
    quillane::Application application(argc, argv);
    quillane::CleanUpAfterCrash(); // before anything of the user's is read
    quillane::DesktopPlatform platform;
    quillane::Program program(platform.Services());
    program.Load();
    return quillane::Application::exec();
}
