#include "widgets/ui/engine_view.h"

#include <QEvent>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

constexpr int kPictureScrollStep = 40; // logical pixels

} // namespace

EngineView::EngineView(QWidget* parent) : QAbstractScrollArea(parent)
{
    setAccessibleName(tr("Picture"));
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    viewport()->setBackgroundRole(QPalette::Dark);
    viewport()->setAutoFillBackground(true);
    viewport()->setMouseTracking(true);
    horizontalScrollBar()->setLayoutDirection(Qt::LeftToRight);
    connect(&mPainter, &PicturePainter::better, this, [this](const QRect& part) {
        if (part.isNull()) {
            viewport()->update();
            return;
        }
        const QRectF device(part.translated(mGeometry.origin));
        viewport()->update(
            QRectF(device.topLeft() / mGeometry.ratio, device.size() / mGeometry.ratio)
                .toAlignedRect()
                .adjusted(-1, -1, 1, 1));
    });
    connect(&mFloaterPainter, &PicturePainter::better, viewport(), qOverload<>(&QWidget::update));
    connect(&mFrame, &MarchingFrame::stepped, viewport(), qOverload<>(&QWidget::update));
}

void EngineView::Show(const EngineInstance& instance)
{
    const bool other = mPainter.SetPicture(instance.Bitmap());
    mFrame.SetRegion(instance.RegionShape());
    const bool floats = instance.FloaterVisible() && !instance.FloaterHandle().IsNull();
    mFloaterVisible = floats;
    mFloaterPlace = instance.FloaterPosition();
    mFloaterPainter.SetPicture(floats ? instance.FloaterHandle() : Bitmap());
    if (other) {
        Replaced(instance.Bitmap().Pixels().size());
    }
    viewport()->update();
}

void EngineView::ShowBitmap(const Bitmap& bitmap)
{
    if (mPainter.SetPicture(bitmap)) {
        DropTools();
        Replaced(bitmap.Pixels().size());
    }
}

void EngineView::ShowImage(const QImage& image)
{
    ShowBitmap(PictureSource::StandIn(image, image.size()).bitmap);
}

void EngineView::ShowReduced(const QImage& early, QSize fullSize)
{
    mPainter.SetReduced(early, fullSize);
    DropTools();
    Replaced(early.isNull() ? QSize() : fullSize);
}

void EngineView::DropTools()
{
    mFrame.SetRegion({});
    mFloaterVisible = false;
    mFloaterPainter.SetPicture({});
}

void EngineView::Replaced(QSize size)
{
    mGeometry.picture = size;
    mBand.Clear();
    mDragging = false;
    Relayout();
    RefreshPointer();
    Q_EMIT pictureReplaced();
}

bool EngineView::IsFinished() const
{
    return mPainter.IsFinished() && (!mFloaterVisible || mFloaterPainter.IsFinished());
}

void EngineView::SetPaintSizeMode(qint32 mode)
{
    const QPointF centre = QRectF(viewport()->rect()).center();
    const QPointF place = ClientToBitmap(centre);
    mMode = mode == kPaintFit || mode == kPaintScaled ? mode : qint32(kPaintNormal);
    Relayout();
    BringTo(place, centre);
}

void EngineView::SetPaintScalar(qint32 percent)
{
    const QPointF centre = QRectF(viewport()->rect()).center();
    const QPointF place = ClientToBitmap(centre);
    mScalar = std::clamp(percent, kSmallestZoom, kLargestZoom);
    mExactPercent = mScalar;
    Relayout();
    BringTo(place, centre);
}

void EngineView::SetAutoScroll(bool on)
{
    mAutoScroll = on;
    Relayout();
}

void EngineView::SetEnlargesToFit(bool on)
{
    mEnlarge = on;
    Relayout();
}

void EngineView::ForceRepaint()
{
    viewport()->repaint();
}

QSize EngineView::ViewDevicePixels() const
{
    return (QSizeF(viewport()->size()) * devicePixelRatioF()).toSize();
}

double EngineView::WantedZoom() const
{
    if (mMode == kPaintScaled) {
        return mScalar / 100.0;
    }
    if (mMode != kPaintFit) {
        return 1.0;
    }
    const QSize frame = (QSizeF(maximumViewportSize()) * devicePixelRatioF()).toSize();
    return ViewGeometry::FittingZoom(mGeometry.picture, frame, mEnlarge);
}

double EngineView::ZoomPercent() const
{
    return WantedZoom() * 100.0;
}

void EngineView::Relayout()
{
    mGeometry.ratio = devicePixelRatioF();
    mGeometry.shown = ViewGeometry::ShownSize(mGeometry.picture, WantedZoom());
    UpdateScrollBars();
    UpdateGeometry();
    viewport()->update();
}

void EngineView::UpdateScrollBars()
{
    const bool bars = mAutoScroll && mMode != kPaintFit;
    const auto policy = bars ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff;
    setHorizontalScrollBarPolicy(policy);
    setVerticalScrollBarPolicy(policy);
    const QSize shown = bars ? mGeometry.shown : QSize();
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

void EngineView::UpdateGeometry()
{
    const QSize view = ViewDevicePixels();
    const auto origin = [](int viewLength, int length, int scrolled) {
        return length < viewLength ? (viewLength - length) / 2 : -scrolled;
    };
    mGeometry.origin = {
        origin(view.width(), mGeometry.shown.width(), horizontalScrollBar()->value()),
        origin(view.height(), mGeometry.shown.height(), verticalScrollBar()->value())};
}

void EngineView::BringTo(const QPointF& place, const QPointF& client)
{
    const QPointF off = mGeometry.ToDevice(place) - client * mGeometry.ratio;
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + int(std::lround(off.x())));
    verticalScrollBar()->setValue(verticalScrollBar()->value() + int(std::lround(off.y())));
}

void EngineView::ZoomAbout(const QPointF& client, double percent)
{
    const QPointF place = ClientToBitmap(client);
    mExactPercent = std::clamp(percent, double(kSmallestZoom), double(kLargestZoom));
    mScalar = qint32(std::lround(mExactPercent));
    mMode = kPaintScaled;
    mAutoScroll = true;
    Relayout();
    BringTo(place, client);
}

QRectF EngineView::ImageRect() const
{
    return mGeometry.Covered();
}

QPointF EngineView::ClientToBitmap(const QPointF& position) const
{
    return mGeometry.ToPicture(position);
}

QPointF EngineView::BitmapToClient(const QPointF& position) const
{
    return mGeometry.ToView(position);
}

void EngineView::SetRegionFrame(qint32 frame)
{
    mRegionFrame = frame;
    mFrame.SetShown(frame != 0, isVisible());
    viewport()->update();
}

void EngineView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    Relayout();
    RefreshPointer();
}

void EngineView::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    mFrame.SetShown(mRegionFrame != 0, true);
}

void EngineView::hideEvent(QHideEvent* event)
{
    QAbstractScrollArea::hideEvent(event);
    mFrame.SetShown(mRegionFrame != 0, false);
}

void EngineView::scrollContentsBy(int, int)
{
    UpdateGeometry();
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
