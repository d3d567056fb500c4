#include "platform/desktop/portal_request.h"

#include "core/native_path.h"
#include "core/paths.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QRandomGenerator>
#include <QTimer>

namespace quillane {

namespace {

const QString kPortalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
constexpr int kPortalPatience = 3000; // milliseconds until the portal must have taken the request
constexpr int kBusPatience = 20;      // milliseconds for a question to the bus itself

/// What the portal's answer means; any other number is "ended in some other way".
enum PortalAnswer : uint { kAnswerDone = 0, kAnswerCancelled = 1 };

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

bool SessionBusTakesFiles()
{
    return SessionBusIsThere() && QDBusConnection::sessionBus().isConnected()
        && QDBusConnection::sessionBus().connectionCapabilities().testFlag(
            QDBusConnection::UnixFileDescriptorPassing);
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

PortalRequest::PortalRequest(const PortalCall& call, Ended ended, QObject* parent)
    : QObject(parent),
      mEnded(std::move(ended))
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const QString token =
        QStringLiteral("quillane%1").arg(QRandomGenerator::global()->generate64());
    QString sender = bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    // The answer can be quicker than the reply to the call, so it is listened for first.
    Listen(QStringLiteral("%1/request/%2/%3").arg(kPortalPath, sender, token));
    QDBusMessage message = QDBusMessage::createMethodCall(
        kPortalService, kPortalPath, QStringLiteral("org.freedesktop.portal.") + call.interface,
        call.method);
    QVariantMap options = call.options;
    options.insert(QStringLiteral("handle_token"), token);
    QVariantList arguments = call.arguments;
    arguments.append(options);
    message.setArguments(arguments);
    const auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(message, kPortalPatience), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &PortalRequest::Taken);
    // A portal that crashes sends no answer.
    const auto* life = new QDBusServiceWatcher(kPortalService, bus,
                                               QDBusServiceWatcher::WatchForUnregistration, this);
    connect(life, &QDBusServiceWatcher::serviceUnregistered, this,
            [this] { Finish(PortalEnd::Failed); });
    QTimer::singleShot(call.patience, this, [this] { Finish(PortalEnd::Silent); });
}

void PortalRequest::Listen(const QString& handle)
{
    mHandle = handle;
    QDBusConnection::sessionBus().connect(
        {}, handle, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"),
        this, SLOT(Responded(uint, QVariantMap)));
}

void PortalRequest::Taken(const QDBusPendingCallWatcher* sent)
{
    if (sent->isError()) {
        Finish(PortalEnd::Failed);
        return;
    }
    // Old portals choose the path of the answer themselves.
    const QVariantList reply = sent->reply().arguments();
    const QString handle =
        reply.isEmpty() ? QString() : qvariant_cast<QDBusObjectPath>(reply.constFirst()).path();
    if (!handle.isEmpty() && handle != mHandle) {
        Listen(handle);
    }
}

void PortalRequest::Responded(uint response, const QVariantMap&)
{
    switch (response) {
    case kAnswerDone:
        Finish(PortalEnd::Done);
        break;
    case kAnswerCancelled:
        Finish(PortalEnd::Cancelled);
        break;
    default:
        Finish(PortalEnd::Failed);
        break;
    }
}

void PortalRequest::Finish(PortalEnd end)
{
    const auto ended = std::exchange(mEnded, nullptr);
    deleteLater();
    if (ended) {
        ended(end);
    }
}

void PortalRequest::Send(const PortalCall& call, Ended ended, QObject* parent)
{
    new PortalRequest(call, std::move(ended), parent);
}

namespace {

void PortalOpen(const QString& method, const QVariant& what, std::function<void()> otherwise,
                QObject* parent)
{
    PortalRequest::Send(
        {QStringLiteral("OpenURI"), method, {QString(), what}, {}},
        [otherwise = std::move(otherwise)](PortalEnd end) {
            if (end == PortalEnd::Failed) {
                otherwise();
            }
        },
        parent);
}

} // namespace

void PortalRequest::OpenFile(int fd, std::function<void()> otherwise, QObject* parent)
{
    // OpenDirectory shows the folder that holds what it is given; a folder itself is opened
    // as a file is.
    PortalOpen(QStringLiteral("OpenFile"), QVariant::fromValue(QDBusUnixFileDescriptor(fd)),
               std::move(otherwise), parent);
}

void PortalRequest::OpenAddress(const QString& address, std::function<void()> otherwise,
                                QObject* parent)
{
    PortalOpen(QStringLiteral("OpenURI"), address, std::move(otherwise), parent);
}

} // namespace quillane
