#include "viewer/ui/region_tools.h"
#include "core/failure.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <cmath>
#include <optional>

namespace quillane {

namespace {

constexpr double kRegionLeastDrag = 3; ///< logical pixels; what is shorter is a click

constexpr Qt::KeyboardModifiers kRegionNewKeys = Qt::ShiftModifier | Qt::ControlModifier;

qint32 RegionBandOf(RegionTool tool)
{
    switch (tool) {
    case RegionTool::Rectangle:
        return kBandRectangle;
    case RegionTool::Ellipse:
        return kBandEllipse;
    case RegionTool::RoundedRectangle:
        return kBandRoundRectangle;
    case RegionTool::FreeHand:
        return kBandFreeHand;
    case RegionTool::None:
        break;
    }
    return kBandOff;
}

} // namespace

RegionTools::RegionTools(EngineView& view, EngineInstance& instance, QObject* parent)
    : QObject(parent),
      mView(view),
      LEAD1(instance)
{
    mView.installEventFilter(this);
    mView.viewport()->installEventFilter(this);
    connect(&mView, &EngineView::pictureReplaced, this, [this] {
        Cancel();
        mView.SetToolPointer(std::nullopt);
    });
}

RegionTools::~RegionTools() = default;

void RegionTools::UseTool(RegionTool tool)
{
    Cancel();
    mView.SetRubberBandMode(RegionBandOf(tool));
    if (tool != mTool) {
        mTool = tool;
        Q_EMIT ToolChanged();
    }
}

void RegionTools::Select(RegionTool tool)
{
    SetMagnifier(false);
    UseTool(tool);
    mView.SetDragEnabled(tool == RegionTool::None);
}

void RegionTools::StartRubberBand(qint32 mode)
{
    if (mode == kBandRectangle) {
        Select(RegionTool::Rectangle);
    } else if (mode == kBandFreeHand) {
        Select(RegionTool::FreeHand);
    }
}

void RegionTools::Pointer()
{
    Select(RegionTool::None);
}

void RegionTools::SetRegionFrame(qint32 frame)
{
    if (mDrag == Drag::Floater) {
        mFrame = frame; // shown when the floater is laid down
    } else {
        mView.SetRegionFrame(frame);
    }
}

/// Whether it was done and this object still stands.
bool RegionTools::Work(const std::function<void(EngineInstance&)>& work)
{
    const QPointer<RegionTools> self(this);
    const bool done = ResumeNext([&] {
        if (mWorker) {
            mWorker(work);
        } else {
            work(LEAD1);
        }
    });
    return done && self;
}

bool RegionTools::Crop()
{
    Cancel();
    if (!LEAD1.HasRegion()) {
        return false;
    }
    const QRect bounds = LEAD1.RegionBounds();
    const bool done = Work([bounds](EngineInstance& lead) {
        lead.Trim(bounds.left(), bounds.top(), bounds.width(), bounds.height());
    });
    if (!done || QSize(LEAD1.BitmapWidth(), LEAD1.BitmapHeight()) != bounds.size()) {
        return false;
    }
    LEAD1.ClearRegion();
    mView.Show(LEAD1);
    Q_EMIT PictureChanged();
    Q_EMIT RegionChanged();
    return true;
}

void RegionTools::ClearRegion()
{
    Cancel();
    if (LEAD1.HasRegion()) {
        LEAD1.ClearRegion();
        mView.Show(LEAD1);
        mView.SetToolPointer(std::nullopt);
        Q_EMIT RegionChanged();
    }
}

void RegionTools::SetMagnifier(bool on, const MagnifierLook& look)
{
    if (on == mMagnifier) {
        return;
    }
    mMagnifier = on;
    if (on) {
        UseTool(RegionTool::None);
    }
    ClearRegion();
    mView.SetDragEnabled(!on);
    if (on) {
        mView.StartMagnifier(look);
    } else {
        mView.StopMagnifier();
    }
    Q_EMIT MagnifierChanged(on);
}

void RegionTools::Cancel()
{
    const Drag drag = mDrag;
    mDrag = Drag::None;
    if (drag == Drag::Band) {
        mView.EndRubberBand();
    } else if (drag == Drag::Floater) {
        DropFloater();
    }
}

bool RegionTools::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &mView) {
        return event->type() == QEvent::KeyPress && KeyPressed(static_cast<QKeyEvent*>(event));
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return MousePressed(static_cast<QMouseEvent*>(event));
    case QEvent::MouseMove:
        return MouseMoved(static_cast<QMouseEvent*>(event));
    case QEvent::MouseButtonRelease:
        return MouseReleased(static_cast<QMouseEvent*>(event));
    default:
        return false;
    }
}

