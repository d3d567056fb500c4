#pragma once
#include "imaging/region.h"
#include "widgets/view_geometry.h"
#include <QPoint>
#include <vector>

namespace quillane {

/// The pixels of the screen on which the outline of a region lies, inside it, as far as they are in
/// a view of that many device pixels. A screen pixel belongs to the region when its centre does; a
/// region too thin for any has the outline of its bounds. Work and memory are bounded by the view,
/// however ragged the region.
std::vector<QPoint> OutlineOnScreen(const Region& region, const ViewGeometry& geometry, QSize view);

/// Whether the outline runs upwards to the right there, at about 45 degrees; `point` is one of
/// OutlineOnScreen's. Dashes counted by x + y would not change along such a line.
bool RunsUpwards(const Region& region, const ViewGeometry& geometry, QPoint point);

} // namespace quillane
