#pragma once
#include "imaging/engine.h"
#include "platform/ui_loop.h"

namespace quillane {

/// Replaces the image by the clipboard's as PasteFromClipboard does, but reads it on another thread
/// while events of this one are handled. The caller sees to it that nothing a person can start
/// meanwhile touches the instance. Failure, with the image as it was, as PasteFromClipboard.
void PastePicture(EngineInstance& LEAD1, UiLoop& loop);

} // namespace quillane
