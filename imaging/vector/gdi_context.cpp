#include "imaging/vector/gdi_context.h"
#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillane::drawing {

namespace {

constexpr size_t kGdiMostSaved = 512;
constexpr size_t kGdiMostPathPoints = 2'000'000; ///< in one path bracket

double GdiRatio(double to, double from)
{
    return from == 0 ? 1 : to / from;
}

} // namespace

GdiContext::GdiContext(Drawing& drawing) : mDrawing(drawing)
{
    mState.pen.stroke = GdiStroke(0);
    mState.brush.fill = GdiFill(0, 0xffffffff, 0);
    mState.font.height = -12;
}

QPointF GdiContext::Scaled(QPointF value, double x, double y)
{
    return {value.x() * (std::isfinite(x) ? x : 1), value.y() * (std::isfinite(y) ? y : 1)};
}

void GdiContext::SetMapMode(int mode)
{
    mState.mapMode = std::clamp(mode, 1, 8);
}

void GdiContext::SetWindowExt(QPointF to)
{
    if (to.x() != 0 && to.y() != 0) {
        mState.windowExt = to;
    }
}

void GdiContext::SetViewportExt(QPointF to)
{
    if (to.x() != 0 && to.y() != 0) {
        mState.viewportExt = to;
    }
}

QTransform GdiContext::ToDevice() const
{
    // Logical units in a millimetre of the modes 2 to 6: tenths and hundredths of a millimetre,
    // hundredths and thousandths of an inch, twentieths of a point.
    constexpr double kPerMillimetre[] = {10, 100, 100 / 25.4, 1000 / 25.4, 1440 / 25.4};
    double sx = 1;
    double sy = 1;
    const int mode = mState.mapMode;
    if (mode >= 2 && mode <= 6) {
        sx = mDots.x() / kPerMillimetre[mode - 2];
        sy = -mDots.y() / kPerMillimetre[mode - 2];
    } else if (mode >= 7) {
        sx = GdiRatio(mState.viewportExt.x(), mState.windowExt.x());
        sy = GdiRatio(mState.viewportExt.y(), mState.windowExt.y());
        if (mode == 7) { // both axes alike, the smaller scale rules
            const double scale = std::min(std::abs(sx), std::abs(sy));
            sx = std::copysign(scale, sx);
            sy = std::copysign(scale, sy);
        }
    }
    const QTransform page(sx, 0, 0, sy, mState.viewportOrg.x() - mState.windowOrg.x() * sx,
                          mState.viewportOrg.y() - mState.windowOrg.y() * sy);
    return mState.world * page;
}

void GdiContext::Select(const GdiObject& object)
{
    if (const auto* pen = std::get_if<GdiPen>(&object)) {
        mState.pen = *pen;
    } else if (const auto* brush = std::get_if<GdiBrush>(&object)) {
        mState.brush = *brush;
    } else if (const auto* font = std::get_if<GdiFont>(&object)) {
        mState.font = *font;
    } else if (const auto* region = std::get_if<GdiRegion>(&object)) {
        ClipToRegion(region->area, 5);
    }
}

void GdiContext::SelectStock(quint32 number)
{
    constexpr QRgb kGreys[] = {0xffffffff, 0xffc0c0c0, 0xff808080, 0xff404040, 0xff000000};
    if (number < std::size(kGreys)) {
        mState.brush.fill = GdiFill(0, kGreys[number], 0);
    } else if (number == 5) {
        mState.brush.fill = GdiFill(1, 0, 0);
    } else if (number <= 8) {
        mState.pen = GdiPen();
        mState.pen.stroke = GdiStroke(number == 8 ? 5 : 0);
        mState.pen.stroke.colour = number == 6 ? 0xffffffff : 0xff000000;
    } else if (number <= 17) {
        mState.font = GdiFont();
        mState.font.height = -12;
        mState.font.pitchAndFamily = number == 10 || number == 11 || number == 16 ? 0x31 : 0x20;
    }
}

void GdiContext::Save()
{
    if (mSaved.size() < kGdiMostSaved) {
        mSaved.push_back(mState);
    } else {
        mDrawing.SetCutShort();
    }
}

void GdiContext::Restore(qint32 number)
{
    const qint64 to = number > 0 ? qint64(number) - 1 : qint64(mSaved.size()) + number;
    if (number == 0 || to < 0 || to >= qint64(mSaved.size())) {
        return;
    }
    mState = mSaved[size_t(to)];
    mSaved.resize(size_t(to));
}

Stroke GdiContext::DeviceStroke() const
{
    Stroke stroke = mState.pen.stroke;
    const double scale = mState.pen.cosmetic ? 1 : std::sqrt(std::abs(ToDevice().determinant()));
    stroke.width = std::isfinite(scale) ? std::abs(stroke.width) * scale : 0;
    stroke.miter = mState.miter;
    return stroke;
}

Fill GdiContext::DeviceFill() const
{
    Fill fill = mState.brush.fill;
    fill.winding = mState.winding;
    fill.backed = mState.opaque;
    fill.back = mState.backColour;
    return fill;
}

void GdiContext::Figure(Path logical, bool filled)
{
    Path device = logical.Mapped(ToDevice());
    if (mInPath) {
        if (mPath.Points().size() + device.Points().size() > kGdiMostPathPoints) {
            mDrawing.SetCutShort();
            return;
        }
        mPath.Append(device);
        mPathAtCurrent = false;
        return;
    }
    mDrawing.AddPath(std::move(device), DeviceStroke(), filled ? DeviceFill() : Fill(), mState.clip,
                     mState.rop);
}

