#include "imaging/vector/canvas.h"
#include <algorithm>
#include <cmath>

namespace quillane::drawing {

namespace {

/// Work of one drawing, in steps of about a nanosecond each.
constexpr double kCanvasWork = 1.2e9;
constexpr qsizetype kCanvasRegions = 32; ///< clipping areas that are remembered
constexpr size_t kCanvasPart = 64;       ///< points of a line of lines that are drawn at once
constexpr int kCanvasMaxSpans = 400'000; ///< of one clipping area

/// What filling costs: every edge crosses rows, and looks for its place among the others there.
double CanvasFillWork(const std::vector<QPointF>& polygon, double width)
{
    double rows = 0;
    for (size_t i = 0; i < polygon.size(); ++i) {
        const QPointF& from = polygon[i == 0 ? polygon.size() - 1 : i - 1];
        rows += std::abs(polygon[i].y() - from.y()) + 0.3 * std::abs(polygon[i].x() - from.x());
    }
    const double neighbours = std::min(width, double(polygon.size()));
    return 100 * double(polygon.size()) + rows * (20 + neighbours / 2);
}

QPen CanvasPen(const Stroke& stroke, double width)
{
    QPen pen(QColor::fromRgb(stroke.colour), width, stroke.style, stroke.cap, stroke.join);
    pen.setMiterLimit(std::clamp(stroke.miter, 1.0, 40.0));
    if (stroke.style != Qt::SolidLine && width < 2) {
        // The pattern of a thin line is that of the screen, in pixels.
        using Pattern = QList<qreal>;
        pen.setDashPattern(stroke.style == Qt::DashLine          ? Pattern{12, 5}
                               : stroke.style == Qt::DotLine     ? Pattern{2, 3}
                               : stroke.style == Qt::DashDotLine ? Pattern{9, 4, 2, 4}
                                                                 : Pattern{9, 3, 2, 3, 2, 3});
    }
    return pen;
}

/// Rows of the pixels that are set, as rectangles.
QRegion CanvasSpans(const QImage& mask, QPoint at)
{
    std::vector<QRect> spans;
    for (int y = 0; y < mask.height(); ++y) {
        const uchar* row = mask.constScanLine(y);
        for (int x = 0; x < mask.width(); ++x) {
            if (row[x] < 128) {
                continue;
            }
            const int from = x;
            while (x < mask.width() && row[x] >= 128) {
                ++x;
            }
            spans.emplace_back(at.x() + from, at.y() + y, x - from, 1);
        }
        if (spans.size() > size_t(kCanvasMaxSpans)) {
            break;
        }
    }
    QRegion region;
    region.setRects(spans.data(), int(spans.size()));
    return region;
}

} // namespace

Canvas::Canvas(const PaintRequest& request)
    : mImage(request.size, QImage::Format_RGB32),
      mWork(kCanvasWork)
{
    mImage.fill(request.paper);
    mPainter.begin(&mImage);
    mPainter.setRenderHint(QPainter::Antialiasing);
    mRegion = mImage.rect();
    const double sx = request.size.width() / request.view.width();
    const double sy = request.size.height() / request.view.height();
    mToPixels = QTransform(sx, 0, 0, sy, -request.view.left() * sx, -request.view.top() * sy);
    mScale = std::sqrt(std::abs(sx * sy));
}

QImage Canvas::Take()
{
    mPainter.end();
    return std::move(mImage);
}

bool Canvas::Spend(double work)
{
    if (!(work <= mWork)) {
        mCutShort = true;
        // What remains is for smaller things.
        mWork -= std::min(mWork, kCanvasWork / 1000);
        return false;
    }
    mWork -= work;
    return true;
}

void Canvas::Draw(const Drawing& drawing, const Record& record)
{
    if (!Spend(500)) {
        return;
    }
    UseClip(record.clip);
    if (mRegion.isEmpty()) {
        return;
    }
    switch (record.kind) {
    case RecordKind::Path: {
        const Shape& shape = drawing.Shapes()[record.index];
        DrawShape(shape, drawing.StrokeOf(shape), drawing.FillOf(shape), record.rop);
        break;
    }
    case RecordKind::Text:
        DrawText(drawing.Texts()[record.index], record.rop);
        break;
    case RecordKind::Picture:
        DrawPicture(drawing.Pictures()[record.index], record.rop);
        break;
    }
}

void Canvas::UseClip(const ClipPointer& clip)
{
    if (clip == mClip) {
        return;
    }
    mClip = clip;
    if (!clip) {
        mRegion = mImage.rect();
        mPainter.setClipping(false);
        return;
    }
    mRegion = RegionOf(*clip);
    mPainter.setClipRegion(mRegion);
}

QRegion Canvas::RegionOf(const Clip& clip)
{
    // The steps whose area is not known yet, newest first.
    std::vector<const Clip*> steps;
    QRegion region = mImage.rect();
    for (const Clip* step = &clip; step; step = step->before.get()) {
        const auto known = mRegions.constFind(step);
        if (known != mRegions.constEnd()) {
            region = *known;
            break;
        }
        steps.push_back(step);
    }
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        const QRegion area = RegionOfPath((*step)->path, (*step)->winding);
        if (!Spend(40.0 * (area.rectCount() + region.rectCount()))) {
            return {};
        }
        switch ((*step)->mode) {
        case ClipMode::Intersect:
            region &= area;
            break;
        case ClipMode::Exclude:
            region -= area;
            break;
        case ClipMode::Unite:
            region |= area;
            break;
        case ClipMode::Xor:
            region ^= area;
            break;
        }
        if (mRegions.size() >= kCanvasRegions) {
            mRegions.clear();
        }
        mRegions.insert(*step, region);
    }
    return region;
}

