#include "imaging/thumbs/freedesktop_cache.h"

#include "core/failure.h"
#include "imaging/thumbs/thumbnail_png.h"

#include <QCryptographicHash>
#include <algorithm>

namespace quillane {

namespace {

constexpr CacheSize kCacheSizes[] = {
    {"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}};
constexpr qint64 kLargestThumbnailFile = 8 << 20;

QImage ReadIfFresh(const QString& thumbnailPath, const CacheSize& size, const QByteArray& address,
                   const FileStat& stat)
{
    QImage image;
    ResumeNext([&] {
        const QByteArray png = ReadWholeFile(thumbnailPath, kLargestThumbnailFile);
        // Some programs write fractions of a second behind a point.
        bool known = false;
        const QByteArray time = ThumbnailPngText(png, "Thumb::MTime");
        const qint64 seconds = time.split('.').first().toLongLong(&known);
        const QByteArray madeOf = ThumbnailPngText(png, "Thumb::URI");
        const QByteArray bytes = ThumbnailPngText(png, "Thumb::Size");
        if (known && seconds == stat.modifiedSeconds && (madeOf.isEmpty() || madeOf == address)
            && (bytes.isEmpty() || bytes.toLongLong() == stat.size)) {
            image = DecodeThumbnailPng(png, size.side);
        }
    });
    return image;
}

/// Files of the cache itself have no thumbnails in it, and only a full path has an address.
bool HasPlaceInCache(const QString& cacheFolder, const QString& path)
{
    const bool inCache =
        path.startsWith(cacheFolder) && path.mid(cacheFolder.size()).startsWith(u'/');
    return !cacheFolder.isEmpty() && !inCache && path.startsWith(u'/');
}

bool CoversBox(const QImage& image, const CacheSize& size, QSize box)
{
    // A thumbnail smaller than its own folder allows shows a picture that is no larger.
    const bool wholePicture = image.width() < size.side && image.height() < size.side;
    return wholePicture || image.width() >= box.width() || image.height() >= box.height();
}

} // namespace

QByteArray ThumbnailAddress(const QString& path)
{
    // GLib keeps these besides letters, digits and "-._~" in the path of an address.
    return "file://" + BytesFromPath(path).toPercentEncoding("/!$&'()*+,:=@");
}

const CacheSize& CacheSizeFor(QSize box)
{
    const int side = std::max(box.width(), box.height());
    for (const CacheSize& size : kCacheSizes) {
        if (side <= size.side) {
            return size;
        }
    }
    return kCacheSizes[std::size(kCacheSizes) - 1];
}

QString CachedThumbnailPath(const QString& cacheFolder, const CacheSize& size, const QString& path)
{
    const QByteArray key =
        QCryptographicHash::hash(ThumbnailAddress(path), QCryptographicHash::Md5).toHex();
    return cacheFolder + u'/' + QLatin1String(size.folder) + u'/' + QString::fromLatin1(key)
        + QStringLiteral(".png");
}

QImage ReadCachedThumbnail(const QString& cacheFolder, const QString& path, const FileStat& stat,
                           QSize box)
{
    if (!HasPlaceInCache(cacheFolder, path)) {
        return {};
    }
    const QByteArray address = ThumbnailAddress(path);
    for (const CacheSize* size = &CacheSizeFor(box); size != std::end(kCacheSizes); ++size) {
        const QImage image =
            ReadIfFresh(CachedThumbnailPath(cacheFolder, *size, path), *size, address, stat);
        if (!image.isNull() && CoversBox(image, *size, box)) {
            return image;
        }
    }
    return {};
}

qint64 WriteCachedThumbnail(const QString& cacheFolder, const QString& path, const FileStat& stat,
                            const CacheSize& size, const QImage& thumbnail, QSize picture)
{
    const QString sizeFolder = cacheFolder + u'/' + QLatin1String(size.folder);
    if (!HasPlaceInCache(cacheFolder, path) || thumbnail.isNull() || !MakeFolder(cacheFolder, 0700)
        || !MakeFolder(sizeFolder, 0700)) {
        return 0;
    }
    const QByteArray png =
        EncodeThumbnailPng(thumbnail,
                           {{"Thumb::URI", ThumbnailAddress(path)},
                            {"Thumb::MTime", QByteArray::number(stat.modifiedSeconds)},
                            {"Thumb::Size", QByteArray::number(stat.size)},
                            {"Thumb::Image::Width", QByteArray::number(picture.width())},
                            {"Thumb::Image::Height", QByteArray::number(picture.height())},
                            {"Software", "Quillane"}});
    if (png.isEmpty()) {
        return 0;
    }
    WriteOptions options;
    options.newFileMode = 0600;
    options.sync = false;
    const bool written = ResumeNext(
        [&] { WriteWholeFile(CachedThumbnailPath(cacheFolder, size, path), png, options); });
    return written ? png.size() : 0;
}

qint64 CachedThumbnailBytes(const QString& cacheFolder, qint64 most)
{
    qint64 bytes = 0;
    for (const CacheSize& size : kCacheSizes) {
        const QString folder = cacheFolder + u'/' + QLatin1String(size.folder);
        ResumeNext([&] {
            ListFolder(folder, [&](DirEntry&& entry) {
                bytes += StatPath(folder + u'/' + entry.name).size;
                return bytes < most;
            });
        });
    }
    return bytes;
}

} // namespace quillane
