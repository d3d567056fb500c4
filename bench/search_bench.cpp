// A search over a folder of tagged JPEGs, from the empty view to the last match, in both modes;
// against a bare loop of the metadata library over the same files on all cores, and against
// exiftool reading the same tag.
//
//   bench_search [folder [count]]   keeps its pictures below that folder and uses them again
#include "bench_support.h"
#include "browser/filter.h"
#include "browser/scan.h"
#include "camera_jpeg.h"
#include "core/native_path.h"
#include "platform/desktop/desktop_loop.h"
#include "platform/fake/fake_platform.h"

#include <QGuiApplication>
#include <QProcess>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exiv2/exiv2.hpp>
#include <thread>

using namespace quillane;

namespace {

constexpr int kFiles = 10'000;
constexpr int kRounds = 5;
constexpr int kMatchEvery = 20;           // one file in so many is found
constexpr double kMostOverLibrary = 1.2;  // times the bare loop
constexpr double kLeastOverExiftool = 50; // times as fast

/// A view that counts.
class CountingView : public ScanView {
public:
    int cells = 0, rows = 0;
    void SetPanel(int, const QString&) override { }
    void ShowProgress(int) override { }
    void SetProgress(int) override { }
    void HideProgress() override { }
    void ClearGrid(qint16, qint16) override { cells = 0; }
    void AddCell(const QString&, const ImageFacts&) override { ++cells; }
    void AddStockCell(const QString&, StockPicture) override { ++cells; }
    void FinishGrid() override { }
    int CellCount() const override { return cells; }
    QString CellPath(int) const override { return {}; }
    void MakeCellCurrent(int) override { }
    void MarkCellSelected(int) override { }
    void ClearRows(const std::array<QString, 4>&) override { rows = 0; }
    void AddRow(const ScanRow&) override { ++rows; }
    void SetRowTags(int, const std::array<QString, 4>&) override { }
    void FinishRows() override { }
    int RowCount() const override { return rows; }
    void SelectRow(int) override { }
    void ShowFile(const QString&) override { }
};

std::vector<QString> FolderOfTagged(const QString& folder, int count)
{
    MakeFolder(folder);
    WriteOptions quick;
    quick.sync = false;
    std::vector<QString> paths;
    paths.reserve(size_t(count));
    for (int i = 0; i < count; ++i) {
        paths.push_back(folder + QStringLiteral("/IMG_%1.jpg").arg(i, 6, 10, QLatin1Char('0')));
        if (StatPath(paths.back()).type == FileType::Missing) {
            const QByteArray tags = "Name=Ann\r\nCity=Rome\r\nISO="
                + QByteArray::number(i % kMatchEvery) + "\r\nComment=One of many\r\n";
            WriteWholeFile(paths.back(), bench::CameraJpeg(i, tags), quick);
        }
    }
    return paths;
}

/// What a plain program does with the library: open, parse, take the one field.
size_t FindBarely(const std::vector<QByteArray>& names)
{
    std::atomic<size_t> next = 0, found = 0;
    const std::string wanted = "ISO=7\r";
    std::vector<std::thread> threads;
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    threads.reserve(cores);
    for (unsigned t = 0; t < cores; ++t) {
        threads.emplace_back([&] {
            for (size_t i = next++; i < names.size(); i = next++) {
                const auto image = Exiv2::ImageFactory::open(names[i].toStdString());
                image->readMetadata();
                const auto at =
                    image->exifData().findKey(Exiv2::ExifKey("Exif.Image.ImageDescription"));
                found += at != image->exifData().end()
                        && at->toString().find(wanted) != std::string::npos
                    ? 1
                    : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return found;
}

void Expect(size_t found, size_t wanted, const char* who)
{
    if (found != wanted) {
        std::fprintf(stderr, "%s found %zu files, not %zu\n", who, found, wanted);
        std::exit(2);
    }
}

/// Milliseconds of one run of exiftool over the folder; 0 where there is none.
double ExiftoolMilliseconds(const QString& folder)
{
    bool good = false;
    const double spent =
        bench::Measure([&] {
            QProcess tool;
            tool.setStandardOutputFile(QProcess::nullDevice());
            tool.setStandardErrorFile(QProcess::nullDevice());
            tool.start(QStringLiteral("exiftool"),
                       {QStringLiteral("-s3"), QStringLiteral("-ImageDescription"), folder});
            good = tool.waitForFinished(-1) && tool.exitCode() == 0;
        }).wall;
    return good ? spent : 0;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const int count = argc > 2 ? std::max(kMatchEvery, std::atoi(argv[2])) : kFiles;
    const QString folder =
        bench::PicturesFolder(argc, argv) + QStringLiteral("/tagged%1").arg(count);
    const std::vector<QString> paths = FolderOfTagged(folder, count);
    const std::vector<QByteArray> names = bench::NamesOf(paths);
    const size_t wanted = size_t((count + kMatchEvery - 8) / kMatchEvery);
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);

    Session session;
    session.gsFilter = QString::fromUtf16(kBrowseMask);
    session.gsPath = folder + u'/';
    FakePlatform fakes(folder);
    DesktopLoop loop;
    CountingView view;
    FolderScan scan(session, fakes.Services(loop), view);
    scan.SetSearchOn(true);
    scan.SetSearchSource([] {
        SearchQuestion question;
        question.criteria.searchNumeric[0] = {7, kNoBound, QStringLiteral("ISO"), {}, kTrue};
        return question;
    });

    const auto bare = [&] { Expect(FindBarely(names), wanted, "the library"); };
    const auto searchIn = [&](int mode) {
        scan.BrowseImages(mode);
        Expect(size_t(session.lbFilTiffs.size()), wanted, "the search");
    };
    bare();
    const bench::Pair list = bench::MeasureInTurn(kRounds, bare, [&] { searchIn(kListMode); });
    const bench::Pair grid = bench::MeasureInTurn(kRounds, bare, [&] { searchIn(kThumbnailMode); });
    std::printf("  %d files, %zu found; time of all cores: list %.0f ms, grid %.0f ms, library "
                "%.0f ms\n",
                count, wanted, list.second.cores, grid.second.cores, list.first.cores);
    bool good = bench::PrintFigure("search in list mode", list.second.wall, list.first.wall, "ms",
                                   list.second.wall / list.first.wall, bench::Wanted::AtMost,
                                   kMostOverLibrary);
    good &= bench::PrintFigure("search in thumbnail mode", grid.second.wall, grid.first.wall, "ms",
                               grid.second.wall / grid.first.wall, bench::Wanted::AtMost,
                               kMostOverLibrary);
    const double slower = std::max(list.second.wall, grid.second.wall);
    if (const double exiftool = ExiftoolMilliseconds(folder); exiftool > 0) {
        good &= bench::PrintFigure("exiftool over the slower search", exiftool, slower, "ms",
                                   exiftool / slower, bench::Wanted::AtLeast, kLeastOverExiftool);
    } else {
        std::printf("exiftool is not installed: not compared\n");
    }
    return good ? 0 : 1;
}
