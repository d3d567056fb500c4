#pragma once
// The painter's inside: one canvas with its budget of work.
#include "imaging/vector/flatten.h"
#include "imaging/vector/glyphs.h"
#include "imaging/vector/painter.h"
#include "imaging/vector/raster_op.h"
#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <functional>

namespace quillane::drawing {

class Canvas {
public:
    explicit Canvas(const PaintRequest& request);
    /// Draws one record; what would be too much work is left out, and IsCutShort says so.
    void Draw(const Drawing& drawing, const Record& record);
    bool IsCutShort() const { return mCutShort; }
    bool IsExhausted() const { return mWork <= 0; }
    /// The picture; nothing can be drawn afterwards.
    QImage Take();

private:
    /// Where things go: the canvas itself, or a layer for a raster operation.
    struct Target {
        QPainter* painter = nullptr;
        bool smooth = true;
    };
    bool Spend(double work);
    void DrawShape(const Shape& shape, const Stroke& stroke, const Fill& fill, quint8 rop);
    void DrawText(const TextRun& run, quint8 rop);
    void DrawPicture(const Picture& picture, quint8 rop);
    void FillOutlines(const std::vector<Outline>& outlines, const Fill& fill, const Target& target);
    void StrokeOutlines(const std::vector<Outline>& outlines, const Stroke& stroke,
                        const Target& target);
    void StrokePart(const Outline& piece, size_t from, size_t to, const QPen& pen,
                    const Target& target);
    void PaintText(const TextRun& run, const Target& target);
    void PaintPicture(const Picture& picture, const Target& target);
    double StrokeWidth(const Stroke& stroke) const;
    QRegion RegionOf(const Clip& clip);
    QRegion RegionOfPath(const Path& path, bool winding);
    void UseClip(const ClipPointer& clip);
    void OnTarget(const QRectF& pixels, quint8 rop, quint8 plain, QRgb other,
                  const std::function<void(const Target&)>& paint);

    QImage mImage;
    QPainter mPainter;
    QTransform mToPixels;
    double mScale = 1;
    GlyphStore mGlyphs;
    ClipPointer mClip;
    QRegion mRegion; ///< of mClip
    QHash<const Clip*, QRegion> mRegions;
    double mWork;
    bool mCutShort = false;
};

} // namespace quillane::drawing
