#include "metadata/album_preview.h"

#include "core/failure.h"
#include "core/native_path.h"

#include <optional>

namespace quillane {

namespace {

constexpr qint64 kMaxAlbumBytes = 16ll << 20; ///< some 200,000 paths
constexpr QLatin1String kAlbumLineEnd{"\r\n"};

/// The lines of a text without their ends.
class AlbumLines {
public:
    explicit AlbumLines(QByteArrayView bytes) : mBytes(bytes)
    {
        constexpr char kMark[] = "\xef\xbb\xbf";
        if (mBytes.startsWith(kMark)) {
            mBytes = mBytes.sliced(3);
        }
    }
    /// The next line; nothing at the end.
    std::optional<QByteArrayView> Next()
    {
        if (mBytes.isEmpty()) {
            return {};
        }
        const qsizetype end = mBytes.indexOf('\n');
        QByteArrayView line = end < 0 ? mBytes : mBytes.first(end);
        mBytes = end < 0 ? QByteArrayView() : mBytes.sliced(end + 1);
        if (line.endsWith('\r')) {
            line.chop(1);
        }
        return line;
    }

private:
    QByteArrayView mBytes;
};

bool IsAlbumMark(QByteArrayView line)
{
    return line.size() == 1 && line.front() == '#';
}

} // namespace

AlbumPreview ReadAlbumPreview(const QString& path)
{
    const QByteArray content = ReadWholeFile(path, kMaxAlbumBytes);
    AlbumLines lines(content);
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
