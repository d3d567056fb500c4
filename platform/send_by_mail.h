#pragma once
#include "platform/mail.h"
#include <QVector>

namespace quillane {

/// The entries of a view whose selected flag is set, in the order of the view.
QStringList SelectedEntries(const QStringList& paths, const QVector<bool>& selected);

/// Composes a mail of the selected entries of a view: also one without attachments, where nothing
/// is selected. `ended` as of MailService::Compose.
void SendByMail(const QStringList& paths, const QVector<bool>& selected, MailService& mail,
                ServiceEnded ended);

} // namespace quillane
