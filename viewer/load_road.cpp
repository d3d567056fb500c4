#include "viewer/load_road.h"

#include "imaging/thumbs/freedesktop_cache.h"
#include "imaging/thumbs/thumbnailer.h"
#include <algorithm>
#include <array>

namespace quillane {

namespace {

/// Format codes of files that are decoded at reduced scale in a fraction of the time.
constexpr std::array<qint16, 5> kQuickFormats{10, 21, 23, 98, 101};
constexpr qint64 kWorthALook = 1'000'000; // pixels from which loading takes a while
constexpr QSize kCachedLook(256, 256);    // small pictures of this side are worth showing

QSize UprightSize(const ImageFacts& facts)
{
    return facts.orientation >= 5 ? QSize(facts.height, facts.width)
                                  : QSize(facts.width, facts.height);
}

} // namespace

QuickPicture QuickLook(const QString& file, QSize box, const QString& thumbnailCache,
                       const std::atomic<bool>* cancelled)
{
    QuickPicture look;
    ResumeNext([&] {
        if (box.isEmpty()) {
            return;
        }
        const ImageFacts facts = ProbeFile(file);
        look.whole = UprightSize(facts);
        if (look.whole.width() * qint64(look.whole.height()) < kWorthALook) {
            return;
        }
        if (std::find(kQuickFormats.begin(), kQuickFormats.end(), facts.format)
            != kQuickFormats.end()) {
            // An eighth is what costs least; the whole picture follows soon.
            ThumbnailOptions options;
            options.cacheFolder = thumbnailCache;
            options.cancelled = cancelled;
            const QSize small = (look.whole / 8).expandedTo(kCachedLook).boundedTo(box);
            look.image = MakeThumbnail(file, small, options).image;
        } else {
            look.image = ReadCachedThumbnail(thumbnailCache, file, StatPath(file), kCachedLook);
        }
    });
    return look;
}

ViewedFile LoadViewedFile(const QString& file, const std::atomic<bool>* cancelled)
{
    ViewedFile viewed;
    viewed.file = file;
    viewed.stat = StatPath(file);
    try {
        DecodeRequest request;
        request.cancelled = cancelled;
        viewed.picture = LoadFile(file, request);
        viewed.facts = viewed.picture->facts;
    } catch (const Failure& failure) {
        viewed.failure = failure.Description();
    } catch (const std::bad_alloc&) {
        viewed.failure = QStringLiteral("There is not enough memory to show this picture.");
    }
    // The comments are those of the file that the pixels came from, whatever its name means now.
    viewed.commentsRead = ResumeNext([&] {
        const bool open = viewed.picture && viewed.picture->file && viewed.picture->file->source;
        viewed.comments =
            open ? ReadComments(*viewed.picture->file->source, file) : ReadComments(file);
    });
    return viewed;
}

} // namespace quillane
