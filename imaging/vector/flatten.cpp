#include "imaging/vector/flatten.h"
#include <algorithm>
#include <cmath>

namespace quillane::drawing {

namespace {

constexpr double kFlatTolerance = 0.1;       ///< pixels
constexpr int kFlatMaxPieces = 400;          ///< of one curve
constexpr size_t kFlatMaxPoints = 1'000'000; ///< of one path; curves beyond are lines

double FlatLength(QPointF a)
{
    return std::hypot(a.x(), a.y());
}

void FlatCurve(QPointF a, QPointF b, QPointF c, QPointF d, std::vector<QPointF>& to)
{
    // The second differences bound how far a curve is from n lines: 3/4 of them by n squared.
    const double bend = std::max(FlatLength(a - 2 * b + c), FlatLength(b - 2 * c + d));
    const double wanted = std::ceil(std::sqrt(0.75 * bend / kFlatTolerance));
    const int pieces = wanted < kFlatMaxPieces ? std::max(1, int(wanted)) : kFlatMaxPieces;
    for (int i = 1; i < pieces; ++i) {
        const double t = double(i) / pieces;
        const double u = 1 - t;
        to.push_back(u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d);
    }
    to.push_back(d);
}

/// What lies on the good side of one of the box's sides; `inside` is positive there.
template <typename Distance>
std::vector<QPointF> FlatHalf(const std::vector<QPointF>& polygon, Distance inside)
{
    std::vector<QPointF> kept;
    kept.reserve(polygon.size() + 4);
    for (size_t i = 0; i < polygon.size(); ++i) {
        const QPointF& from = polygon[i == 0 ? polygon.size() - 1 : i - 1];
        const QPointF& to = polygon[i];
        const double before = inside(from);
        const double after = inside(to);
        if ((before < 0) != (after < 0)) {
            kept.push_back(from + (to - from) * (before / (before - after)));
        }
        if (after >= 0) {
            kept.push_back(to);
        }
    }
    return kept;
}

/// Cuts the line to the box; false when nothing of it is inside.
bool FlatCutLine(QPointF& from, QPointF& to, const QRectF& box)
{
    const QPointF way = to - from;
    double first = 0;
    double last = 1;
    const double steps[] = {-way.x(), way.x(), -way.y(), way.y()};
    const double rooms[] = {from.x() - box.left(), box.right() - from.x(), from.y() - box.top(),
                            box.bottom() - from.y()};
    for (int side = 0; side < 4; ++side) {
        if (steps[side] == 0) {
            if (rooms[side] < 0) {
                return false;
            }
            continue;
        }
        const double at = rooms[side] / steps[side];
        if (steps[side] < 0) {
            first = std::max(first, at);
        } else {
            last = std::min(last, at);
        }
    }
    if (first > last) {
        return false;
    }
    const QPointF start = from;
    if (last < 1) {
        to = start + way * last;
    }
    if (first > 0) {
        from = start + way * first;
    }
    return true;
}

} // namespace

std::vector<Outline> Flatten(const Path& path, const QTransform& toPixels)
{
    std::vector<Outline> outlines;
    const std::vector<QPointF>& points = path.Points();
    size_t at = 0;
    QPointF start;
    QPointF current;
    bool open = false;
    size_t bent = 0; // points that stand for curves
    const auto begin = [&] {
        if (!open) {
            outlines.emplace_back();
            outlines.back().points.push_back(current);
            open = true;
        }
    };
    for (const PathStep step : path.Steps()) {
        switch (step) {
        case PathStep::Move:
            current = start = toPixels.map(points[at++]);
            open = false;
            begin();
            break;
        case PathStep::Line:
            begin();
            current = toPixels.map(points[at++]);
            outlines.back().points.push_back(current);
            break;
        case PathStep::Cubic: {
            begin();
            const QPointF first = toPixels.map(points[at]);
            const QPointF second = toPixels.map(points[at + 1]);
            const QPointF end = toPixels.map(points[at + 2]);
            at += 3;
            const size_t before = outlines.back().points.size();
            if (bent < kFlatMaxPoints) {
                FlatCurve(current, first, second, end, outlines.back().points);
            } else {
                outlines.back().points.push_back(end);
            }
            current = end;
            bent += outlines.back().points.size() - before;
            break;
        }
        case PathStep::Close:
            if (open) {
                outlines.back().closed = true;
                open = false;
            }
            current = start;
            break;
        }
    }
    return outlines;
}

std::vector<QPointF> ClipPolygon(const std::vector<QPointF>& polygon, const QRectF& box)
{
    const bool inside = std::all_of(polygon.begin(), polygon.end(),
                                    [&](const QPointF& point) { return box.contains(point); });
    if (inside) {
        return polygon;
    }
    std::vector<QPointF> kept =
        FlatHalf(polygon, [&](const QPointF& point) { return point.x() - box.left(); });
    kept = FlatHalf(kept, [&](const QPointF& point) { return box.right() - point.x(); });
    kept = FlatHalf(kept, [&](const QPointF& point) { return point.y() - box.top(); });
    return FlatHalf(kept, [&](const QPointF& point) { return box.bottom() - point.y(); });
}

std::vector<Outline> ClipLines(const Outline& lines, const QRectF& box)
{
    const std::vector<QPointF>& points = lines.points;
    const bool inside = std::all_of(points.begin(), points.end(),
                                    [&](const QPointF& point) { return box.contains(point); });
    if (inside) {
        return {lines};
    }
    std::vector<Outline> pieces;
    const size_t count = points.size() + (lines.closed ? 1 : 0);
    bool joined = false;
    for (size_t i = 1; i < count; ++i) {
        QPointF from = points[i - 1];
        QPointF to = points[i % points.size()];
        const QPointF end = to;
        if (!FlatCutLine(from, to, box)) {
            joined = false;
            continue;
        }
        if (!joined) {
            pieces.emplace_back();
            pieces.back().points.push_back(from);
        }
        pieces.back().points.push_back(to);
        joined = to == end;
    }
    return pieces;
}

} // namespace quillane::drawing
