#pragma once
// Parts of a picture as the screen shows them, at any size, without converting the rest of it.
#include "imaging/bitmap.h"
#include <QImage>
#include <QRect>
#include <QSize>
#include <atomic>

namespace quillane {

/// A picture, or a smaller one that stands for it. `extent` is what the whole picture takes of the
/// pixels: of a reduced copy the last column or row may be covered in part only.
struct PictureSource {
    Bitmap bitmap;
    QSize picture;      ///< pixels of the picture that it stands for
    QSizeF extent;      ///< of the picture, in pixels of `bitmap`
    bool mixes = false; ///< 8-bit pixels are positions between the colours of a black-and-white one

    /// The picture itself.
    static PictureSource Whole(const Bitmap& bitmap);
    /// A picture that is ready for the screen and stands for one of that size.
    static PictureSource StandIn(const QImage& image, QSize picture);
    bool IsEmpty() const { return bitmap.IsNull(); }
    bool HasAlpha() const; ///< whether something shows through it
    qint64 Bytes() const { return qint64(bitmap.Pixels().sizeInBytes()); }
    /// Whether it has at least a pixel for each of the picture painted at that size.
    bool ReachesTo(QSize shown) const
    {
        return extent.width() >= shown.width() && extent.height() >= shown.height();
    }
};

/// A flag by which another thread tells that the work is not wanted any more.
using StopFlag = std::atomic<bool>;

// Each of these makes a rectangle of the picture painted at the size `shown`. `part` lies inside
// that. The answer is RGB32 or ARGB32_Premultiplied, of the size of `part`; null where there is no
// memory or when stopped. Any thread.

/// Each pixel the mean of the area that it covers. Enlarged, pixels keep their edges and only those
/// that an edge crosses are mixed.
QImage MeanPart(const PictureSource& source, QSize shown, const QRect& part,
                const StopFlag* stop = nullptr);
/// Each pixel that which lies under its centre: squares when enlarged.
QImage NearestPart(const PictureSource& source, QSize shown, const QRect& part);
/// Mixed between the centres of pixels: soft when enlarged.
QImage SoftPart(const PictureSource& source, QSize shown, const QRect& part);

/// The picture made smaller in each direction by a whole number, its pixels means. Pictures of one
/// channel stay so, others are ready for the screen. Empty where there is no memory or when
/// stopped.
PictureSource ReducedBy(int factor, const PictureSource& source, const StopFlag* stop = nullptr);

} // namespace quillane
