#include "album/album_look.h"

#include "core/failure.h"
#include "core/file_kinds.h"
#include "core/paths.h"

#include <QCoreApplication>
#include <QElapsedTimer>

namespace quillane {

namespace {

QString AlbumTrouble(const char* words)
{
    return QCoreApplication::translate("Album", words);
}

} // namespace

AlbumFileFacts LookAtAlbumFile(const QString& path)
{
    const QString eightBit = EightBitReading(path);
    for (const QString& candidate : {path, eightBit}) {
        if (candidate.isEmpty() || FileExists(candidate) != kTrue) {
            continue;
        }
        const FileStat stat = StatPath(candidate);
        if (stat.type == FileType::Regular) {
            return {AlbumFileState::Found, stat.size, stat.modifiedSeconds,
                    candidate == path ? QString() : candidate};
        }
    }
    return {AlbumFileState::Missing, 0, 0, {}};
}

QVector<AlbumFileFacts> LookAtAlbumFiles(const QList<QString>& paths, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    QVector<AlbumFileFacts> facts;
    facts.reserve(paths.size());
    for (const QString& path : paths) {
        facts.append(LookAtAlbumFile(path));
        if (timer.hasExpired(milliseconds)) {
            break;
        }
    }
    return facts;
}

AlbumReading ReadAlbum(const QString& path, int milliseconds)
{
    AlbumReading album;
    album.file = StatPath(path);
    try {
        album.text = ReadAlbumText(path);
    } catch (const Failure& failure) {
        album.trouble = failure.Description();
        album.holdsMore = album.file.size > 0;
        return album;
    }
    QList<QString>& paths = album.text.paths;
    if (!album.text.hasComment && paths.isEmpty()) {
        album.trouble = AlbumTrouble("This photo album is empty.");
        return album;
    }
    if (!album.text.hasComment) {
        album.facts.append(LookAtAlbumFile(paths.first()));
        if (album.facts.first().state == AlbumFileState::Missing) {
            album.facts.first().state = AlbumFileState::Stopped;
            album.holdsMore = paths.size() > 1 || !album.text.endedEarly.isEmpty();
            album.trouble = AlbumTrouble("The first photo of the album was not found, so the "
                                         "other %1 were not read: %2")
                                .arg(paths.size() - 1)
                                .arg(LeafName(paths.first()));
            paths.resize(1);
            return album;
        }
    }
    album.complete = true;
    if (!album.text.endedEarly.isEmpty()) {
        album.holdsMore = true;
        album.trouble =
            AlbumTrouble("The album was not read to its end. %1.").arg(album.text.endedEarly);
    }
    const QList<QString> others = paths.mid(album.facts.size());
    if (!others.isEmpty()) {
        album.facts += LookAtAlbumFiles(others, milliseconds);
    }
    return album;
}

} // namespace quillane
