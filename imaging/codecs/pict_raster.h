#pragma once
#include "imaging/codec.h"
#include "imaging/codecs/pict_reader.h"
#include "imaging/vector/drawing.h"
#include <optional>

namespace quillane::codecs {

inline constexpr char kPictName[] = "QuickDraw picture";

/// A bitmap in a QuickDraw picture.
struct PictRaster {
    QImage image;
    int bits = 0;                      ///< of a pixel in the file
    QRectF bounds;                     ///< coordinates of the whole bitmap
    QRectF source;                     ///< the part that is shown, in the same coordinates
    QRectF target;                     ///< where
    int mode = 0;                      ///< transfer mode
    std::optional<drawing::Path> mask; ///< what is painted of it
    double xDots = 0;                  ///< per inch; 0 unknown
    double yDots = 0;
    bool partial = false;
};

/// Reads the bitmap of one of the operations 0x90 to 0x9b. `ink` and `paper` colour one without
/// colours of its own. Failure when it makes no sense or is larger than the limits.
PictRaster ReadPictRaster(PictReader& reader, int operation, QRgb ink, QRgb paper,
                          const DecodeRequest& request);
/// Reads over the pixels of a pattern in colours, behind its eight rows of two. Failure as before.
void SkipPictPattern(PictReader& reader, const DecodeRequest& request);
/// The picture that a codec of movies left in the operation 0x8200, whose bytes these are; a null
/// image when it is of a kind that is not read.
PictRaster ReadPictCompressed(QByteArrayView bytes, const DecodeRequest& request);

} // namespace quillane::codecs
