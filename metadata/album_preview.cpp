#include "metadata/album_preview.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/text_lines.h"

namespace quillane {

namespace {

constexpr QLatin1String kAlbumLineEnd{"\r\n"};

bool IsAlbumMark(QByteArrayView line)
{
    return line.size() == 1 && line.front() == '#';
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
            album.comment += PathFromBytes(*line) + kAlbumLineEnd;
        }
        line = lines.Next();
    }
    for (; line; line = lines.Next()) {
        album.files += PathFromBytes(*line) + kAlbumLineEnd;
        ++album.count;
    }
    return album;
}

} // namespace quillane
