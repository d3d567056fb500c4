#pragma once
// What the tests of the picture view and of its mouse tools have in common.
#include "gui/widgets_support.h"
#include "widgets/ui/engine_view.h"

#include <QScrollBar>
#include <QWheelEvent>

namespace quillane {

/// A picture whose pixels tell where they are.
inline QImage Numbered(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        QRgb* const row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            row[x] = qRgb(x % 256, y % 256, (x / 256 + y / 256) * 16 % 256);
        }
    }
    return picture;
}

/// Paints the view until nothing better is to come, and gives what it shows.
inline QImage Finished(EngineView& view)
{
    QImage shown = Grabbed(*view.viewport());
    Until([&] {
        if (view.IsFinished()) {
            return true;
        }
        shown = Grabbed(*view.viewport());
        return false;
    });
    return Grabbed(*view.viewport()).convertToFormat(QImage::Format_RGB32);
}

inline void SendMouse(EngineView& view, QEvent::Type type, const QPointF& at,
                      Qt::KeyboardModifiers modifiers = {})
{
    const bool moves = type == QEvent::MouseMove;
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(Qt::LeftButton);
    QMouseEvent event(type, at, view.viewport()->mapToGlobal(at),
                      moves ? Qt::NoButton : Qt::LeftButton, held, modifiers);
    QApplication::sendEvent(view.viewport(), &event);
}

/// Presses at the first point, moves over the others, and releases at the last.
inline void DragThrough(EngineView& view, const QList<QPointF>& points,
                        Qt::KeyboardModifiers modifiers = {}, bool release = true)
{
    SendMouse(view, QEvent::MouseButtonPress, points.first(), modifiers);
    for (const QPointF& point : points.mid(1)) {
        SendMouse(view, QEvent::MouseMove, point, modifiers);
    }
    if (release) {
        SendMouse(view, QEvent::MouseButtonRelease, points.last(), modifiers);
    }
}

/// Turns the wheel by eighths of a degree, or moves two fingers by pixels.
inline void Wheel(EngineView& view, const QPointF& at, QPoint angle,
                  Qt::KeyboardModifiers modifiers = {}, QPoint pixels = {})
{
    QWheelEvent event(at, view.viewport()->mapToGlobal(at), pixels, angle, Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &event);
}

} // namespace quillane
