#pragma once
#include "browser/ui/frmBrowserMain.h"

namespace quillane {

/// One run of the program: the shared session, the store, the windows. Its end destroys every
/// window that is still open.
class Program {
public:
    /// Configures the decoding processes; nothing is shown yet.
    explicit Program(Platform platform);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Loads the main window, which starts the system.
    void Load();
    frmBrowserMain& Main() { return *mMain; }
    Session& Shared() { return mSession; }
    SettingsStore& Store() { return mStore; }

private:
    Platform mPlatform;
    Session mSession;
    SettingsStore mStore;
    WindowRegistry mWindows;
    std::unique_ptr<frmBrowserMain> mMain;
};

} // namespace quillane
