#include "viewer/region_drag.h"
#include "widgets/rubber_band.h"
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

constexpr double kRegionFarthest = 1 << 29; ///< pixels, so that differences fit 32 bits

qint32 RegionEdge(double place)
{
    return qint32(std::lround(std::clamp(place, -kRegionFarthest, kRegionFarthest)));
}

} // namespace

QRect PixelsBetween(const QRectF& places)
{
    const qint32 left = RegionEdge(places.left());
    const qint32 top = RegionEdge(places.top());
    return QRect(left, top, RegionEdge(places.right()) - left, RegionEdge(places.bottom()) - top);
}

void MakeRegion(EngineInstance& instance, RegionTool tool, const QRectF& places,
                const QList<QPointF>& line)
{
    const QRect box = PixelsBetween(places);
    switch (tool) {
    case RegionTool::None:
        break;
    case RegionTool::Rectangle:
        instance.SetRegionRect(box.left(), box.top(), box.width(), box.height());
        break;
    case RegionTool::Ellipse:
        instance.SetRegionEllipse(box.left(), box.top(), box.width(), box.height());
        break;
    case RegionTool::RoundedRectangle:
        instance.SetRegionRoundRect(box.left(), box.top(), box.width(), box.height(),
                                    RegionEdge(RoundedCorner(box.width(), box.height())));
        break;
    case RegionTool::FreeHand: {
        QList<QPoint> outline;
        outline.reserve(line.size());
        for (const QPointF& place : line) {
            const QPoint pixel(RegionEdge(place.x()), RegionEdge(place.y()));
            if (outline.isEmpty() || outline.last() != pixel) {
                outline.append(pixel);
            }
        }
        instance.SetRegionFreeHand(outline);
        break;
    }
    }
}

QPoint FloaterPlace(QPoint start, const QPointF& from, const QPointF& to)
{
    return start + QPoint(RegionEdge(to.x() - from.x()), RegionEdge(to.y() - from.y()));
}

} // namespace quillane
