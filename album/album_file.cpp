#include "album/album_file.h"

#include "core/atomic_save.h"
#include "core/failure.h"
#include "core/text_lines.h"
#include "imaging/comments/text_bytes.h"

#include <QCoreApplication>
#include <algorithm>

namespace quillane {

namespace {

constexpr char kAlbumFileLineEnd[] = "\r\n";
constexpr int kMostKeptAlbums = 20; // old files beside one album

QString AlbumWords(const char* words)
{
    return QCoreApplication::translate("Album", words);
}

bool IsAlbumHash(QByteArrayView line)
{
    return line.size() == 1 && line.front() == '#';
}

bool HasEscapedBytes(QStringView path)
{
    return std::any_of(path.begin(), path.end(), [](QChar unit) {
        return unit.unicode() >= 0xDC80 && unit.unicode() <= 0xDCFF;
    });
}

/// Whether the line may be part of an album; else says why not.
bool TakesAlbumLine(QByteArrayView line, const TextLines& lines, AlbumText& album)
{
    if (line.size() > kMaxAlbumLine) {
        album.endedEarly = AlbumWords("Line %1 is too long for a path").arg(lines.Number());
        return false;
    }
    if (album.paths.size() >= kMaxAlbumPaths) {
        album.endedEarly = AlbumWords("There are more than %1 lines").arg(kMaxAlbumPaths);
        return false;
    }
    return true;
}

/// The beginning of a line that is at least so many characters long, if the line is; never the
/// first half of a character.
QByteArrayView BeginningOfLine(QByteArrayView line, qsizetype characters)
{
    constexpr qsizetype kMostBytes = 4; // of a character in UTF-8
    const qsizetype bytes = kMostBytes * (characters + 1);
    if (line.size() <= bytes) {
        return line;
    }
    const auto isInside = [](char byte) { return (byte & 0xC0) == 0x80; };
    qsizetype end = bytes;
    while (end > bytes - kMostBytes && isInside(line[end])) {
        --end;
    }
    return line.first(end);
}

/// Adds a line to the comment, as far as there is room.
void AddToComment(QByteArrayView line, AlbumText& album)
{
    const qsizetype room = kMaxAlbumComment - album.comment.size();
    QString text = TextFromFieldBytes(BeginningOfLine(line, room + 1));
    if (text.size() > room) {
        text.truncate(room);
        album.endedEarly = AlbumWords("The comment is longer than %1 characters and was cut")
                               .arg(kMaxAlbumComment);
    }
    album.comment += text;
}

} // namespace

AlbumText ParseAlbum(QByteArrayView content)
{
    AlbumText album;
    TextLines lines(content);
    std::optional<QByteArrayView> line = lines.Next();
    if (line && IsAlbumHash(*line)) {
        album.hasComment = true;
        while ((line = lines.Next()) && !IsAlbumHash(*line)) {
            AddToComment(*line, album);
        }
        line = lines.Next();
    }
    for (; line && TakesAlbumLine(*line, lines, album); line = lines.Next()) {
        album.paths.append(PathFromBytes(*line));
    }
    return album;
}

AlbumText ReadAlbumText(const QString& path)
{
    return ParseAlbum(ReadWholeFile(path, kMaxAlbumBytes));
}

QString EightBitReading(const QString& path)
{
    return HasEscapedBytes(path) ? TextFromFieldBytes(BytesFromPath(path)) : QString();
}

QByteArray AlbumBytes(const QString& comment, const QList<QString>& paths)
{
    QByteArray bytes;
    if (!comment.isEmpty()) {
        QString text = comment;
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        text.replace(u'\n', QStringLiteral("\r\n"));
        bytes += QByteArray("#") + kAlbumFileLineEnd + text.toUtf8() + kAlbumFileLineEnd + '#'
            + kAlbumFileLineEnd;
    }
    for (const QString& path : paths) {
        bytes += BytesFromPath(path) + kAlbumFileLineEnd;
    }
    return bytes;
}

qsizetype PathsWithLineEnds(const QList<QString>& paths)
{
    return std::count_if(paths.begin(), paths.end(), [](const QString& path) {
        return path.contains(u'\n') || path.endsWith(u'\r');
    });
}

bool WriteAlbumFile(const QString& path, const QString& comment, const QList<QString>& paths,
                    bool keepPrevious)
{
    if (path.isEmpty() || paths.isEmpty()) {
        return false;
    }
    SaveOptions options;
    if (keepPrevious && StatPath(path).type == FileType::Regular) {
        QString kept = path + u'~';
        for (int i = 1; i < kMostKeptAlbums && StatPath(kept).type != FileType::Missing; ++i) {
            kept += u'~';
        }
        if (StatPath(kept).type != FileType::Missing) {
            throw Failure(kFailureGeneral,
                          AlbumWords("Too many older copies of this album stand beside it."), path);
        }
        options.keepPreviousAs = kept;
    }
    SaveAtomically(path, AlbumBytes(comment, paths), options);
    return true;
}

} // namespace quillane
