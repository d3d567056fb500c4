#include "browser/launching.h"

#include "core/failure.h"
#include "core/paths.h"
#include "platform/send_by_mail.h"

#include <QCoreApplication>

namespace quillane {

namespace {

QString SlotName(const CustomSlot& slot)
{
    return slot.caption.isEmpty() ? LeafName(slot.path) : slot.caption;
}

} // namespace

void RunCustomSlot(const CustomSlot& slot, const Session& session, Launcher& launcher,
                   const TellLine& tell)
{
    const auto failed = [name = SlotName(slot), tell](const QString& why) {
        tell(QCoreApplication::translate("Launching", "\"%1\" failed: %2").arg(name, why));
    };
    try {
        launcher.Run(slot.path, session.gsFileName.split(u' ', Qt::SkipEmptyParts), session.gsPath,
                     failed);
    } catch (const Failure& failure) {
        failed(failure.Description());
    }
}

void SendImagesByMail(const Session& session, const QVector<bool>& selected, MailService& mail,
                      ServiceEnded ended)
{
    SendByMail(session.lbFilTiffs, selected, mail, std::move(ended));
}

} // namespace quillane
