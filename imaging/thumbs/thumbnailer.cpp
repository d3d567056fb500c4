#include "imaging/thumbs/thumbnailer.h"

#include "core/failure.h"
#include "imaging/reader.h"
#include "imaging/thumbs/exif_preview.h"
#include "imaging/thumbs/freedesktop_cache.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace quillane {

namespace {

constexpr double kWorthKeeping = 10;      // milliseconds that a cached thumbnail saves at least
constexpr double kShapeTolerance = 0.025; // of the ratio of the sides

/// The size of a picture in a box, its shape kept; a picture that fits is not enlarged.
QSize FittedSize(QSize picture, QSize box)
{
    if (picture.width() <= box.width() && picture.height() <= box.height()) {
        return picture;
    }
    return picture.scaled(box, Qt::KeepAspectRatio).expandedTo({1, 1});
}

bool SameShape(QSize a, QSize b)
{
    const double ratio = double(a.width()) * b.height() / (double(a.height()) * b.width());
    return std::abs(ratio - 1) <= kShapeTolerance;
}

/// Small and ready for the screen. What is cheap per pixel is done before the colours are.
QImage ShrunkForDisplay(const Bitmap& bitmap, QSize size)
{
    if (bitmap.Model() == ColourModel::Rgb && bitmap.Pixels().depth() == 32
        && bitmap.Pixels().size() != size) {
        Bitmap small = bitmap;
        small.Pixels() =
            bitmap.Pixels().scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        return small.ToDisplay();
    }
    const QImage shown = bitmap.ToDisplay();
    return shown.size() == size
        ? shown
        : shown.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QSize Turned(QSize size, int orientation)
{
    return orientation >= 5 && orientation <= 8 ? size.transposed() : size;
}

QImage FromPreview(FileSource& source, const ImageFacts& facts, QSize fitted)
{
    const QByteArray jpeg = ReadEmbeddedPreview(source);
    if (jpeg.isEmpty()) {
        return {};
    }
    const Codec* codec =
        FindCodec(QByteArrayView(jpeg).first(std::min<qsizetype>(64, jpeg.size())), u"JPG");
    if (!codec || codec->inWorker) {
        return {};
    }
    QImage image;
    ResumeNext([&] {
        MemorySource memory(jpeg);
        const Bitmap preview = codec->decode(memory, {}).Upright(facts.orientation);
        const QSize size(preview.Width(), preview.Height());
        const QSize picture = Turned({facts.width, facts.height}, facts.orientation);
        const bool large = size.width() >= fitted.width() && size.height() >= fitted.height();
        if (large && SameShape(size, picture) && !preview.IsPartial()) {
            image = ShrunkForDisplay(preview, fitted);
        }
    });
    return image;
}

void MakeFromFile(const QString& path, QSize box, const ThumbnailOptions& options,
                  Thumbnail& result)
{
    FileSource source(path);
    const ImageFacts facts = ProbeSource(source, path);
    const QSize picture = Turned({facts.width, facts.height}, facts.orientation);
    const QSize fitted = FittedSize(picture, box);
    if (options.usePreviews) {
        result.image = FromPreview(source, facts, fitted);
        if (!result.image.isNull()) {
            result.from = ThumbnailFrom::Preview;
            return;
        }
    }
    const bool caching = !options.cacheFolder.isEmpty();
    const QSize cached = FittedSize(picture, QSize(1, 1) * CacheSizeFor(box).side);
    DecodeRequest request;
    request.atLeast = Turned(caching ? cached.expandedTo(fitted) : fitted, facts.orientation);
    request.cancelled = options.cancelled;
    const LoadedImage loaded = LoadFile(path, request);
    result.image = ShrunkForDisplay(
        loaded.bitmap, FittedSize({loaded.bitmap.Width(), loaded.bitmap.Height()}, fitted));
    result.from = ThumbnailFrom::Picture;
    result.picture = picture;
    if (caching && !loaded.bitmap.IsPartial()) {
        result.forCache = ShrunkForDisplay(
            loaded.bitmap, FittedSize({loaded.bitmap.Width(), loaded.bitmap.Height()}, cached));
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
            result.image = cached.size() == fitted
                ? cached
                : cached.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
            result.from = ThumbnailFrom::Cache;
        } else {
            MakeFromFile(path, box, options, result);
        }
    } catch (const Failure& failure) {
        result.failure = failure.Description();
    } catch (const std::bad_alloc&) {
        result.failure = QStringLiteral("There is not enough memory to show this picture.");
    }
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    result.milliseconds = took.count();
    if (result.milliseconds < kWorthKeeping) {
        result.forCache = {};
    }
    return result;
}

} // namespace quillane
