#pragma once
#include "gui/engine_view_support.h"
#include "viewer/ui/region_tools.h"

namespace quillane {

/// The region tools over a picture of 200 by 150 numbered pixels.
class RegionToolsTest : public testing::Test {
protected:
    RegionToolsTest()
    {
        ShowAndWait(mView, QSize(400, 300));
        Use(Numbered({200, 150}));
    }
    void Use(const QImage& pixels)
    {
        LEAD1.SetBitmap(Bitmap(pixels, ColourModel::Rgb, 24));
        mView.Show(LEAD1);
        QCoreApplication::processEvents();
    }
    QPointF At(double x, double y) const { return mView.BitmapToClient({x, y}); }
    void Drag(QPointF from, QPointF to, Qt::KeyboardModifiers modifiers = {}, bool release = true)
    {
        const QPointF first = At(from.x(), from.y());
        const QPointF last = At(to.x(), to.y());
        DragThrough(mView, {first, (first + last) / 2, last}, modifiers, release);
    }
    /// Where a pixel of the picture lies in what Grabbed gives, which is in device pixels.
    QPoint OnScreen(double x, double y) const
    {
        return (At(x + 0.5, y + 0.5) * mView.devicePixelRatioF() - QPointF(0.5, 0.5)).toPoint();
    }
    const QImage& Pixels() const { return LEAD1.Bitmap().Pixels(); }
    Qt::CursorShape PointerOver(double x, double y, Qt::KeyboardModifiers modifiers = {})
    {
        QMouseEvent move(QEvent::MouseMove, At(x, y), mView.viewport()->mapToGlobal(At(x, y)),
                         Qt::NoButton, Qt::NoButton, modifiers);
        QApplication::sendEvent(mView.viewport(), &move);
        return mView.viewport()->cursor().shape();
    }

    EngineInstance LEAD1;
    EngineView mView;
    RegionTools mTools{mView, LEAD1};
    QSignalSpy mPicture{&mTools, &RegionTools::PictureChanged};
    QSignalSpy mRegion{&mTools, &RegionTools::RegionChanged};
    QSignalSpy mMagnifier{&mTools, &RegionTools::MagnifierChanged};
};

} // namespace quillane
