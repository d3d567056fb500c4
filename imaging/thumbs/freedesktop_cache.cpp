#include "imaging/thumbs/freedesktop_cache.h"

#include "core/failure.h"
#include "imaging/codec.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QImageWriter>
#include <QtEndian>
#include <algorithm>

namespace quillane {

namespace {

constexpr CacheSize kCacheSizes[] = {
    {"normal", 128}, {"large", 256}, {"x-large", 512}, {"xx-large", 1024}};
constexpr qint64 kLargestThumbnailFile = 8 << 20;

/// Value of a tEXt chunk before the pixels; empty when there is none.
QByteArray TextChunk(const QByteArray& png, const QByteArray& keyword)
{
    for (qsizetype at = 8; at + 12 <= png.size();) {
        const quint32 length = qFromBigEndian<quint32>(png.constData() + at);
        const QByteArrayView type(png.constData() + at + 4, 4);
        if (length > quint32(png.size() - at - 12) || type == "IDAT") {
            return {};
        }
        const QByteArrayView content(png.constData() + at + 8, qsizetype(length));
        if (type == "tEXt" && content.startsWith(keyword) && content.size() > keyword.size()
            && content[keyword.size()] == '\0') {
            return content.sliced(keyword.size() + 1).toByteArray();
        }
        at += 12 + qsizetype(length);
    }
    return {};
}

QImage ReadIfFresh(const QString& thumbnailPath, const FileStat& stat)
{
    QImage image;
    ResumeNext([&] {
        const QByteArray png = ReadWholeFile(thumbnailPath, kLargestThumbnailFile);
        if (TextChunk(png, "Thumb::MTime").toLongLong() != stat.modifiedSeconds) {
            return;
        }
        const Codec* codec =
            FindCodec(QByteArrayView(png).first(std::min<qsizetype>(64, png.size())), u"PNG");
        if (codec && !codec->inWorker) {
            MemorySource source(png);
            image = codec->decode(source, {}).ToDisplay();
        }
    });
    return image;
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
    if (cacheFolder.isEmpty()) {
        return {};
    }
    const CacheSize* wanted = &CacheSizeFor(box);
    for (const CacheSize* size = wanted; size != std::end(kCacheSizes); ++size) {
        const QImage image = ReadIfFresh(CachedThumbnailPath(cacheFolder, *size, path), stat);
        if (!image.isNull() && CoversBox(image, *size, box)) {
            return image;
        }
    }
    return {};
}

qint64 WriteCachedThumbnail(const QString& cacheFolder, const QString& path, const FileStat& stat,
                            const CacheSize& size, QImage thumbnail, QSize picture)
{
    const QString sizeFolder = cacheFolder + u'/' + QLatin1String(size.folder);
    if (cacheFolder.isEmpty() || path.startsWith(cacheFolder + u'/') || thumbnail.isNull()
        || !MakeFolder(cacheFolder, 0700) || !MakeFolder(sizeFolder, 0700)) {
        return 0;
    }
    thumbnail.setText(QStringLiteral("Thumb::URI"), QString::fromLatin1(ThumbnailAddress(path)));
    thumbnail.setText(QStringLiteral("Thumb::MTime"), QString::number(stat.modifiedSeconds));
    thumbnail.setText(QStringLiteral("Thumb::Size"), QString::number(stat.size));
    thumbnail.setText(QStringLiteral("Thumb::Image::Width"), QString::number(picture.width()));
    thumbnail.setText(QStringLiteral("Thumb::Image::Height"), QString::number(picture.height()));
    thumbnail.setText(QStringLiteral("Software"), QStringLiteral("Quillane"));
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    if (!writer.write(thumbnail)) {
        return 0;
    }
    WriteOptions options;
    options.newFileMode = 0600;
    options.sync = false;
    const bool written = ResumeNext(
        [&] { WriteWholeFile(CachedThumbnailPath(cacheFolder, size, path), png, options); });
    return written ? png.size() : 0;
}

} // namespace quillane
