#include "imaging/region.h"
#include "core/failure.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace quillane {

namespace {

constexpr qsizetype kRegionMostPoints = 100'000;

/// A rectangle whose sides may lie anywhere that numbers of 32 bits reach.
struct RegionSides {
    qint64 left, top, right, bottom; ///< the last two just outside

    RegionSides(qint32 x, qint32 y, qint32 width, qint32 height)
        : left(std::min<qint64>(x, qint64(x) + width)),
          top(std::min<qint64>(y, qint64(y) + height)),
          right(std::max<qint64>(x, qint64(x) + width)),
          bottom(std::max<qint64>(y, qint64(y) + height))
    { }
    /// From where a side begins to just behind the other, the upper ones first.
    static RegionSides Between(qint64 left, qint64 top, qint64 right, qint64 bottom)
    {
        RegionSides sides(0, 0, 0, 0);
        sides.left = left;
        sides.top = top;
        sides.right = right;
        sides.bottom = bottom;
        return sides;
    }

    QRect On(QSize picture) const
    {
        const qint64 x = std::max<qint64>(left, 0);
        const qint64 y = std::max<qint64>(top, 0);
        const qint64 width = std::min<qint64>(right, picture.width()) - x;
        const qint64 height = std::min<qint64>(bottom, picture.height()) - y;
        if (width <= 0 || height <= 0) {
            return {};
        }
        return QRect(int(x), int(y), int(width), int(height));
    }
};

QImage RegionBlankMask(QSize size)
{
    QImage mask(size, QImage::Format_Grayscale8);
    if (mask.isNull()) {
        throw Failure(
            kFailureLimit,
            QStringLiteral("There is not enough memory to select a part of the picture."));
    }
    mask.fill(0);
    return mask;
}

/// First and last-but-one column whose centre lies between two places.
struct RegionColumns {
    int from, to;
    RegionColumns(double left, double right, int most)
        : from(int(std::clamp(std::ceil(left - 0.5), 0.0, double(most)))),
          to(int(std::clamp(std::ceil(right - 0.5), 0.0, double(most))))
    { }
};

/// A row's part of a rectangle with rounded corners: how far its ends are drawn in.
double RegionDrawnIn(double y, const RegionSides& sides, double radius)
{
    const double top = double(sides.top) + radius;
    const double bottom = double(sides.bottom) - radius;
    const double beyond = y < top ? top - y : y > bottom ? y - bottom : 0.0;
    if (beyond <= 0 || radius <= 0) {
        return 0;
    }
    const double part = std::min(beyond / radius, 1.0);
    return radius * (1 - std::sqrt(1 - part * part));
}

} // namespace

/// Collects the pixels of a shape in a mask and cuts that to what holds any.
class Region::Spans {
public:
    explicit Spans(const QRect& bounds) : mBounds(bounds), mMask(RegionBlankMask(bounds.size())) { }

    /// Adds the pixels of a row of the mask whose centres lie between two of its places.
    void Add(int row, double left, double right)
    {
        const RegionColumns columns(left, right, mBounds.width());
        if (columns.to > columns.from) {
            std::memset(mMask.scanLine(row) + columns.from, 255, size_t(columns.to - columns.from));
        }
    }

    uchar* Row(int row) { return mMask.scanLine(row); }

    Region Cut() const
    {
        int left = mBounds.width();
        int right = -1;
        int top = mBounds.height();
        int bottom = -1;
        bool full = true;
        for (int y = 0; y < mBounds.height(); ++y) {
            const uchar* row = mMask.constScanLine(y);
            const uchar* end = row + mBounds.width();
            const uchar* first = std::find(row, end, uchar(255));
            if (first == end) {
                continue;
            }
            const uchar* last = end - 1;
            while (*last == 0) {
                --last;
            }
            left = std::min(left, int(first - row));
            right = std::max(right, int(last - row));
            top = std::min(top, y);
            bottom = y;
        }
        Region region;
        if (right < 0) {
            return region;
        }
        const QRect inside(QPoint(left, top), QPoint(right, bottom));
        for (int y = top; y <= bottom && full; ++y) {
            const uchar* row = mMask.constScanLine(y);
            full = std::all_of(row + left, row + right + 1, [](uchar v) { return v == 255; });
        }
        region.mBounds = inside.translated(mBounds.topLeft());
        if (!full) {
            region.mMask = mMask.copy(inside);
        }
        return region;
    }

private:
    QRect mBounds;
    QImage mMask;
};

Region Region::Rectangle(QSize picture, qint32 left, qint32 top, qint32 width, qint32 height)
{
    Region region;
    region.mBounds = RegionSides(left, top, width, height).On(picture);
    return region;
}

Region Region::Ellipse(QSize picture, qint32 left, qint32 top, qint32 width, qint32 height)
{
    const RegionSides sides(left, top, width, height);
    const QRect bounds = sides.On(picture);
    if (bounds.isEmpty()) {
        return {};
    }
    Spans spans(bounds);
    const double across = double(sides.right - sides.left) / 2;
    const double down = double(sides.bottom - sides.top) / 2;
    const double middle = double(sides.left) + across - bounds.left();
    for (int row = 0; row < bounds.height(); ++row) {
        const double y = (bounds.top() + row + 0.5 - double(sides.top)) / down - 1;
        const double half = across * std::sqrt(std::max(0.0, 1 - y * y));
        spans.Add(row, middle - half, middle + half);
    }
    return spans.Cut();
}

