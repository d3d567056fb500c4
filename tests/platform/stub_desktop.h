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
    QByteArray file;               ///< path of the descriptor that came along
    QList<QByteArray> attachments; ///< content of those that came in the options
    QVariantMap options;
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
    bool mute = false;    ///< no call gets a reply of any kind
    bool ownPath = false; ///< it answers at a path of its own choice, after the reply
    QStringList lacks;    ///< interfaces that it does not have
    /// The answer of the portal, sent ahead of the reply to the call; none when negative.
    int response = -1;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        ServiceCall call;
        call.method = message.member();
        call.arguments = message.arguments();
        if (call.arguments.size() > 1
            && call.arguments[1].userType() == qMetaTypeId<QDBusUnixFileDescriptor>()) {
            const int fd = call.arguments[1].value<QDBusUnixFileDescriptor>().fileDescriptor();
            char name[4096];
            const auto link = "/proc/self/fd/" + QByteArray::number(fd);
            const ssize_t size = readlink(link.constData(), name, sizeof name);
            call.file = QByteArray(name, std::max<ssize_t>(size, 0));
        }
        if (message.interface().startsWith("org.freedesktop.portal.")
            && call.arguments.size() > 1) {
            QString sender = message.service().mid(1);
            sender.replace(u'.', u'_');
            call.options = qdbus_cast<QVariantMap>(call.arguments.constLast());
            call.requestPath = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                                   .arg(sender,
                                        ownPath ? QStringLiteral("old")
                                                : call.options.value("handle_token").toString());
            const auto attached =
                qdbus_cast<QList<QDBusUnixFileDescriptor>>(call.options.value("attachment_fds"));
            for (const QDBusUnixFileDescriptor& file : attached) {
                QByteArray content(1 << 16, Qt::Uninitialized);
                const ssize_t got =
                    pread(file.fileDescriptor(), content.data(), size_t(content.size()), 0);
                content.truncate(std::max<ssize_t>(got, 0));
                call.attachments.append(content);
            }
        }
        calls.append(call);
        if (mute) {
            return true;
        }
        if (refuses || lacks.contains(message.interface())) {
            return connection.send(
                message.createErrorReply("org.freedesktop.DBus.Error.Failed", "no"));
        }
        if (response >= 0 && !ownPath) {
            Answer(call, message.service());
        }
        if (call.requestPath.isEmpty()) {
            return connection.send(message.createReply());
        }
        const bool sent = connection.send(
            message.createReply(QVariant::fromValue(QDBusObjectPath(call.requestPath))));
        caller = message.service();
        return sent;
    }
    /// Sends the answer to a call whose caller still waits for it.
    void Answer(const ServiceCall& call, const QString& to) const
    {
        QDBusMessage answer = QDBusMessage::createTargetedSignal(
            to, call.requestPath, "org.freedesktop.portal.Request", "Response");
        answer.setArguments({uint(response), QVariantMap()});
        mBus.send(answer);
    }
    QString caller; ///< of the last call

private:
    QString mService, mPath;
    QDBusConnection mBus;
};

} // namespace quillane
