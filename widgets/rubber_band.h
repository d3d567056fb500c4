#pragma once
#include <QList>
#include <QPointF>
#include <QRectF>

namespace quillane {

/// Shapes that a drag draws; 0 and 2 are the values of the window's commands.
enum BandMode : qint32 {
    kBandOff = -1,
    kBandRectangle = 0,
    kBandEllipse = 1,
    kBandFreeHand = 2,
    kBandRoundRectangle = 3,
};

/// Corner radius of a rounded rectangle of that width and height: a quarter of the shorter side.
double RoundedCorner(double width, double height);

/// What a drag has drawn so far, in pixels of a picture, so that it stays where it is drawn when
/// the picture is scrolled or zoomed.
class RubberBand {
public:
    qint32 Mode() const { return mMode; }
    /// A mode not listed is off. Ends a drag.
    void SetMode(qint32 mode);
    bool IsActive() const { return mActive; }

    /// Begins at a place; nothing where the mode is off.
    void Start(const QPointF& place);
    void MoveTo(const QPointF& place); ///< nothing where no drag is under way
    void End() { mActive = false; }    ///< what was drawn stays
    void Clear();                      ///< ends, and forgets what was drawn

    /// The rectangle between start and end of the drag; of the free hand, around all of its line.
    QRectF Places() const;
    /// The line of the free hand. A long one loses every other point, so that it never has more
    /// than kMostPoints.
    const QList<QPointF>& Line() const { return mLine; }
    static constexpr qsizetype kMostPoints = 50'000;

private:
    qint32 mMode = kBandOff;
    bool mActive = false;
    QPointF mFrom, mTo;
    QList<QPointF> mLine;
};

} // namespace quillane
