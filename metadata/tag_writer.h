#pragma once
// How the text of the tags gets back into its file.
#include "imaging/engine.h"

namespace quillane {

/// How a picture is saved again: in its own format.
struct ResaveSettings {
    qint16 format = 0;
    qint32 bits = 0;
    qint32 quality = kBestQuality;
    qint32 mode = 0;
};

/// Every comment slot of a file, 0 to 178, becomes a pending comment of the instance; slots that
/// the file lacks are cleared. That is how the other fields survive a save. A file that cannot be
/// read leaves every slot empty. Method errors are on afterwards.
void CopyComments(EngineInstance& lead, const QString& file);
/// The quality factor for a file: lossless for a PNG, else the given one.
qint32 QualityFor(const QString& file, qint32 quality);
/// Saves the image, which was loaded from `file`, over it with all its comments and `text` in the
/// place of the description. Does nothing for a file that cannot carry tags. Failure of the save.
void WriteTagText(EngineInstance& lead, const QString& file, const QString& text,
                  const ResaveSettings& settings);

} // namespace quillane
