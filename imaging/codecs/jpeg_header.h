#pragma once
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/exif_header.h"

namespace quillane::codecs {

/// What the segments before a JPEG's first scan say.
struct JpegHeader {
    quint8 frame = 0;  ///< frame marker, 0xc0 .. 0xcf
    int precision = 0; ///< bits per sample
    int width = 0;
    int height = 0;
    int components = 0;
    int across = 1; ///< how many luminance samples share a chrominance sample, across
    int down = 1;   ///< and down
    ExifHeader exif;
    qint32 xResolution = 0; ///< dots per inch, from the JFIF segment
    qint32 yResolution = 0;
    QByteArray icc; ///< only where asked for

    bool IsProgressive() const { return frame == 0xc2 || frame == 0xca; }
    bool IsArithmetic() const { return frame >= 0xc9; }
};

/// Walks the segments up to the frame, or, to collect the colour profile too, up to the first
/// scan. Reads little. Failure: no frame, a size of 0, a header without end.
JpegHeader ReadJpegHeader(ByteSource& source, bool withProfile);

} // namespace quillane::codecs
