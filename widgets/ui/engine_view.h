#pragma once
#include "imaging/engine.h"
#include "widgets/magnifier_look.h"
#include "widgets/marching_frame.h"
#include "widgets/picture_painter.h"
#include "widgets/rubber_band.h"
#include "widgets/view_geometry.h"
#include <QAbstractScrollArea>
#include <QImage>
#include <optional>

class QNativeGestureEvent;

namespace quillane {

/// Shows the image of an engine instance (LEAD1) and what the mouse tools draw over it. Zoom is of
/// device pixels: at 100 % one pixel of the picture is one of the screen. Nothing is converted but
/// what is in sight; see PicturePainter.
///
/// "Client" coordinates are those of the viewport, in logical pixels, as mouse events have them.
class EngineView : public QAbstractScrollArea {
    Q_OBJECT
public:
    enum SizeMode : qint32 {
        kPaintNormal = 0, ///< 100 %
        kPaintFit = 3,    ///< whole picture in the frame, its shape kept
        kPaintScaled = 4, ///< by PaintScalar
    };
    explicit EngineView(QWidget* parent = nullptr);

    /// Shows image, region and floater that the instance holds now; call again when one has
    /// changed. With the image unchanged this costs nothing.
    void Show(const EngineInstance& instance);
    void ShowBitmap(const Bitmap& bitmap); ///< as it looks on the screen
    /// A picture that is ready for the screen, upright and sRGB.
    void ShowImage(const QImage& image);
    /// Shows an early reduced picture, upright and sRGB, in the place of a full one of that size,
    /// which is being loaded: everything works as it will with the full one. Show follows.
    void ShowReduced(const QImage& early, QSize fullSize);
    void Clear() { ShowBitmap({}); }
    bool HasImage() const { return !mGeometry.picture.isEmpty(); }
    QSize ImageSize() const { return mGeometry.picture; } ///< pixels of the picture
    /// Whether what is in sight is as good as it gets: nothing is being computed.
    bool IsFinished() const;
    /// Memory that was taken to show the picture, the picture itself apart.
    qint64 CacheBytes() const { return mPainter.Bytes() + mFloaterPainter.Bytes(); }

    qint32 PaintSizeMode() const { return mMode; }
    void SetPaintSizeMode(qint32 mode); ///< a mode not listed counts as normal
    qint32 PaintScalar() const { return mScalar; }
    void SetPaintScalar(qint32 percent); ///< 1 to 3200, cut to that; used with mode 4
    /// Whether there are scroll bars when the picture is larger than the frame.
    bool AutoScroll() const { return mAutoScroll; }
    void SetAutoScroll(bool on); ///< on at first
    /// Whether mode 3 also enlarges; off at first.
    bool EnlargesToFit() const { return mEnlarge; }
    void SetEnlargesToFit(bool on); ///< see EnlargesToFit
    void ForceRepaint();            ///< paints now

    /// Percentage at which the picture is shown now, in any mode.
    double ZoomPercent() const;
    /// Mode 4 at that percentage, the picture's place under a client position kept as near as the
    /// ends of the picture allow.
    void ZoomAbout(const QPointF& client, double percent);

    QRectF ImageRect() const; ///< of the whole picture, in client coordinates
    /// Where the picture is painted (ImageRect), and what of it: the whole. A client position x is
    /// (x - destination left) * source width / destination width of the picture.
    QRectF DestinationRect() const { return ImageRect(); }
    QRect SourceRect() const { return QRect(QPoint(), ImageSize()); }
    QPointF ClientToBitmap(const QPointF& position) const; ///< client to picture pixels
    QPointF BitmapToClient(const QPointF& position) const; ///< picture pixels to client

    /// Whether dragging with the left button scrolls the picture; off at first.
    bool DragEnabled() const { return mDragEnabled; }
    void SetDragEnabled(bool on); ///< see DragEnabled

