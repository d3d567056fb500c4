#include "platform/desktop/desktop_launcher.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "platform/desktop/spawn.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusUnixFileDescriptor>
#include <QRandomGenerator>
#include <QVariantMap>
#include <fcntl.h>

namespace quillane {

namespace {

const QString kPortalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kPortalOpen = QStringLiteral("org.freedesktop.portal.OpenURI");

/// Programs that search a folder for files, the first that is installed is taken.
struct SearchProgram {
    const char* program;
    const char* before; ///< argument before the folder, or nullptr
};
constexpr SearchProgram kSearchPrograms[] = {
    {"kfind", nullptr},
    {"catfish", "--path"},
    {"mate-search-tool", "--path"},
    {"gnome-search-tool", "--path"},
};

bool PortalIsThere()
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()) {
        return false;
    }
    const auto owned = bus.interface()->isServiceRegistered(kPortalService);
    return owned.isValid() && owned.value();
}

QVariantMap PortalOptions()
{
    return {{QStringLiteral("handle_token"),
             QStringLiteral("quillane%1").arg(QRandomGenerator::global()->generate())}};
}

/// Sends without waiting; what the desktop answers is its own matter.
void CallPortal(const QString& method, const QVariant& what)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(kPortalService, kPortalPath, kPortalOpen, method);
    call.setArguments({QString(), what, PortalOptions()});
    QDBusConnection::sessionBus().asyncCall(call);
}

void XdgOpen(const QByteArray& what)
{
    const QString opener = FindProgram(QStringLiteral("xdg-open"));
    if (opener.isEmpty()) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("No program to open this with was found: install xdg-utils."));
    }
    SpawnDetached(BytesFromPath(opener), {what}, {});
}

} // namespace

QByteArray FileAddress(const QString& path)
{
    return "file://" + BytesFromPath(path).toPercentEncoding("/!$&'()*+,:=@");
}

QString FindProgram(const QString& name)
{
    for (const QByteArray& folder : qgetenv("PATH").split(':')) {
        if (folder.isEmpty()) {
            continue;
        }
        const QString path = PathFromBytes(folder) + u'/' + name;
        const FileStat stat = StatPath(path);
        if (stat.type == FileType::Regular && (stat.mode & 0111) != 0) {
            return path;
        }
    }
    return {};
}

void DesktopLauncher::OpenPath(const QString& path)
{
    const FileStat stat = StatPath(path);
    if (stat.type == FileType::Missing) {
        // The openers report success for a file that is not there.
        throw Failure(kFailureNoFile, QStringLiteral("There is no file %1.").arg(path));
    }
    if (PortalIsThere()) {
        const int flags = stat.type == FileType::Folder ? O_RDONLY | O_DIRECTORY : O_RDONLY;
        const FileHandle file(
            ::open(BytesFromPath(path).constData(), flags | O_CLOEXEC | O_NONBLOCK));
        if (file.IsOpen()) {
            const bool folder = stat.type == FileType::Folder;
            CallPortal(folder ? QStringLiteral("OpenDirectory") : QStringLiteral("OpenFile"),
                       QVariant::fromValue(QDBusUnixFileDescriptor(file.Fd())));
            return;
        }
    }
    XdgOpen(BytesFromPath(path));
}

void DesktopLauncher::OpenAddress(const QString& address)
{
    if (PortalIsThere()) {
        CallPortal(QStringLiteral("OpenURI"), address);
        return;
    }
    XdgOpen(address.toUtf8());
}

void DesktopLauncher::FindIn(const QString& folder)
{
    for (const SearchProgram& search : kSearchPrograms) {
        const QString program = FindProgram(QLatin1String(search.program));
        if (!program.isEmpty()) {
            QList<QByteArray> arguments;
            if (search.before) {
                arguments.append(search.before);
            }
            arguments.append(BytesFromPath(folder));
            SpawnDetached(BytesFromPath(program), arguments, {});
            return;
        }
    }
    OpenPath(folder);
}

void DesktopLauncher::Run(const QString& program, const QStringList& arguments,
                          const QString& workingFolder)
{
    const QString path = program.contains(u'/') ? program : FindProgram(program);
    if (program.isEmpty() || path.isEmpty()) {
        throw Failure(kFailureNoFile, QStringLiteral("There is no program %1.").arg(program));
    }
    QList<QByteArray> bytes;
    for (const QString& argument : arguments) {
        bytes.append(BytesFromPath(argument));
    }
    SpawnDetached(BytesFromPath(path), bytes, BytesFromPath(workingFolder));
}

} // namespace quillane
