// quillane-scan: talks to scanners through SANE. A driver that crashes or hangs takes this process
// with it and nothing else.
#include "platform/scan_main/device.h"
#include "platform/scan_main/link.h"
#include <atomic>
#include <memory>
#include <string>
#include <unistd.h>

namespace quillane::scan {

namespace {

std::unique_ptr<Device> device;
std::atomic<bool> mayCancel{false};

void RunOrder(const std::string& order, int count, char** arguments)
{
    if (order == "list" && count == 0) {
        WatchForStop([] { _exit(1); });
        TellSources();
        return;
    }
    if ((order != "choices" && order != "acquire") || count < 1)
        Fail(Trouble::Other, "no such order");
    WatchForStop([] {
        if (mayCancel)
            device->Cancel();
    });
    device = std::make_unique<Device>(arguments[0]);
    mayCancel = true;
    for (int i = 1; i < count; ++i) {
        const std::string wish = arguments[i];
        const size_t equals = wish.find('=');
        if (equals == std::string::npos)
            Fail(Trouble::NoSuchOption, wish);
        device->Set(wish.substr(0, equals), wish.substr(equals + 1));
    }
    if (order == "choices")
        device->TellChoices();
    else
        device->SendPage();
}

// Carries out one order; the process ends with it.
[[noreturn]] void RunProgram(int count, char** arguments)
{
    try {
        StartDrivers();
        RunOrder(count > 1 ? arguments[1] : "", count - 2, arguments + 2);
        Send(Kind::Done, nullptr, 0);
    } catch (const Stopped& stopped) {
        SendFailed(stopped);
    }
    // The program has what it wanted; now the driver may put its scanner to rest.
    mayCancel = false;
    device.reset();
    EndDrivers();
    _exit(0);
}

} // namespace

} // namespace quillane::scan

int main(int count, char** arguments)
{
    quillane::scan::RunProgram(count, arguments);
}
