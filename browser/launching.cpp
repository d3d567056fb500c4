#include "browser/launching.h"

#include "core/failure.h"
#include "core/native_path.h"
#include "core/paths.h"
#include "platform/send_by_mail.h"
#include "widgets/menu_entry.h"

#include <QCoreApplication>

namespace quillane {

namespace {

constexpr qsizetype kLongestSlotName = 60; // characters that a line has room for

QString SlotName(const CustomSlot& slot)
{
    QString name = PlainCaption(slot.caption).simplified();
    if (name.isEmpty()) {
        name = LeafName(slot.path);
    }
    if (name.isEmpty()) {
        return QCoreApplication::translate("Launching", "The tool");
    }
    return name.size() > kLongestSlotName ? name.left(kLongestSlotName) + QChar(0x2026) : name;
}

QString SlotFolder(const QString& gsPath)
{
    return StatPath(gsPath).type == FileType::Regular ? FolderOf(gsPath) : gsPath;
}

} // namespace

void RunCustomSlot(const CustomSlot& slot, const Session& session, Launcher& launcher,
                   const TellLine& tell)
{
    const QString name = SlotName(slot);
    if (slot.active != 1) {
        tell(QCoreApplication::translate("Launching", "\"%1\" is switched off in the preferences.")
                 .arg(name));
        return;
    }
    if (slot.path.isEmpty()) {
        tell(QCoreApplication::translate(
                 "Launching", "\"%1\" has no program yet. Choose one in the preferences.")
                 .arg(name));
        return;
    }
    const auto failed = [name, tell](const QString& why) {
        tell(QCoreApplication::translate("Launching", "\"%1\" failed: %2").arg(name, why));
    };
    try {
        launcher.Run(slot.path, session.gsFileName.split(u' ', Qt::SkipEmptyParts),
                     SlotFolder(session.gsPath), failed);
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
