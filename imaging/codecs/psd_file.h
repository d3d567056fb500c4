#pragma once
// A Photoshop file up to its merged picture.
#include "imaging/byte_source.h"
#include <QList>
#include <QRgb>

namespace quillane::codecs {

inline constexpr char kPsdName[] = "Photoshop file";

enum class PsdMode : quint16 {
    Bilevel = 0,
    Grey = 1,
    Indexed = 2,
    Rgb = 3,
    Cmyk = 4,
    Multichannel = 7,
    Duotone = 8,
    Lab = 9,
};

struct PsdHeader {
    bool big = false; ///< the variant for large documents: wider lengths
    PsdMode mode = PsdMode::Rgb;
    int channels = 0;   ///< stored
    int colours = 0;    ///< channels that make the colour
    bool alpha = false; ///< the channel behind them is the merged picture's transparency
    int depth = 0;      ///< bits of a sample: 1, 8, 16 or 32
    qint64 width = 0;
    qint64 height = 0;
    qint32 xResolution = 0; ///< dots per inch
    qint32 yResolution = 0;
    QList<QRgb> palette; ///< of Indexed
    QByteArray profile;  ///< ICC
    bool packed = false;
    qint64 dataAt = 0; ///< behind the word that tells the packing

    int Shown() const { return colours + (alpha ? 1 : 0); }
    int Bits() const { return Shown() * depth; }
    qint64 RowBytes() const { return (width * depth + 7) / 8; }
};

/// Failure: damaged, or of a kind that is not read.
PsdHeader ReadPsdHeader(ByteSource& source);

} // namespace quillane::codecs
