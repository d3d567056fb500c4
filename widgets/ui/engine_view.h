#pragma once
#include "imaging/engine.h"
#include "widgets/background_jobs.h"
#include <QAbstractScrollArea>
#include <QImage>

namespace quillane {

/// Shows the image of an engine instance (LEAD1). Zoom is of device pixels: at 100 % one pixel
/// of the picture is one of the screen.
class EngineView : public QAbstractScrollArea {
    Q_OBJECT
public:
    enum SizeMode : qint32 {
        kPaintNormal = 0, ///< 100 %
        kPaintFit = 3,    ///< whole picture in the frame, its shape kept
        kPaintScaled = 4, ///< by PaintScalar
    };
    explicit EngineView(QWidget* parent = nullptr);

    /// Shows the image that the instance holds now; call again when it has changed.
    void Show(const EngineInstance& instance) { ShowBitmap(instance.Bitmap()); }
    void ShowBitmap(const Bitmap& bitmap); ///< as it looks on the screen
    /// A picture that is ready for the screen, upright and sRGB.
    void ShowImage(const QImage& image);
    void Clear() { ShowImage({}); }
    bool HasImage() const { return !mImage.isNull(); }
    QSize ImageSize() const { return mImage.size(); } ///< pixels of the picture

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

    double ZoomPercent() const; ///< at which the picture is shown now
    QRectF ImageRect() const;   ///< of the whole picture, in viewport coordinates
    QPointF ClientToBitmap(const QPointF& position) const; ///< viewport to picture pixels
    QPointF BitmapToClient(const QPointF& position) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void changeEvent(QEvent* event) override;

private:
    double Zoom() const; ///< device pixels for a pixel of the picture
    QSize ShownDevicePixels() const;
    QSize ViewDevicePixels() const;
    QPoint OriginDevice() const; ///< top left of the picture, device pixels of the viewport
    void UpdateScrollBars();
    void PaintPicture(QPainter& painter, const QRect& exposed);
    void PaintReduced(QPainter& painter, const QRect& target);
    void MakeReduced(QSize size);

    QImage mImage;
    QImage mReduced;    ///< the picture as last made smaller
    QSize mReducedWish; ///< size that is being made
    quint64 mShown = 0; ///< numbers the pictures
    BackgroundJobs mJobs;
    qint32 mMode = kPaintNormal;
    qint32 mScalar = 100;
    bool mAutoScroll = true;
    bool mEnlarge = false;
};

} // namespace quillane
