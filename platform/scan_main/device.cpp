#include "platform/scan_main/device.h"
#include "platform/scan_main/link.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sane/sane.h>
#include <utility>
#include <vector>

namespace quillane::scan {

namespace {

constexpr int kMostSources = 200;
constexpr size_t kRowsAtOnce = 256 * 1024;
constexpr std::int64_t kMostFrameBytes = 1LL << 30; // of one pass of three that are put together

Trouble TroubleOf(SANE_Status status)
{
    switch (status) {
    case SANE_STATUS_CANCELLED:
        return Trouble::Cancelled;
    case SANE_STATUS_DEVICE_BUSY:
        return Trouble::Busy;
    case SANE_STATUS_JAMMED:
        return Trouble::Jammed;
    case SANE_STATUS_NO_DOCS:
        return Trouble::NoPaper;
    case SANE_STATUS_COVER_OPEN:
        return Trouble::CoverOpen;
    case SANE_STATUS_EOF:
    case SANE_STATUS_IO_ERROR:
        return Trouble::Transfer;
    case SANE_STATUS_NO_MEM:
        return Trouble::NoMemory;
    case SANE_STATUS_ACCESS_DENIED:
        return Trouble::Denied;
    default:
        return Trouble::Other;
    }
}

std::string Or(const char* text)
{
    return text == nullptr ? "" : text;
}

bool IsNumber(const SANE_Option_Descriptor& what)
{
    return (what.type == SANE_TYPE_INT || what.type == SANE_TYPE_FIXED)
        && what.size == SANE_Int(sizeof(SANE_Word));
}

double AsNumber(const SANE_Option_Descriptor& what, SANE_Word word)
{
    return what.type == SANE_TYPE_FIXED ? SANE_UNFIX(word) : double(word);
}

// Throws a Stopped for a status that is an error.
[[noreturn]] void FailAs(SANE_Status status, const std::string& during)
{
    Fail(TroubleOf(status), during + ": " + Or(sane_strstatus(status)));
}

} // namespace

class Device::Driver {
public:
    explicit Driver(const std::string& name);
    // Only here is a scan ended, when the program has been told how it went: a driver may hang
    // over it.
    ~Driver()
    {
        sane_cancel(mHandle);
        sane_close(mHandle);
    }
    Driver(const Driver&) = delete;
    Driver& operator=(const Driver&) = delete;

