#pragma once
#include "browser/split_limits.h"
#include "core/file_kinds.h"
#include "platform/dialogs.h"
#include <QObject>
#include <QPointer>
#include <QWidget>

class QRubberBand;

namespace quillane {

/// The movable vertical bar between two panes of a parent. It knows them only as widgets.
class cVSplitter : public QObject {
    Q_OBJECT
public:
    explicit cVSplitter(Dialogs& dialogs, QObject* parent = nullptr);
    ~cVSplitter() override;

    /// Takes the panes over. A pane that is no window is refused with a message box and the
    /// result is false; the object then stays unusable.
    bool SetControls(QWidget* parent, QObject* firstPane, QObject* secondPane, QWidget* bar);

    qint32 Left() const { return mLeft; } ///< of the bar in the client area
    void SetLeft(qint32 left);            ///< 0 or more; moves the bar and rearranges
    quint8 Width() const { return mWidth; }
    void SetWidth(quint8 width); ///< 0 is ignored
    qint32 Top() const { return mTop; }
    void SetTop(qint32 top); ///< 0 or more; rearranges
    qint32 HeightOffset() const { return mHeightOffset; }
    void SetHeightOffset(qint32 offset);          ///< 0 or more; rearranges
    bool Splitting() const { return mSplitting; } ///< a drag is going on
    qint16 TrackSplit() const { return mTrackSplit; }
    /// -1: the panes follow the bar; 0: a ghost is drawn and the panes move at the end.
    void SetTrackSplit(qint16 track) { mTrackSplit = track; }

    /// Ends a running drag and puts the bar back.
    void CancelSplit();
    /// Lays the panes out anew.
    void Arrange();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BeginSplit(int globalX);
    void MoveSplit(int globalX);
    void EndSplit();
    int PositionFor(int globalX) const;
    void DrawGhost(int left);
    QWidget* Window(QObject* pane);

    Dialogs& mDialogs;
    QPointer<QWidget> mParent, mFirst, mSecond, mBar;
    std::unique_ptr<QRubberBand> mGhost;
    SplitMetrics mMetrics;
    qint32 mLeft = 0, mTop = 0, mHeightOffset = 0;
    quint8 mWidth = 0;
    qint16 mTrackSplit = kFalse;
    bool mSplitting = false;
    int mGrab = 0;      ///< distance of the mouse from the bar's left edge
    int mStartLeft = 0; ///< where the bar stood when the drag began
    int mLastLeft = 0;  ///< last position of the drag
};

} // namespace quillane
