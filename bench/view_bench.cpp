// The view with pictures of a hundred megapixels and more: frames a second while a person scrolls
// and zooms, how soon everything in sight is at its best, and how much memory it takes beside the
// decoded picture. A frame is what one turn of the event loop paints. Runs on the offscreen
// platform, or with QT_QPA_PLATFORM=xcb on a server.
#include "bench_support.h"
#include "imaging/colour_profile.h"
#include "widgets/ui/engine_view.h"

#include <QApplication>
#include <QColorSpace>
#include <QScrollBar>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <malloc.h>

using namespace quillane;
using bench::Wanted;

namespace {

constexpr double kFramesWanted = 30; // a second
constexpr double kMemoryWanted = 2;  // times the decoded size
constexpr int kFrames = 60;
const QSize kWindow(1280, 900);

double Milliseconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - since)
        .count();
}

/// Of the processor, for this thread: what the machine does besides does not count.
double ThreadMilliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

/// 24 bits, slow waves with noise on them.
Bitmap Photograph(QSize size)
{
    QImage pixels(size, QImage::Format_RGB32);
    quint32 noise = 1;
    for (int y = 0; y < size.height(); ++y) {
        QRgb* const row = reinterpret_cast<QRgb*>(pixels.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            noise = noise * 1664525 + 1013904223;
            row[x] = qRgb(int(noise >> 28) + (x >> 6) % 240, int(noise >> 27) % 16 + (y >> 6) % 240,
                          (x + y) >> 7 & 255);
        }
    }
    return Bitmap(std::move(pixels), ColourModel::Rgb, 24);
}

/// 1 bit, lines of one pixel.
Bitmap Fax(QSize size)
{
    QImage pixels(size, QImage::Format_Mono);
    pixels.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    for (int y = 0; y < size.height(); ++y) {
        uchar* const row = pixels.scanLine(y);
        for (qsizetype i = 0; i < pixels.bytesPerLine(); ++i) {
            row[i] = y % 50 == 7 ? 0 : i % 5 == 2 ? 0xf7 : 0xff;
        }
    }
    return Bitmap(std::move(pixels), ColourModel::BlackWhite, 1);
}

struct Frames {
    double least = 1e9; ///< a second, of the slowest frame
    double mean = 0;
    double busiest = 0; ///< milliseconds of the processor that the window thread took for a frame
};

/// Paints a frame after each step of a movement.
Frames Move(EngineView& view, const std::function<void(int)>& step)
{
    Frames frames;
    double all = 0;
    double slowest = 0;
    for (int i = 0; i < kFrames; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const double busy = ThreadMilliseconds();
        step(i);
        view.ForceRepaint();
        QCoreApplication::processEvents();
        const double taken = Milliseconds(start);
        frames.busiest = std::max(frames.busiest, ThreadMilliseconds() - busy);
        all += taken;
        slowest = std::max(slowest, taken);
    }
    frames.mean = 1000 * kFrames / all;
    frames.least = 1000 / slowest;
    return frames;
}

double UntilBest(EngineView& view)
{
    const auto start = std::chrono::steady_clock::now();
    view.ForceRepaint();
    while (!view.IsFinished()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return Milliseconds(start);
}

bool Tell(const char* what, const char* movement, int percent, const Frames& frames)
{
    char name[160];
    std::snprintf(name, sizeof name,
                  "%s, %s at %d %%, slowest frame (mean %.0f, at most %.1f ms busy)", what,
                  movement, percent, frames.mean, frames.busiest);
    return bench::PrintFigure(name, frames.least, kFramesWanted, "frames a second",
                              frames.least / kFramesWanted, Wanted::AtLeast, 1);
}

bool Watch(EngineView& view, const char* what, const std::function<Bitmap()>& make)
{
    view.Clear();
    QCoreApplication::processEvents();
    malloc_trim(0);
    const qint64 before = bench::ResidentBytes();
    const Bitmap picture = make();
    const double decoded = double(picture.Pixels().sizeInBytes());
    bool good = true;
    view.SetPaintSizeMode(EngineView::kPaintFit);
    const auto start = std::chrono::steady_clock::now();
    view.ShowBitmap(picture);
    view.ForceRepaint();
    const double first = Milliseconds(start);
    std::printf("%s: first paint after %.1f ms, at its best after another %.0f ms\n", what, first,
                UntilBest(view));
    qint64 most = bench::ResidentBytes();
    view.SetPaintSizeMode(EngineView::kPaintScaled);
    for (const int percent : {5, 12, 25, 30, 50, 75, 100, 150, 200, 800}) {
        view.SetPaintScalar(percent);
        view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->maximum() / 3);
        view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() / 3);
        UntilBest(view);
        QScrollBar* const across = view.horizontalScrollBar();
        QScrollBar* const down = view.verticalScrollBar();
        good &= Tell(what, "scrolling", percent, Move(view, [&](int i) {
                         const int way = i < kFrames / 2 ? 60 : -45;
                         across->setValue(across->value() + way);
                         down->setValue(down->value() + way);
                     }));
        std::printf("    at its best after another %.0f ms\n", UntilBest(view));
        most = std::max(most, bench::ResidentBytes());
    }
    for (const int percent : {4, 20, 100}) {
        view.SetPaintScalar(percent);
        UntilBest(view);
        good &= Tell(what, "zooming from", percent, Move(view, [&](int) {
                         view.ZoomAbout({400, 300}, view.ZoomPercent() * 1.05 + 0.5);
                     }));
        std::printf("    at its best after another %.0f ms\n", UntilBest(view));
        most = std::max(most, bench::ResidentBytes());
    }
    char name[120];
    std::snprintf(name, sizeof name, "%s, growth of memory, the picture itself counted", what);
    good &= bench::PrintFigure(name, double(most - before) / 1e6, decoded / 1e6, "MB",
                               double(most - before) / decoded, Wanted::AtMost, kMemoryWanted);
    std::printf("    beside the picture: %.1f MB counted by the view\n",
                double(view.CacheBytes()) / 1e6);
    return good;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    EngineView view;
    view.resize(kWindow);
    view.show();
    QCoreApplication::processEvents();
    bool good = Watch(view, "100 megapixels, 24 bits", [] { return Photograph({11'600, 8'630}); });
    good &= Watch(view, "20,000 x 20,000, 1 bit", [] { return Fax({20'000, 20'000}); });
    good &= Watch(view, "100 megapixels with a profile", [] {
        Bitmap picture = Photograph({11'600, 8'630});
        picture.SetIcc(QColorSpace(QColorSpace::AdobeRgb).iccProfile());
        return picture;
    });
    return good ? 0 : 1;
}
