#pragma once
// One scanner, opened through SANE.
#include <memory>
#include <string>

namespace quillane::scan {

class Device {
public:
    /// Opens it; throws a Stopped when that fails.
    explicit Device(const std::string& name);
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// Sends what can be chosen, a message each.
    void TellChoices() const;
    /// Sets an option that has a name and takes values; throws a Stopped when there is no such
    /// option or the driver refuses the value.
    void Set(const std::string& name, const std::string& value);
    /// Scans one page and sends it. Throws a Stopped.
    void SendPage();
    /// Asks the driver to stop; from any thread.
    void Cancel();

private:
    class Driver;
    std::unique_ptr<Driver> mDriver;
};

/// Loads what finds the drivers; throws a Stopped when that fails.
void StartDrivers();
/// Lets all drivers go.
void EndDrivers();
/// Sends every scanner that answers; throws a Stopped.
void TellSources();

} // namespace quillane::scan
