#pragma once
// What the benchmark of the window looks at while the program runs: when things were painted, and
// how long the window thread ever kept an event waiting.
#include "widgets/ui/thumbnail_grid.h"
#include <QObject>
#include <atomic>
#include <chrono>
#include <thread>

namespace quillane::bench {

using Clock = std::chrono::steady_clock;

double MillisecondsSince(Clock::time_point start);
/// Milliseconds since this process was started, as the kernel counts them (to 10 ms).
double MillisecondsOfProcess();

/// Asks the window thread for an answer again and again from a thread of its own.
class Ping {
public:
    Ping() : mThread([this] { Run(); }) { }
    ~Ping();
    Ping(const Ping&) = delete;
    Ping& operator=(const Ping&) = delete;

    void Reset() { mWorst = 0; }
    double Worst() const { return mWorst; } ///< the longest wait for an answer, milliseconds

private:
    void Run();
    std::atomic<bool> mStop = false, mAnswered = false;
    std::atomic<double> mWorst = 0;
    std::thread mThread;
};

/// Notes when the main window is first painted, when a first whole screen of thumbnails is, when
/// the last cell or row came and when the progress bar went away.
class WindowWatch : public QObject {
public:
    /// Times count from `start`, but for firstPaint; -1 for what did not happen.
    explicit WindowWatch(Clock::time_point start) : mStart(start) { }

    double firstPaint = -1; ///< since the start of the process
    double firstScreen = -1, lastCell = -1, scanEnd = -1;

    /// Forgets what was seen of a folder; times count from now.
    void Restart();
    /// Counts cells from now on; call it now and then.
    void Look(const ThumbnailGrid& grid, int rows);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Clock::time_point mStart;
    int mCells = 0;
};

} // namespace quillane::bench
