#include "imaging/vector/raster_op.h"

namespace quillane::drawing {

namespace {

/// The operation for all bits of three pixels at once.
quint32 RopOf(quint8 rop, quint32 pattern, quint32 source, quint32 destination)
{
    quint32 result = 0;
    for (int i = 0; i < 8; ++i) {
        if (rop >> i & 1) {
            result |= (i & 4 ? pattern : ~pattern) & (i & 2 ? source : ~source)
                & (i & 1 ? destination : ~destination);
        }
    }
    return result;
}

} // namespace

void CombineLayer(QImage& canvas, const RopLayer& layer, const QRegion& clip, quint8 rop)
{
    const QRect area = QRect(layer.at, layer.pixels.size()).intersected(canvas.rect());
    for (const QRect& part : clip) {
        const QRect box = part.intersected(area);
        for (int y = box.top(); y <= box.bottom(); ++y) {
            const QRgb* from =
                reinterpret_cast<const QRgb*>(layer.pixels.constScanLine(y - layer.at.y()));
            QRgb* to = reinterpret_cast<QRgb*>(canvas.scanLine(y));
            for (int x = box.left(); x <= box.right(); ++x) {
                const QRgb drawn = from[x - layer.at.x()];
                if (qAlpha(drawn) < 128) {
                    continue;
                }
                to[x] = 0xff000000
                    | (layer.isPattern ? RopOf(rop, drawn, layer.other, to[x])
                                       : RopOf(rop, layer.other, drawn, to[x]));
            }
        }
    }
}

} // namespace quillane::drawing
