// Mouse and keyboard of the cell view.
#include "widgets/ui/cell_view.h"

#include "platform/file_list_mime.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleHints>
#include <QTimerEvent>
#include <QWheelEvent>
#include <chrono>
#include <cmath>
#include <memory>

namespace quillane {

namespace {

constexpr int kBandTick = 16;   // milliseconds between steps of scrolling for a rubber band
constexpr int kBandSlowest = 4; // pixels of one step
constexpr int kBandFastest = 160;
constexpr double kWheelNotch = 120.0; // units of one notch, as wheels report it

qint64 SteadyMilliseconds()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// How far a tick scrolls when the mouse is so far outside.
int BandSpeed(int outside)
{
    const int speed = std::clamp(std::abs(outside), kBandSlowest, kBandFastest);
    return outside < 0 ? -speed : outside > 0 ? speed : 0;
}

QPixmap WithCountBadge(QPixmap picture, int count, const QWidget& widget)
{
    if (count < 2 || picture.isNull()) {
        return picture;
    }
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font = widget.font();
    font.setBold(true);
    painter.setFont(font);
    const QString text = QString::number(count);
    const QRect bounds(QPoint(), picture.deviceIndependentSize().toSize());
    QRect badge = painter.fontMetrics().boundingRect(text).adjusted(-6, -3, 6, 3);
    badge.setWidth(std::max(badge.width(), badge.height()));
    badge.moveBottomRight(bounds.bottomRight() - QPoint(2, 2));
    painter.setPen(Qt::NoPen);
    painter.setBrush(widget.palette().color(QPalette::Highlight));
    painter.drawRoundedRect(badge, badge.height() / 2.0, badge.height() / 2.0);
    painter.setPen(widget.palette().color(QPalette::HighlightedText));
    painter.drawText(badge, Qt::AlignCenter, text);
    return picture;
}

} // namespace

void CellView::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    if (mGesture == Gesture::Band) {
        return;
    }
    const int index = HitTest(event->position().toPoint());
    mTypeAhead.Forget();
    if (event->button() == Qt::LeftButton) {
        PressLeft(index, event);
    } else if (event->button() == Qt::RightButton) {
        PressRight(index, event);
    } else {
        Q_EMIT clicked(index, event->button(), event->modifiers(),
                       event->globalPosition().toPoint());
    }
}

void CellView::PressLeft(int index, QMouseEvent* event)
{
    const QPointer<CellView> alive(this);
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const QPoint global = event->globalPosition().toPoint();
    mPressPosition = event->position().toPoint();
    mPressedIndex = index;
    mMayDrag = index >= 0 && StartsDrag(index, mPressPosition);
    mBandOrigin = mPressPosition + ScrollPosition();
    mGesture = Gesture::Pressed;
    Tell(mRules.Press(index, modifiers));
    if (alive) {
        Q_EMIT picked(index);
    }
    if (alive) {
        Q_EMIT clicked(index, Qt::LeftButton, modifiers, global);
    }
}

void CellView::PressRight(int index, QMouseEvent* event)
{
    const QPointer<CellView> alive(this);
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const QPoint global = event->globalPosition().toPoint();
    mGesture = Gesture::None;
    Tell(mRules.PressForMenu(index));
    if (alive) {
        Q_EMIT clicked(index, Qt::RightButton, modifiers, global);
    }
    if (alive) {
        Q_EMIT contextMenuWanted(index, global);
    }
}

void CellView::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    if (mGesture == Gesture::Band) {
        mMouse = position;
        MoveBand();
        return;
    }
    if (mGesture == Gesture::Pressed && event->buttons().testFlag(Qt::LeftButton)) {
        if ((position - mPressPosition).manhattanLength() < QApplication::startDragDistance()) {
            return;
        }
        mMouse = position;
        if (mMayDrag) {
            StartDrag();
        } else {
            // What was pressed keeps the modifiers of the press.
            Tell(mRules.BeginBand(event->modifiers()));
            mGesture = Gesture::Band;
            MoveBand();
        }
        return;
    }
    if (event->buttons() == Qt::NoButton) {
        SetHovered(HitTest(position));
    }
}

