#pragma once
#include <QImage>
#include <QRegion>

namespace quillane::drawing {

/// What a raster operation is made of besides the destination.
struct RopLayer {
    QImage pixels;           ///< ARGB32_Premultiplied; what is transparent is left alone
    QPoint at;               ///< of its first pixel on the canvas
    bool isPattern = false;  ///< the layer is P; else it is S
    QRgb other = 0xff000000; ///< the one of P and S that the layer is not
};

/// Changes the pixels of an RGB32 canvas under the layer, inside `clip`, by a raster operation
/// whose bit 4 P + 2 S + D is the result for those bits.
void CombineLayer(QImage& canvas, const RopLayer& layer, const QRegion& clip, quint8 rop);
/// Whether the result depends on the source.
inline bool RopUsesSource(quint8 rop)
{
    return ((rop >> 2 ^ rop) & 0x33) != 0;
}
/// Whether the result depends on the pattern.
inline bool RopUsesPattern(quint8 rop)
{
    return ((rop >> 4 ^ rop) & 0x0f) != 0;
}

} // namespace quillane::drawing
