#include "platform/send_by_mail.h"

namespace quillane {

QStringList SelectedEntries(const QStringList& paths, const QVector<bool>& selected)
{
    QStringList chosen;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        if (selected.value(i)) {
            chosen.append(paths.at(i));
        }
    }
    return chosen;
}

void SendByMail(const QStringList& paths, const QVector<bool>& selected, MailService& mail,
                ServiceEnded ended)
{
    mail.Compose(SelectedEntries(paths, selected), std::move(ended));
}

} // namespace quillane
