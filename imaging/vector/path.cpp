#include "imaging/vector/path.h"
#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillane::drawing {

namespace {

constexpr double kPathMost = 1e12; ///< largest coordinate that is worked with

} // namespace

void Path::Add(PathStep step, QPointF to)
{
    // A line that begins nowhere begins where it ends.
    mSteps.push_back(mSteps.empty() ? PathStep::Move : step);
    mPoints.push_back(to);
}

void Path::CubicTo(QPointF first, QPointF second, QPointF to)
{
    if (mSteps.empty()) {
        MoveTo(first);
    }
    mSteps.push_back(PathStep::Cubic);
    mPoints.push_back(first);
    mPoints.push_back(second);
    mPoints.push_back(to);
}

void Path::Close()
{
    if (!mSteps.empty() && mSteps.back() != PathStep::Close) {
        mSteps.push_back(PathStep::Close);
    }
}

void Path::AddRectangle(const QRectF& box)
{
    MoveTo(box.topLeft());
    LineTo(box.topRight());
    LineTo(box.bottomRight());
    LineTo(box.bottomLeft());
    Close();
}

void Path::AddPolygon(const std::vector<QPointF>& corners, bool closed)
{
    mSteps.reserve(mSteps.size() + corners.size() + 1);
    mPoints.reserve(mPoints.size() + corners.size());
    for (size_t i = 0; i < corners.size(); ++i) {
        Add(i == 0 ? PathStep::Move : PathStep::Line, corners[i]);
    }
    if (closed && !corners.empty()) {
        Close();
    }
}

void Path::AddArc(const QRectF& box, double start, double sweep, bool join)
{
    using std::numbers::pi;
    if (!std::isfinite(start) || !std::isfinite(sweep)) {
        return;
    }
    start = std::remainder(start, 2 * pi);
    sweep = std::clamp(sweep, -2 * pi, 2 * pi);
    const QPointF centre = box.center();
    const double a = box.width() / 2;
    const double b = box.height() / 2;
    const int parts = std::max(1, int(std::ceil(std::abs(sweep) / (pi / 2) - 1e-9)));
    const double step = sweep / parts;
    // Distance of the handles of a curve that stays on the unit circle over an angle.
    const double reach = 4.0 / 3.0 * std::tan(step / 4);
    const QPointF first = centre + QPointF(a * std::cos(start), b * std::sin(start));
    if (join && !mSteps.empty()) {
        LineTo(first);
    } else {
        MoveTo(first);
    }
    for (int i = 0; i < parts; ++i) {
        const double from = start + step * i;
        const double to = from + step;
        const double c0 = std::cos(from), s0 = std::sin(from);
        const double c1 = std::cos(to), s1 = std::sin(to);
        CubicTo(centre + QPointF(a * (c0 - reach * s0), b * (s0 + reach * c0)),
                centre + QPointF(a * (c1 + reach * s1), b * (s1 - reach * c1)),
                centre + QPointF(a * c1, b * s1));
    }
}

void Path::AddEllipse(const QRectF& box)
{
    AddArc(box, 0, 2 * std::numbers::pi, false);
    Close();
}

void Path::AddRoundRectangle(const QRectF& box, double width, double height)
{
    using std::numbers::pi;
    const QRectF area = box.normalized();
    const double w = std::min(std::abs(width), area.width());
    const double h = std::min(std::abs(height), area.height());
    const QSizeF corner(w, h);
    AddArc(QRectF(area.topLeft(), corner), pi, pi / 2, false);
    AddArc(QRectF(area.topRight() - QPointF(w, 0), corner), 1.5 * pi, pi / 2, true);
    AddArc(QRectF(area.bottomRight() - QPointF(w, h), corner), 0, pi / 2, true);
    AddArc(QRectF(area.bottomLeft() - QPointF(0, h), corner), pi / 2, pi / 2, true);
    Close();
}

void Path::Append(const Path& other)
{
    mSteps.insert(mSteps.end(), other.mSteps.begin(), other.mSteps.end());
    mPoints.insert(mPoints.end(), other.mPoints.begin(), other.mPoints.end());
}

Path Path::Mapped(const QTransform& transform) const
{
    Path mapped = *this;
    for (QPointF& point : mapped.mPoints) {
        point = transform.map(point);
    }
    return mapped;
}

QRectF Path::Bounds() const
{
    if (mPoints.empty()) {
        return {};
    }
    QPointF low = mPoints.front();
    QPointF high = low;
    for (const QPointF& point : mPoints) {
        low = {std::min(low.x(), point.x()), std::min(low.y(), point.y())};
        high = {std::max(high.x(), point.x()), std::max(high.y(), point.y())};
    }
    return {low, high};
}

bool Path::IsSane() const
{
    return std::all_of(mPoints.begin(), mPoints.end(), [](const QPointF& point) {
        // Written so that what is no number fails too.
        return std::abs(point.x()) < kPathMost && std::abs(point.y()) < kPathMost;
    });
}

bool Path::IsRectangle() const
{
    if (mPoints.size() != 4 || mSteps.size() != 5 || mSteps.back() != PathStep::Close
        || std::count(mSteps.begin(), mSteps.end(), PathStep::Line) != 3) {
        return false;
    }
    for (size_t i = 0; i < 4; ++i) {
        const QPointF side = mPoints[(i + 1) % 4] - mPoints[i];
        if (side.x() != 0 && side.y() != 0) {
            return false;
        }
    }
    return true;
}

void Path::Clear()
{
    mSteps.clear();
    mPoints.clear();
}

} // namespace quillane::drawing
