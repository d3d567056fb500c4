#include "widgets/ui/engine_view.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <cmath>

namespace quillane {

namespace {

constexpr double kWheelStep = 120;       // eighths of a degree that a notch of the wheel turns
constexpr double kZoomOfWheelStep = 1.2; // times
constexpr int kGlassMargin = 3;          // logical pixels that its outline may take besides

} // namespace

void EngineView::ScrollBy(QPointF devicePixels)
{
    mScrollRest += devicePixels;
    const QPoint whole(int(mScrollRest.x()), int(mScrollRest.y()));
    mScrollRest -= whole;
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + whole.x());
    verticalScrollBar()->setValue(verticalScrollBar()->value() + whole.y());
}

void EngineView::ZoomByPerson(const QPointF& client, double factor)
{
    if (!HasImage()) {
        return;
    }
    // Steps too small to change a whole percentage add up as long as nothing else sets it.
    const bool goesOn = mMode == kPaintScaled && std::lround(mExactPercent) == mScalar;
    ZoomAbout(client, (goesOn ? mExactPercent : ZoomPercent()) * factor);
    RefreshPointer();
    Q_EMIT zoomChosen(mScalar);
}

void EngineView::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (event->modifiers() & Qt::ControlModifier) {
        const double steps = event->angleDelta().y() / kWheelStep;
        if (steps != 0) {
            ZoomByPerson(event->position(), std::pow(kZoomOfWheelStep, steps));
        }
        return;
    }
    QPointF delta;
    if (!event->pixelDelta().isNull()) {
        delta = QPointF(event->pixelDelta()) * devicePixelRatioF();
    } else {
        const double step = QApplication::wheelScrollLines() / kWheelStep;
        delta = QPointF(event->angleDelta().x() * step * horizontalScrollBar()->singleStep(),
                        event->angleDelta().y() * step * verticalScrollBar()->singleStep());
    }
    if (event->modifiers() & Qt::ShiftModifier) {
        delta = QPointF(delta.x() + delta.y(), 0);
    }
    ScrollBy(-delta);
}

bool EngineView::Gesture(QNativeGestureEvent* event)
{
    if (event->gestureType() != Qt::ZoomNativeGesture) {
        return false;
    }
    ZoomByPerson(event->position(), std::max(0.5, 1 + event->value()));
    return true;
}

bool EngineView::viewportEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::NativeGesture:
        if (Gesture(static_cast<QNativeGestureEvent*>(event))) {
            return true;
        }
        break;
    case QEvent::Leave:
        MoveGlass(std::nullopt);
        break;
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
        MoveGlass(static_cast<QMouseEvent*>(event)->position());
        break;
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void EngineView::keyPressEvent(QKeyEvent* event)
{
    QScrollBar* const across = horizontalScrollBar();
    QScrollBar* const down = verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Left:
        across->triggerAction(QAbstractSlider::SliderSingleStepSub);
        return;
    case Qt::Key_Right:
        across->triggerAction(QAbstractSlider::SliderSingleStepAdd);
        return;
    case Qt::Key_Up:
        down->triggerAction(QAbstractSlider::SliderSingleStepSub);
        return;
    case Qt::Key_Down:
        down->triggerAction(QAbstractSlider::SliderSingleStepAdd);
        return;
    case Qt::Key_PageUp:
        down->triggerAction(QAbstractSlider::SliderPageStepSub);
        return;
    case Qt::Key_PageDown:
        down->triggerAction(QAbstractSlider::SliderPageStepAdd);
        return;
    case Qt::Key_Home:
        across->triggerAction(QAbstractSlider::SliderToMinimum);
        down->triggerAction(QAbstractSlider::SliderToMinimum);
        return;
    case Qt::Key_End:
        across->triggerAction(QAbstractSlider::SliderToMaximum);
        down->triggerAction(QAbstractSlider::SliderToMaximum);
        return;
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void EngineView::SetDragEnabled(bool on)
{
    mDragEnabled = on;
    mDragging = mDragging && on;
    RefreshPointer();
}

void EngineView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && mDragEnabled && HasImage()) {
        mDragging = true;
        mDragFrom = event->position();
        mDragScrolled = {horizontalScrollBar()->value(), verticalScrollBar()->value()};
        RefreshPointer();
        event->accept();
        return;
    }
    QAbstractScrollArea::mousePressEvent(event);
}

