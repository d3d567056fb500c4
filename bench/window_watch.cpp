#include "window_watch.h"
#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <algorithm>
#include <ctime>
#include <unistd.h>

namespace quillane::bench {

double MillisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double MillisecondsOfProcess()
{
    QFile stat(QStringLiteral("/proc/self/stat"));
    if (!stat.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QByteArray text = stat.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    constexpr int kStartTime = 19; // field 22 of the line, counted behind the name
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const double started =
        fields.value(kStartTime).toDouble() * 1000.0 / double(sysconf(_SC_CLK_TCK));
    return double(now.tv_sec) * 1000.0 + double(now.tv_nsec) / 1e6 - started;
}

Ping::~Ping()
{
    mStop = true;
    mThread.join();
}

void Ping::Run()
{
    while (!mStop) {
        const auto asked = Clock::now();
        mAnswered = false;
        QMetaObject::invokeMethod(
            qApp,
            [this, asked] {
                mWorst = std::max(mWorst.load(), MillisecondsSince(asked));
                mAnswered = true;
            },
            Qt::QueuedConnection);
        while (!mAnswered && !mStop) {
            std::this_thread::sleep_for(std::chrono::microseconds(500));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
}

void WindowWatch::Restart()
{
    mStart = Clock::now();
    mCells = 0;
    firstScreen = lastCell = scanEnd = -1;
}

void WindowWatch::Look(const ThumbnailGrid& grid, int rows)
{
    const int cells = std::max(grid.Count(), rows);
    if (cells != mCells) {
        mCells = cells;
        lastCell = MillisecondsSince(mStart);
    }
}

bool WindowWatch::eventFilter(QObject* watched, QEvent* event)
{
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget) {
        return false;
    }
    if (event->type() == QEvent::Hide && watched->objectName() == QStringLiteral("proTile")) {
        scanEnd = MillisecondsSince(mStart);
    }
    if (event->type() != QEvent::Paint) {
        return false;
    }
    if (firstPaint < 0 && widget->window()->inherits("QMainWindow")) {
        firstPaint = MillisecondsOfProcess();
    }
    if (auto* grid = qobject_cast<ThumbnailGrid*>(widget->parentWidget());
        grid && firstScreen < 0 && grid->viewport() == widget) {
        // A whole screen: there are more cells than fit, and all that fit have their picture.
        const GridLayout::Range seen = grid->VisibleRange();
        bool all = seen.last > seen.first && seen.last + 1 < grid->Count();
        for (int cell = seen.first; all && cell <= seen.last; ++cell) {
            all = grid->HasThumbnail(cell);
        }
        if (all) {
            firstScreen = MillisecondsSince(mStart);
        }
    }
    return false;
}

} // namespace quillane::bench
