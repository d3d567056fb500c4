#pragma once
// A private session bus and the services of a desktop on it.
#include "core/native_path.h"
#include <QProcess>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusUnixFileDescriptor>
#include <QtDBus/QDBusVirtualObject>
#include <functional>
#include <gtest/gtest.h>
#include <unistd.h>

namespace quillane {

/// The bus daemon. It lives as long as the process, as the toolkit's connection to it does.
class PrivateBus {
public:
    static const QByteArray& Address()
    {
        static PrivateBus bus;
        return bus.mAddress;
    }

private:
    PrivateBus()
    {
        mDaemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        EXPECT_TRUE(mDaemon.waitForReadyRead(20000)) << "dbus-daemon is needed for this test";
        mAddress = mDaemon.readLine().trimmed();
        EXPECT_FALSE(mAddress.isEmpty());
    }
    ~PrivateBus()
    {
        mDaemon.kill();
        mDaemon.waitForFinished();
    }

    QProcess mDaemon;
    QByteArray mAddress;
};

/// One call that a service got.
struct ServiceCall {
    QString method;
    QVariantList arguments;
    QByteArray file;     ///< path of the descriptor that came along
    QString requestPath; ///< where the portal must answer
};

/// A service that a test scripts; on the bus while it lives.
class StubService : public QDBusVirtualObject {
public:
    StubService(const QString& service, const QString& path)
        : mService(service),
          mPath(path),
          mBus(QDBusConnection::connectToBus(QString::fromUtf8(PrivateBus::Address()), service))
    {
        EXPECT_TRUE(mBus.isConnected());
        EXPECT_TRUE(mBus.registerVirtualObject(path, this));
        EXPECT_TRUE(mBus.registerService(service));
    }
    ~StubService() override
    {
        mBus.unregisterService(mService);
        mBus.unregisterObject(mPath);
        QDBusConnection::disconnectFromBus(mService);
    }

    QList<ServiceCall> calls;
    bool refuses = false; ///< every call gets an error
    /// The answer of the portal, sent ahead of the reply to the call; none when negative.
    int response = -1;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        ServiceCall call{message.member(), message.arguments(), {}, {}};
        if (call.arguments.size() > 1
            && call.arguments[1].userType() == qMetaTypeId<QDBusUnixFileDescriptor>()) {
            const int fd = call.arguments[1].value<QDBusUnixFileDescriptor>().fileDescriptor();
            char name[4096];
            const auto link = "/proc/self/fd/" + QByteArray::number(fd);
            const ssize_t size = readlink(link.constData(), name, sizeof name);
            call.file = QByteArray(name, std::max<ssize_t>(size, 0));
        }
        if (call.arguments.size() > 2) {
            QString sender = message.service().mid(1);
            sender.replace(u'.', u'_');
            const auto options = qdbus_cast<QVariantMap>(call.arguments[2]);
            call.requestPath = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                                   .arg(sender, options.value("handle_token").toString());
        }
        calls.append(call);
        if (refuses) {
            return connection.send(
                message.createErrorReply("org.freedesktop.DBus.Error.Failed", "no"));
        }
        if (response >= 0) {
            QDBusMessage answer = QDBusMessage::createTargetedSignal(
                message.service(), call.requestPath, "org.freedesktop.portal.Request", "Response");
            answer.setArguments({uint(response), QVariantMap()});
            connection.send(answer);
        }
        if (call.requestPath.isEmpty()) {
            return connection.send(message.createReply());
        }
        return connection.send(
            message.createReply(QVariant::fromValue(QDBusObjectPath(call.requestPath))));
    }

private:
    QString mService, mPath;
    QDBusConnection mBus;
};

} // namespace quillane
