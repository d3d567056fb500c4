#pragma once
#include <QPointF>
#include <QRectF>
#include <QTransform>
#include <vector>

namespace quillane::drawing {

enum class PathStep : quint8 { Move, Line, Cubic, Close };

/// Lines and curves one after the other; a Cubic takes three points, Move and Line one.
class Path {
public:
    void MoveTo(QPointF to) { Add(PathStep::Move, to); }
    void LineTo(QPointF to) { Add(PathStep::Line, to); }
    /// A curve to `to` with its two handles.
    void CubicTo(QPointF first, QPointF second, QPointF to);
    /// A line back to where this part began.
    void Close();
    /// A closed rectangle.
    void AddRectangle(const QRectF& box);
    /// Corner after corner.
    void AddPolygon(const std::vector<QPointF>& corners, bool closed);
    /// Part of the ellipse in `box`, from `start` over `sweep` radians, both of the circle the
    /// ellipse is made of, growing from the x axis towards y. It begins with a line where the path
    /// has begun and `join` is set, else with a move.
    void AddArc(const QRectF& box, double start, double sweep, bool join);
    /// The whole ellipse in `box`, closed.
    void AddEllipse(const QRectF& box);
    /// A rectangle whose corners are quarters of an ellipse of that width and height.
    void AddRoundRectangle(const QRectF& box, double width, double height);
    /// Everything of another path.
    void Append(const Path& other);

    /// Every point through the transform.
    Path Mapped(const QTransform& transform) const;
    /// Box around all points.
    QRectF Bounds() const;
    /// Whether every coordinate is a number that can be worked with (below 1e12 in size).
    bool IsSane() const;
    bool IsEmpty() const { return mSteps.empty(); }
    /// Whether it is one rectangle along the axes, which is then Bounds().
    bool IsRectangle() const;
    void Clear();
    const std::vector<PathStep>& Steps() const { return mSteps; }
    const std::vector<QPointF>& Points() const { return mPoints; }

private:
    void Add(PathStep step, QPointF to);
    std::vector<PathStep> mSteps;
    std::vector<QPointF> mPoints;
};

} // namespace quillane::drawing
