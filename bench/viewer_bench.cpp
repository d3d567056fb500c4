// The viewer over photographs of 12 megapixels: how soon one is there, what each command costs,
// and how long the window thread ever makes events wait.
//
//   bench_viewer [folder]   keeps its pictures below that folder and uses them again
// Needs an X server (or another real platform); QT_QPA_PLATFORM decides.
#include "bare_jpeg.h"
#include "bench_support.h"
#include "browser/ui/program.h"
#include "core/native_path.h"
#include "platform/ui/application.h"
#include "platform/ui/desktop_platform.h"
#include "viewer/command_table.h"
#include "viewer/ui/frmToolImageDisplay.h"
#include "window_watch.h"
#include <QScopeGuard>
#include <cstdio>
#include <cstring>

using namespace quillane;
using bench::Wanted;

namespace {

constexpr int kPictures = 60; ///< of the folder that other benchmarks use too
constexpr int kOpened = 12;
constexpr int kRounds = 5;
constexpr double kMostOverDecode = 1.3, kFirstLook = 100, kCommand = 250, kAnswer = 50;

/// What a person would choose for a command that asks.
struct UsualValues {
    const char* name;
    CommandValues values;
};
constexpr UsualValues kUsual[] = {
    {"mnuRotateAngle", {1700, 1, 0xFFFFFF}},
    {"mnuShear", {1000, 1, 0xFFFFFF}},
    {"mnuResize", {2000, 1500, kResizeBicubic}},
    {"mnuPosterize", {8}},
    {"mnuMosaic", {12}},
    {"mnuAverage", {5}},
    {"mnuMedian", {3}},
    {"mnuSharpen", {400}},
    {"mnuEmboss", {1, 300}},
    {"mnuAddNoise", {100, 0}},
    {"mnuGradiant", {0}},
    {"mnuLaplacian", {4}},
    {"mnuSobel", {8}},
    {"mnuPrewitt", {10}},
    {"mnuShiftDifference", {16}},
    {"mnuLineSegment", {18}},
    {"mnuErosion", {0, 0}},
    {"mnuDialation", {0, 4}},
    {"mnuChangeColorDepth", {8, 0, 0}},
    {"mnuHalftone", {4500}},
    {"mnuBrightness", {150}},
    {"mnuContrast", {150}},
    {"mnuHistogramContrast", {150}},
    {"mnuHue", {9000}},
    {"mnuSaturation", {300}},
    {"mnuGammaCorrection", {150}},
    {"mnuIntenistyDetect", {40, 200}},
    {"mnuContourFill", {64, 32, 3, 0}},
    {"mnuFill", {0x00FF00}},
};

/// Commands that work through one library call which takes longer than the limit by itself;
/// bench_processing holds them to that call.
constexpr const char* kLongByTheLibrary[] = {"mnuChangeColorDepth"};

CommandValues UsualOf(const EnhanceCommand& command)
{
    for (const UsualValues& usual : kUsual) {
        if (std::strcmp(usual.name, command.name) == 0) {
            return usual.values;
        }
    }
    return command.start;
}

/// Waits with events flowing until it holds.
void WaitFor(const std::function<bool()>& holds)
{
    while (!holds()) {
        qApp->processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
    }
}

bool Opens(Program& program, Platform platform, const std::vector<QString>& paths)
{
    bench::Ping ping;
    double whole = 0, bare = 0, look = 0;
    auto* window =
        new frmToolImageDisplay(program.Shared(), program.Store(), platform, nullptr, nullptr);
    const auto gone = qScopeGuard([&] { delete window; });
    const auto* view = window->findChild<EngineView*>(QStringLiteral("LEAD1"));
    const auto open = [&](const QString& path) {
        program.Shared().gsFileName = path;
        const auto start = bench::Clock::now();
        double first = -1;
        QTimer watch; // the window's own event loop runs inside show()
        QObject::connect(&watch, &QTimer::timeout, [&] {
            if (first < 0 && view->HasImage()) {
                first = bench::MillisecondsSince(start);
            }
        });
        watch.start(1);
        window->show();
        WaitFor([&] { return !window->IsBusy() && window->Picture().HasBitmap(); });
        window->findChild<EngineView*>(QStringLiteral("LEAD1"))->ForceRepaint();
        whole += bench::MillisecondsSince(start);
        look = std::max(look, first < 0 ? bench::MillisecondsSince(start) : first);
    };
    open(paths.back()); // the window itself, the libraries
    whole = look = 0;
    double longest = 0;
    for (int i = 0; i < kOpened; ++i) {
        const QString& path = paths[size_t(i)];
        bare +=
            bench::Measure([&] { bench::DecodeBarely(ReadWholeFile(path, qint64(1) << 30)); }).wall;
        qApp->processEvents(); // what the reference kept waiting counts for nobody
        ping.Reset();
        open(path);
        longest = std::max(longest, ping.Worst());
    }
    bool good =
        bench::PrintFigure("from double click to full picture", whole / kOpened, bare / kOpened,
                           "ms", whole / bare, Wanted::AtMost, kMostOverDecode);
    good &= bench::PrintFigure("to the first look, slowest", look, kFirstLook, "ms",
                               look / kFirstLook, Wanted::AtMost, 1);
    return good
        & bench::PrintFigure("longest wait while opening", longest, kAnswer, "ms",
                             longest / kAnswer, Wanted::AtMost, 1);
}

bool Commands(const QString& path)
{
    EngineView view;
    view.resize(900, 700);
    view.SetPaintSizeMode(EngineView::kPaintFit);
    view.show();
    EngineInstance loaded;
    loaded.Load(path, 0, 0);
    bool good = true;
    for (const EnhanceCommand& command : EnhanceCommands()) {
        if (!command.work) {
            continue;
        }
        double least = 1e9;
        for (int round = 0; round < kRounds; ++round) {
            EngineInstance lead1 = loaded, lead2 = loaded;
            CommandRoad road;
            road.ask = UsualOf;
            road.run = [&](const std::function<void(EngineInstance&)>& work) {
                EngineInstance copy = lead1;
                work(copy);
                lead1 = std::move(copy);
                view.Show(lead1);
                view.ForceRepaint();
            };
            least = std::min(least, bench::Measure([&] {
                                        RunEnhanceCommand(command, lead1, lead2, road);
                                    }).wall);
        }
        const bool byLibrary =
            std::any_of(std::begin(kLongByTheLibrary), std::end(kLongByTheLibrary),
                        [&](const char* name) { return std::strcmp(name, command.name) == 0; });
        if (byLibrary) {
            std::printf("%s: %.1f ms, by the library's own call: see bench_processing\n",
                        command.name, least);
            continue;
        }
        good &= bench::PrintFigure(command.name, least, kCommand, "ms", least / kCommand,
                                   Wanted::AtMost, 1);
    }
    return good;
}

} // namespace

int main(int argc, char** argv)
{
    Application application(argc, argv);
    DesktopPlatform platform;
    Program program(platform.Services());
    const QString root = bench::PicturesFolder(argc, argv);
    const std::vector<QString> paths =
        bench::FolderOfJpegs(root + QStringLiteral("/plain12"), kPictures, {});
    bool good = Opens(program, platform.Services(), paths);
    good &= Commands(paths.front());
    std::fflush(stdout);
    return good ? 0 : 1;
}
