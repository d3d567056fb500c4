#pragma once
#include "platform/platform.h"
#include <QObject>
#include <QStringList>
#include <functional>

namespace quillane {

/// Shows how a mail failed, with its number, as long as `owner` lives.
ServiceEnded ShowMailFailure(Dialogs& dialogs, QObject* owner);

/// SendAlbumByMail: what "Send..." of the album window does with the paths of its selected rows, in
/// their order. It composes a mail; a failure and a cancel are shown as long as `owner` lives.
std::function<void(const QStringList& selectedRows)> SendAlbumByMail(Platform platform,
                                                                     QObject* owner);

} // namespace quillane
