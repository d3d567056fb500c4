#include "album/album_picture.h"

#include "core/failure.h"
#include "core/file_kinds.h"
#include "core/strings.h"
#include "imaging/comments/comment_reader.h"
#include "imaging/comments/slots.h"
#include "imaging/format_table.h"
#include "imaging/reader.h"

namespace quillane {

namespace {

constexpr int kFirstTurned = 5; // Exif orientations from here on lie on their side

} // namespace

QString AlbumSizeText(QSize pixels, int bits)
{
    return QStringLiteral("Image Size: %1 X %2 X %3")
        .arg(pixels.width())
        .arg(pixels.height())
        .arg(bits);
}

QString AlbumFormatText(qint16 format)
{
    return QStringLiteral("Format: ") + FormatDescription(format);
}

AlbumPicture ReadAlbumPicture(const QString& path, QSize box, const std::atomic<bool>& cancelled)
{
    AlbumPicture picture;
    picture.found = FileExists(path) == kTrue;
    if (!picture.found) {
        return picture;
    }
    try {
        DecodeRequest request;
        request.atLeast = box;
        request.cancelled = &cancelled;
        const LoadedImage loaded = LoadFile(path, request);
        picture.shown = loaded.bitmap.ToDisplay();
        picture.pixels = QSize(loaded.facts.width, loaded.facts.height);
        if (loaded.facts.orientation >= kFirstTurned) {
            picture.pixels.transpose();
        }
        picture.sizeText = AlbumSizeText(picture.pixels, loaded.facts.bits);
        picture.formatText = AlbumFormatText(loaded.facts.format);
    } catch (const Failure& failure) {
        picture.found = failure.Number() != kFailureNoFile; // it may have gone meanwhile
        picture.failure = failure.Description();
        return picture;
    }
    picture.hasDescription = IsImageFile(path) == kTrue;
    if (picture.hasDescription) {
        ResumeNext([&] {
            const CommentValue text = CommentReader().ReadComment(path, 0, kDescriptionSlot);
            picture.description = text.IsEmpty() ? QString() : text.Text();
            if (!picture.description.isEmpty()) {
                NormaliseLineEnds(picture.description);
            }
        });
    }
    return picture;
}

} // namespace quillane
