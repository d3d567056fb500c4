#pragma once
// One scanner, opened through SANE.
#include <sane/sane.h>
#include <string>
#include <vector>

namespace quillane::scan {

class Device {
public:
    /// Opens it; throws a Stopped when that fails.
    explicit Device(const std::string& name);
    ~Device() { sane_close(mHandle); }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// Sends what can be chosen, a message each.
    void TellChoices() const;
    /// Sets an option that has a name and takes values; throws a Stopped when there is no
    /// such option or the driver refuses the value.
    void Set(const std::string& name, const std::string& value);
    /// Scans one page and sends it. Throws a Stopped.
    void SendPage();
    /// Asks the driver to stop; from any thread.
    void Cancel() { sane_cancel(mHandle); }

private:
    struct Option {
        SANE_Int number = -1;
        const SANE_Option_Descriptor* what = nullptr;
    };
    Option Find(const std::string& name) const;
    double Number(const std::string& name, double none) const;
    std::string Text(const std::string& name) const;
    void TellTexts(const char* option, const char* choice) const;
    void TellResolutions() const;
    void StartFrame(SANE_Parameters& frame);
    void SendRows(const SANE_Parameters& frame);
    void SendThreePasses(SANE_Parameters frame);
    bool ReadSome(std::vector<SANE_Byte>& bytes, SANE_Int& count);
    void SendHead(const SANE_Parameters& frame, int channels, long bytesPerLine) const;
    std::vector<SANE_Byte> ReadFrame();

    SANE_Handle mHandle = nullptr;
    double mXResolution = 0, mYResolution = 0;
};

/// Sends every scanner that answers.
void TellSources();
/// Throws a Stopped for a status that is an error.
[[noreturn]] void FailAs(SANE_Status status, const std::string& during);

} // namespace quillane::scan
