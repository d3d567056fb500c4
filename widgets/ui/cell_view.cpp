#include "widgets/ui/cell_view.h"

#include "widgets/ui/cell_view_accessible.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionRubberBand>
#include <QToolTip>
#include <algorithm>
#include <limits>
#include <utility>

namespace quillane {

namespace {

constexpr int kCellScrollStep = 40; // pixels of one arrow click of a scroll bar, at most one line

const QEvent::Type kCellUpdateEvent = QEvent::Type(QEvent::registerEventType());

} // namespace

CellView::CellView(QWidget* parent) : QAbstractScrollArea(parent)
{
    InstallCellViewAccessible();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled, false);
    viewport()->setMouseTracking(true);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
}

CellView::~CellView() = default;

void CellView::SetSelected(int index, bool on)
{
    Tell(mRules.SetSelected(index, on));
}

void CellView::SelectAll(bool on)
{
    Tell(mRules.SelectAll(on));
}

void CellView::MakeCurrent(int index)
{
    const SelectionRules::Change change = mRules.SetCurrent(index);
    EnsureVisible(mRules.Current());
    Tell(change);
}

void CellView::SelectOnly(int index)
{
    const SelectionRules::Change change = mRules.SelectOnly(index);
    EnsureVisible(mRules.Current());
    Tell(change);
}

void CellView::EnsureVisible(int index)
{
    if (index < 0 || index >= Count()) {
        return;
    }
    if (!isVisible()) {
        mWantedInSight = index; // its size is not known yet
        return;
    }
    SyncLayout();
    ScrollTo(mLayout.ScrolledTo(index, ScrollPosition()));
}

int CellView::HitTest(int x, int y)
{
    SyncLayout();
    const QPoint position(x, y);
    return viewport()->rect().contains(position) ? mLayout.IndexAt(position + ScrollPosition())
                                                 : -1;
}

QRect CellView::CellRect(int index)
{
    SyncLayout();
    const QRect rect = mLayout.CellRect(index);
    return rect.isNull() ? rect : rect.translated(-ScrollPosition());
}

GridLayout::Range CellView::VisibleRange()
{
    SyncLayout();
    return mLayout.Touching(QRect(ScrollPosition(), viewport()->size()));
}

void CellView::FinalRefresh()
{
    Invalidate();
    TakeUpdate();
    viewport()->update();
}

void CellView::Tell(const SelectionRules::Change& change)
{
    if (!change) {
        return;
    }
    viewport()->update();
    const int current = mRules.Current();
    if (change.current) {
        SpeakFocus();
        Q_EMIT currentChanged(current);
    }
    if (change.selection) {
        Q_EMIT selectionChanged();
    }
}

void CellView::CountChanged()
{
    mLayout.SetCount(mRules.Selection().Size());
    mDirty = true;
}

void CellView::CellsAppended(int count)
{
    const int before = Count();
    mRules.Append(count);
    CountChanged();
    QueueUpdate(before);
}

void CellView::CellsInserted(int index, int count)
{
    mRules.Insert(index, count);
    CountChanged();
    QueueUpdate(index);
}

void CellView::CellsRemoved(int index, int count)
{
    const int current = Current();
    const int selected = SelectedCount();
    mRules.Remove(index, count);
    CountChanged();
    QueueUpdate(index);
    mHovered = -1;
    Tell({selected != SelectedCount(), current >= index && current < index + count});
}

void CellView::CellsCleared()
{
    const SelectionRules::Change change{SelectedCount() > 0, Current() >= 0};
    mRules.Clear();
    mTypeAhead.Forget();
    mGesture = Gesture::None;
    mAutoScroll.stop();
    mHovered = -1;
    CountChanged();
    QueueUpdate(0);
    horizontalScrollBar()->setRange(0, 0);
    verticalScrollBar()->setRange(0, 0);
    mLastVisible = {};
    mWantedInSight = -1;
    Tell(change);
}

void CellView::CellsPermuted(const QVector<int>& order)
{
    mRules.Permute(order);
    mLastVisible = {};
    mHovered = -1;
    QueueUpdate(0);
}

void CellView::UpdateCell(int index)
{
    if (!mDirty) {
        viewport()->update(CellRect(index));
    } else {
        QueueUpdate(index);
    }
}

void CellView::Invalidate()
{
    mDirty = true;
    QueueUpdate(0);
}

void CellView::QueueUpdate(int firstChanged)
{
    mFirstChanged = std::min(mFirstChanged, firstChanged);
    if (!mUpdateQueued) {
        mUpdateQueued = true;
        QCoreApplication::postEvent(this, new QEvent(kCellUpdateEvent));
    }
}

void CellView::TakeUpdate()
{
    mUpdateQueued = false;
    SyncLayout();
    const GridLayout::Range seen = VisibleRange();
    // Cells that were appended out of sight change nothing that is painted.
    if (mFirstChanged <= seen.last + 1) {
        viewport()->update();
    }
    mFirstChanged = std::numeric_limits<int>::max();
    TellVisible();
}