    void TellChoices() const;
    void Set(const std::string& name, const std::string& value);
    void SendPage();
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

void TellSources()
{
    const SANE_Device** all = nullptr;
    const SANE_Status status = sane_get_devices(&all, SANE_FALSE);
    if (status != SANE_STATUS_GOOD)
        FailAs(status, "looking for scanners");
    for (int i = 0; i < kMostSources && all != nullptr && all[i] != nullptr; ++i)
        SendTexts(Kind::Source,
                  {Or(all[i]->name), Or(all[i]->vendor), Or(all[i]->model), Or(all[i]->type)});
}

Device::Driver::Driver(const std::string& name)
{
    const SANE_Status status = sane_open(name.c_str(), &mHandle);
    if (status == SANE_STATUS_INVAL)
        Fail(Trouble::NoSuchSource, name);
    if (status != SANE_STATUS_GOOD)
        FailAs(status, "opening");
}

Device::Driver::Option Device::Driver::Find(const std::string& name) const
{
    for (SANE_Int i = 1;; ++i) {
        const SANE_Option_Descriptor* what = sane_get_option_descriptor(mHandle, i);
        if (what == nullptr)
            return {};
        if (what->name != nullptr && name == what->name && what->type != SANE_TYPE_GROUP)
            return {i, what};
    }
}

double Device::Driver::Number(const std::string& name, double none) const
{
    const Option option = Find(name);
    SANE_Word word = 0;
    if (option.what == nullptr || !IsNumber(*option.what)
        || !SANE_OPTION_IS_ACTIVE(option.what->cap)
        || sane_control_option(mHandle, option.number, SANE_ACTION_GET_VALUE, &word, nullptr)
            != SANE_STATUS_GOOD)
        return none;
    return AsNumber(*option.what, word);
}

std::string Device::Driver::Text(const std::string& name) const
{
    const Option option = Find(name);
    if (option.what == nullptr || option.what->type != SANE_TYPE_STRING || option.what->size <= 0
        || !SANE_OPTION_IS_ACTIVE(option.what->cap))
        return {};
    std::vector<char> text(size_t(option.what->size) + 1, '\0');
    if (sane_control_option(mHandle, option.number, SANE_ACTION_GET_VALUE, text.data(), nullptr)
        != SANE_STATUS_GOOD)
        return {};
    return text.data();
}

void Device::Driver::TellTexts(const char* option, const char* choice) const
{
    const Option found = Find(option);
    if (found.what == nullptr || found.what->type != SANE_TYPE_STRING
        || found.what->constraint_type != SANE_CONSTRAINT_STRING_LIST)
        return;
    for (const SANE_String_Const* text = found.what->constraint.string_list; *text != nullptr;
         ++text)
        SendTexts(Kind::Choice, {choice, *text});
    SendTexts(Kind::Choice, {std::string(choice) + "-now", Text(option)});
}

void Device::Driver::TellResolutions() const
{
    const Option found = Find("resolution");
    if (found.what == nullptr || !IsNumber(*found.what))
        return;
    const auto tell = [&](const char* choice, SANE_Word word) {
        SendTexts(Kind::Choice, {choice, std::to_string(AsNumber(*found.what, word))});
    };
    if (found.what->constraint_type == SANE_CONSTRAINT_WORD_LIST) {
        const SANE_Word* list = found.what->constraint.word_list;
        for (SANE_Word i = 1; i <= list[0]; ++i)
            tell("resolution", list[i]);
    } else if (found.what->constraint_type == SANE_CONSTRAINT_RANGE) {
        tell("resolution-least", found.what->constraint.range->min);
        tell("resolution-most", found.what->constraint.range->max);
    }
    SendTexts(Kind::Choice, {"resolution-now", std::to_string(Number("resolution", 0))});
}

void Device::Driver::TellChoices() const
{
    TellTexts("mode", "mode");
    TellTexts("source", "feed");
    TellResolutions();
    for (const auto& [option, choice] : {std::pair("br-x", "width"), std::pair("br-y", "height")}) {
        const Option found = Find(option);
        if (found.what != nullptr && IsNumber(*found.what) && found.what->unit == SANE_UNIT_MM
            && found.what->constraint_type == SANE_CONSTRAINT_RANGE)
            SendTexts(
                Kind::Choice,
                {choice, std::to_string(AsNumber(*found.what, found.what->constraint.range->max))});
    }
}

void Device::Driver::Set(const std::string& name, const std::string& value)
{
    const Option option = Find(name);
    if (option.what == nullptr || !SANE_OPTION_IS_ACTIVE(option.what->cap)
        || !SANE_OPTION_IS_SETTABLE(option.what->cap) || option.what->size < 0)
        Fail(Trouble::NoSuchOption, name);
    std::vector<char> bytes(std::max(size_t(option.what->size), value.size()) + sizeof(SANE_Word));
    if (option.what->type == SANE_TYPE_STRING) {
        if (value.size() >= size_t(option.what->size))
            Fail(Trouble::NoSuchOption, name);
        std::memcpy(bytes.data(), value.data(), value.size());
    } else if (IsNumber(*option.what) || option.what->type == SANE_TYPE_BOOL) {
        const double number = std::strtod(value.c_str(), nullptr);
        const double limited = std::clamp(number, -32'768.0, 32'767.0);
        const SANE_Word word =
            option.what->type == SANE_TYPE_FIXED ? SANE_FIX(limited) : SANE_Word(number);
        std::memcpy(bytes.data(), &word, sizeof word);
    } else {
        Fail(Trouble::NoSuchOption, name);
    }
    const SANE_Status status =
        sane_control_option(mHandle, option.number, SANE_ACTION_SET_VALUE, bytes.data(), nullptr);
    if (status == SANE_STATUS_INVAL || status == SANE_STATUS_UNSUPPORTED)
        Fail(Trouble::NoSuchOption, name);
    if (status != SANE_STATUS_GOOD)
        FailAs(status, "setting " + name);
}

void Device::Driver::StartFrame(SANE_Parameters& frame)
{
    SANE_Status status = sane_start(mHandle);
    if (status == SANE_STATUS_GOOD)
        status = sane_get_parameters(mHandle, &frame);
    if (status != SANE_STATUS_GOOD)
        FailAs(status, "starting");
    const int channels = frame.format == SANE_FRAME_RGB ? 3 : 1;
    const bool depthKnown = frame.depth == 8 || frame.depth == 16
        || (frame.depth == 1 && frame.format == SANE_FRAME_GRAY);
    const bool known = frame.format >= SANE_FRAME_GRAY && frame.format <= SANE_FRAME_BLUE;
    if (!known || !depthKnown || frame.pixels_per_line <= 0
        || frame.bytes_per_line
            < (std::int64_t(frame.pixels_per_line) * channels * frame.depth + 7) / 8) {
        Fail(Trouble::Other, "the driver sends pixels of a kind that is not known");
    }
}

bool Device::Driver::ReadSome(std::vector<SANE_Byte>& bytes, SANE_Int& count)
{
    if (stopWanted)
        Fail(Trouble::Cancelled, "");
    count = 0;
    const SANE_Status status = sane_read(mHandle, bytes.data(), SANE_Int(bytes.size()), &count);
    if (status == SANE_STATUS_EOF)
        return false;
    if (status != SANE_STATUS_GOOD)
        FailAs(stopWanted ? SANE_STATUS_CANCELLED : status, "scanning");
    count = std::clamp(count, 0, SANE_Int(bytes.size()));
    return true;
}

void Device::Driver::SendHead(const SANE_Parameters& frame, int channels, long bytesPerLine) const
{
    PageHead head;
    head.channels = channels;
    head.depth = frame.depth;
    head.width = frame.pixels_per_line;
    head.lines = frame.lines;
    head.bytesPerLine = bytesPerLine;
    head.xResolution = mXResolution;
    head.yResolution = mYResolution;
    Send(Kind::Page, &head, sizeof head);
}

void Device::Driver::SendRows(const SANE_Parameters& frame)
{
    SendHead(frame, frame.format == SANE_FRAME_RGB ? 3 : 1, frame.bytes_per_line);
    std::vector<SANE_Byte> bytes(kRowsAtOnce);
    SANE_Int count = 0;
    while (ReadSome(bytes, count))
        Send(count > 0 ? Kind::Rows : Kind::Alive, bytes.data(), size_t(count));
}

std::vector<SANE_Byte> Device::Driver::ReadFrame()
{
    std::vector<SANE_Byte> all;
    std::vector<SANE_Byte> bytes(kRowsAtOnce);
    SANE_Int count = 0;
    while (ReadSome(bytes, count)) {
        all.insert(all.end(), bytes.begin(), bytes.begin() + count);
        if (std::int64_t(all.size()) > kMostFrameBytes)
            Fail(Trouble::TooLarge, "");
        Send(Kind::Alive, nullptr, 0);
    }
    return all;
}

// Red, green and blue one after the other, in an order of the driver's choice.
void Device::Driver::SendThreePasses(SANE_Parameters frame)
{
    std::vector<SANE_Byte> planes[3];
    const SANE_Parameters first = frame;
    for (int pass = 0; pass < 3; ++pass) {
        if (pass > 0)
            StartFrame(frame);
        const int plane = frame.format - SANE_FRAME_RED;
        if (plane < 0 || plane > 2 || !planes[plane].empty() || frame.depth != first.depth
            || frame.pixels_per_line != first.pixels_per_line
            || frame.bytes_per_line != first.bytes_per_line) {
            Fail(Trouble::Other, "the passes of the three colours do not fit each other");
        }
        planes[plane] = ReadFrame();
    }
    const size_t shortest = std::min({planes[0].size(), planes[1].size(), planes[2].size()});
    const size_t line = size_t(first.bytes_per_line);
    const size_t sample = size_t(first.depth) / 8;
    const size_t samples = size_t(first.pixels_per_line);
    SANE_Parameters whole = first;
    whole.lines = SANE_Int(shortest / line);
    SendHead(whole, 3, long(samples * sample * 3));
    std::vector<SANE_Byte> row(samples * sample * 3);
    for (size_t y = 0; y < shortest / line; ++y) {
        for (size_t x = 0; x < samples; ++x) {
            for (size_t plane = 0; plane < 3; ++plane)
                std::memcpy(&row[(x * 3 + plane) * sample], &planes[plane][y * line + x * sample],
                            sample);
        }
        for (size_t at = 0; at < row.size(); at += kRowsAtOnce)
            Send(Kind::Rows, &row[at], std::min(kRowsAtOnce, row.size() - at));
    }
}

void Device::Driver::SendPage()
{
    // Some drivers do not tell their options while they scan.
    const double resolution = Number("resolution", 0);
    mXResolution = Number("x-resolution", resolution);
    mYResolution = Number("y-resolution", resolution);
    SANE_Parameters frame{};
    StartFrame(frame);
    if (frame.format == SANE_FRAME_GRAY || frame.format == SANE_FRAME_RGB)
        SendRows(frame);
    else
        SendThreePasses(frame);
}

Device::Device(const std::string& name) : mDriver(std::make_unique<Driver>(name))
{ }

Device::~Device() = default;

void Device::TellChoices() const
{
    mDriver->TellChoices();
}

void Device::Set(const std::string& name, const std::string& value)
{
    mDriver->Set(name, value);
}

void Device::SendPage()
{
    mDriver->SendPage();
}

void Device::Cancel()
{
    mDriver->Cancel();
}

void StartDrivers()
{
    const SANE_Status status = sane_init(nullptr, nullptr);
    if (status != SANE_STATUS_GOOD)
        FailAs(status, "starting SANE");
}

void EndDrivers()
{
    sane_exit();
}

} // namespace quillane::scan
