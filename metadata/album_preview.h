#pragma once
#include <QString>

namespace quillane {

/// Larger albums are refused, here and by the album window: a million paths of usual length.
inline constexpr qint64 kMaxAlbumBytes = 128ll << 20;
/// Characters; what is longer is cut. To lay out more in one line takes too long for a window.
inline constexpr qsizetype kMaxAlbumComment = 64ll << 10;
/// What the panel shows of the files: more lines, or characters, take too long to lay out.
inline constexpr qint32 kMostShownAlbumLines = 10'000;
inline constexpr qsizetype kMostShownAlbumText = 500'000;

/// What the preview panel shows of an album file.
struct AlbumPreview {
    bool hasComment = false; ///< the file begins with a line "#"
    QString comment;         ///< its lines, each followed by CR LF
    /// The other lines, each followed by CR LF. Of very many the first, and how many more there
    /// are; of a line that no system takes for a path its beginning.
    QString files;
    qint32 count = 0; ///< how many those lines are
};
/// Reads an album file: UTF-8 text with CR LF or LF, a byte order mark allowed. Failure: the file
/// cannot be opened (ReadWholeFile), is larger than kMaxAlbumBytes (kFailureLimit), or is empty
/// (kFailureIo).
AlbumPreview ReadAlbumPreview(const QString& path);

} // namespace quillane