void EngineView::mouseMoveEvent(QMouseEvent* event)
{
    if (!mDragging) {
        QAbstractScrollArea::mouseMoveEvent(event);
        return;
    }
    const QPointF moved = (event->position() - mDragFrom) * devicePixelRatioF();
    horizontalScrollBar()->setValue(mDragScrolled.x() - int(std::lround(moved.x())));
    verticalScrollBar()->setValue(mDragScrolled.y() - int(std::lround(moved.y())));
    event->accept();
}

void EngineView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && mDragging) {
        mDragging = false;
        RefreshPointer();
        event->accept();
        return;
    }
    QAbstractScrollArea::mouseReleaseEvent(event);
}

void EngineView::SetToolPointer(std::optional<Qt::CursorShape> shape)
{
    if (shape != mToolPointer) {
        mToolPointer = shape;
        RefreshPointer();
    }
}

void EngineView::RefreshPointer()
{
    const bool scrolls = horizontalScrollBar()->maximum() > 0 || verticalScrollBar()->maximum() > 0;
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (mGlass) {
        shape = mGlass->pointer || !HasImage() ? Qt::ArrowCursor : Qt::BlankCursor;
    } else if (mDragging) {
        shape = Qt::ClosedHandCursor;
    } else if (mToolPointer) {
        shape = *mToolPointer;
    } else if (mBand.Mode() != kBandOff) {
        shape = Qt::CrossCursor;
    } else if (mDragEnabled && scrolls) {
        shape = Qt::OpenHandCursor;
    }
    if (viewport()->cursor().shape() != shape) {
        viewport()->setCursor(shape);
    }
}

void EngineView::SetRubberBandMode(qint32 mode)
{
    mBand.SetMode(mode);
    RefreshPointer();
    viewport()->update();
}

void EngineView::StartRubberBand(const QPointF& client)
{
    if (HasImage()) {
        mBand.Start(ClientToBitmap(client));
        viewport()->update();
    }
}

void EngineView::MoveRubberBand(const QPointF& client)
{
    if (!mBand.IsActive()) {
        return;
    }
    const QRectF inside = viewport()->rect();
    const QPointF nearest(std::clamp(client.x(), inside.left(), inside.right()),
                          std::clamp(client.y(), inside.top(), inside.bottom()));
    ScrollBy((client - nearest) * devicePixelRatioF());
    mBand.MoveTo(ClientToBitmap(client));
    viewport()->update();
}

void EngineView::EndRubberBand()
{
    mBand.End();
    viewport()->update();
}

QRectF EngineView::RubberBandRect() const
{
    return mGeometry.ToView(mBand.Places());
}

void EngineView::StartMagnifier(const MagnifierLook& look)
{
    mGlass = look;
    const QPoint at = viewport()->mapFromGlobal(QCursor::pos());
    mGlassAt.reset();
    if (viewport()->underMouse()) {
        mGlassAt = at;
    }
    RefreshPointer();
    viewport()->update();
}

void EngineView::StopMagnifier()
{
    mGlass.reset();
    mGlassAt.reset();
    RefreshPointer();
    viewport()->update();
}

void EngineView::MoveGlass(std::optional<QPointF> client)
{
    if (!mGlass || client == mGlassAt) {
        return;
    }
    const auto repaint = [this] {
        const QRect rect = MagnifierRect().toAlignedRect();
        if (!rect.isEmpty()) {
            viewport()->update(
                rect.adjusted(-kGlassMargin, -kGlassMargin, kGlassMargin, kGlassMargin));
        }
    };
    repaint();
    mGlassAt = client;
    repaint();
}

} // namespace quillane
