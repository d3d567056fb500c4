#pragma once
// The socket to the program.
#include "platform/desktop/scan_protocol.h"
#include <atomic>
#include <functional>
#include <string>
#include <string_view>

namespace quillane::scan {

/// Sends one message; ends this process when nobody listens any more.
void Send(Kind kind, const void* bytes, size_t size);
/// Sends a message of texts.
void SendTexts(Kind kind, std::initializer_list<std::string_view> texts);
/// Thrown where the order cannot be carried out.
struct Stopped {
    Trouble trouble;
    std::string words; ///< of the driver, or what the trouble is with
};
/// Throws a Stopped.
[[noreturn]] void Fail(Trouble trouble, const std::string& words);
/// Sends the last message of an order that was not carried out.
void SendFailed(const Stopped& stopped);

/// Set when the program wants no more.
extern std::atomic<bool> stopWanted;
/// Waits on a thread of its own for the end of the program's wishes, and then sees to it that this
/// process ends: cancel is called if nothing has come to its end after a while, in which a scanner
/// can bring its carriage home.
void WatchForStop(std::function<void()> cancel);

} // namespace quillane::scan
