#pragma once
#include "imaging/bitmap.h"
#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>

namespace quillane {

/// A selection on a picture: a set of its pixels, in the picture's coordinates. A value; copies
/// share the mask. A pixel belongs to a shape when its centre lies in it. Every maker clips to
/// the picture; what lies outside altogether gives an empty region.
class Region {
public:
    Region() = default;

    /// All pixels of a rectangle; a negative width or height reaches to the left or upwards.
    static Region Rectangle(QSize picture, qint32 left, qint32 top, qint32 width, qint32 height);
    /// The ellipse that touches the sides of the rectangle.
    static Region Ellipse(QSize picture, qint32 left, qint32 top, qint32 width, qint32 height);
    /// The rectangle with corners of that radius, at most half its shorter side.
    static Region RoundRectangle(QSize picture, qint32 left, qint32 top, qint32 width,
                                 qint32 height, qint32 radius);
    /// What a closed outline encloses; where it crosses itself, what lies inside an odd number of
    /// times. Failure kFailureLimit for more than 100,000 points.
    static Region FreeHand(QSize picture, const QList<QPoint>& outline);
    /// Pixels whose shown colour lies between the two in red, green and blue, the ends included.
    /// Failure kFailureGeneral without a picture.
    static Region ColourMatch(const Bitmap& picture, QRgb lowest, QRgb highest);

    bool IsEmpty() const { return mBounds.isEmpty(); }
    /// The smallest rectangle around it.
    QRect Bounds() const { return mBounds; }
    /// Whether it is the whole of its bounds.
    bool IsRectangle() const { return mMask.isNull(); }
    /// Grayscale8 of the size of the bounds, 255 inside and 0 outside; null for a rectangle.
    const QImage& Mask() const { return mMask; }
    /// Whether the pixel belongs to it.
    bool Contains(qint32 x, qint32 y) const;

    /// Moved by so many pixels and clipped to the picture.
    Region Moved(QSize picture, qint32 right, qint32 down) const;
    /// What of it lies on a picture of that size.
    Region ClippedTo(QSize picture) const { return Moved(picture, 0, 0); }

    /// What of it lies in the rectangle and on the picture.
    Region Within(QSize picture, const QRect& part) const;

    bool operator==(const Region& other) const
    {
        return mBounds == other.mBounds && mMask == other.mMask;
    }

private:
    class Spans;
    QRect mBounds;
    QImage mMask;
};

} // namespace quillane
