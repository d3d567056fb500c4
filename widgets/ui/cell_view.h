#pragma once
#include "widgets/grid_layout.h"
#include "widgets/selection_rules.h"
#include "widgets/type_ahead.h"
#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QMimeData>
#include <QPixmap>
#include <functional>
#include <memory>

namespace quillane {

/// A scrolled area of equal cells with selection by mouse, rubber band and keyboard. Appending
/// cells is O(1): places are arithmetic, and what is shown follows once in each turn of the
/// message loop. Base of the thumbnail grid and of the file list.
class CellView : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit CellView(QWidget* parent = nullptr);
    ~CellView() override;

    int Count() const { return mLayout.Count(); }
    int Current() const { return mRules.Current(); } ///< -1 for none
    const SelectionSet& Selection() const { return mRules.Selection(); }
    bool IsSelected(int index) const { return mRules.Selection().Contains(index); }
    QVector<bool> SelectedFlags() const { return mRules.Selection().Flags(); } ///< one a cell
    QVector<int> SelectedIndexes() const { return mRules.Selection().Rows(); } ///< ascending
    int SelectedCount() const { return mRules.Selection().Count(); }

    /// Marks a cell selected or not; the others and the current cell stay.
    void SetSelected(int index, bool on);
    /// Selects every cell, or none.
    void SelectAll(bool on = true);
    /// Makes a cell current and brings it into view; the selection stays. -1 for none.
    void MakeCurrent(int index);
    void EnsureVisible(int index);

    /// The cell at a point of the viewport, -1 beside them all.
    int HitTest(int x, int y);
    int HitTest(const QPoint& position) { return HitTest(position.x(), position.y()); }
    /// Where a cell stands in the viewport, seen or not.
    QRect CellRect(int index);
    /// Cells in sight, also those seen in part.
    GridLayout::Range VisibleRange();

    /// Shows what was changed, now.
    void FinalRefresh();
    /// How often places and scroll range were worked out so far.
    int LayoutCount() const { return mLayoutCount; }

    /// Takes the place of the system's drag; gets files and picture, owns nothing.
    using DragHandler = std::function<void(QMimeData& files, const QPixmap& picture)>;
    void SetDragHandler(DragHandler handler) { mDragHandler = std::move(handler); }

    /// Full path, text shown and tool tip of a cell.
    virtual QString PathAt(int index) const = 0;
    virtual QString TextAt(int index) const = 0;
    virtual QString ToolTipAt(int index) const = 0;
    /// What a screen reader says of a cell.
    virtual QString SpokenText(int index) const { return TextAt(index); }

Q_SIGNALS:
    /// Another cell became current, whoever did it; -1 for none.
    void currentChanged(int index);
    /// A person chose a cell: by a left click (-1 beside the cells), also on the cell that is
    /// current already, or by moving to it with the keyboard. Once for each action.
    void picked(int index);
    /// A mouse button was pressed; -1 beside the cells. Follows `picked`.
    void clicked(int index, Qt::MouseButton button, Qt::KeyboardModifiers modifiers,
                 const QPoint& globalPosition);
    void doubleClicked(int index);
    /// A right click (-1 beside the cells) or the menu key (the current cell).
    void contextMenuWanted(int index, const QPoint& globalPosition);
    void enterPressed(int index); ///< of the current cell
    void selectionChanged();
    /// Other cells are in sight.
    void visibleRangeChanged(int first, int last);

protected:
    struct CellState {
        bool selected = false, current = false, hovered = false, active = false;
    };
    /// Draws one cell in its rectangle of the viewport.
    virtual void PaintCell(QPainter& painter, const QRect& rect, int index,
                           const CellState& state) = 0;
    virtual QPixmap DragPicture(int index) const = 0; ///< what hangs at the mouse in a drag
    /// Called before places are worked out, when font or style may have changed.
    virtual void UpdateMetrics() = 0;
    /// What is drawn behind the cells.
    virtual void PaintBackground(QPainter&, const QRect&) { }

    /// Whether a press at a point of the viewport on that cell may become a drag of files; else
    /// moving on draws a rubber band.
    virtual bool StartsDrag(int, const QPoint&) const { return true; }

    // For the owner of the content: call these after every change of it.
    void CellsAppended(int count);            ///< at the end; O(1)
    void CellsInserted(int index, int count); ///< before `index`
    void CellsRemoved(int index, int count);  ///< from `index` on
    void CellsCleared();                      ///< all of them
    /// Cell i is now what cell order[i] was.
    void CellsPermuted(const QVector<int>& order);
    /// Makes a cell current and selects it alone; -1 selects none.
    void SelectOnly(int index);
    void UpdateCell(int index);
    /// Places are worked out again before they are needed.
    void Invalidate();
    GridLayout& Layout() { return mLayout; }
    /// Brings the places up to date.
    void SyncLayout();
    QPoint ScrollPosition() const;

    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    enum class Gesture { None, Pressed, Band };
    void Tell(const SelectionRules::Change& change);
    void CountChanged();
    void QueueUpdate(int firstChanged);
    void TakeUpdate();
    void TellVisible();
    void SetHovered(int index);
    void ScrollTo(const QPoint& position);
    void KeepInPlace(const GridLayout& before, const QPoint& scroll);
    void PressLeft(int index, QMouseEvent* event);
    void PressRight(int index, QMouseEvent* event);
    void BeginBand();
    void MoveBand();
    void CancelBand();
    void ScrollForBand();
    void StartDrag();
    bool KeyMoves(const QKeyEvent* event);
    bool KeyTypes(const QKeyEvent* event);
    void WantMenuByKey();
    void SpeakFocus();
    QRect BandOnViewport() const;

    GridLayout mLayout;
    SelectionRules mRules;
    TypeAhead mTypeAhead;
    DragHandler mDragHandler;
    GridLayout::Range mLastVisible;
    bool mDirty = true;
    bool mUpdateQueued = false;
    int mFirstChanged = 0; ///< what has changed since the last update, from here on
    int mLayoutCount = 0;
    int mWantedInSight = -1; ///< to be brought into view once the view is shown
    int mHovered = -1;
    Gesture mGesture = Gesture::None;
    int mPressedIndex = -1;
    bool mMayDrag = false;
    QPoint mPressPosition; ///< viewport
    QPoint mBandOrigin;    ///< content
    QPoint mMouse;         ///< viewport, during a rubber band
    QBasicTimer mAutoScroll;
    QPointF mWheelRest;      ///< pixels not scrolled yet
    bool mMenuByKey = false; ///< the menu key that is down has been answered
};

} // namespace quillane
