#include "platform/desktop/trash.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "core/posix_error.h"
#include "core/save_calls.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace quillane {

namespace {

constexpr mode_t kTrashMode = 0700;
constexpr int kMostTrashNames = 10'000;
constexpr char kInfoEnd[] = ".trashinfo";
constexpr qsizetype kLongestName = NAME_MAX - qsizetype(sizeof kInfoEnd - 1);

/// A trash folder, and what paths in its notes are told from: "" for whole paths.
struct TrashPlace {
    QByteArray folder;
    QByteArray top;
};

QByteArray TrashRealFolder(const QByteArray& folder)
{
    std::array<char, PATH_MAX> real{};
    if (realpath(folder.constData(), real.data()) == nullptr) {
        return {};
    }
    QByteArray path = real.data();
    return path.endsWith('/') ? path : path + '/';
}

std::optional<dev_t> DeviceOf(const QByteArray& folder)
{
    struct stat found { };
    if (stat(folder.constData(), &found) != 0 || !S_ISDIR(found.st_mode)) {
        return {};
    }
    return found.st_dev;
}

/// The highest folder of the volume that a real folder lies on, with its separator.
QByteArray TopOfVolume(QByteArray folder)
{
    const std::optional<dev_t> device = DeviceOf(folder);
    while (folder.size() > 1) {
        const QByteArray above = folder.first(folder.lastIndexOf('/', -2) + 1);
        if (DeviceOf(above) != device) {
            break;
        }
        folder = above;
    }
    return folder;
}

/// A folder of this user's alone, made where it is missing; never one behind a link.
bool OwnFolder(const QByteArray& folder)
{
    mkdir(folder.constData(), kTrashMode);
    struct stat found { };
    return lstat(folder.constData(), &found) == 0 && S_ISDIR(found.st_mode)
        && found.st_uid == geteuid();
}

/// Whether files can be put there; makes "files" and "info".
bool IsUsable(const QByteArray& trash)
{
    return OwnFolder(trash + "/files") && OwnFolder(trash + "/info");
}

QList<TrashPlace> TrashPlaces(const QByteArray& realFolder, const QString& homeTrash)
{
    QList<TrashPlace> places;
    if (!homeTrash.startsWith(u'/')) {
        return places;
    }
    MakeFolder(homeTrash, kTrashMode);
    const QByteArray home = BytesFromPath(homeTrash);
    if (DeviceOf(home) == DeviceOf(realFolder) && IsUsable(home)) {
        places.append({home, {}});
    }
    const QByteArray top = TopOfVolume(realFolder);
    const QByteArray user = QByteArray::number(geteuid());
    struct stat shared { };
    const QByteArray common = top + ".Trash";
    if (lstat(common.constData(), &shared) == 0 && S_ISDIR(shared.st_mode)
        && (shared.st_mode & S_ISVTX) && OwnFolder(common + '/' + user)
        && IsUsable(common + '/' + user)) {
        places.append({common + '/' + user, top});
    }
    // At the top of the home folder's own volume there is no second one.
    if (places.isEmpty()) {
        const QByteArray own = top + ".Trash-" + user;
        if (OwnFolder(own) && IsUsable(own)) {
            places.append({own, top});
        }
    }
    return places;
}

/// The n-th name to try for a file in the trash: "a.jpg", "a 2.jpg", no longer than may be.
QByteArray TrashName(const QByteArray& leaf, int number)
{
    const qsizetype dot = leaf.lastIndexOf('.');
    QByteArray stem = dot > 0 ? leaf.first(dot) : leaf;
    QByteArray end = dot > 0 ? leaf.sliced(dot) : QByteArray();
    if (number > 1) {
        end.prepend(' ' + QByteArray::number(number));
    }
    constexpr qsizetype kLongestEnd = 40;
    if (end.size() > kLongestEnd) {
        stem = leaf;
        end = number > 1 ? ' ' + QByteArray::number(number) : QByteArray();
    }
    if (stem.size() + end.size() > kLongestName) {
        stem.truncate(kLongestName - end.size());
        while (!stem.isEmpty() && (uchar(stem.back()) & 0xC0) == 0x80) {
            stem.chop(1); // not through the middle of a letter
        }
    }
    return stem + end;
}

/// Puts the file into one trash folder; the error number when that fails.
int PutInto(const TrashPlace& place, const QByteArray& real, const QString& original,
            TrashedFile& result)
{
    const SaveProbe none;
    const SaveCalls calls(none);
    const QByteArray leaf = real.sliced(real.lastIndexOf('/') + 1);
    const QByteArray told =
        place.top.isEmpty() ? real : real.sliced(std::min(place.top.size(), real.size()));
    for (int number = 1; number <= kMostTrashNames; ++number) {
        const QByteArray name = TrashName(leaf, number);
        const QByteArray info = place.folder + "/info/" + name + kInfoEnd;
        // The note reserves the name.
        FileHandle note;
        int error = calls.OpenNamed(info, 0600, note);
        if (error == EEXIST) {
            continue;
        }
        if (error != 0) {
            return error;
        }
        const QByteArray trashed = place.folder + "/files/" + name;
        error = calls.Write(note.Fd(), TrashNote(told, QDateTime::currentDateTime()));
        if (error == 0) {
            error = calls.RenameToFree(real, trashed);
        }
        if (error == 0) {
            result = {original, PathFromBytes(trashed), PathFromBytes(info)};
            return 0;
        }
        calls.Remove(info);
        if (error != EEXIST) {
            return error;
        }
    }
    return EEXIST;
}

} // namespace

