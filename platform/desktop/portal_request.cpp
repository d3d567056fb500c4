#include "platform/desktop/portal_request.h"

#include "core/native_path.h"
#include "core/paths.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QRandomGenerator>

namespace quillane {

namespace {

const QString kPortalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kPortalOpener = QStringLiteral("org.freedesktop.portal.OpenURI");
constexpr int kPortalPatience = 3000; // milliseconds until the portal must have taken the request
constexpr int kBusPatience = 20;      // milliseconds for a question to the bus itself
constexpr uint kResponseFailed = 2;   // "ended in some other way": neither done nor cancelled

bool BusSays(const char* method, const QVariantList& arguments,
             const std::function<bool(const QVariant&)>& yes)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QLatin1String(method));
    call.setArguments(arguments);
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, kBusPatience);
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()
        && yes(reply.arguments().constFirst());
}

} // namespace

bool SessionBusIsThere()
{
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")) {
        return true;
    }
    const QString runtime = PathFromBytes(qgetenv("XDG_RUNTIME_DIR"));
    return !runtime.isEmpty()
        && StatPath(WithSeparator(runtime) + QStringLiteral("bus")).type != FileType::Missing;
}

bool OpenerPortalIsThere()
{
    return SessionBusIsThere() && QDBusConnection::sessionBus().isConnected()
        && (BusSays("NameHasOwner", {kPortalService},
                    [](const QVariant& owned) { return owned.toBool(); })
            || BusSays("ListActivatableNames", {}, [](const QVariant& names) {
                   return names.toStringList().contains(kPortalService);
               }));
}

PortalRequest::PortalRequest(const QString& method, const QVariant& what,
                             std::function<void()> otherwise, QObject* parent)
    : QObject(parent),
      mOtherwise(std::move(otherwise))
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QString token =
        QStringLiteral("quillane%1").arg(QRandomGenerator::global()->generate64());
    QString sender = bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    // The answer can be quicker than the reply to the call, so it is listened for first.
    bus.connect({}, QStringLiteral("%1/request/%2/%3").arg(kPortalPath, sender, token),
                QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"), this,
                SLOT(Responded(uint, QVariantMap)));
    QDBusMessage call =
        QDBusMessage::createMethodCall(kPortalService, kPortalPath, kPortalOpener, method);
    const QVariantMap options{{QStringLiteral("handle_token"), token}};
    call.setArguments({QString(), what, options});
    const auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, kPortalPatience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](const QDBusPendingCallWatcher* sent) {
                if (sent->isError()) {
                    Finish(false);
                }
            });
}

void PortalRequest::Responded(uint response, const QVariantMap&)
{
    Finish(response != kResponseFailed);
}

void PortalRequest::Finish(bool opened)
{
    const auto otherwise = std::exchange(mOtherwise, nullptr);
    deleteLater();
    if (!opened && otherwise) {
        otherwise();
    }
}

void PortalRequest::OpenFile(int fd, std::function<void()> otherwise, QObject* parent)
{
    // OpenDirectory shows the folder that holds what it is given; a folder itself is opened
    // as a file is.
    new PortalRequest(QStringLiteral("OpenFile"), QVariant::fromValue(QDBusUnixFileDescriptor(fd)),
                      std::move(otherwise), parent);
}

void PortalRequest::OpenAddress(const QString& address, std::function<void()> otherwise,
                                QObject* parent)
{
    new PortalRequest(QStringLiteral("OpenURI"), address, std::move(otherwise), parent);
}

} // namespace quillane