void GdiContext::MoveTo(QPointF to)
{
    mState.current = to;
    mPathAtCurrent = false;
}

void GdiContext::LineTo(QPointF to)
{
    Polyline({to}, true);
}

void GdiContext::Polyline(const std::vector<QPointF>& points, bool fromCurrent)
{
    if (points.empty()) {
        return;
    }
    if (mInPath && fromCurrent && mPathAtCurrent
        && mPath.Points().size() + points.size() <= kGdiMostPathPoints) {
        const QTransform toDevice = ToDevice();
        for (const QPointF& point : points) {
            mPath.LineTo(toDevice.map(point));
        }
    } else {
        Path path;
        if (fromCurrent) {
            path.MoveTo(mState.current);
        }
        for (const QPointF& point : points) {
            path.LineTo(point);
        }
        Figure(std::move(path), false);
    }
    if (fromCurrent) {
        mState.current = points.back();
        mPathAtCurrent = true;
    }
}

void GdiContext::Bezier(const std::vector<QPointF>& points, bool fromCurrent)
{
    const size_t first = fromCurrent ? 0 : 1;
    if (points.size() < first + 3) {
        return;
    }
    Path path;
    const bool goesOn = mInPath && fromCurrent && mPathAtCurrent
        && mPath.Points().size() + points.size() <= kGdiMostPathPoints;
    if (!goesOn) {
        path.MoveTo(fromCurrent ? mState.current : points.front());
    }
    const QTransform toDevice = ToDevice();
    for (size_t i = first; i + 2 < points.size(); i += 3) {
        if (goesOn) {
            mPath.CubicTo(toDevice.map(points[i]), toDevice.map(points[i + 1]),
                          toDevice.map(points[i + 2]));
        } else {
            path.CubicTo(points[i], points[i + 1], points[i + 2]);
        }
    }
    if (!goesOn) {
        Figure(std::move(path), false);
    }
    if (fromCurrent) {
        mState.current = points[first + (points.size() - first) / 3 * 3 - 1];
        mPathAtCurrent = true;
    }
}

void GdiContext::Polygon(const std::vector<QPointF>& points)
{
    if (points.size() >= 2) {
        Path path;
        path.AddPolygon(points, true);
        Figure(std::move(path), true);
    }
}

void GdiContext::PolyPolygon(const std::vector<std::vector<QPointF>>& polygons)
{
    Path path;
    for (const std::vector<QPointF>& polygon : polygons) {
        path.AddPolygon(polygon, true);
    }
    Figure(std::move(path), true);
}

void GdiContext::PolyPolyline(const std::vector<std::vector<QPointF>>& lines)
{
    Path path;
    for (const std::vector<QPointF>& line : lines) {
        path.AddPolygon(line, false);
    }
    Figure(std::move(path), false);
}

void GdiContext::Rectangle(const QRectF& box)
{
    Path path;
    path.AddRectangle(box);
    Figure(std::move(path), true);
}

void GdiContext::RoundRectangle(const QRectF& box, double width, double height)
{
    Path path;
    path.AddRoundRectangle(box, width, height);
    Figure(std::move(path), true);
}

void GdiContext::Ellipse(const QRectF& box)
{
    Path path;
    path.AddEllipse(box);
    Figure(std::move(path), true);
}

void GdiContext::Arc(const QRectF& box, QPointF start, QPointF end, ArcKind kind)
{
    using std::numbers::pi;
    const QRectF area = box.normalized();
    if (area.width() <= 0 || area.height() <= 0) {
        return;
    }
    // Angles on the circle that the ellipse is made of. y grows downwards: against the clock, as
    // it looks, is a negative sweep, unless the mapping mirrors one axis.
    const auto angle = [&area](QPointF at) {
        return std::atan2((at.y() - area.center().y()) / area.height(),
                          (at.x() - area.center().x()) / area.width());
    };
    const double from = angle(start);
    double sweep = angle(end) - from;
    const bool mirrored = ToDevice().determinant() < 0;
    if (mState.arcClockwise != mirrored) {
        sweep = sweep <= 0 ? sweep + 2 * pi : sweep;
    } else {
        sweep = sweep >= 0 ? sweep - 2 * pi : sweep;
    }
    Path path;
    if (kind == ArcKind::To) {
        path.MoveTo(mState.current);
    }
    path.AddArc(area, from, sweep, kind == ArcKind::To);
    if (kind == ArcKind::To) {
        MoveTo(path.Points().back());
    } else if (kind == ArcKind::Pie) {
        path.LineTo(area.center());
    }
    if (kind == ArcKind::Pie || kind == ArcKind::Chord) {
        path.Close();
    }
    Figure(std::move(path), kind == ArcKind::Pie || kind == ArcKind::Chord);
}

void GdiContext::AngleArc(QPointF centre, double radius, double start, double sweep)
{
    using std::numbers::pi;
    Path path;
    path.MoveTo(mState.current);
    path.AddArc(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius),
                -start * pi / 180, -sweep * pi / 180, true);
    MoveTo(path.Points().back());
    Figure(std::move(path), false);
}

void GdiContext::Pixel(QPointF at, QRgb colour)
{
    Path path;
    path.AddRectangle(QRectF(at, QSizeF(1, 1)));
    Fill fill = GdiFill(0, colour, 0);
    mDrawing.AddPath(path.Mapped(ToDevice()), Stroke(), fill, mState.clip);
}

void GdiContext::Paint(const Path& device, const Stroke& stroke, const Fill& fill)
{
    mDrawing.AddPath(device, stroke, fill, mState.clip, mState.rop);
}

} // namespace quillane::drawing
