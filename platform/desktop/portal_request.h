#pragma once
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <functional>

namespace quillane {

/// Whether there is a session bus to talk to. Asks the environment alone: trying to connect
/// without one would start a bus of our own.
bool SessionBusIsThere();
/// Whether the desktop's opener portal runs or can be started by the bus. Waits a few
/// hundredths of a second at most.
bool OpenerPortalIsThere();

/// One request to the desktop's opener portal (org.freedesktop.portal.OpenURI). Nothing waits
/// for it: when the portal is not there, does not answer soon or says that it failed,
/// `otherwise` runs. A person who closes the portal's chooser is left alone. The request
/// deletes itself when the portal has answered, at the latest with its parent.
class PortalRequest : public QObject {
    Q_OBJECT
public:
    /// Opens a file or folder that is open for reading; the descriptor stays the caller's.
    static void OpenFile(int fd, std::function<void()> otherwise, QObject* parent);
    /// Opens an address.
    static void OpenAddress(const QString& address, std::function<void()> otherwise,
                            QObject* parent);

private Q_SLOTS:
    void Responded(uint response, const QVariantMap& results);

private:
    PortalRequest(const QString& method, const QVariant& what, std::function<void()> otherwise,
                  QObject* parent);
    void Finish(bool opened);

    std::function<void()> mOtherwise;
};

} // namespace quillane
