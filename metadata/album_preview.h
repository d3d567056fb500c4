#pragma once
#include <QString>

namespace quillane {

/// Larger albums are refused, here and by the album window: a million paths of usual length.
inline constexpr qint64 kMaxAlbumBytes = 128ll << 20;

/// What the preview panel shows of an album file.
struct AlbumPreview {
    bool hasComment = false; ///< the file begins with a line "#"
    QString comment;         ///< its lines, each followed by CR LF
    QString files;           ///< the other lines, each followed by CR LF
    qint32 count = 0;        ///< how many those are
};
/// Reads an album file: UTF-8 text with CR LF or LF, a byte order mark allowed. Failure: the file
/// cannot be opened (ReadWholeFile), is larger than 16 MB (kFailureLimit), or is empty
/// (kFailureIo).
AlbumPreview ReadAlbumPreview(const QString& path);

} // namespace quillane
