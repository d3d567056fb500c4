#include "platform/desktop/desktop_launcher.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "platform/desktop/file_search.h"
#include "platform/desktop/find_program.h"
#include "platform/desktop/portal_request.h"
#include "platform/desktop/spawn.h"
#include "platform/desktop/watched_program.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <fcntl.h>

namespace quillane {

namespace {

constexpr int kFileManagerPatience = 5000; // milliseconds; it may have to be started

/// Refuses when neither xdg-open nor the portal is there. With xdg-open installed the portal is
/// tried without asking first, because its absence only costs an error reply.
void NeedAnOpener()
{
    if (FindProgram(QStringLiteral("xdg-open")).isEmpty() && !OpenerPortalIsThere()) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("No program that opens files was found. "
                                     "Install the package xdg-utils."));
    }
}

void XdgOpen(const QByteArray& what)
{
    const QString opener = FindProgram(QStringLiteral("xdg-open"));
    if (!opener.isEmpty()) {
        SpawnDetached(opener, {what});
    }
}

/// The same for when nobody is there any more to hear of a failure.
std::function<void()> XdgOpenLater(const QByteArray& what)
{
    return [what] { ResumeNext([&] { XdgOpen(what); }); };
}

bool PortalCanBeTried()
{
    return SessionBusIsThere() && QDBusConnection::sessionBus().isConnected();
}

FileHandle OpenForPortal(const QString& path, FileType type)
{
    if (type == FileType::Other || !SessionBusTakesFiles()) {
        return {};
    }
    return FileHandle(::open(BytesFromPath(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

} // namespace

QByteArray FileAddress(const QString& path)
{
    return "file://" + BytesFromPath(path).toPercentEncoding("/");
}

void DesktopLauncher::OpenPath(const QString& path)
{
    const FileStat stat = StatPath(path);
    if (stat.type == FileType::Missing) {
        // The openers report success for a file that is not there.
        throw Failure(kFailureNoFile, QStringLiteral("There is no file %1.").arg(path));
    }
    NeedAnOpener();
    const QByteArray bytes = BytesFromPath(path);
    if (PortalCanBeTried()) {
        const FileHandle file = OpenForPortal(path, stat.type);
        if (file.IsOpen()) {
            PortalRequest::OpenFile(file.Fd(), XdgOpenLater(bytes), this);
            return;
        }
    }
    XdgOpen(bytes);
}

void DesktopLauncher::OpenAddress(const QString& address)
{
    NeedAnOpener();
    if (PortalCanBeTried()) {
        PortalRequest::OpenAddress(address, XdgOpenLater(address.toUtf8()), this);
        return;
    }
    XdgOpen(address.toUtf8());
}

void DesktopLauncher::FindIn(const QString& folder)
{
    if (StatPath(folder).type != FileType::Folder) {
        throw Failure(kFailureNoFile, QStringLiteral("There is no folder %1.").arg(folder));
    }
    if (const auto search = FileSearchIn(folder)) {
        SpawnDetached(search->program, search->arguments);
        return;
    }
    if (!PortalCanBeTried()) {
        OpenPath(folder);
        return;
    }
    NeedAnOpener();
    QDBusMessage show = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowFolders"));
    show.setArguments({QStringList{QString::fromLatin1(FileAddress(folder))}, QString()});
    auto* const shown = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(show, kFileManagerPatience), this);
    connect(shown, &QDBusPendingCallWatcher::finished, this, [this, shown, folder] {
        shown->deleteLater();
        if (shown->isError()) {
            ResumeNext([&] { OpenPath(folder); });
        }
    });
}

void DesktopLauncher::Run(const QString& program, const QStringList& arguments,
                          const QString& workingFolder, RunFailed failed)
{
    if (program.isEmpty()) {
        throw Failure(kFailureNoFile, QStringLiteral("No program was named."));
    }
    const QString path = program.contains(u'/') ? program : FindProgram(program);
    if (path.isEmpty()) {
        throw Failure(kFailureNoFile, QStringLiteral("There is no program %1.").arg(program));
    }
    QList<QByteArray> bytes;
    bytes.reserve(arguments.size());
    for (const QString& argument : arguments) {
        bytes.append(BytesFromPath(argument));
    }
    if (!failed) {
        SpawnDetached(path, bytes, workingFolder);
        return;
    }
    WatchedProgram::Run(
        {path, bytes, workingFolder, 0, false},
        [failed = std::move(failed)](const ProgramEnd& end) {
            if (!end.Good()) {
                failed(end.Words());
            }
        },
        this);
}

} // namespace quillane
