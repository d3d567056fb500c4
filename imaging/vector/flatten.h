#pragma once
// Paths as straight pieces in pixels, cut off at the edges of the canvas: what the painter is given
// never grows with what a file claims.
#include "imaging/vector/path.h"

namespace quillane::drawing {

struct Outline {
    std::vector<QPointF> points;
    bool closed = false;
};

/// The path through `toPixels`, curves as lines that stay within a tenth of a pixel of them.
std::vector<Outline> Flatten(const Path& path, const QTransform& toPixels);
/// The part of a polygon inside `box`; edges may run along the box's sides. Empty when nothing is.
std::vector<QPointF> ClipPolygon(const std::vector<QPointF>& polygon, const QRectF& box);
/// The pieces of a line of lines inside `box`. A closed one that stays inside comes back closed.
std::vector<Outline> ClipLines(const Outline& lines, const QRectF& box);

} // namespace quillane::drawing
