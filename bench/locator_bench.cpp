// The locator over 110,000 files in a tree of folders, rows with their texts as a list shows them,
// against `find -printf` of path, size and date of the same tree.
//
//   bench_locator [folder [count]]   keeps its files below that folder and uses them again
#include "bench_support.h"
#include "core/native_path.h"
#include "locator/found_model.h"
#include "locator/search_run.h"
#include "platform/desktop/desktop_loop.h"
#include "platform/wait_for_events.h"
#include <QElapsedTimer>
#include <QGuiApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace quillane;

namespace {

constexpr int kFiles = 110'000;
constexpr int kFilesOfAFolder = 500;
constexpr int kRounds = 7;
constexpr double kMostOverFind = 2;
constexpr double kMostOfTheWindow = 50; ///< milliseconds in one piece on the window thread

void MakeTree(const QString& root, int files)
{
    for (int at = 0; at < files; ++at) {
        const int leaf = at / kFilesOfAFolder;
        const QString folder = root + QStringLiteral("/%1/%2").arg(leaf % 20).arg(leaf);
        if (at % kFilesOfAFolder == 0) {
            MakeFolder(folder);
        }
        const QString path = folder + QStringLiteral("/photo%1.jpg").arg(at, 6, 10, QChar(u'0'));
        if (StatPath(path).type == FileType::Missing) {
            WriteWholeFile(path, QByteArray(at % 997, 'x'), {.sync = false});
        }
    }
}

void FindBarely(const QString& root)
{
    const QByteArray command = "find '" + BytesFromPath(root)
        + "' -type f -name '*.jpg' -printf '%p   %s   %t\\n' >/dev/null";
    if (std::system(command.constData()) != 0) {
        std::exit(2);
    }
}

/// Fills a list as the window does; the longest piece of work on its thread goes to `longest`.
void Locate(const QString& root, int expected, double& longest)
{
    const DesktopLoop loop;
    FoundModel model(loop);
    LocatorSearch search;
    QObject::connect(&search, &LocatorSearch::found, &model,
                     [&](const std::vector<LocatorSearch::Batch>& batches) {
                         QElapsedTimer piece;
                         piece.start();
                         model.Append(batches);
                         longest = std::max(longest, double(piece.nsecsElapsed()) / 1e6);
                     });
    search.Start(root, QStringLiteral("*.jpg"), true);
    while (search.IsRunning()) {
        WaitForThreadEvents(20);
    }
    if (model.rowCount() != expected) {
        std::fprintf(stderr, "%d files were found, not %d\n", model.rowCount(), expected);
        std::exit(2);
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::setenv("TZ", ":/etc/localtime", 0);
    const QGuiApplication application(argc, argv);
    const int count = argc > 2 ? std::max(1, std::atoi(argv[2])) : kFiles;
    const QString root =
        bench::PicturesFolder(argc, argv) + QStringLiteral("/located%1").arg(count);
    MakeTree(root, count);

    double longest = 0;
    const bench::Pair pair = bench::MeasureInTurn(
        kRounds, [&] { FindBarely(root); }, [&] { Locate(root, count, longest); });
    bool good = bench::PrintFigure("locator, all files found", pair.second.wall, pair.first.wall,
                                   "ms", pair.second.wall / pair.first.wall, bench::Wanted::AtMost,
                                   kMostOverFind);
    good &=
        bench::PrintFigure("locator, longest piece on the window thread", longest, kMostOfTheWindow,
                           "ms", longest / kMostOfTheWindow, bench::Wanted::AtMost, 1);
    return good ? 0 : 1;
}
