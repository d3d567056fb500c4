#pragma once
#include "imaging/engine.h"
#include <QString>

namespace quillane {

/// When the picture of a file was taken, as it is stamped; empty when the file does not tell.
/// Never fails.
QString DateStampText(EngineInstance& lead, const QString& file);
/// Draws a text into the lower right corner of the image, 10 pixels from its sides, bold and red.
/// Failure without an image.
void StampText(EngineInstance& lead, const QString& text);

} // namespace quillane
