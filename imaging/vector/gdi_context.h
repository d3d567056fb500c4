#pragma once
// A device context as Windows' metafiles know it, which draws into a list.
#include "imaging/vector/gdi_objects.h"

namespace quillane::drawing {

class GdiContext {
public:
    explicit GdiContext(Drawing& drawing);

    // --- where things are
    /// Mapping mode 1 to 8 (MM_TEXT to MM_ANISOTROPIC).
    void SetMapMode(int mode);
    void SetWindowOrg(QPointF to) { mState.windowOrg = to; }
    void SetViewportOrg(QPointF to) { mState.viewportOrg = to; }
    /// Sizes of window and viewport; one of nothing changes nothing.
    void SetWindowExt(QPointF to);
    void SetViewportExt(QPointF to);
    void MoveWindowOrg(QPointF by) { mState.windowOrg += by; }
    void MoveViewportOrg(QPointF by) { mState.viewportOrg += by; }
    void ScaleWindowExt(double x, double y) { SetWindowExt(Scaled(mState.windowExt, x, y)); }
    void ScaleViewportExt(double x, double y) { SetViewportExt(Scaled(mState.viewportExt, x, y)); }
    void SetWorld(const QTransform& world) { mState.world = world; }
    const QTransform& World() const { return mState.world; }
    /// Device units in a millimetre, for the mapping modes that count in such.
    void SetDotsPerMillimetre(QPointF dots) { mDots = dots; }
    /// From logical units to device units.
    QTransform ToDevice() const;
    /// Whether the drawing tells the window itself (modes with free or even scales).
    bool HasWindow() const { return mState.mapMode >= 7; }

    // --- what is drawn with
    void SetTextColour(QRgb colour) { mState.textColour = colour; }
    void SetBackColour(QRgb colour) { mState.backColour = colour; }
    QRgb TextColour() const { return mState.textColour; }
    QRgb BackColour() const { return mState.backColour; }
    void SetBackMode(quint32 mode) { mState.opaque = mode == 2; }
    void SetPolyFillMode(quint32 mode) { mState.winding = mode == 2; }
    void SetRop2(int mode) { mState.rop = GdiRop2(mode); }
    void SetTextAlign(quint32 align) { mState.textAlign = align; }
    void SetTextExtra(double extra) { mState.textExtra = extra; }
    void SetStretchMode(quint32 mode) { mState.stretchMode = mode; }
    void SetMiterLimit(double limit) { mState.miter = limit; }
    void SetArcClockwise(bool clockwise) { mState.arcClockwise = clockwise; }
    /// Draws with a pen, brush or font from now on; a region becomes the clipping area.
    void Select(const GdiObject& object);
    /// Selects one of the objects that are always there, 0 to 8.
    void SelectStock(quint32 number);
    const GdiBrush& Brush() const { return mState.brush; }
    const GdiFont& Font() const { return mState.font; }
    /// Puts the state aside, at most 512 times.
    void Save();
    /// Back to state `number` where it is positive, else that many states back.
    void Restore(qint32 number);

    // --- figures, in logical units
    QPointF Current() const { return mState.current; }
    /// The current point, without a line or with one.
    void MoveTo(QPointF to);
    void LineTo(QPointF to);
    /// Lines and curves (three points each), from the first point or from the current one, which
    /// then moves along.
    void Polyline(const std::vector<QPointF>& points, bool fromCurrent);
    void Bezier(const std::vector<QPointF>& points, bool fromCurrent);
    /// Closed figures, filled with the brush; several together are one area.
    void Polygon(const std::vector<QPointF>& points);
    void PolyPolygon(const std::vector<std::vector<QPointF>>& polygons);
    /// Several lines of lines.
    void PolyPolyline(const std::vector<std::vector<QPointF>>& lines);
    /// Closed figures in a box, filled with the brush.
    void Rectangle(const QRectF& box);
    void RoundRectangle(const QRectF& box, double width, double height);
    void Ellipse(const QRectF& box);
    enum class ArcKind : quint8 { Open, To, Chord, Pie };
    /// Part of the ellipse in the box, between the rays from its middle through both points.
    void Arc(const QRectF& box, QPointF start, QPointF end, ArcKind kind);
    /// Part of a circle by angles in degrees against the clock, with a line to its start.
    void AngleArc(QPointF centre, double radius, double start, double sweep);
    /// One unit square.
    void Pixel(QPointF at, QRgb colour);
    /// A path made elsewhere, in device units.
    void Paint(const Path& device, const Stroke& stroke, const Fill& fill);

    // --- the path bracket
    /// Until EndPath figures are collected; AbortPath forgets them.
    void BeginPath();
    void AbortPath();
    void EndPath() { mInPath = false; }
    /// Closes the last line of lines of the bracket.
    void CloseFigure();
    /// Draws what was collected.
    void FinishPath(bool stroke, bool fill);
    /// Clips to what was collected; modes as of ClipToRegion.
    void ClipToPath(quint32 mode);
    bool IsInPath() const { return mInPath; }

    // --- clipping
    /// Less is seen: only what lies in the box, or nothing of it.
    void IntersectClip(const QRectF& box);
    void ExcludeClip(const QRectF& box);
    /// Moves the clipping area by logical units.
    void OffsetClip(QPointF by);
    /// Region modes: 1 and, 2 or, 3 xor, 4 difference, 5 copy (an empty path takes all clips away).
    void ClipToRegion(const Path& device, quint32 mode);

    // --- text and pictures
    struct TextOut {
        QPointF at;
        QString text;
        std::vector<float> advances; ///< logical units
        bool opaque = false;         ///< `box` is filled
        bool clipped = false;        ///< text is cut at `box`
        QRectF box;
    };
    /// A run of text in the selected font.
    void Text(const TextOut& out);
    struct Blit {
        QRectF to;    ///< logical units; negative sizes mirror
        QImage image; ///< null: the brush alone
        QRectF from;  ///< pixels of the image
        quint32 rop = 0x00cc0020;
        int opacity = 255;
        std::optional<QTransform> place; ///< from the unit square to logical units, instead of `to`
    };
    /// A picture, the brush or both, by raster operation.
    void Bitmap(const Blit& blit);
    /// An area of one colour, whatever the brush.
    void Gradient(const Path& logical, QRgb colour);

private:
    struct State {
        int mapMode = 1;
        QPointF windowOrg, windowExt{1, 1}, viewportOrg, viewportExt{1, 1};
        QTransform world;
        QPointF current;
        GdiPen pen;
        GdiBrush brush;
        GdiFont font;
        QRgb textColour = 0xff000000, backColour = 0xffffffff;
        bool opaque = true, winding = false, arcClockwise = false;
        quint8 rop = kRopPattern;
        quint32 textAlign = 0, stretchMode = 1;
        double textExtra = 0, miter = 10;
        ClipPointer clip;
    };
    static QPointF Scaled(QPointF value, double x, double y);
    void Figure(Path logical, bool filled);
    Stroke DeviceStroke() const;
    Fill DeviceFill() const;
    TextRun RunOf(const TextOut& out) const;
    bool SpendClip(const Path& path);

    Drawing& mDrawing;
    State mState;
    std::vector<State> mSaved;
    QPointF mDots{96 / 25.4, 96 / 25.4};
    Path mPath;             ///< of the bracket, device units
    size_t mClipPoints = 0; ///< in all clipping areas so far
    bool mInPath = false;
    bool mPathAtCurrent = false; ///< the bracket's last point is the current one
};

} // namespace quillane::drawing
