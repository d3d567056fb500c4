// The headers of a large folder of small JPEGs: the scanner against a bare loop of open and read
// up to the frame marker, with the files in the system's memory and without.
//
//   bench_scan [folder [count]]   keeps its pictures below that folder and uses them again
#include "bench_support.h"
#include "core/folder_listing.h"
#include "core/native_path.h"
#include "imaging/thumbs/thumbnail_scanner.h"
#include "platform/desktop/desktop_loop.h"
#include <QGuiApplication>
#include <cstdio>
#include <cstdlib>

using namespace quillane;

namespace {

constexpr int kFiles = 110'000;
constexpr int kRounds = 3;
constexpr double kAllListed = 1500; ///< milliseconds for all of them, warm
constexpr double kMostOverLoop = 1.5;
const char kMask[] = "*.BMP;*.GIF;*.JPG;*.PNG;*.TIF";

void Scan(const QString& folder, size_t expected)
{
    DesktopLoop loop;
    FolderListing listing;
    listing.Read(folder);
    ThumbnailScanner scanner(loop);
    const QStringList masks = PatternsOf(QString::fromLatin1(kMask));
    scanner.Prepare(listing, masks);
    const Generation generation = loop.NewGeneration();
    size_t seen = 0;
    for (int i = 0; i < masks.size(); ++i) {
        scanner.Browse(i, generation, [&](const ScannedFile& file) {
            seen += file.status == kScanGood && file.facts.width > 0;
            return true;
        });
    }
    scanner.Stop();
    if (seen != expected) {
        std::fprintf(stderr, "%zu files were delivered, not %zu\n", seen, expected);
        std::exit(2);
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const int count = argc > 2 ? std::max(1, std::atoi(argv[2])) : kFiles;
    const QString folder =
        bench::PicturesFolder(argc, argv) + QStringLiteral("/small%1").arg(count);
    bench::JpegShape shape;
    shape.width = 48;
    shape.height = 32;
    shape.quality = 75;
    shape.exif = true;
    const std::vector<QString> paths = bench::FolderOfJpegs(folder, count, shape);
    const std::vector<QByteArray> names = bench::NamesOf(paths);

    const auto bare = [&] { bench::ReadHeadersBarely(names); };
    const auto scan = [&] { Scan(folder + u'/', paths.size()); };
    const auto forget = [&] { bench::ForgetContent(paths); };

    forget();
    const double coldLoop = bench::Measure(bare).wall;
    forget();
    const double coldScan = bench::Measure(scan).wall;
    const bench::Pair warm = bench::MeasureInTurn(kRounds, bare, scan);
    const qint64 before = bench::ResidentBytes();
    scan();
    const qint64 grown = bench::ResidentBytes() - before;

    std::printf("  scan, time of all cores: %.0f ms, reference %.0f ms; memory kept after another "
                "scan: %lld KB, highest: %lld MB\n",
                warm.second.cores, warm.first.cores, static_cast<long long>(grown >> 10),
                static_cast<long long>(bench::PeakResidentBytes() >> 20));
    bool good = bench::PrintFigure("all files listed, warm", warm.second.wall, kAllListed, "ms",
                                   warm.second.wall / kAllListed, bench::Wanted::AtMost, 1);
    good &= bench::PrintFigure("scan of headers, warm", warm.second.wall, warm.first.wall, "ms",
                               warm.second.wall / warm.first.wall, bench::Wanted::AtMost,
                               kMostOverLoop);
    good &= bench::PrintFigure("scan of headers, cold", coldScan, coldLoop, "ms",
                               coldScan / coldLoop, bench::Wanted::AtMost, kMostOverLoop);
    return good ? 0 : 1;
}
