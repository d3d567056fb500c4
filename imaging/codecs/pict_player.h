#pragma once
#include "imaging/codecs/pict_raster.h"
#include "imaging/vector/drawing.h"
#include <optional>

namespace quillane::codecs {

/// A QuickDraw picture, played.
struct PictPage {
    drawing::Drawing drawing;
    QRectF frame;            ///< what the picture shows, in its own units
    double dotsPerInch = 72; ///< units in an inch
    int bits = 1;            ///< most bits of a pixel among its bitmaps
    bool partial = false;    ///< it ended early, or holds what is not read
    /// The only thing in the picture, when that is one bitmap which fills the frame as it is.
    std::optional<PictRaster> alone;
};

/// Whether a picture begins there: version and frame.
bool PictBegins(QByteArrayView bytes, qint64 at);
/// Plays the file's bytes, behind the 512 that stand before most pictures. Failure when it is
/// none; what goes wrong on the way ends it early.
PictPage PlayPict(QByteArrayView bytes, const DecodeRequest& request);

} // namespace quillane::codecs
