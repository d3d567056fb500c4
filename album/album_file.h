#pragma once
// The photo album file (.ifl): a comment between two lines "#", where there is one, and a path a
// line.
#include "core/native_path.h"
#include "metadata/album_preview.h"
#include <QList>
#include <QString>

namespace quillane {

/// What an album file holds.
struct AlbumText {
    bool hasComment = false; ///< the file begins with a line "#"
    QString comment;         ///< the comment's lines, joined with nothing between them
    /// The other lines in their order, empty ones too. Bytes that are no UTF-8 are kept as
    /// PathFromBytes does.
    QList<QString> paths;
    /// Why the rest of the file was not read, in words; empty when all of it was.
    QString endedEarly;
};

inline constexpr qsizetype kMaxAlbumPaths = 1'000'000;
inline constexpr qsizetype kMaxAlbumLine = 64ll << 10; ///< bytes; no path is longer

/// Takes the lines of an album file apart: UTF-8 with line ends as of TextLines. A comment that is
/// no UTF-8 is taken as Windows-1252. Never fails: beyond a limit the reading ends
/// early, and of the comment the rest is left out.
AlbumText ParseAlbum(QByteArrayView content);
/// ParseAlbum of a file. Failure as ReadWholeFile, kFailureLimit above kMaxAlbumBytes.
AlbumText ReadAlbumText(const QString& path);

/// The path that a line of 8-bit text stands for, read as Windows-1252; empty for a path that is
/// good UTF-8. For a file that is not there under the bytes themselves.
QString EightBitReading(const QString& path);

/// The bytes of an album file: UTF-8, each line ended with CR LF. The comment block is there only
/// for a comment that is not empty, which is written as it stands; its line ends become CR LF.
QByteArray AlbumBytes(const QString& comment, const QList<QString>& paths);
/// How many of the paths cannot be read back from an album, because a line end is part of the name.
qsizetype PathsWithLineEnds(const QList<QString>& paths);

/// Writes an album atomically. Nothing happens, and false is returned, for an empty path and for
/// an album without paths. With keepPrevious the file that is there stays beside it, with "~"
/// behind its name (more than one where that is taken). Failure as SaveAtomically: the old file is
/// as it was.
bool WriteAlbumFile(const QString& path, const QString& comment, const QList<QString>& paths,
                    bool keepPrevious = false);

} // namespace quillane
