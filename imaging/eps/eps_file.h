#pragma once
// What an encapsulated PostScript file tells of itself without being run.
#include "imaging/byte_source.h"
#include <QRectF>

namespace quillane::eps {

enum class Preview : quint8 { None, Tiff, Wmf };

struct EpsFile {
    qint64 scriptAt = 0; ///< of the PostScript in the file
    qint64 scriptSize = 0;
    Preview preview = Preview::None;
    qint64 previewAt = 0;
    qint64 previewSize = 0;
    QRectF box; ///< points, y upwards; a sheet of paper where the file does not tell
};

/// Whether the bytes begin as PostScript, or with the header that puts a preview beside it.
bool IsEps(QByteArrayView head);
/// Reads header and comments; Failure when a header points outside its file, or the box is beyond
/// what anybody draws.
EpsFile ReadEps(ByteSource& source);

} // namespace quillane::eps
