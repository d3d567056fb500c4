#pragma once
// The mouse tools of a shown picture: regions, floaters, crop, magnifying glass.
#include "imaging/engine.h"
#include "viewer/region_drag.h"
#include "widgets/magnifier_look.h"
#include "widgets/ui/engine_view.h"
#include <QObject>
#include <QPointF>
#include <functional>

namespace quillane {

/// Joins a view with the instance that it shows: drags make and move regions. Whatever it changes
/// in the instance it shows itself (EngineView::Show), so that the owner need not. Whoever else
/// changes the instance's picture or region calls EngineView::Show, which brings frame and floater
/// up to date too and ends a drag whose picture is gone. No method throws; what the engine refuses
/// is left as it was.
///
/// Owner: `view` and `instance`, which is LEAD1, outlive this object. Undo copies are the owner's:
/// it takes them before it calls StartRubberBand; moving a floater takes none.
class RegionTools : public QObject {
    Q_OBJECT
public:
    RegionTools(EngineView& view, EngineInstance& instance, QObject* parent = nullptr);
    ~RegionTools() override;

    /// How what takes long is done to the instance: runs the work on it, or on a copy that takes
    /// its place, and throws what the work throws, also where this object went meanwhile. Without
    /// one the work runs here.
    using Worker = std::function<void(const std::function<void(EngineInstance&)>& work)>;
    void SetWorker(Worker worker) { mWorker = std::move(worker); }

    /// The shape that the next drag makes.
    RegionTool Tool() const { return mTool; }
    /// The entries of the menu "Select Region": magnifier off, this tool on, dragging of the
    /// picture off (with None on again).
    void Select(RegionTool tool);
    /// The two buttons of the tool bar. mode: kBandRectangle or kBandFreeHand; another changes
    /// nothing. Magnifier off, that tool on, dragging of the picture off.
    void StartRubberBand(qint32 mode);
    /// The button "Pointer": magnifier off, tool off, rubber band off, dragging on.
    void Pointer();
    /// 1 shows the marching frame of the region, 0 hides it; the region stays. A region that is
    /// made shows its frame whatever was set before.
    void SetRegionFrame(qint32 frame);
    /// Cuts the picture to the region's bounds and clears the region. False, with nothing changed,
    /// where there is no region or the engine refuses.
    bool Crop();
    /// Removes the region, ends a drag.
    void ClearRegion();

    /// Turns the mouse into a magnifying glass: dragging off, a region cleared, `look` used with
    /// the view's background colour. Off: a region cleared, dragging on. Setting what is set
    /// changes nothing.
    void SetMagnifier(bool on, const MagnifierLook& look = {});
    bool IsMagnifierOn() const { return mMagnifier; }
    /// For the entry "Magnifying Glass".
    void ToggleMagnifier() { SetMagnifier(!mMagnifier); }

    /// Whether a drag of a tool or of a floater is under way.
    bool IsBusy() const { return mDrag != Drag::None; }
    /// Ends a drag without effect, as Escape does.
    void Cancel();

Q_SIGNALS:
    /// Pixels of LEAD1 changed (a floater was laid down, a crop); the view shows them already.
    void PictureChanged();
    /// LEAD1 has another region, or none.
    void RegionChanged();
    /// The magnifying glass went on or off; for the check of its menu entry.
    void MagnifierChanged(bool on);
    /// Another tool is on; for checks of menu and tool bar.
    void ToolChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Drag { None, Band, Floater };

    void UseTool(RegionTool tool);
    bool MousePressed(QMouseEvent* event);
    bool MouseMoved(QMouseEvent* event);
    bool MouseReleased(QMouseEvent* event);
    bool KeyPressed(QKeyEvent* event);
    void StartFloater(const QPointF& client);
    void MoveFloaterTo(const QPointF& client);
    void DropFloater();
    void EndBand();
    void LeaveFloater();
    void RefreshPointer(const QPointF& client, Qt::KeyboardModifiers modifiers);
    bool Work(const std::function<void(EngineInstance&)>& work);
    bool IsMovable(const QPointF& client, Qt::KeyboardModifiers modifiers) const;

    EngineView& mView;
    EngineInstance& LEAD1;
    Worker mWorker;
    RegionTool mTool = RegionTool::None;
    Drag mDrag = Drag::None;
    bool mMagnifier = false;
    qint64 mPicture = 0;   ///< names the picture that a floater was taken from
    qint32 mFrame = 0;     ///< of the region before its floater was moved
    QPoint mFloaterStart;  ///< in the picture
    QPointF mPointerStart; ///< in the picture
};

} // namespace quillane
