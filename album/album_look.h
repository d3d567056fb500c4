#pragma once
// What the disk says of an album and of its files. All of it may take long and is for another
// thread.
#include "album/album_file.h"
#include <QVector>

namespace quillane {

enum class AlbumFileState : quint8 {
    Unknown, ///< not looked at yet
    Found,
    Missing, ///< shown as "File Not Found"
    Stopped, ///< missing, and the reading of the album ended with it
};

/// What is known of an album's file.
struct AlbumFileFacts {
    AlbumFileState state = AlbumFileState::Unknown;
    qint64 size = 0;            ///< bytes
    qint64 modifiedSeconds = 0; ///< since 1970, UTC
    /// Where the file is, when that is not the path asked for: the line was 8-bit text.
    QString otherPath;
};
/// Looks for a file: a normal one that is not hidden counts as there.
AlbumFileFacts LookAtAlbumFile(const QString& path);
/// Looks at one file after another until all are done or `milliseconds` have passed; at least at
/// one.
QVector<AlbumFileFacts> LookAtAlbumFiles(const QList<QString>& paths, int milliseconds);

/// An album as it was read.
struct AlbumReading {
    AlbumText text;
    /// Of the first paths; the others have not been looked at.
    QVector<AlbumFileFacts> facts;
    /// Whether the reading came to its end as far as the window is concerned: the file could be
    /// opened, held something, and did not stop at its first path.
    bool complete = false;
    /// Words for a person: why nothing or not all was read; empty when all was.
    QString trouble;
    /// The file holds more than was read, so that saving over it would lose something.
    bool holdsMore = false;
    FileStat file; ///< the album itself
};
/// Reads an album. The first path of a file without a comment must be there: else the reading
/// stops with it. Looks at files for so many milliseconds besides.
AlbumReading ReadAlbum(const QString& path, int milliseconds);

} // namespace quillane
