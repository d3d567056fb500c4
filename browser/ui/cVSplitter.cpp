#include "browser/ui/cVSplitter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QRubberBand>
#include <QStyle>

namespace quillane {

namespace {

constexpr int kSplitterStep = 16; // pixels an arrow key moves the bar

} // namespace

cVSplitter::cVSplitter(Dialogs& dialogs, QObject* parent) : QObject(parent), mDialogs(dialogs)
{ }

cVSplitter::~cVSplitter() = default;

QWidget* cVSplitter::Window(QObject* pane)
{
    auto* window = qobject_cast<QWidget*>(pane);
    if (!window) {
        const QString name = pane ? pane->objectName() : QStringLiteral("The pane");
        mDialogs.Box(name + QStringLiteral(" must be a window (have a window handle)."), {},
                     BoxIcon::Warning);
    }
    return window;
}

bool cVSplitter::SetControls(QWidget* parent, QObject* firstPane, QObject* secondPane, QWidget* bar)
{
    QWidget* first = Window(firstPane);
    QWidget* second = first ? Window(secondPane) : nullptr;
    if (!first || !second || !parent || !bar) {
        return false;
    }
    mParent = parent;
    mFirst = first;
    mSecond = second;
    mBar = bar;

    const QStyle* style = parent->style();
    mMetrics.frame = style->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, parent);
    mMetrics.border = 1;
    mMetrics.minimumWindowWidth = parent->window()->minimumWidth();
    mMetrics.inset = 0;
    if (mWidth == 0) {
        mWidth = quint8(qBound(1, bar->width() - mMetrics.border, 255));
    }
    bar->setCursor(Qt::SizeHorCursor);
    bar->setBackgroundRole(QPalette::Mid);
    bar->setFocusPolicy(Qt::TabFocus);
    bar->raise();
    bar->installEventFilter(this);
    parent->installEventFilter(this);
    qApp->installEventFilter(this);
    Arrange();
    return true;
}

void cVSplitter::SetLeft(qint32 left)
{
    if (left >= 0) {
        mLeft = left;
        Arrange();
    }
}

void cVSplitter::SetWidth(quint8 width)
{
    if (width > 0) {
        mWidth = width;
        Arrange();
    }
}

void cVSplitter::SetTop(qint32 top)
{
    if (top >= 0) {
        mTop = top;
        Arrange();
    }
}

void cVSplitter::SetHeightOffset(qint32 offset)
{
    if (offset >= 0) {
        mHeightOffset = offset;
        Arrange();
    }
}

void cVSplitter::Arrange()
{
    if (!mParent || !mFirst || !mSecond || !mBar) {
        return;
    }
    const SplitPanes panes =
        ArrangePanes(mParent->rect(), mTop, mHeightOffset, mLeft, mWidth, mMetrics);
    mFirst->setGeometry(panes.first);
    mSecond->setGeometry(panes.second);
    mBar->setGeometry(panes.bar);
}

int cVSplitter::PositionFor(int globalX) const
{
    const int x = mParent->mapFromGlobal(QPoint(globalX, 0)).x() - mGrab;
    return ClampBar(x, mParent->width(), mWidth, mMetrics);
}

void cVSplitter::BeginSplit(int globalX)
{
    mSplitting = true;
    mGrab = mBar->mapFromGlobal(QPoint(globalX, 0)).x();
    mStartLeft = mLastLeft = mBar->x();
    if (mTrackSplit != kTrue) {
        DrawGhost(mLastLeft);
    }
}

void cVSplitter::MoveSplit(int globalX)
{
    mLastLeft = PositionFor(globalX);
    if (mTrackSplit == kTrue) {
        SetLeft(mLastLeft);
    } else {
        DrawGhost(mLastLeft);
    }
}

void cVSplitter::EndSplit()
{
    mGhost.reset();
    mSplitting = false;
    SetLeft(mLastLeft);
}

void cVSplitter::CancelSplit()
{
    if (!mSplitting) {
        return;
    }
    mGhost.reset();
    mSplitting = false;
    if (mTrackSplit == kTrue) {
        SetLeft(mStartLeft);
    }
}

void cVSplitter::DrawGhost(int left)
{
    if (!mGhost) {
        mGhost = std::make_unique<QRubberBand>(QRubberBand::Line, mParent);
        mGhost->setObjectName(QStringLiteral("splitterGhost"));
    }
    mGhost->setGeometry(left, mBar->y(), mWidth, mBar->height());
    mGhost->show();
    mGhost->raise();
}

bool cVSplitter::eventFilter(QObject* watched, QEvent* event)
{
    if (!mParent || !mBar) {
        return false;
    }
    // A key while the bar is being dragged: Esc ends the drag and reaches nothing else.
    if (mSplitting
        && (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride)
        && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        if (event->type() == QEvent::KeyPress) {
            CancelSplit();
        }
        event->accept();
        return true;
    }
    if (watched == mParent && event->type() == QEvent::Resize
        && !mParent->window()->isMinimized()) {
        Arrange();
        return false;
    }
    if (watched != mBar) {
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton) {
            BeginSplit(mouse->globalPosition().toPoint().x());
        }
        return true;
    }
    case QEvent::MouseMove:
        if (mSplitting) {
            MoveSplit(static_cast<QMouseEvent*>(event)->globalPosition().toPoint().x());
        }
        return true;
    case QEvent::MouseButtonRelease:
        if (mSplitting && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            EndSplit();
        }
        return true;
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Left || key == Qt::Key_Right) {
            const int step = key == Qt::Key_Left ? -kSplitterStep : kSplitterStep;
            SetLeft(ClampBar(mBar->x() + step, mParent->width(), mWidth, mMetrics));
            return true;
        }
        return false;
    }
    default:
        return false;
    }
}

} // namespace quillane
