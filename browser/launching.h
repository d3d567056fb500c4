#pragma once
// What the browser hands to other programs: custom tools and applications, and mails.
#include "core/custom_slots.h"
#include "core/session.h"
#include "platform/launcher.h"
#include "platform/mail.h"
#include <QVector>
#include <functional>

namespace quillane {

/// Takes one quiet line for the person.
using TellLine = std::function<void(const QString& line)>;

/// Runs a slot's program on gsFileName in gsPath; where gsPath is a file that was picked in the
/// tree, in its folder. The file goes over unquoted, so that a path with a blank arrives as two
/// parameters. A slot that is off is not run. That, what keeps the program from starting, and how
/// it failed when it had been started, is told in a line that names the slot.
void RunCustomSlot(const CustomSlot& slot, const Session& session, Launcher& launcher,
                   const TellLine& tell);

/// Composes a mail of the selected entries of lbFilTiffs, in list order. `selected` are the flags
/// of the visible view. `ended` as of MailService::Compose.
void SendImagesByMail(const Session& session, const QVector<bool>& selected, MailService& mail,
                      ServiceEnded ended);

} // namespace quillane