Region Region::RoundRectangle(QSize picture, qint32 left, qint32 top, qint32 width, qint32 height,
                              qint32 radius)
{
    const RegionSides sides(left, top, width, height);
    const QRect bounds = sides.On(picture);
    if (bounds.isEmpty()) {
        return {};
    }
    const double most = double(std::min(sides.right - sides.left, sides.bottom - sides.top)) / 2;
    const double round = std::clamp(double(radius), 0.0, most);
    Spans spans(bounds);
    for (int row = 0; row < bounds.height(); ++row) {
        const double in = RegionDrawnIn(bounds.top() + row + 0.5, sides, round);
        spans.Add(row, double(sides.left - bounds.left()) + in,
                  double(sides.right - bounds.left()) - in);
    }
    return spans.Cut();
}

Region Region::FreeHand(QSize picture, const QList<QPoint>& outline)
{
    if (outline.size() > kRegionMostPoints) {
        throw Failure(kFailureLimit,
                      QStringLiteral("An outline of more than %1 points cannot be followed.")
                          .arg(kRegionMostPoints));
    }
    if (outline.size() < 3) {
        return {};
    }
    qint64 left = std::numeric_limits<qint64>::max();
    qint64 top = left;
    qint64 right = std::numeric_limits<qint64>::min();
    qint64 bottom = right;
    for (const QPoint& point : outline) {
        left = std::min<qint64>(left, point.x());
        right = std::max<qint64>(right, point.x());
        top = std::min<qint64>(top, point.y());
        bottom = std::max<qint64>(bottom, point.y());
    }
    const QRect bounds = RegionSides::Between(left, top, right, bottom).On(picture);
    if (bounds.isEmpty()) {
        return {};
    }
    std::vector<std::vector<double>> crossings(size_t(bounds.height()));
    for (qsizetype i = 0; i < outline.size(); ++i) {
        QPointF from = outline[i];
        QPointF to = outline[(i + 1) % outline.size()];
        if (from.y() > to.y()) {
            std::swap(from, to);
        }
        const double slope = from.y() == to.y() ? 0 : (to.x() - from.x()) / (to.y() - from.y());
        const double most = bounds.height();
        const int first = int(std::clamp(std::ceil(from.y() - bounds.top() - 0.5), 0.0, most));
        const int last = int(std::clamp(std::ceil(to.y() - bounds.top() - 0.5), 0.0, most));
        for (int row = first; row < last; ++row) {
            const double y = bounds.top() + row + 0.5;
            crossings[size_t(row)].push_back(from.x() + (y - from.y()) * slope - bounds.left());
        }
    }
    Spans spans(bounds);
    for (int row = 0; row < bounds.height(); ++row) {
        std::vector<double>& at = crossings[size_t(row)];
        std::sort(at.begin(), at.end());
        for (size_t i = 0; i + 1 < at.size(); i += 2) {
            spans.Add(row, at[i], at[i + 1]);
        }
    }
    return spans.Cut();
}

Region Region::ColourMatch(const Bitmap& picture, QRgb lowest, QRgb highest)
{
    if (picture.IsNull()) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no picture to select in."));
    }
    const QImage shown = picture.ToDisplay().convertToFormat(QImage::Format_ARGB32);
    Spans spans(shown.rect());
    for (int y = 0; y < shown.height(); ++y) {
        const QRgb* in = reinterpret_cast<const QRgb*>(shown.constScanLine(y));
        uchar* out = spans.Row(y);
        for (int x = 0; x < shown.width(); ++x) {
            const bool match = qRed(in[x]) >= qRed(lowest) && qRed(in[x]) <= qRed(highest)
                && qGreen(in[x]) >= qGreen(lowest) && qGreen(in[x]) <= qGreen(highest)
                && qBlue(in[x]) >= qBlue(lowest) && qBlue(in[x]) <= qBlue(highest);
            out[x] = match ? 255 : 0;
        }
    }
    return spans.Cut();
}

bool Region::Contains(qint32 x, qint32 y) const
{
    if (!mBounds.contains(x, y)) {
        return false;
    }
    return mMask.isNull() || mMask.constScanLine(y - mBounds.top())[x - mBounds.left()] != 0;
}

Region Region::Moved(QSize picture, qint32 right, qint32 down) const
{
    if (IsEmpty()) {
        return {};
    }
    const qint64 left = qint64(mBounds.left()) + right;
    const qint64 top = qint64(mBounds.top()) + down;
    const RegionSides sides =
        RegionSides::Between(left, top, left + mBounds.width(), top + mBounds.height());
    const QRect bounds = sides.On(picture);
    if (bounds.isEmpty() || mMask.isNull()) {
        Region moved;
        moved.mBounds = bounds;
        return moved;
    }
    Spans spans(bounds);
    const qint64 fromLeft = bounds.left() - sides.left;
    const qint64 fromTop = bounds.top() - sides.top;
    for (int row = 0; row < bounds.height(); ++row) {
        std::memcpy(spans.Row(row), mMask.constScanLine(int(fromTop) + row) + fromLeft,
                    size_t(bounds.width()));
    }
    return spans.Cut();
}

Region Region::Within(QSize picture, const QRect& part) const
{
    const Region whole = ClippedTo(picture);
    const QRect bounds = whole.mBounds.intersected(part);
    Region within;
    if (bounds.isEmpty() || whole.mMask.isNull()) {
        within.mBounds = bounds.isEmpty() ? QRect() : bounds;
        return within;
    }
    Spans spans(bounds);
    for (int row = 0; row < bounds.height(); ++row) {
        std::memcpy(spans.Row(row),
                    whole.mMask.constScanLine(row + bounds.top() - whole.mBounds.top())
                        + (bounds.left() - whole.mBounds.left()),
                    size_t(bounds.width()));
    }
    return spans.Cut();
}

} // namespace quillane
