#include "platform/scan_main/link.h"
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace quillane::scan {

std::atomic<bool> stopWanted{false};

namespace {

constexpr int kBetweenReads = 1000;  // milliseconds a driver may need to come back from a read
constexpr int kForCarriage = 10'000; // and to come to its end once it was told to cancel

void SendAll(const void* bytes, size_t size)
{
    const char* at = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t count = send(kScanSocket, at, size, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            _exit(1);
        at += count;
        size -= size_t(count);
    }
}

} // namespace

void Send(Kind kind, const void* bytes, size_t size)
{
    const Head head{kMark, kind, std::uint32_t(size)};
    SendAll(&head, sizeof head);
    SendAll(bytes, size);
}

void SendTexts(Kind kind, std::initializer_list<std::string_view> texts)
{
    std::string all;
    for (const std::string_view text : texts) {
        all += text;
        all += '\0';
    }
    Send(kind, all.data(), all.size());
}

void Fail(Trouble trouble, const std::string& words)
{
    throw Stopped{trouble, words};
}

void SendFailed(const Stopped& stopped)
{
    const FailedHead head{stopped.trouble};
    std::string all(reinterpret_cast<const char*>(&head), sizeof head);
    all += stopped.words;
    Send(Kind::Failed, all.data(), all.size());
}

void WatchForStop(std::function<void()> cancel)
{
    std::thread([cancel = std::move(cancel)] {
        char byte;
        ssize_t count = 0;
        do {
            count = recv(kScanSocket, &byte, 1, 0);
        } while (count > 0 || (count < 0 && errno == EINTR));
        stopWanted = true;
        poll(nullptr, 0, kBetweenReads);
        cancel();
        poll(nullptr, 0, kForCarriage);
        _exit(1);
    }).detach();
}

} // namespace quillane::scan
