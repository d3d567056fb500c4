#pragma once
// The interchange file: chunks in forms, forms in lists.
#include "imaging/byte_source.h"
#include <QList>
#include <QRgb>

namespace quillane::codecs {

inline constexpr char kIffName[] = "interchange file";

/// A picture of an interchange file before its pixels.
struct IffPicture {
    bool chunky = false; ///< PBM: one byte a pixel, not planes
    bool packed = false;
    bool hasMaskPlane = false;
    bool holdAndModify = false; ///< pixels that change one channel of their neighbour
    bool halfBright = false;    ///< indexes from 32 on are the first colours at half intensity
    int width = 0;
    int height = 0;
    int planes = 0;
    QList<QRgb> colours;
    qint64 bodyAt = 0;
    qint64 bodyBytes = 0;
};

/// Positions of the forms that hold pictures, in order; at most limits::kMaxPages.
QList<qint64> FindIffPictures(ByteSource& source);
/// The picture of the form at that position. Failure: damaged, or of a kind that is not read.
IffPicture ReadIffPicture(ByteSource& source, qint64 form);

} // namespace quillane::codecs
