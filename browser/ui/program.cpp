#include "browser/ui/program.h"

#include "imaging/worker/worker_host.h"

#include <QThread>
#include <algorithm>

namespace quillane {

Program::Program(Platform platform) : mPlatform(platform), mStore(platform.places.SettingsFile())
{
    worker::Configure(platform.places.CodecWorker(), std::max(1, QThread::idealThreadCount()));
    mMain = std::make_unique<frmBrowserMain>(mSession, mStore, mPlatform, mWindows);
}

Program::~Program()
{
    mWindows.DestroyAll();
    mMain.reset();
    worker::Shutdown();
}

void Program::Load()
{
    mMain->Load();
    worker::WarmUp();
}

} // namespace quillane
