#include "widgets/region_outline.h"
#include <algorithm>
#include <array>
#include <cmath>

namespace quillane {

namespace {

constexpr int kOutlineThin = 3; ///< screen pixels, between which all of a region may fall

/// The screen pixels whose centres lie between two places along one side; at least one.
struct OutlineSide {
    int first, last;
    OutlineSide(int from, int to, double zoom, int origin)
        : first(int(std::ceil(from * zoom - 0.5)) + origin),
          last(std::max(first, int(std::ceil(to * zoom - 0.5)) + origin - 1))
    { }
};

std::vector<QPoint> OutlineOfRectangle(const QRect& edges, const QRect& view)
{
    std::vector<QPoint> points;
    const QRect seen = edges.intersected(view);
    if (seen.isEmpty()) {
        return points;
    }
    points.reserve(size_t(seen.width() + seen.height()) * 2);
    for (const int y : {edges.top(), edges.bottom()}) {
        if (y < view.top() || y > view.bottom()
            || (y == edges.bottom() && y == edges.top() && !points.empty())) {
            continue;
        }
        for (int x = seen.left(); x <= seen.right(); ++x) {
            points.emplace_back(x, y);
        }
    }
    for (int y = std::max(seen.top(), edges.top() + 1);
         y <= std::min(seen.bottom(), edges.bottom() - 1); ++y) {
        if (edges.left() >= view.left()) {
            points.emplace_back(edges.left(), y);
        }
        if (edges.right() <= view.right() && edges.right() != edges.left()) {
            points.emplace_back(edges.right(), y);
        }
    }
    return points;
}

/// One row of screen pixels: which of them are inside.
void OutlineRow(const QImage& mask, const std::vector<int>& columns, int row,
                std::vector<char>& inside)
{
    const uchar* const line = row >= 0 && row < mask.height() ? mask.constScanLine(row) : nullptr;
    for (size_t x = 0; x < columns.size(); ++x) {
        inside[x] = line && columns[x] >= 0 && columns[x] < mask.width() && line[columns[x]] != 0;
    }
}

} // namespace

std::vector<QPoint> OutlineOnScreen(const Region& region, const ViewGeometry& geometry, QSize view)
{
    std::vector<QPoint> points;
    if (region.IsEmpty() || geometry.IsEmpty() || view.isEmpty()) {
        return points;
    }
    const QRect bounds = region.Bounds();
    const OutlineSide across(bounds.left(), bounds.right() + 1, geometry.ZoomX(),
                             geometry.origin.x());
    const OutlineSide down(bounds.top(), bounds.bottom() + 1, geometry.ZoomY(),
                           geometry.origin.y());
    const QRect edges(QPoint(across.first, down.first), QPoint(across.last, down.last));
    const QRect all(QPoint(), view);
    if (region.IsRectangle()) {
        return OutlineOfRectangle(edges, all);
    }
    // One more pixel on each side, for what lies beside those in sight.
    const QRect scanned = edges.intersected(all.adjusted(-1, -1, 1, 1)).adjusted(-1, -1, 1, 1);
    if (edges.intersected(all).isEmpty()) {
        return points;
    }
    std::vector<int> columns(static_cast<size_t>(scanned.width()));
    for (size_t i = 0; i < columns.size(); ++i) {
        const double x = scanned.left() + int(i) + 0.5 - geometry.origin.x();
        columns[i] = int(std::floor(x / geometry.ZoomX())) - bounds.left();
    }
    const auto maskRow = [&](int y) {
        return int(std::floor((y + 0.5 - geometry.origin.y()) / geometry.ZoomY())) - bounds.top();
    };
    std::array<std::vector<char>, 3> rows;
    for (std::vector<char>& row : rows) {
        row.resize(columns.size());
    }
    OutlineRow(region.Mask(), columns, maskRow(scanned.top()), rows[0]);
    OutlineRow(region.Mask(), columns, maskRow(scanned.top() + 1), rows[1]);
    bool any = false;
    for (int y = scanned.top() + 1; y < scanned.bottom(); ++y) {
        OutlineRow(region.Mask(), columns, maskRow(y + 1), rows[2]);
        for (size_t i = 1; i + 1 < columns.size(); ++i) {
            if (!rows[1][i]) {
                continue;
            }
            any = true;
            const QPoint at(scanned.left() + int(i), y);
            const bool surrounded = rows[0][i] && rows[2][i] && rows[1][i - 1] && rows[1][i + 1];
            if (!surrounded && all.contains(at)) {
                points.push_back(at);
            }
        }
        rows[0].swap(rows[1]);
        rows[1].swap(rows[2]);
    }
    const bool thin = edges.width() <= kOutlineThin || edges.height() <= kOutlineThin;
    return any || !thin ? points : OutlineOfRectangle(edges, all);
}

bool RunsUpwards(const Region& region, const ViewGeometry& geometry, QPoint point)
{
    constexpr int kReach = 3; // screen pixels
    const auto inside = [&](int right, int down) {
        const QPointF place((point.x() + right + 0.5 - geometry.origin.x()) / geometry.ZoomX(),
                            (point.y() + down + 0.5 - geometry.origin.y()) / geometry.ZoomY());
        return region.Contains(int(std::floor(place.x())), int(std::floor(place.y())));
    };
    return !region.IsRectangle() && inside(kReach, kReach) != inside(-kReach, -kReach)
        && inside(kReach, -kReach) == inside(-kReach, kReach);
}

} // namespace quillane
