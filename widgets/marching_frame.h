#pragma once
#include "widgets/region_outline.h"
#include <QBasicTimer>
#include <QObject>

class QPainter;

namespace quillane {

/// The frame of a region: dashes of two colours, to be seen on any picture, that march while it is
/// shown.
class MarchingFrame : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    /// The region that is framed; an empty one has no frame.
    void SetRegion(const Region& region);
    const Region& FramedRegion() const { return mRegion; }
    /// Whether the frame is shown, and whether what shows it can be seen; it marches when both.
    void SetShown(bool shown, bool visible);
    bool IsShown() const { return mShown && !mRegion.IsEmpty(); }
    bool IsMarching() const { return mTimer.isActive(); }

    /// Paints it; painter and geometry are in device pixels.
    void Paint(QPainter& painter, const ViewGeometry& geometry, QSize view);

Q_SIGNALS:
    void stepped(); ///< it has to be painted anew

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void StartOrStop();

    Region mRegion;
    bool mShown = false;
    bool mVisible = false;
    int mStep = 0;
    QBasicTimer mTimer;
    bool mOutdated = true; ///< the points are those of another place
    ViewGeometry mGeometry;
    QSize mView;
    struct Dot {
        QPoint point;
        int along; ///< its place in the pattern
    };
    std::vector<Dot> mDots;
};

} // namespace quillane
