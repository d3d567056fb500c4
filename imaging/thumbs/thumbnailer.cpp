#include "imaging/thumbs/thumbnailer.h"

#include "core/failure.h"
#include "imaging/reader.h"
#include "imaging/thumbs/area_shrink.h"
#include "imaging/thumbs/exif_preview.h"
#include "imaging/thumbs/freedesktop_cache.h"
#include "imaging/thumbs/shown_small.h"

#include <QDateTime>
#include <algorithm>
#include <chrono>
#include <cmath>

namespace quillane {

namespace {

constexpr double kWorthKeeping = 10;      // milliseconds that a cached thumbnail saves at least
constexpr double kShapeTolerance = 0.02;  // of the ratio of the sides
constexpr double kPreviewEnlarged = 1.07; // what a preview may be enlarged by
constexpr int kPreviewMostSide = 2048;    // pixels of a preview; a larger one is no such thing
constexpr qint64 kSettledSeconds = 2;     // a file that is younger may change unnoticed

double ThumbnailMilliseconds(std::chrono::steady_clock::time_point start)
{
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    return took.count();
}

/// Whether the file's time tells one content from the next: a cached thumbnail knows whole seconds.
bool IsSettled(const FileStat& stat)
{
    return QDateTime::currentSecsSinceEpoch() - stat.modifiedSeconds >= kSettledSeconds;
}

/// The size of a picture in a box, its shape kept; a picture that fits is not enlarged.
QSize FittedSize(QSize picture, QSize box)
{
    if (picture.width() <= box.width() && picture.height() <= box.height()) {
        return picture;
    }
    const double scale =
        std::min(double(box.width()) / picture.width(), double(box.height()) / picture.height());
    return QSize(qRound(picture.width() * scale), qRound(picture.height() * scale))
        .expandedTo({1, 1});
}

bool SameShape(QSize a, QSize b)
{
    const double ratio = double(a.width()) * b.height() / (double(a.height()) * b.width());
    return std::abs(ratio - 1) <= kShapeTolerance;
}

QSize Turned(QSize size, int orientation)
{
    return orientation >= 5 && orientation <= 8 ? size.transposed() : size;
}

/// Whether a preview serves: it shows all of the picture, and enlarging it is hardly seen.
bool PreviewServes(const ImageFacts& preview, const ImageFacts& picture, QSize fitted)
{
    const QSize size(preview.width, preview.height);
    const QSize wanted = Turned(fitted, picture.orientation);
    return size.width() <= kPreviewMostSide && size.height() <= kPreviewMostSide
        && size.width() * kPreviewEnlarged >= wanted.width()
        && size.height() * kPreviewEnlarged >= wanted.height()
        && SameShape(size, {picture.width, picture.height});
}

QImage FromPreview(FileSource& source, const ImageFacts& facts, QSize fitted)
{
    const QByteArray jpeg = ReadEmbeddedPreview(source);
    const Codec* codec =
        FindCodec(QByteArrayView(jpeg).first(std::min<qsizetype>(512, jpeg.size())), u"JPG");
    if (jpeg.isEmpty() || !codec || codec->inWorker) {
        return {};
    }
    QImage image;
    ResumeNext([&] {
        MemorySource memory(jpeg);
        if (PreviewServes(codec->probe(memory), facts, fitted)) {
            DecodeRequest request;
            request.atLeast = Turned(fitted, facts.orientation);
            const Bitmap preview = codec->decode(memory, request);
            if (!preview.IsPartial()) {
                image = ShrunkForDisplay(preview.Upright(facts.orientation), fitted);
            }
        }
    });
    return image;
}

void MakeFromFile(const QString& path, QSize box, const ThumbnailOptions& options,
                  Thumbnail& result)
{
    const auto start = std::chrono::steady_clock::now();
    ImageFacts facts;
    {
        FileSource source(path);
        facts = ProbeSource(source, path);
        result.picture = Turned({facts.width, facts.height}, facts.orientation);
        if (options.usePreviews) {
            result.image = FromPreview(source, facts, FittedSize(result.picture, box));
        }
    }
    if (!result.image.isNull()) {
        result.from = ThumbnailFrom::Preview;
        return;
    }
    const bool caching = !options.cacheFolder.isEmpty();
    const QSize fitted = FittedSize(result.picture, box);
    const QSize cached = FittedSize(result.picture, QSize(1, 1) * CacheSizeFor(box).side);
    DecodeRequest request;
    request.atLeast = Turned(caching ? cached.expandedTo(fitted) : fitted, facts.orientation);
    request.cancelled = options.cancelled;
    const Bitmap bitmap = LoadFile(path, request).bitmap;
    result.image = ShrunkForDisplay(bitmap, fitted);
    result.from = ThumbnailFrom::Picture;
    if (caching && !bitmap.IsPartial() && ThumbnailMilliseconds(start) >= kWorthKeeping
        && IsSettled(result.stat)) {
        result.forCache = cached == fitted ? result.image : ShrunkForDisplay(bitmap, cached);
    }
}

} // namespace

Thumbnail MakeThumbnail(const QString& path, QSize box, const ThumbnailOptions& options)
{
    const auto start = std::chrono::steady_clock::now();
    Thumbnail result;
    try {
        result.stat = StatPath(path);
        if (result.stat.type == FileType::Missing) {
            throw Failure(kFailureNoFile, QStringLiteral("The file is not there any more."));
        }
        const QImage cached = ReadCachedThumbnail(options.cacheFolder, path, result.stat, box);
        if (!cached.isNull()) {
            const QSize fitted = FittedSize(cached.size(), box);
            result.image = ShrinkByArea(cached, fitted);
            result.from = ThumbnailFrom::Cache;
        } else {
            MakeFromFile(path, box, options, result);
        }
    } catch (const Failure& failure) {
        result.failure = failure.Description();
    } catch (const std::bad_alloc&) {
        result.failure = QStringLiteral("There is not enough memory to show this picture.");
    }
    result.milliseconds = ThumbnailMilliseconds(start);
    return result;
}

} // namespace quillane
