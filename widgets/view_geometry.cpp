#include "widgets/view_geometry.h"
#include <algorithm>
#include <cmath>

namespace quillane {

QSize ViewGeometry::ShownSize(QSize picture, double zoom)
{
    if (picture.isEmpty()) {
        return {};
    }
    return {std::max(1, int(std::lround(picture.width() * zoom))),
            std::max(1, int(std::lround(picture.height() * zoom)))};
}

double ViewGeometry::FittingZoom(QSize picture, QSize frame, bool enlarges)
{
    if (picture.isEmpty()) {
        return 1;
    }
    const double fit = std::min(double(std::max(frame.width(), 1)) / picture.width(),
                                double(std::max(frame.height(), 1)) / picture.height());
    return enlarges ? std::min(fit, kLargestZoom / 100.0) : std::min(fit, 1.0);
}

QPointF ViewGeometry::ToPicture(const QPointF& view) const
{
    if (IsEmpty()) {
        return {};
    }
    const QPointF device = view * ratio - origin;
    return {device.x() * picture.width() / shown.width(),
            device.y() * picture.height() / shown.height()};
}

QPointF ViewGeometry::ToDevice(const QPointF& place) const
{
    if (IsEmpty()) {
        return {};
    }
    return {place.x() * shown.width() / picture.width() + origin.x(),
            place.y() * shown.height() / picture.height() + origin.y()};
}

QPointF ViewGeometry::ToView(const QPointF& place) const
{
    return ToDevice(place) / ratio;
}

QRectF ViewGeometry::Covered() const
{
    return IsEmpty() ? QRectF() : QRectF(QPointF(origin) / ratio, QSizeF(shown) / ratio);
}

} // namespace quillane
