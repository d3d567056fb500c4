#include "platform/ui/command_connector.h"

namespace quillane {

void ShowFailure(Dialogs& dialogs, const Failure& failure)
{
    dialogs.Box(QStringLiteral("%1\n\nError %2").arg(failure.Description()).arg(failure.Number()),
                {}, BoxIcon::Warning);
}

} // namespace quillane