QRegion Canvas::RegionOfPath(const Path& path, bool winding)
{
    const QRectF screen(mImage.rect());
    if (path.IsRectangle()) {
        const QRectF box = mToPixels.mapRect(path.Bounds()).intersected(screen);
        const QPoint from(int(std::floor(box.left() + 0.5)), int(std::floor(box.top() + 0.5)));
        const QPoint to(int(std::floor(box.right() + 0.5)), int(std::floor(box.bottom() + 0.5)));
        return box.isEmpty() ? QRegion() : QRegion(QRect(from, to - QPoint(1, 1)));
    }
    const QRectF box = mToPixels.mapRect(path.Bounds()).intersected(screen);
    const QRect area = box.toAlignedRect().intersected(mImage.rect());
    if (area.isEmpty() || !Spend(2.0 * area.width() * area.height())) {
        return {};
    }
    QImage mask(area.size(), QImage::Format_Grayscale8);
    mask.fill(0);
    QPainter painter(&mask);
    painter.translate(-area.topLeft());
    Fill fill;
    fill.style = Qt::SolidPattern;
    fill.colour = 0xffffffff;
    fill.winding = winding;
    Target target;
    target.painter = &painter;
    target.smooth = false;
    FillOutlines(Flatten(path, mToPixels), fill, target);
    painter.end();
    return CanvasSpans(mask, area.topLeft());
}

/// Runs `paint` on the canvas when the operation is the plain one, else on a layer over `pixels`
/// that is then combined with the canvas.
void Canvas::OnTarget(const QRectF& pixels, quint8 rop, quint8 plain, QRgb other,
                      const std::function<void(const Target&)>& paint)
{
    Target target;
    if (rop == plain) {
        target.painter = &mPainter;
        paint(target);
        return;
    }
    if (rop == 0xaa) {
        return; // the destination stays as it is
    }
    const QRectF within = pixels.intersected(QRectF(mImage.rect()));
    const QRect area = within.toAlignedRect().adjusted(-1, -1, 1, 1).intersected(mImage.rect());
    if (!pixels.intersects(QRectF(mImage.rect()).adjusted(-1, -1, 1, 1)) || area.isEmpty()
        || !Spend(25.0 * area.width() * area.height())) {
        return;
    }
    RopLayer layer;
    layer.pixels = QImage(area.size(), QImage::Format_ARGB32_Premultiplied);
    layer.pixels.fill(0);
    layer.at = area.topLeft();
    layer.isPattern = plain == kRopPattern;
    layer.other = other;
    QPainter painter(&layer.pixels);
    painter.translate(-area.topLeft());
    target.painter = &painter;
    target.smooth = false;
    paint(target);
    painter.end();
    // The canvas is written past its painter, which holds no copy of it.
    CombineLayer(mImage, layer, mRegion, rop);
}

double Canvas::StrokeWidth(const Stroke& stroke) const
{
    const double most = 4.0 * (mImage.width() + mImage.height());
    return std::clamp(stroke.width * mScale, 1.0, most);
}

void Canvas::DrawShape(const Shape& shape, const Stroke& stroke, const Fill& fill, quint8 rop)
{
    if (!Spend(60.0 * double(shape.path.Points().size()))) {
        return;
    }
    const double half = stroke.style == Qt::NoPen ? 1 : StrokeWidth(stroke) * 2;
    const QRectF box = mToPixels.mapRect(shape.path.Bounds()).adjusted(-half, -half, half, half);
    if (!box.intersects(QRectF(mRegion.boundingRect()))) {
        return;
    }
    const std::vector<Outline> outlines = Flatten(shape.path, mToPixels);
    if (fill.style != Qt::NoBrush) {
        OnTarget(box, rop, kRopPattern, 0xff000000,
                 [&](const Target& target) { FillOutlines(outlines, fill, target); });
    }
    if (stroke.style != Qt::NoPen) {
        OnTarget(box, rop, kRopPattern, 0xff000000,
                 [&](const Target& target) { StrokeOutlines(outlines, stroke, target); });
    }
}