bool RegionTools::IsMovable(const QPointF& client, Qt::KeyboardModifiers modifiers) const
{
    if (mMagnifier || !LEAD1.HasRegion() || (modifiers & kRegionNewKeys) != 0) {
        return false;
    }
    const QPointF place = mView.ClientToBitmap(client);
    return mView.ImageRect().contains(client)
        && LEAD1.IsPointInRegion(qint32(std::floor(place.x())), qint32(std::floor(place.y())));
}

bool RegionTools::MousePressed(QMouseEvent* event)
{
    if (mDrag != Drag::None) {
        return true;
    }
    // While a file is loaded the view may show another picture than the instance still holds.
    if (event->button() != Qt::LeftButton || mMagnifier || !LEAD1.HasBitmap()
        || LEAD1.Bitmap().Pixels().size() != mView.ImageSize()) {
        return false;
    }
    if (IsMovable(event->position(), event->modifiers())) {
        StartFloater(event->position());
        return true;
    }
    if (mTool == RegionTool::None) {
        return false;
    }
    mDrag = Drag::Band;
    mView.StartRubberBand(event->position());
    return true;
}

bool RegionTools::MouseMoved(QMouseEvent* event)
{
    switch (mDrag) {
    case Drag::None:
        RefreshPointer(event->position(), event->modifiers());
        return false;
    case Drag::Band:
        mView.MoveRubberBand(event->position());
        return true;
    case Drag::Floater:
        MoveFloaterTo(event->position());
        return true;
    }
    return false;
}

bool RegionTools::MouseReleased(QMouseEvent* event)
{
    if (mDrag == Drag::None || event->button() != Qt::LeftButton) {
        return mDrag != Drag::None;
    }
    const QPointer<RegionTools> self(this);
    if (mDrag == Drag::Band) {
        mView.MoveRubberBand(event->position());
        EndBand();
    } else {
        MoveFloaterTo(event->position());
        LeaveFloater();
    }
    if (self) {
        RefreshPointer(event->position(), event->modifiers());
    }
    return true;
}

bool RegionTools::KeyPressed(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Escape) {
        return false;
    }
    if (mDrag != Drag::None) {
        Cancel();
    } else if (mMagnifier) {
        SetMagnifier(false);
    } else if (LEAD1.HasRegion()) {
        ClearRegion();
    } else {
        return false;
    }
    return true;
}

void RegionTools::RefreshPointer(const QPointF& client, Qt::KeyboardModifiers modifiers)
{
    mView.SetToolPointer(IsMovable(client, modifiers) ? std::optional(Qt::SizeAllCursor)
                                                      : std::nullopt);
}

void RegionTools::EndBand()
{
    mDrag = Drag::None;
    mView.EndRubberBand();
    const QRectF drawn = mView.RubberBandRect();
    if (drawn.width() < kRegionLeastDrag && drawn.height() < kRegionLeastDrag) {
        ClearRegion();
        return;
    }
    ResumeNext([&] {
        const QRectF places(mView.ClientToBitmap(drawn.topLeft()),
                            mView.ClientToBitmap(drawn.bottomRight()));
        MakeRegion(LEAD1, mTool, places, mView.RubberBandLine());
    });
    mView.SetRegionFrame(1);
    mView.Show(LEAD1);
    mView.ForceRepaint();
    Q_EMIT RegionChanged();
}

void RegionTools::StartFloater(const QPointF& client)
{
    if (!ResumeNext([&] { LEAD1.MakeFloater(); }) || !LEAD1.FloaterVisible()) {
        return;
    }
    mDrag = Drag::Floater;
    mFrame = mView.RegionFrame();
    mPicture = LEAD1.Bitmap().Pixels().cacheKey();
    mFloaterStart = LEAD1.FloaterPosition();
    mPointerStart = mView.ClientToBitmap(client);
    mView.SetRegionFrame(0);
    mView.Show(LEAD1);
}

void RegionTools::MoveFloaterTo(const QPointF& client)
{
    LEAD1.SetFloaterPosition(
        FloaterPlace(mFloaterStart, mPointerStart, mView.ClientToBitmap(client)));
    mView.Show(LEAD1);
}

void RegionTools::DropFloater()
{
    LEAD1.ReleaseFloater();
    mView.SetRegionFrame(mFrame);
    mView.Show(LEAD1);
}

void RegionTools::LeaveFloater()
{
    mDrag = Drag::None;
    const bool moved = LEAD1.FloaterVisible() && LEAD1.FloaterPosition() != mFloaterStart
        && LEAD1.Bitmap().Pixels().cacheKey() == mPicture;
    const QPointer<RegionTools> self(this);
    const bool combined = moved && Work([](EngineInstance& lead) { lead.CombineFloater(); });
    if (!self) {
        return;
    }
    DropFloater();
    if (combined) {
        Q_EMIT PictureChanged();
        Q_EMIT RegionChanged();
    }
}

} // namespace quillane
