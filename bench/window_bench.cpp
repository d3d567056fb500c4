// The main window under load: how soon it is there, how soon a large folder is listed, how
// long the window thread ever makes events wait, and how much memory it takes.
//
//   bench_window --start
//       time from the start of the process to the first painted window
//   bench_window --folder <folder> [--view 0] [--cold]
//       lists that folder as thumbnails, or with --view 0 as details with their tag columns;
//       --cold makes the system forget the content of the files first
//   bench_window --select <folder>
//       walks the selection over every file of the folder, which is filled with pictures of 24
//       megapixels where it is not there
//   bench_window --search <folder>
//       searches that folder in both views with a search that every picture passes
//   bench_window --locate <folder>
//       lists all its files, and those below it, in the window "Find Files"
// Needs an X server (or another real platform); QT_QPA_PLATFORM decides.
#include "bench_support.h"
#include "browser/ui/program.h"
#include "core/folder_listing.h"
#include "core/paths.h"
#include "locator/ui/frmLocate.h"
#include "platform/ui/application.h"
#include "platform/ui/desktop_platform.h"
#include "window_watch.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <exiv2/exiv2.hpp>

using namespace quillane;
using bench::MillisecondsSince;
using bench::Wanted;

namespace {

constexpr double kStart = 250, kAnswer = 50, kFirstScreen = 500, kListed = 1500; // milliseconds
constexpr double kOverLoop = 1.5;
constexpr double kMemory = 160e6;     // bytes
constexpr int kLargeFolder = 100'000; // files
constexpr int kSelected = 40;         // pictures to walk over
constexpr int kQuiet = 1500;          // milliseconds without a change after which all is done

bool AtMost(const char* name, double value, double limit)
{
    return bench::PrintFigure(name, value, limit, "ms", value / limit, Wanted::AtMost, 1);
}

std::vector<QString> FilesOf(const QString& folder)
{
    FolderListing listing;
    listing.Read(WithSeparator(folder));
    std::vector<QString> paths;
    for (const QString& name : listing.Names(QStringLiteral("*.jpg"))) {
        paths.push_back(WithSeparator(folder) + name);
    }
    return paths;
}

void ParseBarely(const std::vector<QByteArray>& names)
{
    qint64 found = 0;
    for (const QByteArray& name : names) {
        const auto image = Exiv2::ImageFactory::open(name.toStdString());
        image->readMetadata();
        found += qint64(image->exifData().count());
    }
    if (found == 0) {
        std::fprintf(stderr, "the reference found no metadata\n");
        std::exit(2);
    }
}

bool WalkSelection(Program& program, bench::Ping& ping)
{
    // One step as soon as the window thread is free: faster than a held key.
    ThumbnailGrid* grid = program.Main().findChild<ThumbnailGrid*>();
    ping.Reset();
    const int count = grid->Count();
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < count; ++i) {
            grid->MakeCurrent(i);
            const auto step = bench::Clock::now();
            while (MillisecondsSince(step) < 30) {
                qApp->processEvents(QEventLoop::AllEvents, 5);
            }
        }
    }
    std::printf("selection over %d files\n", 3 * count);
    return AtMost("longest wait, selection", ping.Worst(), kAnswer);
}

bool SearchStreams(Program& program, bench::Ping& ping)
{
    bool good = true;
    for (const char* view : {"mnuMainViewTileBoxTileImage", "mnuMainViewTileBoxTileFilename3"}) {
        program.Main().Menus().Action(QLatin1String(view))->trigger();
        qApp->processEvents();
        ping.Reset();
        program.Main().Menus().Action(QStringLiteral("mnuSearchOn"))->trigger();
        const double worst = ping.Worst();
        std::printf("%d files found\n", int(program.Shared().lbFilTiffs.size()));
        good &= AtMost("longest wait, search", worst, kAnswer);
        program.Main().Menus().Action(QStringLiteral("mnuSearchOn"))->trigger();
    }
    return good;
}

bool LocateStreams(Program& program, const QString& folder, bench::Ping& ping)
{
    program.Shared().gsPath = WithSeparator(folder);
    program.Main().Menus().Action(QStringLiteral("mnuFileFiles"))->trigger();
    auto* window = program.Main().findChild<frmLocate*>();
    window->findChild<QLineEdit*>(QStringLiteral("Text1"))->setText(QStringLiteral("*"));
    qApp->processEvents();
    ping.Reset();
    const auto start = bench::Clock::now();
    window->StartSearch();
    while (window->IsSearching()) {
        qApp->processEvents(QEventLoop::AllEvents, 5);
    }
    const double spent = MillisecondsSince(start);
    const auto* list = window->findChild<QListView*>(QStringLiteral("List1"));
    std::printf("%d files located in %.0f ms\n", list->model()->rowCount(), spent);
    return AtMost("longest wait, files located", ping.Worst(), kAnswer);
}