QByteArray TrashNote(const QByteArray& path, const QDateTime& when)
{
    return "[Trash Info]\nPath=" + path.toPercentEncoding("/!$&'()*+,:@") + "\nDeletionDate="
        + when.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toLatin1() + '\n';
}

QString UsualHomeTrash()
{
    const QByteArray data = qgetenv("XDG_DATA_HOME");
    if (data.startsWith('/')) {
        return WithSeparator(PathFromBytes(data)) + QStringLiteral("Trash");
    }
    const QByteArray home = qgetenv("HOME");
    return home.startsWith('/')
        ? WithSeparator(PathFromBytes(home)) + QStringLiteral(".local/share/Trash")
        : QString();
}

TrashedFile MoveToTrash(const QString& path, const QString& homeTrash)
{
    const QByteArray bytes = BytesFromPath(path);
    struct stat found { };
    if (bytes.isEmpty() || bytes.contains('\0') || lstat(bytes.constData(), &found) != 0) {
        throw FailureFromErrno(bytes.isEmpty() || bytes.contains('\0') ? ENOENT : errno,
                               QStringLiteral("move to the trash"), path);
    }
    if (S_ISDIR(found.st_mode)) {
        throw Failure(kFailureIo,
                      QStringLiteral("%1 is a folder and stays where it is.").arg(ShownName(path)));
    }
    const QByteArray folder = TrashRealFolder(FolderOfBytes(bytes));
    if (folder.isEmpty()) {
        throw FailureFromErrno(errno, QStringLiteral("move to the trash"), path);
    }
    const QByteArray real = folder + bytes.sliced(bytes.lastIndexOf('/') + 1);
    int error = 0;
    TrashedFile result;
    for (const TrashPlace& place : TrashPlaces(folder, homeTrash)) {
        error = PutInto(place, real, path, result);
        if (error == 0) {
            return result;
        }
    }
    if (error != 0 && error != EXDEV) {
        throw FailureFromErrno(error, QStringLiteral("move to the trash"), path);
    }
    throw Failure(kFailureIo,
                  QStringLiteral("%1 stays where it is: there is no trash on its volume.")
                      .arg(ShownName(path)));
}

void BringBackFromTrash(const TrashedFile& file)
{
    const SaveProbe none;
    const SaveCalls calls(none);
    const int error = calls.RenameToFree(BytesFromPath(file.trashed), BytesFromPath(file.original));
    struct stat there { };
    if (error == ENOENT && lstat(BytesFromPath(file.trashed).constData(), &there) != 0) {
        throw Failure(
            kFailureNoFile,
            QStringLiteral("%1 is no longer in the trash.").arg(ShownName(file.original)));
    }
    if (error == ENOENT) {
        throw Failure(kFailureNoFile,
                      QStringLiteral("The folder of %1 is no longer there; the file stays in the "
                                     "trash.")
                          .arg(ShownName(file.original)));
    }
    if (error == EEXIST) {
        throw Failure(kFailureIo,
                      QStringLiteral("There is another file named %1 now; the one in the trash "
                                     "stays there.")
                          .arg(ShownName(file.original)));
    }
    if (error != 0) {
        throw FailureFromErrno(error, QStringLiteral("bring back"), file.original);
    }
    calls.Remove(BytesFromPath(file.info));
}

} // namespace quillane
