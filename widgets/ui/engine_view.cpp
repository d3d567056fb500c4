#include "widgets/ui/engine_view.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>
#include <QScrollBar>
#include <algorithm>
#include <cmath>
#include <memory>

namespace quillane {

namespace {

constexpr qint32 kSmallestScalar = 1;
constexpr qint32 kLargestScalar = 3200;
constexpr int kCheckerSide = 8;        // logical pixels
constexpr int kPictureScrollStep = 40; // logical pixels
constexpr double kPixelsShown = 2.0;   // from this zoom on, pixels are shown as squares

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

} // namespace

EngineView::EngineView(QWidget* parent) : QAbstractScrollArea(parent), mJobs(1)
{
    setAccessibleName(tr("Picture"));
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    viewport()->setBackgroundRole(QPalette::Dark);
    viewport()->setAutoFillBackground(true);
    horizontalScrollBar()->setLayoutDirection(Qt::LeftToRight);
}

void EngineView::ShowBitmap(const Bitmap& bitmap)
{
    ShowImage(bitmap.IsNull() ? QImage() : bitmap.ToDisplay());
}

void EngineView::ShowImage(const QImage& image)
{
    mImage = image;
    mImage.setDevicePixelRatio(1);
    mReduced = {};
    mReducedWish = {};
    ++mShown;
    UpdateScrollBars();
    viewport()->update();
}

void EngineView::SetPaintSizeMode(qint32 mode)
{
    mMode = mode == kPaintFit || mode == kPaintScaled ? mode : qint32(kPaintNormal);
    UpdateScrollBars();
    viewport()->update();
}

void EngineView::SetPaintScalar(qint32 percent)
{
    mScalar = std::clamp(percent, kSmallestScalar, kLargestScalar);
    UpdateScrollBars();
    viewport()->update();
}

void EngineView::SetAutoScroll(bool on)
{
    mAutoScroll = on;
    UpdateScrollBars();
    viewport()->update();
}

void EngineView::SetEnlargesToFit(bool on)
{
    mEnlarge = on;
    UpdateScrollBars();
    viewport()->update();
}

void EngineView::ForceRepaint()
{
    viewport()->repaint();
}

QSize EngineView::ViewDevicePixels() const
{
    return (QSizeF(viewport()->size()) * devicePixelRatioF()).toSize();
}

double EngineView::Zoom() const
{
    if (mMode == kPaintScaled) {
        return mScalar / 100.0;
    }
    if (mMode != kPaintFit || mImage.isNull()) {
        return 1.0;
    }
    const QSize view = (QSizeF(maximumViewportSize()) * devicePixelRatioF()).toSize();
    const double fit =
        std::min(double(view.width()) / mImage.width(), double(view.height()) / mImage.height());
    return mEnlarge ? fit : std::min(fit, 1.0);
}

double EngineView::ZoomPercent() const
{
    return Zoom() * 100.0;
}

QSize EngineView::ShownDevicePixels() const
{
    if (mImage.isNull()) {
        return {};
    }
    const double zoom = Zoom();
    return {std::max(1, int(std::lround(mImage.width() * zoom))),
            std::max(1, int(std::lround(mImage.height() * zoom)))};
}

void EngineView::UpdateScrollBars()
{
    const bool bars = mAutoScroll && mMode != kPaintFit;
    for (const Qt::Orientation orientation : {Qt::Horizontal, Qt::Vertical}) {
        const auto policy = bars ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff;
        if (orientation == Qt::Horizontal) {
            setHorizontalScrollBarPolicy(policy);
        } else {
            setVerticalScrollBarPolicy(policy);
        }
    }
    const QSize shown = bars ? ShownDevicePixels() : QSize();
    const int step = int(kPictureScrollStep * devicePixelRatioF());
    // A bar that comes takes room from the other direction.
    for (int round = 0; round < 2; ++round) {
        const QSize view = ViewDevicePixels();
        horizontalScrollBar()->setPageStep(view.width());
        horizontalScrollBar()->setSingleStep(step);
        horizontalScrollBar()->setRange(0, std::max(0, shown.width() - view.width()));
        verticalScrollBar()->setPageStep(view.height());
        verticalScrollBar()->setSingleStep(step);
        verticalScrollBar()->setRange(0, std::max(0, shown.height() - view.height()));
    }
}

QPoint EngineView::OriginDevice() const
{
    const QSize view = ViewDevicePixels();
    const QSize shown = ShownDevicePixels();
    const auto origin = [](int viewLength, int length, int scrolled) {
        return length < viewLength ? (viewLength - length) / 2 : -scrolled;
    };
    return {origin(view.width(), shown.width(), horizontalScrollBar()->value()),
            origin(view.height(), shown.height(), verticalScrollBar()->value())};
}

QRectF EngineView::ImageRect() const
{
    if (mImage.isNull()) {
        return {};
    }
    const double ratio = devicePixelRatioF();
    return QRectF(QPointF(OriginDevice()) / ratio, QSizeF(ShownDevicePixels()) / ratio);
}

QPointF EngineView::ClientToBitmap(const QPointF& position) const
{
    return (position * devicePixelRatioF() - OriginDevice()) / Zoom();
}

QPointF EngineView::BitmapToClient(const QPointF& position) const
{
    return (position * Zoom() + OriginDevice()) / devicePixelRatioF();
}

void EngineView::paintEvent(QPaintEvent* event)
{
    if (mImage.isNull()) {
        return;
    }
    QPainter painter(viewport());
    const double ratio = devicePixelRatioF();
    painter.scale(1 / ratio, 1 / ratio); // from here on in device pixels
    const QRectF exposed(QPointF(event->rect().topLeft()) * ratio,
                         QSizeF(event->rect().size()) * ratio);
    PaintPicture(painter, exposed.toAlignedRect());
}

void EngineView::PaintPicture(QPainter& painter, const QRect& exposed)
{
    const QRect target(OriginDevice(), ShownDevicePixels());
    const QRect seen = target.intersected(exposed);
    if (seen.isEmpty()) {
        return;
    }
    if (mImage.hasAlphaChannel()) {
        painter.setBrushOrigin(target.topLeft());
        painter.fillRect(seen, CheckerBrush(palette(), devicePixelRatioF()));
    }
    if (target.size() == mImage.size()) {
        painter.drawImage(seen.topLeft(), mImage, seen.translated(-target.topLeft()));
        return;
    }
    const double zoom = Zoom();
    if (zoom < 1.0) {
        painter.setClipRect(seen);
        PaintReduced(painter, target);
        return;
    }
    // Only the pixels in sight, whole ones, so that their edges stay where they are.
    const QRect source = QRectF((seen.x() - target.x()) / zoom, (seen.y() - target.y()) / zoom,
                                seen.width() / zoom, seen.height() / zoom)
                             .toAlignedRect()
                             .adjusted(-1, -1, 1, 1)
                             .intersected(mImage.rect());
    painter.setClipRect(seen);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom < kPixelsShown);
    painter.drawImage(QRectF(target.x() + source.x() * zoom, target.y() + source.y() * zoom,
                             source.width() * zoom, source.height() * zoom),
                      mImage, source);
}

void EngineView::PaintReduced(QPainter& painter, const QRect& target)
{
    if (mReduced.size() == target.size()) {
        painter.drawImage(target.topLeft(), mReduced);
        return;
    }
    // Something at once; the smooth picture follows.
    painter.drawImage(target, mReduced.isNull() ? mImage : mReduced);
    MakeReduced(target.size());
}

void EngineView::MakeReduced(QSize size)
{
    if (size == mReducedWish) {
        return;
    }
    mReducedWish = size;
    const auto reduced = std::make_shared<QImage>();
    mJobs.Run(
        [reduced, image = mImage, size] {
            *reduced = image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        },
        [this, reduced, size, shown = mShown] {
            if (shown == mShown && size == mReducedWish) {
                mReduced = *reduced;
                viewport()->update();
            }
        });
}

void EngineView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    UpdateScrollBars();
}

void EngineView::scrollContentsBy(int, int)
{
    viewport()->update();
}

void EngineView::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        viewport()->update();
    }
}

} // namespace quillane
