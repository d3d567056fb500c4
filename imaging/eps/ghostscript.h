#pragma once
// Ghostscript as a process: it may read nothing but what it is given, and not for long.
#include "imaging/byte_source.h"
#include <QImage>
#include <QRectF>
#include <QSize>
#include <atomic>

namespace quillane::eps {

struct RenderJob {
    ByteSource* script = nullptr; ///< all of it is PostScript
    QRectF box;                   ///< points, y upwards; what the picture shows
    QSize size;                   ///< pixels
    int seconds = 10;             ///< of processing, and half as many again of waiting
    const std::atomic<bool>* cancelled = nullptr;
};

struct Rendered {
    QImage image; ///< RGB32
    /// The script failed or did not come to its end; what it had drawn may be missing.
    bool partial = false;
};

/// Whether there is a Ghostscript to run.
bool HasGhostscript();
/// The first page of the script. Failure when there is no Ghostscript, when it takes too long or
/// too much memory, and when the script draws no page.
Rendered RenderPostScript(const RenderJob& job);

} // namespace quillane::eps
