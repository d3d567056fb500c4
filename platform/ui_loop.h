#pragma once
// What a long action on the window thread needs of the message loop.
#include <QDateTime>
#include <QString>

namespace quillane {

/// Names one run of a long action. A newer run makes the older ones stale.
using Generation = quint64;

class UiLoop {
public:
    virtual ~UiLoop() = default;

    /// Handles waiting window events, if some milliseconds have passed since the last time.
    /// Cheap enough to call for every file. False when `generation` is no longer the newest:
    /// the caller then ends at once.
    virtual bool Yield(Generation generation) = 0;
    /// Handles waiting events now, whatever the time.
    virtual void ProcessEvents() = 0;
    /// Waits up to `ms` for events of the window thread and handles them; a posted event or a
    /// finished result that posts one wakes it.
    virtual void WaitForEvents(int ms) = 0;
    /// Starts a new generation and makes it the newest.
    virtual Generation NewGeneration() = 0;
    virtual Generation Newest() const = 0;

    /// Whether Esc is down or was pressed since the last poll; the poll uses a press up.
    virtual bool PollEsc() = 0;
    /// Forgets presses so far (the one that closed a message box).
    virtual void ForgetEsc() = 0;

    /// The hourglass pointer, nestable; use Hourglass.
    virtual void BeginHourglass() = 0;
    virtual void EndHourglass() = 0;

    /// The current local time.
    /// Date and time now, local.
    virtual QDateTime Now() const = 0;
    /// Date and time as the system's locale writes them in short form.
    virtual QString SystemDateText(const QDateTime& when) const = 0;
};

/// The hourglass for the life of a scope.
class Hourglass {
public:
    explicit Hourglass(UiLoop& loop) : mLoop(loop) { mLoop.BeginHourglass(); }
    ~Hourglass() { mLoop.EndHourglass(); }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;

private:
    UiLoop& mLoop;
};

} // namespace quillane
