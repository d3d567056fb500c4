#pragma once
#include "viewer/command_table.h"

class QWidget;

namespace quillane {

/// Shows the dialog of a command, modal to its owner, with the picture as its preview, and returns
/// what was chosen. Failure kFailureCancelled when it was cancelled, and for one that gives
/// nothing.
CommandValues AskCommandValues(QWidget* owner, const EnhanceCommand& command,
                               const EngineInstance& LEAD1);

} // namespace quillane
