#pragma once
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

namespace quillane {

inline constexpr qint32 kSmallestZoom = 1;   ///< per cent
inline constexpr qint32 kLargestZoom = 3200; ///< per cent

/// Where a picture is painted in a view, and the way between the view's positions and the
/// picture's pixels. A view position is in logical pixels, a device position in those of the
/// screen, of which `ratio` make a logical one.
struct ViewGeometry {
    QSize picture;    ///< pixels; empty for none
    QSize shown;      ///< device pixels that the whole picture takes
    QPoint origin;    ///< device position of the picture's upper left corner
    double ratio = 1; ///< device pixels to a logical one

    /// Device pixels that a picture takes at so many device pixels to one of its own; at least 1.
    static QSize ShownSize(QSize picture, double zoom);
    /// The zoom at which a picture just fits a frame of device pixels; 1 without a picture. It
    /// enlarges only when told to.
    static double FittingZoom(QSize picture, QSize frame, bool enlarges);

    bool IsEmpty() const { return picture.isEmpty() || shown.isEmpty(); }
    /// Device pixels to one of the picture, in each direction: whole pixels are painted, so that
    /// the two differ a little.
    double ZoomX() const { return double(shown.width()) / picture.width(); }
    double ZoomY() const { return double(shown.height()) / picture.height(); }
    QPointF ToPicture(const QPointF& view) const; ///< (0, 0) without a picture
    QPointF ToView(const QPointF& place) const;   ///< view position of a place in the picture
    QPointF ToDevice(const QPointF& place) const; ///< device position of a place in the picture
    QRectF ToView(const QRectF& places) const
    {
        return {ToView(places.topLeft()), ToView(places.bottomRight())};
    }
    /// What the whole picture covers, in view positions.
    QRectF Covered() const;

    bool operator==(const ViewGeometry&) const = default;
};

} // namespace quillane
