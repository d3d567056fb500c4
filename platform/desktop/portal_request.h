#pragma once
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <functional>

class QDBusPendingCallWatcher;

namespace quillane {

/// Whether there is a session bus to talk to. Asks the environment alone: trying to connect
/// without one would start a bus of our own.
bool SessionBusIsThere();
/// Whether that bus can be reached and takes open files along.
bool SessionBusTakesFiles();
/// Whether the desktop's opener portal runs or can be started by the bus. Waits a few
/// hundredths of a second at most.
bool OpenerPortalIsThere();

/// How a request to a portal ended.
enum class PortalEnd : quint8 {
    Done,
    Cancelled, ///< a person closed what the portal showed
    Failed,    ///< no such portal, or it refused, failed or went away
    Silent,    ///< it took the request and never answered
};

/// What is asked of a portal.
struct PortalCall {
    QString interface; ///< behind "org.freedesktop.portal."
    QString method;
    QVariantList arguments; ///< without the options
    QVariantMap options;
    int patience = 10 * 60 * 1000; ///< milliseconds for the answer, which a person may have to give
};

/// One request to the desktop's portals (org.freedesktop.portal.Desktop). Nothing waits for it.
/// The request deletes itself when it has ended, at the latest with its parent.
class PortalRequest : public QObject {
    Q_OBJECT
public:
    using Ended = std::function<void(PortalEnd end)>;
    /// Sends it; descriptors in it stay the caller's to close.
    static void Send(const PortalCall& call, Ended ended, QObject* parent);
    /// Opens a file or folder that is open for reading; the descriptor stays the caller's.
    /// `otherwise` runs when the portal cannot do it; a person who closes its chooser is left
    /// alone.
    static void OpenFile(int fd, std::function<void()> otherwise, QObject* parent);
    /// Opens an address.
    static void OpenAddress(const QString& address, std::function<void()> otherwise,
                            QObject* parent);

private Q_SLOTS:
    void Responded(uint response, const QVariantMap& results);

private:
    PortalRequest(const PortalCall& call, Ended ended, QObject* parent);
    void Listen(const QString& handle);
    void Taken(const QDBusPendingCallWatcher* sent);
    void Finish(PortalEnd end);

    QString mHandle; ///< the path at which the answer comes
    Ended mEnded;
};

} // namespace quillane