void CellView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const Gesture gesture = std::exchange(mGesture, Gesture::None);
    mAutoScroll.stop();
    if (gesture == Gesture::Band) {
        mRules.EndBand();
        viewport()->update();
    } else if (gesture == Gesture::Pressed) {
        Tell(mRules.Release());
    }
}

void CellView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const int index = HitTest(event->position().toPoint());
    const bool plain = event->button() == Qt::LeftButton
        && !(event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier));
    if (plain && index >= 0 && index == Current()) {
        event->accept();
        mGesture = Gesture::None;
        Q_EMIT doubleClicked(index);
        return;
    }
    mousePressEvent(event);
}

QRect CellView::BandOnViewport() const
{
    return QRect(mBandOrigin - ScrollPosition(), mMouse).normalized();
}

void CellView::MoveBand()
{
    viewport()->update();
    if (viewport()->rect().contains(mMouse)) {
        mAutoScroll.stop();
    } else if (!mAutoScroll.isActive()) {
        mAutoScroll.start(kBandTick, this);
    }
    const QRect band = BandOnViewport().translated(ScrollPosition());
    Tell(mRules.Band(mLayout.BandRanges(band)));
}

void CellView::CancelBand()
{
    mGesture = Gesture::None;
    mAutoScroll.stop();
    viewport()->update();
    Tell(mRules.CancelBand());
}

void CellView::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == mAutoScroll.timerId()) {
        ScrollForBand();
    } else {
        QAbstractScrollArea::timerEvent(event);
    }
}

void CellView::ScrollForBand()
{
    const QRect view = viewport()->rect();
    const auto outside = [](int position, int from, int to) {
        return position < from ? position - from : position > to ? position - to : 0;
    };
    ScrollTo(ScrollPosition()
             + QPoint(BandSpeed(outside(mMouse.x(), view.left(), view.right())),
                      BandSpeed(outside(mMouse.y(), view.top(), view.bottom()))));
    MoveBand();
}

void CellView::StartDrag()
{
    mGesture = Gesture::None;
    const int index = mPressedIndex;
    if (!IsSelected(index)) {
        return;
    }
    QStringList paths;
    for (const int selected : SelectedIndexes()) {
        paths.append(PathAt(selected));
    }
    std::unique_ptr<QMimeData> files(FileListMimeData(paths));
    const QPixmap picture = WithCountBadge(DragPicture(index), int(paths.size()), *this);
    if (mDragHandler) {
        mDragHandler(*files, picture);
        return;
    }
    auto* drag = new QDrag(this);
    drag->setMimeData(files.release());
    drag->setPixmap(picture);
    const QSizeF size = picture.deviceIndependentSize();
    drag->setHotSpot(QPoint(int(size.width() / 2), int(size.height() / 2)));
    drag->exec(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction);
}

void CellView::wheelEvent(QWheelEvent* event)
{
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        event->ignore(); // zooming is the owner's
        return;
    }
    // X servers report pixels that are none.
    const bool pixels =
        !event->pixelDelta().isNull() && QGuiApplication::platformName() != QLatin1String("xcb");
    QPointF delta;
    if (pixels) {
        delta = event->pixelDelta();
    } else {
        const double step = QGuiApplication::styleHints()->wheelScrollLines() / kWheelNotch;
        delta = QPointF(event->angleDelta()) * step * verticalScrollBar()->singleStep();
    }
    if (mLayout.CurrentFlow() == GridLayout::Flow::Columns && delta.x() == 0.0) {
        delta = QPointF(isRightToLeft() ? -delta.y() : delta.y(), 0);
    }
    mWheelRest -= delta;
    const QPoint whole(int(std::trunc(mWheelRest.x())), int(std::trunc(mWheelRest.y())));
    mWheelRest -= whole;
    ScrollTo(ScrollPosition() + whole);
    event->accept();
}