/// What was seen of the folder, against the bare loops over the same files.
bool PrintFolder(const bench::WindowWatch& watch, const QString& folder, bool details, bool cold,
                 double longestWait)
{
    bool good = AtMost("longest wait, scan", longestWait, kAnswer);
    const std::vector<QString> paths = FilesOf(folder);
    if (int(paths.size()) < kLargeFolder) {
        return good; // the window's own start and end would weigh more than the files
    }
    if (!details) {
        if (cold) {
            bench::ForgetContent(paths);
        }
        const std::vector<QByteArray> names = bench::NamesOf(paths);
        const double loop = bench::Measure([&] { bench::ReadHeadersBarely(names); }).wall;
        good &= bench::PrintFigure(
            cold ? "cells over the bare loop, cold" : "cells over the bare loop, warm",
            watch.lastCell, loop, "ms", watch.lastCell / loop, Wanted::AtMost, kOverLoop);
    } else {
        const double tags = watch.scanEnd - watch.lastCell;
        const double parse = bench::Measure([&] { ParseBarely(bench::NamesOf(paths)); }).wall;
        good &= bench::PrintFigure("tag columns over the metadata library", tags, parse, "ms",
                                   tags / parse, Wanted::AtMost, kOverLoop);
    }
    return good;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    const auto value = [&](const char* name) {
        const qsizetype at = arguments.indexOf(QLatin1String(name));
        return at < 0 ? QString() : arguments.value(at + 1);
    };
    const bool select = arguments.contains(QStringLiteral("--select"));
    const bool cold = arguments.contains(QStringLiteral("--cold"));
    const bool details = value("--view") == QStringLiteral("0");
    const bool search = arguments.contains(QStringLiteral("--search"));
    const bool locate = arguments.contains(QStringLiteral("--locate"));
    const QString folder = select ? value("--select")
        : search                  ? value("--search")
                                  : value("--folder");

    Application application(argc, argv);
    DesktopPlatform platform;
    Program program(platform.Services());
    if (!folder.isEmpty()) {
        program.Store().SaveSetting(QStringLiteral("Globals"), QStringLiteral("gsPath"),
                                    WithSeparator(folder));
        program.Store().SaveSetting(QStringLiteral("Settings"),
                                    QStringLiteral("mnuMainViewTileBoxTileImage.Checked"),
                                    details ? QStringLiteral("False") : QStringLiteral("True"));
    }
    if (select) {
        bench::JpegShape shape;
        shape.width = 6000;
        shape.height = 4000;
        bench::FolderOfJpegs(folder, FilesOf(folder).empty() ? kSelected : 0, shape);
    }
    if (cold) {
        bench::ForgetContent(FilesOf(folder));
    }

    bench::Ping ping;
    bench::WindowWatch watch(bench::Clock::now());
    application.installEventFilter(&watch);
    const auto* grid = program.Main().findChild<ThumbnailGrid*>();
    const auto* list = program.Main().findChild<FileListView*>();
    QElapsedTimer quiet;
    double lastCell = -1;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        watch.Look(*grid, list->Count());
        if (watch.lastCell > lastCell) {
            lastCell = watch.lastCell;
            quiet.restart();
        }
    });
    look.start(2);
    const auto waitForQuiet = [&](int milliseconds) {
        quiet.start();
        while (quiet.elapsed() < milliseconds) {
            qApp->processEvents(QEventLoop::AllEvents, 5);
        }
    };
    // The tree selects the folder by and by; the scan is over when nothing comes any more.
    program.Load();
    waitForQuiet(folder.isEmpty() ? 100 : kQuiet);
    bool good = true;
    if (!folder.isEmpty() && !select && !search && !cold) {
        good &= AtMost(details ? "details rows listed, with the start of the program"
                               : "cells listed, with the start of the program",
                       watch.lastCell, kListed);
        if (!details) {
            good &= AtMost("first screen of thumbnails, with the start of the program",
                           watch.firstScreen, kFirstScreen);
        }
    }
    const double peak = double(bench::PeakResidentBytes());
    if (!folder.isEmpty() && !select && !search) {
        // Once more in the window that stands: what the folder alone takes.
        if (cold) {
            bench::ForgetContent(FilesOf(folder));
            qApp->processEvents();
            ping.Reset();
        }
        watch.Restart();
        lastCell = -1;
        program.Main().RefreshFiles();
        waitForQuiet(kQuiet);
    }

    if (locate) {
        good = LocateStreams(program, value("--locate"), ping);
    } else if (search) {
        good = SearchStreams(program, ping);
    } else if (folder.isEmpty()) {
        good = AtMost("first painted window", watch.firstPaint, kStart);
    } else if (select) {
        good = WalkSelection(program, ping);
    } else {
        good &= PrintFolder(watch, folder, details, cold, ping.Worst());
        if (!cold) {
            std::printf("%d files, ", std::max(grid->Count(), list->Count()));
            good &= bench::PrintFigure("peak resident memory", peak / 1e6, kMemory / 1e6, "MB",
                                       peak / kMemory, Wanted::AtMost, 1);
        }
    }
    std::fflush(stdout);
    return good ? 0 : 1;
}
