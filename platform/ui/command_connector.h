#pragma once
#include "core/failure.h"
#include "platform/dialogs.h"
#include <QObject>
#include <type_traits>
#include <utility>

namespace quillane {

/// Shows number and description of a failure that a command let pass.
void ShowFailure(Dialogs& dialogs, const Failure& failure);

/// Runs a command; a Failure that it lets pass is shown in a message box. Whether it came to
/// its end.
template <typename Command> bool RunCommand(Dialogs& dialogs, Command&& command)
{
    try {
        command();
        return true;
    } catch (const Failure& failure) {
        ShowFailure(dialogs, failure);
        return false;
    }
}

/// Connects a signal to a command that takes the signal's arguments or none. A Failure must
/// not cross the toolkit: one that the command lets pass is shown in a message box, and the
/// program goes on. The connection ends with `context`.
template <typename Sender, typename Owner, typename... Arguments, typename Command>
QMetaObject::Connection ConnectCommand(Sender* sender, void (Owner::*signal)(Arguments...),
                                       QObject* context, Dialogs& dialogs, Command command)
{
    return QObject::connect(
        sender, signal, context, [&dialogs, command = std::move(command)](Arguments... arguments) {
            RunCommand(dialogs, [&] {
                if constexpr (std::is_invocable_v<const Command&, Arguments...>) {
                    command(arguments...);
                } else {
                    command();
                }
            });
        });
}

} // namespace quillane