void Canvas::FillOutlines(const std::vector<Outline>& outlines, const Fill& fill,
                          const Target& target)
{
    const QRectF screen = QRectF(mImage.rect()).adjusted(-2, -2, 2, 2);
    QPainterPath path;
    path.setFillRule(fill.winding ? Qt::WindingFill : Qt::OddEvenFill);
    std::vector<QPointF> all;
    for (const Outline& outline : outlines) {
        const std::vector<QPointF> kept = ClipPolygon(outline.points, screen);
        if (kept.size() < 3) {
            continue;
        }
        all.insert(all.end(), kept.begin(), kept.end());
        path.moveTo(kept.front());
        for (size_t i = 1; i < kept.size(); ++i) {
            path.lineTo(kept[i]);
        }
        path.closeSubpath();
    }
    if (path.isEmpty()) {
        return;
    }
    const QRectF box = path.boundingRect();
    if (!Spend(CanvasFillWork(all, box.width()) + box.width() * box.height())) {
        return;
    }
    target.painter->setRenderHint(QPainter::Antialiasing, target.smooth);
    if (fill.backed && fill.style != Qt::SolidPattern && fill.style != Qt::TexturePattern) {
        target.painter->fillPath(path, QColor::fromRgb(fill.back));
    }
    if (fill.style == Qt::TexturePattern) {
        target.painter->fillPath(path, QBrush(fill.pattern));
    } else {
        target.painter->fillPath(path, QBrush(QColor::fromRgb(fill.colour), fill.style));
    }
}

void Canvas::StrokeOutlines(const std::vector<Outline>& outlines, const Stroke& stroke,
                            const Target& target)
{
    const double width = StrokeWidth(stroke);
    const double margin = 2 * width + 2;
    const QRectF screen = QRectF(mImage.rect()).adjusted(-margin, -margin, margin, margin);
    const QPen pen = CanvasPen(stroke, width);
    target.painter->setRenderHint(QPainter::Antialiasing, target.smooth);
    for (const Outline& outline : outlines) {
        for (const Outline& piece : ClipLines(outline, screen)) {
            // Long lines of lines in parts: what crosses itself often costs more as a whole.
            const size_t count = piece.points.size();
            for (size_t from = 0; from + 1 < count || from == 0; from += kCanvasPart) {
                const size_t to = std::min(from + kCanvasPart, count - 1);
                StrokePart(piece, from, to, pen, target);
            }
        }
    }
}

/// The points from one index to another, both included.
void Canvas::StrokePart(const Outline& piece, size_t from, size_t to, const QPen& pen,
                        const Target& target)
{
    const std::vector<QPointF>& points = piece.points;
    const double width = pen.widthF();
    const bool closed = piece.closed && from == 0 && to + 1 == points.size();
    double rows = 0;
    double length = 0;
    const auto count = [&](const QPointF& way) {
        rows += std::abs(way.y()) + width;
        length += std::abs(way.x()) + std::abs(way.y());
    };
    for (size_t i = from + 1; i <= to; ++i) {
        count(points[i] - points[i - 1]);
    }
    if (piece.closed && to + 1 == points.size()) {
        count(points.front() - points.back());
    }
    const double neighbours = std::min(double(mImage.width()), 2.0 * double(to - from + 1));
    const double dashes = pen.style() == Qt::SolidLine ? 0 : 300 * length / width;
    if (!Spend(3000 + 300 * double(to - from + 1) + 2 * rows * (8 + neighbours / 2)
               + (11 + width) * length + dashes)) {
        return;
    }
    if (points.size() == 2 && !piece.closed && pen.style() == Qt::SolidLine && width < 2) {
        // The painter has a shorter way for single lines without round ends.
        QPen square = pen;
        square.setCapStyle(Qt::SquareCap);
        if (target.painter->pen() != square) {
            target.painter->setPen(square);
        }
        target.painter->drawLine(points[0], points[1]);
        return;
    }
    QPainterPath path(points[from]);
    for (size_t i = from + 1; i <= to; ++i) {
        path.lineTo(points[i]);
    }
    if (closed) {
        path.closeSubpath();
    } else if (piece.closed && to + 1 == points.size()) {
        path.lineTo(points.front());
    } else if (from == to) {
        path.lineTo(points[from] + QPointF(0.01, 0));
    }
    target.painter->strokePath(path, pen);
}

} // namespace quillane::drawing