bool CellView::KeyMoves(const QKeyEvent* event)
{
    using Move = GridLayout::Move;
    struct KeyMove {
        int key;
        Move move;
    };
    static constexpr KeyMove kMoves[] = {
        {Qt::Key_Left, Move::Left},     {Qt::Key_Right, Move::Right},
        {Qt::Key_Up, Move::Up},         {Qt::Key_Down, Move::Down},
        {Qt::Key_PageUp, Move::PageUp}, {Qt::Key_PageDown, Move::PageDown},
        {Qt::Key_Home, Move::Home},     {Qt::Key_End, Move::End},
    };
    if (event->modifiers() & (Qt::AltModifier | Qt::MetaModifier)) {
        return false;
    }
    for (const KeyMove& row : kMoves) {
        if (row.key != event->key()) {
            continue;
        }
        SyncLayout();
        const bool sideways = row.move == Move::Left || row.move == Move::Right;
        if (sideways && mLayout.CurrentFlow() == GridLayout::Flow::Lines) {
            const int step = horizontalScrollBar()->singleStep();
            ScrollTo(ScrollPosition() + QPoint(row.move == Move::Left ? -step : step, 0));
            return true;
        }
        const int target = mLayout.Moved(Current(), row.move);
        const SelectionRules::Change change = mRules.MoveTo(target, event->modifiers());
        EnsureVisible(target);
        const QPointer<CellView> alive(this);
        Tell(change);
        if (alive && change.current) {
            Q_EMIT picked(target);
        }
        return true;
    }
    return false;
}

bool CellView::KeyTypes(const QKeyEvent* event)
{
    const QString text = event->text();
    if (text.isEmpty() || !text.at(0).isPrint()
        || (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
        return false;
    }
    const int target = mTypeAhead.Typed(
        text, SteadyMilliseconds(), QGuiApplication::styleHints()->keyboardInputInterval(),
        Current(), Count(), [this](int index, const QString& beginning) {
            return TextAt(index).startsWith(beginning, Qt::CaseInsensitive);
        });
    if (target >= 0) {
        const SelectionRules::Change change = mRules.SelectOnly(target);
        EnsureVisible(target);
        const QPointer<CellView> alive(this);
        Tell(change);
        if (alive && change.current) {
            Q_EMIT picked(target);
        }
    }
    return true;
}

void CellView::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    if (mGesture == Gesture::Band) {
        if (event->key() == Qt::Key_Escape) {
            CancelBand();
        }
        return;
    }
    if (event->matches(QKeySequence::SelectAll)) {
        SelectAll();
    } else if (event->key() == Qt::Key_Menu || (event->key() == Qt::Key_F10 && shift)) {
        WantMenuByKey();
    } else if (KeyMoves(event)) {
        mTypeAhead.Forget();
    } else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
               && !(event->modifiers() & ~Qt::KeypadModifier) && Current() >= 0) {
        Q_EMIT enterPressed(Current());
    } else if (event->key() == Qt::Key_Space && !mTypeAhead.IsTyping(SteadyMilliseconds())) {
        Tell(mRules.Space(event->modifiers()));
    } else if (!KeyTypes(event)) {
        event->ignore();
    }
}

void CellView::keyReleaseEvent(QKeyEvent* event)
{
    if (!event->isAutoRepeat()) {
        mMenuByKey = false;
    }
    QAbstractScrollArea::keyReleaseEvent(event);
}

void CellView::WantMenuByKey()
{
    if (std::exchange(mMenuByKey, true)) {
        return;
    }
    EnsureVisible(Current());
    const QRect cell = Current() >= 0 ? CellRect(Current()) : QRect(0, 0, 1, 1);
    Q_EMIT contextMenuWanted(Current(), viewport()->mapToGlobal(cell.center()));
}

void CellView::contextMenuEvent(QContextMenuEvent* event)
{
    // The press of the button has asked for the menu already.
    event->accept();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        WantMenuByKey();
    }
}

} // namespace quillane
