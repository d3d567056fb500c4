#pragma once
#include <QString>

namespace quillane {

/// How a file of several channels laid its samples; what a re-save in place keeps where the
/// format code is only the nearest. Zeros: as the format code says.
struct SourceLayout {
    quint8 horizontal = 0, vertical = 0; ///< samples of luminance to one of colour: 2 x 1 is 4:2:2
    quint16 compression = 0;             ///< TIFF compression tag
    bool progressive = false;            ///< of a JPEG
    bool operator==(const SourceLayout&) const = default;
};

/// What a file says of its first page, without its pixels; all as stored (not turned upright).
struct ImageFacts {
    qint32 width = 0;       ///< pixels
    qint32 height = 0;      ///< pixels
    qint16 bits = 0;        ///< per pixel
    qint16 format = 0;      ///< format code
    qint32 pages = 1;       ///< pages or frames
    qint32 xResolution = 0; ///< dots per inch, 0 unknown
    qint32 yResolution = 0;
    qint64 sizeDisk = 0;    ///< bytes of the file
    qint64 sizeMemory = 0;  ///< bytes of the picture at its own depth, rows padded to 4 bytes
    quint8 orientation = 1; ///< Exif orientation 1..8
    SourceLayout layout;    ///< what the format code is only the nearest for
    QString compression;    ///< in words, such as "JPEG" or "LZW"
};

} // namespace quillane
