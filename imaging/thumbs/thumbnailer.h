#pragma once
// One file's thumbnail: cache, embedded preview or a decode at reduced scale. Any thread.
#include "core/native_path.h"
#include <QImage>
#include <QSize>
#include <QString>
#include <atomic>

namespace quillane {

struct ThumbnailOptions {
    QString cacheFolder;     ///< freedesktop thumbnail folder; empty reads no cache
    bool usePreviews = true; ///< embedded previews may serve
    const std::atomic<bool>* cancelled = nullptr;
};

enum class ThumbnailFrom : quint8 { Nowhere, Cache, Preview, Picture };

struct Thumbnail {
    QImage image;    ///< upright, sRGB, fits the box with its shape kept; null when it failed
    QString failure; ///< why there is no image
    ThumbnailFrom from = ThumbnailFrom::Nowhere;
    double milliseconds = 0; ///< that it took to make
    /// A version of the cache's size, when making it took more than 10 ms; else null.
    QImage forCache;
    QSize picture; ///< of the whole picture, upright; unknown when the thumbnail was cached
    FileStat stat; ///< of the file, from before it was read
};

/// The cached thumbnail, else the embedded preview, else the picture decoded at reduced scale.
/// A preview serves when its sides have the picture's ratio to 2 % and it need not be enlarged by
/// more than 7 %. A picture smaller than the box keeps its size.
/// box: largest width and height in device pixels. Never throws: a failure is in the result.
Thumbnail MakeThumbnail(const QString& path, QSize box, const ThumbnailOptions& options);

} // namespace quillane
