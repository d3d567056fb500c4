#pragma once
// What a picture will look like, and how large its file will be, before it is saved.
#include "imaging/encode.h"

namespace quillane {

/// A look at what a save would write.
struct SavePreview {
    QImage whole;      ///< all of it, fitting the box
    QImage detail;     ///< its middle, a picture's pixel to a pixel of the box
    qint64 bytes = 0;  ///< of the file, without what comments take
    bool exact = true; ///< else the size is reckoned from a smaller picture's
    QString failure;   ///< why there is no look at it, in words
};

/// Encodes the picture as asked and decodes what became of it. A large picture is made smaller
/// first, so that the answer does not take long. box: of the preview, device pixels. Never throws.
/// Any thread.
SavePreview MakeSavePreview(const Bitmap& picture, const EncodeRequest& request, QSize box);

/// "1.2 MiB (1,234,567 bytes)", or "about 12 MiB" where the size is not exact.
QString PreviewSizeWords(const SavePreview& preview);

} // namespace quillane
