// The main window under load: how soon it is there, how soon a large folder is listed, how
// long the window thread ever makes events wait, and how much memory it takes.
//
//   window_bench --folder <folder> [--view 0|1] [--home <folder>]
//       loads the program on that folder and prints what it measured
//   window_bench --select <folder>
//       walks the selection over every file of the folder
//   window_bench --start
//       time from the start of the process to the first painted window
// Needs an X server (or another real platform); QT_QPA_PLATFORM decides.
#include "browser/ui/program.h"
#include "core/paths.h"
#include "platform/ui/application.h"
#include "platform/ui/desktop_platform.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QFile>
#include <QTimer>
#include <QWidget>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <sys/resource.h>
#include <thread>
#include <time.h>
#include <unistd.h>

using namespace quillane;
using Clock = std::chrono::steady_clock;

namespace {

double MillisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Milliseconds since this process was started, as the kernel counts them (to 10 ms).
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

/// Asks the window thread for an answer again and again from a thread of its own.
class Ping {
public:
    Ping() : mThread([this] { Run(); }) { }
    ~Ping()
    {
        mStop = true;
        mThread.join();
    }
    void Reset() { mWorst = 0; }
    double Worst() const { return mWorst; }

private:
    void Run()
    {
        while (!mStop) {
            const auto asked = Clock::now();
            mAnswered = false;
            QMetaObject::invokeMethod(
                qApp,
                [this, asked] {
                    const double took = MillisecondsSince(asked);
                    if (took > mWorst) {
                        mWorst = took;
                    }
                    mAnswered = true;
                },
                Qt::QueuedConnection);
            while (!mAnswered && !mStop) {
                std::this_thread::sleep_for(std::chrono::microseconds(500));
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
    }
    std::atomic<bool> mStop = false, mAnswered = false;
    std::atomic<double> mWorst = 0;
    std::thread mThread;
};

/// Notes the first painting of the main window.
class FirstPaint : public QObject {
public:
    double at = -1; ///< milliseconds since the start of the process
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (at < 0 && event->type() == QEvent::Paint && widget
            && widget->window()->inherits("QMainWindow")) {
            at = MillisecondsOfProcess();
        }
        return false;
    }
};

void PrintMemory()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("peak resident memory %ld KiB\n", usage.ru_maxrss);
}

void WalkSelection(Program& program, Ping& ping)
{
    // One step as soon as the window thread is free: faster than a held key.
    ThumbnailGrid* grid = program.Main().findChild<ThumbnailGrid*>();
    ping.Reset();
    const auto start = Clock::now();
    const int count = grid->Count();
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < count; ++i) {
            grid->MakeCurrent(i);
            const auto step = Clock::now();
            while (MillisecondsSince(step) < 30) {
                qApp->processEvents(QEventLoop::AllEvents, 5);
            }
        }
    }
    std::printf("selection over %d files: %.0f ms, longest wait for an answer %.1f ms\n", 3 * count,
                MillisecondsSince(start), ping.Worst());
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    const auto value = [&](const QString& name) {
        const qsizetype at = arguments.indexOf(name);
        return at < 0 ? QString() : arguments.value(at + 1);
    };
    Application application(argc, argv);
    DesktopPlatform platform;
    FirstPaint paint;
    application.installEventFilter(&paint);
    Program program(platform.Services());

    const bool select = arguments.contains(QStringLiteral("--select"));
    const QString folder =
        select ? value(QStringLiteral("--select")) : value(QStringLiteral("--folder"));
    if (!folder.isEmpty()) {
        program.Store().SaveSetting(QStringLiteral("Globals"), QStringLiteral("gsPath"),
                                    WithSeparator(folder));
        const bool details = value(QStringLiteral("--view")) == QStringLiteral("0");
        program.Store().SaveSetting(QStringLiteral("Settings"),
                                    QStringLiteral("mnuMainViewTileBoxTileImage.Checked"),
                                    details ? QStringLiteral("False") : QStringLiteral("True"));
    }
    Ping ping;
    const auto start = Clock::now();
    program.Load();
    // The tree selects the folder by and by; the scan is over when the file list stands still.
    qsizetype listed = -1;
    double listedAt = 0;
    QElapsedTimer quiet;
    quiet.start();
    while (quiet.elapsed() < (folder.isEmpty() ? 100 : 1500)) {
        qApp->processEvents(QEventLoop::AllEvents, 5);
        const qsizetype now = program.Shared().lbFilTiffs.size();
        if (now != listed) {
            listed = now;
            listedAt = MillisecondsSince(start);
            quiet.restart();
        }
    }
    std::printf("first painted window %.0f ms after the start of the process\n", paint.at);
    if (!folder.isEmpty()) {
        std::printf("listed %lld files %.0f ms after loading began; longest wait %.1f ms\n",
                    static_cast<long long>(listed), listedAt, ping.Worst());
    }
    if (select) {
        WalkSelection(program, ping);
    }
    PrintMemory();
    std::fflush(stdout);
    return 0;
}