    /// Shape that StartRubberBand draws, a BandMode; kBandOff for none.
    qint32 RubberBandMode() const { return mBand.Mode(); }
    void SetRubberBandMode(qint32 mode); ///< a mode not listed is off; ends a band
    /// Begins a drag at a client position; MoveRubberBand and EndRubberBand follow it. The band
    /// sticks to the picture when that is scrolled or zoomed. Nothing where the mode is off.
    void StartRubberBand(const QPointF& client);
    /// Leads the band to a client position; beside the viewport the picture scrolls along.
    void MoveRubberBand(const QPointF& client);
    void EndRubberBand(); ///< the band is hidden; its values stay
    bool IsRubberBandActive() const { return mBand.IsActive(); }
    /// Left, top, width and height of the last drag, in client coordinates.
    QRectF RubberBandRect() const;
    /// The same in pixels of the picture.
    QRectF RubberBandPlaces() const { return mBand.Places(); }
    /// What the free hand drew, in pixels of the picture.
    QList<QPointF> RubberBandLine() const { return mBand.Line(); }

    /// The marching frame of the region that Show found: 0 hides it.
    qint32 RegionFrame() const { return mRegionFrame; }
    void SetRegionFrame(qint32 frame); ///< see RegionFrame
    bool IsMarching() const { return mFrame.IsMarching(); }

    /// Turns the mouse into a magnifying glass; an older one ends.
    void StartMagnifier(const MagnifierLook& look);
    void StopMagnifier(); ///< the mouse is a pointer again
    bool IsMagnifierOn() const { return mGlass.has_value(); }
    /// The part of the viewport that the glass covers now; empty without one or with the mouse
    /// elsewhere.
    QRectF MagnifierRect() const;
    /// Device pixels for a pixel of the picture in the glass.
    double MagnifierZoom() const;

    /// The pointer that a tool wants over the picture; none for the view's own.
    void SetToolPointer(std::optional<Qt::CursorShape> shape);

Q_SIGNALS:
    /// A person has zoomed by wheel or touchpad: the view is now in mode 4 at that PaintScalar.
    void zoomChosen(int percent);
    /// Another picture is shown, or none: what a drag began on is gone.
    void pictureReplaced();

protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void Replaced(QSize size);
    void DropTools();
    void Relayout();
    void UpdateScrollBars();
    void UpdateGeometry();
    void BringTo(const QPointF& place, const QPointF& client);
    double WantedZoom() const;
    QSize ViewDevicePixels() const;
    void ZoomByPerson(const QPointF& client, double factor);
    void ScrollBy(QPointF devicePixels);
    bool Gesture(QNativeGestureEvent* event);
    void RefreshPointer();
    void MoveGlass(std::optional<QPointF> client);
    void PaintFloater(QPainter& painter, const QRect& exposed);
    void PaintBand(QPainter& painter);
    void PaintGlass(QPainter& painter);
    ViewGeometry FloaterGeometry() const;

    ViewGeometry mGeometry;
    PicturePainter mPainter;
    PicturePainter mFloaterPainter;
    MarchingFrame mFrame;
    RubberBand mBand;
    std::optional<MagnifierLook> mGlass;
    std::optional<QPointF> mGlassAt; ///< client position of the mouse
    std::optional<Qt::CursorShape> mToolPointer;
    QPoint mFloaterPlace;
    bool mFloaterVisible = false;
    qint32 mRegionFrame = 0;
    qint32 mMode = kPaintNormal;
    qint32 mScalar = 100;
    double mExactPercent = 100; ///< what wheel steps have added up to
    QPointF mScrollRest;        ///< device pixels that no scroll bar has taken yet
    bool mAutoScroll = true;
    bool mEnlarge = false;
    bool mDragEnabled = false;
    bool mDragging = false;
    QPointF mDragFrom;    ///< client position
    QPoint mDragScrolled; ///< the scroll bars' values there
};

} // namespace quillane
