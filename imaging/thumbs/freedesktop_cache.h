#pragma once
// The thumbnails that the desktop's programs share, as freedesktop.org lays down:
// a PNG named by the MD5 of the file's address, with the file's modification time in it.
#include "core/native_path.h"
#include <QImage>
#include <QSize>
#include <QString>

namespace quillane {

/// The address that keys a file: file:// and the path's bytes, escaped exactly as GLib does.
QByteArray ThumbnailAddress(const QString& path);
/// Folders of the cache by the largest side they hold.
struct CacheSize {
    const char* folder;
    int side;
};
/// The smallest cache size whose thumbnails are large enough for a box; the largest otherwise.
const CacheSize& CacheSizeFor(QSize box);
/// Where a file's thumbnail of that size stands.
QString CachedThumbnailPath(const QString& cacheFolder, const CacheSize& size, const QString& path);

/// A cached thumbnail at least as large as the box needs, made from the file as it is now;
/// null when there is none. `stat`: of the file.
QImage ReadCachedThumbnail(const QString& cacheFolder, const QString& path, const FileStat& stat,
                           QSize box);
/// Keeps a thumbnail (already fitting `size`); silent when it cannot. Returns the bytes written.
/// `picture`: width and height of the whole picture.
qint64 WriteCachedThumbnail(const QString& cacheFolder, const QString& path, const FileStat& stat,
                            const CacheSize& size, const QImage& thumbnail, QSize picture);
/// Bytes of all thumbnails that the cache holds; counting ends when there are `most`.
qint64 CachedThumbnailBytes(const QString& cacheFolder, qint64 most);

} // namespace quillane
