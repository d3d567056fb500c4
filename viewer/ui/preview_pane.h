#pragma once
#include "viewer/live_preview.h"
#include <QWidget>

class QLabel;
class QToolButton;

namespace quillane {

/// Paints the look of an operation. At full size the picture is dragged, or moved by arrow keys.
class PreviewCanvas : public QWidget {
    Q_OBJECT
public:
    explicit PreviewCanvas(LivePreview& preview, QWidget* parent = nullptr);
    /// All of the picture, or a part pixel for pixel.
    void SetFit(bool fit);
    bool Fit() const { return mFit; }
    void ShowBefore(bool before); ///< the picture as it is, as long as wanted
    /// Where the shown picture lies, logical pixels.
    QRectF ImageRect() const;
    QSize sizeHint() const override { return {520, 390}; }
    QSize minimumSizeHint() const override { return {240, 170}; }

Q_SIGNALS:
    /// How large the picture is shown, 1 at full size.
    void Zoomed(double zoom);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const QImage& Shown() const;
    void LookAgain();
    void MoveBy(QPointF devicePixels);
    bool CanMove() const;
    void ShowPointer();

    LivePreview& mPreview;
    bool mFit = true;
    bool mBefore = false;
    bool mDragged = false;
    QPointF mCentre; ///< pixel of the picture in the middle
    QPointF mLast;   ///< pointer at the last step of a drag
};

/// The canvas with the buttons that say what it shows.
class PreviewPane : public QWidget {
    Q_OBJECT
public:
    explicit PreviewPane(QWidget* parent = nullptr);
    LivePreview& Preview() { return mPreview; }
    /// Whether a part can be looked at in full size, and whether it is at first.
    void SetFullSize(bool possible, bool first);

protected:
    void changeEvent(QEvent* event) override;

private:
    void ShowWords();
    void ShowWhichIsDown();

    LivePreview mPreview;
    PreviewCanvas* mCanvas;
    QToolButton* mFit;
    QToolButton* mFull;
    QToolButton* mBefore;
    QLabel* mWords;
    double mZoom = 1;
};

} // namespace quillane
