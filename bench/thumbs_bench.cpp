// Thumbnails of twelve-megapixel JPEGs: without previews against a bare loop of the JPEG library
// at reduced scale, then from embedded previews and from the desktop's cache.
//
//   bench_thumbs [folder [word]]   keeps its pictures below that folder and uses them again;
//                                  measures what has that word in its name
#include "bench_support.h"
#include "imaging/thumbs/freedesktop_cache.h"
#include "imaging/thumbs/thumbnail_pool.h"
#include "imaging/thumbs/thumbnailer.h"
#include <QEventLoop>
#include <QGuiApplication>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <turbojpeg.h>

using namespace quillane;

namespace {

constexpr int kPictures = 60;
constexpr int kRounds = 3;

/// A loop over all files on all cores that does nothing but decode an eighth of each.
void DecodeBarely(const std::vector<QString>& paths)
{
    std::atomic<size_t> next = 0;
    const auto work = [&] {
        const tjhandle decoder = tjInitDecompress();
        std::vector<unsigned char> pixels;
        for (size_t i = next++; i < paths.size(); i = next++) {
            const QByteArray file = ReadWholeFile(paths[i], 64 << 20);
            const auto* bytes = reinterpret_cast<const unsigned char*>(file.constData());
            int width = 0, height = 0, sampling = 0, space = 0;
            tjDecompressHeader3(decoder, bytes, static_cast<unsigned long>(file.size()), &width,
                                &height, &sampling, &space);
            width = (width + 7) / 8;
            height = (height + 7) / 8;
            pixels.resize(size_t(width) * size_t(height) * 4);
            if (tjDecompress2(decoder, bytes, static_cast<unsigned long>(file.size()),
                              pixels.data(), width, 0, height, TJPF_BGRX, 0)
                != 0) {
                std::fprintf(stderr, "the reference could not decode\n");
                std::exit(2);
            }
        }
        tjDestroy(decoder);
    };
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < std::max(1u, std::thread::hardware_concurrency()); ++i) {
        threads.emplace_back(work);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Thumbnails of all files from a pool, until the last has come.
void MakeAll(const std::vector<QString>& paths, int side, const QString& cacheFolder,
             ThumbnailFrom from)
{
    ThumbnailPool pool(cacheFolder);
    QEventLoop loop;
    size_t left = paths.size();
    pool.OnDone([&](const QString&, const Thumbnail& thumbnail) {
        if (thumbnail.image.isNull() || thumbnail.from != from) {
            std::fprintf(stderr, "a thumbnail is not what was expected: %s\n",
                         qPrintable(thumbnail.failure));
            std::exit(2);
        }
        if (--left == 0) {
            loop.quit();
        }
    });
    pool.Want(QVector<QString>(paths.begin(), paths.end()), QSize(side, side));
    loop.exec();
}

/// Keeps the thumbnails of all files in a cache, whatever time they took.
void FillCache(const std::vector<QString>& paths, const QString& cacheFolder, int side)
{
    const QSize box(side, side);
    for (const QString& path : paths) {
        if (ReadCachedThumbnail(cacheFolder, path, StatPath(path), box).isNull()) {
            const Thumbnail made = MakeThumbnail(path, box, {});
            WriteCachedThumbnail(cacheFolder, path, made.stat, CacheSizeFor(box), made.image,
                                 made.picture);
        }
    }
}

/// What is to be measured: names with this in them.
const char* gWord = "";

bool Compare(const char* name, const std::vector<QString>& plain, double required,
             const std::function<void()>& ours)
{
    if (!std::strstr(name, gWord)) {
        return true;
    }
    const bench::Pair spent = bench::MeasureInTurn(
        kRounds, [&] { DecodeBarely(plain); }, ours);
    std::printf("  %s, time of all cores: %.1f ms, reference %.1f ms, ratio %.2f\n", name,
                spent.second.cores, spent.first.cores, spent.first.cores / spent.second.cores);
    const double files = double(plain.size());
    return bench::PrintFigure(name, spent.second.wall / files, spent.first.wall / files,
                              "ms a file", spent.first.wall / spent.second.wall,
                              bench::Wanted::AtLeast, required);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    gWord = argc > 2 ? argv[2] : "";
    const QString root = bench::PicturesFolder(argc, argv);
    bench::JpegShape shape;
    const std::vector<QString> plain =
        bench::FolderOfJpegs(root + QStringLiteral("/plain12"), kPictures, shape);
    shape.preview = true;
    const std::vector<QString> previews =
        bench::FolderOfJpegs(root + QStringLiteral("/preview12"), kPictures, shape);
    const QString cache = root + QStringLiteral("/thumbnails");
    FillCache(plain, cache, 128);
    FillCache(plain, cache, 256);

    bool good = Compare("thumbnails without previews", plain, 0.95,
                        [&] { MakeAll(plain, 128, {}, ThumbnailFrom::Picture); });
    good &= Compare("thumbnails from previews", plain, 100,
                    [&] { MakeAll(previews, 128, {}, ThumbnailFrom::Preview); });
    good &= Compare("thumbnails from the cache at 128 pixels", plain, 60,
                    [&] { MakeAll(plain, 128, cache, ThumbnailFrom::Cache); });
    good &= Compare("thumbnails from the cache at 256 pixels", plain, 14,
                    [&] { MakeAll(plain, 256, cache, ThumbnailFrom::Cache); });
    return good ? 0 : 1;
}
