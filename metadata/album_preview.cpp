#include "metadata/album_preview.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/text_lines.h"

#include <QCoreApplication>
#include <algorithm>

namespace quillane {

namespace {

constexpr QLatin1String kAlbumLineEnd{"\r\n"};
constexpr qsizetype kMostOfAlbumLine = 4096; ///< bytes: no path is longer

bool IsAlbumMark(QByteArrayView line)
{
    return line.size() == 1 && line.front() == '#';
}

/// The beginning of a line, followed by the line end.
QString ShownAlbumLine(QByteArrayView line)
{
    return PathFromBytes(line.first(std::min(line.size(), kMostOfAlbumLine))) + kAlbumLineEnd;
}

} // namespace

AlbumPreview ReadAlbumPreview(const QString& path)
{
    const QByteArray content = ReadWholeFile(path, kMaxAlbumBytes);
    TextLines lines(content);
    std::optional<QByteArrayView> line = lines.Next();
    if (!line) {
        throw Failure(kFailureIo, QStringLiteral("This photo album is empty."), path);
    }
    AlbumPreview album;
    album.hasComment = IsAlbumMark(*line);
    if (album.hasComment) {
        while ((line = lines.Next()) && !IsAlbumMark(*line)) {
            if (album.comment.size() < kMaxAlbumComment) {
                album.comment += ShownAlbumLine(*line);
            }
        }
        line = lines.Next();
    }
    qint32 shown = 0;
    for (; line; line = lines.Next()) {
        if (shown < kMostShownAlbumLines && album.files.size() < kMostShownAlbumText) {
            album.files += ShownAlbumLine(*line);
            ++shown;
        }
        ++album.count;
    }
    if (shown < album.count) {
        album.files +=
            QCoreApplication::translate("Album", "... and %1 more").arg(album.count - shown)
            + kAlbumLineEnd;
    }
    return album;
}

} // namespace quillane