void CellView::SyncLayout()
{
    // A scroll bar that comes or goes changes the viewport, and with it the places.
    constexpr int kMostRounds = 3;
    const bool dirty = mDirty;
    const GridLayout before = mLayout;
    const QPoint scroll = ScrollPosition();
    for (int round = 0; mDirty && round < kMostRounds; ++round) {
        mDirty = false;
        ++mLayoutCount;
        UpdateMetrics();
        mLayout.SetViewport(viewport()->size());
        mLayout.SetRightToLeft(isRightToLeft());
        const QSize content = mLayout.ContentSize();
        const QSize view = viewport()->size();
        const int step = mLayout.CurrentFlow() == GridLayout::Flow::Lines
            ? mLayout.LineStep()
            : std::min(mLayout.LineStep(), kCellScrollStep);
        horizontalScrollBar()->setSingleStep(step);
        horizontalScrollBar()->setPageStep(view.width());
        verticalScrollBar()->setSingleStep(step);
        verticalScrollBar()->setPageStep(view.height());
        horizontalScrollBar()->setRange(0, std::max(0, content.width() - view.width()));
        verticalScrollBar()->setRange(0, std::max(0, content.height() - view.height()));
    }
    if (dirty) {
        KeepInPlace(before, scroll);
    }
}

void CellView::KeepInPlace(const GridLayout& before, const QPoint& scroll)
{
    const bool sameLines = before.CurrentFlow() == mLayout.CurrentFlow()
        && before.CellsPerLine() == mLayout.CellsPerLine()
        && before.LineStep() == mLayout.LineStep();
    if (sameLines || scroll.isNull()) {
        return;
    }
    // Lines of another length: the current cell stays in sight if it was, else the first one that
    // was seen stays where it is.
    const GridLayout::Range seen = before.Touching(QRect(scroll, viewport()->size()));
    const int current = Current();
    if (current >= seen.first && current <= seen.last) {
        ScrollTo(mLayout.ScrolledTo(current, ScrollPosition()));
    } else if (!seen.IsEmpty()) {
        const QPoint shift = before.CellRect(seen.first).topLeft() - scroll;
        ScrollTo(mLayout.CellRect(seen.first).topLeft() - shift);
    }
}

QPoint CellView::ScrollPosition() const
{
    const QScrollBar* bar = horizontalScrollBar();
    return {isRightToLeft() ? bar->maximum() - bar->value() : bar->value(),
            verticalScrollBar()->value()};
}

void CellView::ScrollTo(const QPoint& position)
{
    QScrollBar* bar = horizontalScrollBar();
    bar->setValue(isRightToLeft() ? bar->maximum() - position.x() : position.x());
    verticalScrollBar()->setValue(position.y());
}

void CellView::TellVisible()
{
    const GridLayout::Range seen = isVisible() ? VisibleRange() : GridLayout::Range{};
    if (!(seen == mLastVisible)) {
        mLastVisible = seen;
        Q_EMIT visibleRangeChanged(seen.first, seen.last);
    }
}

void CellView::SetHovered(int index)
{
    if (index != mHovered) {
        const int before = std::exchange(mHovered, index);
        UpdateCell(before);
        UpdateCell(index);
    }
}

bool CellView::event(QEvent* event)
{
    if (event->type() == kCellUpdateEvent) {
        TakeUpdate();
        return true;
    }
    return QAbstractScrollArea::event(event);
}

bool CellView::viewportEvent(QEvent* event)
{
    switch (event->type()) {
    case QEvent::ToolTip: {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int index = HitTest(help->pos());
        if (index >= 0) {
            QToolTip::showText(help->globalPos(), ToolTipAt(index), viewport(), CellRect(index));
        } else {
            QToolTip::hideText();
        }
        return true;
    }
    case QEvent::Leave:
        SetHovered(-1);
        break;
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void CellView::paintEvent(QPaintEvent* event)
{
    SyncLayout();
    QPainter painter(viewport());
    const QPoint offset = ScrollPosition();
    PaintBackground(painter, event->rect());
    const GridLayout::Range range = mLayout.Touching(event->rect().translated(offset));
    for (int index = range.first; index <= range.last; ++index) {
        const QRect rect = mLayout.CellRect(index).translated(-offset);
        if (rect.intersects(event->rect())) {
            CellState state;
            state.selected = IsSelected(index);
            state.current = index == Current();
            state.hovered = index == mHovered;
            state.active = hasFocus();
            PaintCell(painter, rect, index, state);
        }
    }
    if (mGesture == Gesture::Band) {
        QStyleOptionRubberBand option;
        option.initFrom(this);
        option.shape = QRubberBand::Rectangle;
        option.opaque = false;
        option.rect = BandOnViewport().intersected(viewport()->rect().adjusted(-16, -16, 16, 16));
        style()->drawControl(QStyle::CE_RubberBand, &option, &painter, this);
    }
}

void CellView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    Invalidate();
}

void CellView::scrollContentsBy(int, int)
{
    viewport()->update();
    if (mGesture == Gesture::None && viewport()->underMouse()) {
        SetHovered(HitTest(viewport()->mapFromGlobal(QCursor::pos())));
    }
    QueueUpdate(Count());
}

void CellView::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::StyleChange:
    case QEvent::LayoutDirectionChange:
    case QEvent::PaletteChange:
    case QEvent::ActivationChange:
        Invalidate();
        break;
    default:
        break;
    }
}

void CellView::showEvent(QShowEvent* event)
{
    QAbstractScrollArea::showEvent(event);
    Invalidate();
    EnsureVisible(std::exchange(mWantedInSight, -1));
}

void CellView::focusInEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
    SpeakFocus();
}

void CellView::focusOutEvent(QFocusEvent* event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

void CellView::SpeakFocus()
{
    if (QAccessible::isActive() && hasFocus() && Current() >= 0) {
        QAccessibleEvent focus(this, QAccessible::Focus);
        focus.setChild(Current());
        QAccessible::updateAccessibility(&focus);
    }
}

} // namespace quillane
