#include "widgets/ui/engine_view.h"

#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <algorithm>
#include <array>
#include <cmath>

namespace quillane {

namespace {

constexpr int kCheckerSide = 8; // logical pixels

QBrush CheckerBrush(const QPalette& palette, double ratio)
{
    const bool dark = palette.color(QPalette::Base).lightness() < 128;
    const int side = std::max(1, int(std::lround(kCheckerSide * ratio)));
    QPixmap tile(2 * side, 2 * side);
    tile.fill(dark ? QColor(70, 70, 70) : QColor(255, 255, 255));
    QPainter painter(&tile);
    const QColor other = dark ? QColor(95, 95, 95) : QColor(216, 216, 216);
    painter.fillRect(0, 0, side, side, other);
    painter.fillRect(side, side, side, side, other);
    return QBrush(tile);
}

QPainterPath BandPath(const RubberBand& band, const ViewGeometry& geometry)
{
    QPainterPath path;
    const QRectF box = geometry.ToView(band.Places());
    switch (band.Mode()) {
    case kBandEllipse:
        path.addEllipse(box);
        break;
    case kBandRoundRectangle: {
        const double corner = RoundedCorner(box.width(), box.height());
        path.addRoundedRect(box, corner, corner);
        break;
    }
    case kBandFreeHand:
        if (!band.Line().isEmpty()) {
            path.moveTo(geometry.ToView(band.Line().first()));
            for (const QPointF& place : band.Line()) {
                path.lineTo(geometry.ToView(place));
            }
        }
        break;
    default:
        path.addRect(box);
        break;
    }
    return path;
}

} // namespace

void EngineView::paintEvent(QPaintEvent* event)
{
    if (mGeometry.IsEmpty()) {
        return;
    }
    if (mGeometry.ratio != devicePixelRatioF()) {
        Relayout(); // the window has come to another screen
    }
    const double ratio = mGeometry.ratio;
    const QRect exposed =
        QRectF(QPointF(event->rect().topLeft()) * ratio, QSizeF(event->rect().size()) * ratio)
            .toAlignedRect();
    QPainter painter(viewport());
    painter.save();
    painter.scale(1 / ratio, 1 / ratio); // from here on in device pixels
    const QRect seen = QRect(mGeometry.origin, mGeometry.shown).intersected(exposed);
    if (mPainter.HasAlpha()) {
        painter.setBrushOrigin(mGeometry.origin);
        painter.fillRect(seen, CheckerBrush(palette(), ratio));
    }
    mPainter.Paint(painter, mGeometry, ViewDevicePixels(), exposed);
    PaintFloater(painter, exposed);
    mFrame.Paint(painter, mGeometry, ViewDevicePixels());
    painter.restore();
    PaintBand(painter);
    PaintGlass(painter);
}

ViewGeometry EngineView::FloaterGeometry() const
{
    ViewGeometry floater = mGeometry;
    floater.picture = mFloaterPainter.PictureSize();
    floater.shown = {std::max(1, int(std::lround(floater.picture.width() * mGeometry.ZoomX()))),
                     std::max(1, int(std::lround(floater.picture.height() * mGeometry.ZoomY())))};
    floater.origin = mGeometry.ToDevice(QPointF(mFloaterPlace)).toPoint();
    return floater;
}

void EngineView::PaintFloater(QPainter& painter, const QRect& exposed)
{
    if (!mFloaterVisible) {
        return;
    }
    // What lies beside the picture would be lost when it is laid down, and is not shown either.
    const QRect inside = QRect(mGeometry.origin, mGeometry.shown).intersected(exposed);
    painter.save();
    painter.setClipRect(inside);
    mFloaterPainter.Paint(painter, FloaterGeometry(), ViewDevicePixels(), inside);
    painter.restore();
}

void EngineView::PaintBand(QPainter& painter)
{
    if (!mBand.IsActive()) {
        return;
    }
    const QPainterPath path = BandPath(mBand, mGeometry);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, mBand.Mode() != kBandRectangle);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 1));
    painter.drawPath(path);
    painter.setPen(QPen(Qt::black, 1, Qt::CustomDashLine));
    QPen dashes = painter.pen();
    dashes.setDashPattern({4, 4});
    painter.setPen(dashes);
    painter.drawPath(path);
    painter.restore();
}

QRectF EngineView::MagnifierRect() const
{
    if (!mGlass || !mGlassAt || mGeometry.IsEmpty()) {
        return {};
    }
    const QSizeF size(mGlass->width, mGlass->height);
    return QRectF(*mGlassAt - QPointF(size.width() / 2, size.height() / 2), size);
}

double EngineView::MagnifierZoom() const
{
    if (!mGlass || mGeometry.IsEmpty()) {
        return 0;
    }
    return std::clamp(std::max(mGlass->zoom, mGlass->leastTimes * mGeometry.ZoomX()),
                      kSmallestZoom / 100.0, 2 * kLargestZoom / 100.0);
}

void EngineView::PaintGlass(QPainter& painter)
{
    const QRectF glass = MagnifierRect();
    if (glass.isEmpty()) {
        return;
    }
    QPainterPath shape;
    if (mGlass->round) {
        shape.addEllipse(glass);
    } else {
        shape.addRect(glass);
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(shape);
    painter.fillPath(
        shape, mGlass->background.isValid() ? mGlass->background : palette().color(QPalette::Dark));
    const double ratio = mGeometry.ratio;
    const QSize shown = ViewGeometry::ShownSize(mGeometry.picture, MagnifierZoom());
    const QPointF place = ClientToBitmap(*mGlassAt);
    const QPointF middle(place.x() * shown.width() / mGeometry.picture.width(),
                         place.y() * shown.height() / mGeometry.picture.height());
    const QSizeF size = glass.size() * ratio;
    const QPoint corner = (middle - QPointF(size.width() / 2, size.height() / 2)).toPoint();
    const QRect part =
        QRect(corner, QSize(int(std::ceil(size.width())), int(std::ceil(size.height()))))
            .intersected(QRect(QPoint(), shown));
    if (!part.isEmpty()) {
        painter.save();
        painter.translate(glass.topLeft());
        painter.scale(1 / ratio, 1 / ratio);
        const QPoint at = part.topLeft() - corner;
        if (mPainter.HasAlpha()) {
            painter.fillRect(QRect(at, part.size()), CheckerBrush(palette(), ratio));
        }
        painter.drawImage(at, mPainter.PartAtOnce(shown, part));
        painter.restore();
    }
    if (mGlass->cross) {
        const QPointF centre = glass.center();
        for (const auto& [colour, width] :
             {std::pair(QColor(0, 0, 0), 3), std::pair(QColor(255, 255, 255), 1)}) {
            painter.setPen(QPen(colour, width));
            painter.drawLine(centre - QPointF(8, 0), centre + QPointF(8, 0));
            painter.drawLine(centre - QPointF(0, 8), centre + QPointF(0, 8));
        }
    }
    painter.setClipping(false);
    const double border = mGlass->borderWidth;
    const auto outline = [&](const QPen& pen, double inset) {
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        const QRectF box = glass.adjusted(inset, inset, -inset, -inset);
        mGlass->round ? painter.drawEllipse(box) : painter.drawRect(box);
    };
    if (border > 0) {
        outline(QPen(mGlass->border, border), border / 2);
    }
    if (mGlass->shadow) {
        outline(QPen(QColor(0, 0, 0, 140), 1), 0);
        outline(QPen(QColor(0, 0, 0, 140), 1), border);
    }
    painter.restore();
}

} // namespace quillane
