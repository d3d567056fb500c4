#pragma once
// WordPerfect graphics up to their bitmaps.
#include "imaging/byte_source.h"
#include <QList>
#include <QRgb>

namespace quillane::codecs {

inline constexpr char kWpgName[] = "WordPerfect graphic";

/// How a bitmap's rows are packed.
enum class WpgPacking : quint8 { None, First, Second };

/// A bitmap of a WordPerfect graphic before its pixels.
struct WpgBitmap {
    qint64 width = 0;
    qint64 height = 0;
    int depth = 0; ///< bits of a pixel: 1, 2, 4, 8 or 24
    int xResolution = 0;
    int yResolution = 0;
    WpgPacking packing = WpgPacking::None;
    QList<QRgb> colours; ///< as they stood before the bitmap
    qint64 at = 0;       ///< first byte of the pixels
    qint64 bytes = 0;

    qint64 RowBytes() const { return (width * depth + 7) / 8; }
};

/// The bitmaps of the file in order, at most limits::kMaxPages; records that draw are passed over.
QList<WpgBitmap> FindWpgBitmaps(ByteSource& source);

} // namespace quillane::codecs
