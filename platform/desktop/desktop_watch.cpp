#include "platform/desktop/desktop_watch.h"

#include <array>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr int kGatherMilliseconds = 250;
constexpr int kMostReads = 16; // so that a folder under a storm of changes holds nobody up
constexpr quint32 kWatchedEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO
    | IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

} // namespace

DesktopWatch::DesktopWatch() : mInotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    mGather.setSingleShot(true);
    mGather.setInterval(kGatherMilliseconds);
    connect(&mGather, &QTimer::timeout, this, [this] {
        const auto changed = mChanged; // it may set another one
        if (changed) {
            changed();
        }
    });
    if (mInotify.IsOpen()) {
        mNotifier = std::make_unique<QSocketNotifier>(mInotify.Fd(), QSocketNotifier::Read);
        connect(mNotifier.get(), &QSocketNotifier::activated, this, [this] { ReadEvents(); });
    }
}

DesktopWatch::~DesktopWatch() = default;

void DesktopWatch::Watch(const QString& folder)
{
    if (!mInotify.IsOpen()) {
        return;
    }
    if (mWatch >= 0) {
        ::inotify_rm_watch(mInotify.Fd(), mWatch);
    }
    mGather.stop();
    mWatch = folder.isEmpty()
        ? -1
        : ::inotify_add_watch(mInotify.Fd(), BytesFromPath(folder).constData(), kWatchedEvents);
}

void DesktopWatch::ReadEvents()
{
    alignas(inotify_event) std::array<char, 16384> buffer;
    for (int reads = 0; reads < kMostReads; ++reads) {
        const ssize_t got = ::read(mInotify.Fd(), buffer.data(), buffer.size());
        if (got <= 0) {
            return;
        }
        for (ssize_t at = 0; at + ssize_t(sizeof(inotify_event)) <= got;) {
            inotify_event event;
            std::memcpy(&event, buffer.data() + at, sizeof event);
            // Events of a folder that is no longer watched are still on their way here.
            const bool current = event.wd == mWatch || (event.mask & IN_Q_OVERFLOW);
            if (current && (event.mask & IN_IGNORED)) {
                mWatch = -1; // the folder is gone; that was told by the event before
            } else if (current && !mGather.isActive()) {
                mGather.start();
            }
            at += ssize_t(sizeof(inotify_event)) + event.len;
        }
    }
}

} // namespace quillane
