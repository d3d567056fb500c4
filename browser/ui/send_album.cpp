#include "browser/ui/send_album.h"

#include "platform/ui/command_connector.h"

#include <QPointer>

namespace quillane {

ServiceEnded ShowMailFailure(Dialogs& dialogs, QObject* owner)
{
    return [&dialogs, alive = QPointer<QObject>(owner)](const std::optional<Failure>& failure) {
        if (alive && failure) {
            ShowFailure(dialogs, *failure);
        }
    };
}

std::function<void(const QStringList&)> SendAlbumByMail(Platform platform, QObject* owner)
{
    return [platform, alive = QPointer<QObject>(owner)](const QStringList& selectedRows) {
        platform.mail.Compose(selectedRows, ShowMailFailure(platform.dialogs, alive));
    };
}

} // namespace quillane
