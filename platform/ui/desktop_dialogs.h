#pragma once
#include "platform/dialogs.h"

namespace quillane {

/// Message boxes and file dialogs on the screen, over the active window.
class DesktopDialogs : public Dialogs {
public:
    BoxAnswer Box(const QString& text, const QString& title, BoxIcon icon,
                  BoxButtons buttons) override;
    QString File(const FileDialogSpec& spec) override;
};

} // namespace quillane
