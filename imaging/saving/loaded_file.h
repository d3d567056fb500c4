#pragma once
#include "imaging/byte_source.h"
#include "imaging/codec.h"
#include <memory>

namespace quillane {

/// What an image remembers of the file it was loaded from. The file stays open, so that what no
/// comment names can still be carried over when its name is gone or stands for another file.
struct LoadedFile {
    LoadedFile(QString itsPath, std::shared_ptr<FileSource> itsSource, const Codec* itsCodec,
               ImageFacts itsFacts, qint64 itsPixels, bool itsExact = true)
        : path(std::move(itsPath)),
          source(std::move(itsSource)),
          codec(itsCodec),
          facts(std::move(itsFacts)),
          pixels(itsPixels),
          exact(itsExact)
    { }
    QString path;
    std::shared_ptr<FileSource> source;
    const Codec* codec = nullptr;
    ImageFacts facts;
    /// QImage::cacheKey of the pixels as loaded and turned upright; another key: they were changed.
    /// 0 when not the whole first page was loaded.
    qint64 pixels = 0;
    /// Whether the picture held all that the file holds of its pixels (Bitmap::IsExact). That a
    /// picture was changed since does not make it a mere view.
    bool exact = true;

    /// Whether the file still is as it was loaded, wherever its name went.
    bool IsUnchanged() const;
    /// Whether a path stands for this very file now.
    bool IsAt(const QString& where) const;
};

} // namespace quillane
