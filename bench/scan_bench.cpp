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
#include <fcntl.h>
#include <unistd.h>

using namespace quillane;

namespace {

constexpr int kFiles = 110'000;
constexpr int kRounds = 3;
constexpr double kAllListed = 1500; ///< milliseconds for all of them, warm
constexpr double kMostOverLoop = 1.5;
const char kMask[] = "*.BMP;*.GIF;*.JPG;*.PNG;*.TIF";

/// Finds the frame marker in the first bytes of a JPEG; whether it is there.
bool FindFrame(const unsigned char* bytes, ssize_t size)
{
    for (ssize_t at = 2; at + 9 < size;) {
        if (bytes[at] != 0xff) {
            return false;
        }
        const unsigned char marker = bytes[at + 1];
        if (marker == 0xc0 || marker == 0xc1 || marker == 0xc2) {
            return true;
        }
        at += 2 + (bytes[at + 2] << 8 | bytes[at + 3]);
    }
    return false;
}

void ReadBarely(const std::vector<QByteArray>& paths)
{
    unsigned char head[4096];
    for (const QByteArray& path : paths) {
        const int file = open(path.constData(), O_RDONLY | O_CLOEXEC);
        const ssize_t size = read(file, head, sizeof head);
        close(file);
        if (!FindFrame(head, size)) {
            std::fprintf(stderr, "the reference found no frame\n");
            std::exit(2);
        }
    }
}

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
    std::vector<QByteArray> bytes;
    for (const QString& path : paths) {
        bytes.push_back(BytesFromPath(path));
    }

    const auto bare = [&] { ReadBarely(bytes); };
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
