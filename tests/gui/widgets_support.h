#pragma once
// What the tests of the shared widgets have in common.
#include "platform/dialogs.h"
#include "widgets/ui/cell_view.h"

#include <QApplication>
#include <QImage>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>

namespace quillane {

/// Lets window events flow until a condition holds; fails when it never does.
inline void Until(const std::function<bool()>& condition)
{
    ASSERT_TRUE(QTest::qWaitFor(condition, 30'000));
}

inline void ShowAndWait(QWidget& widget, QSize size)
{
    widget.resize(size);
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
    widget.setFocus();
    QCoreApplication::processEvents();
}

/// Remembers message boxes and answers them all with Ok.
class BoxRecorder : public Dialogs {
public:
    BoxAnswer Box(const QString& text, const QString&, BoxIcon, BoxButtons) override
    {
        texts.append(text);
        return BoxAnswer::Ok;
    }
    QString File(const FileDialogSpec&) override { return {}; }
    QStringList texts;
};

inline void ClickCell(CellView& view, int index, Qt::KeyboardModifiers modifiers = {},
                      Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(view.viewport(), button, modifiers, view.CellRect(index).center());
}

/// Presses at one point of the viewport, moves to others, and releases at the last.
inline void DragOver(CellView& view, const QList<QPoint>& points,
                     Qt::KeyboardModifiers modifiers = {}, bool release = true)
{
    QTest::mousePress(view.viewport(), Qt::LeftButton, modifiers, points.first());
    for (const QPoint& point : points.mid(1)) {
        QMouseEvent move(QEvent::MouseMove, point, view.viewport()->mapToGlobal(point),
                         Qt::NoButton, Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &move);
    }
    if (release) {
        QTest::mouseRelease(view.viewport(), Qt::LeftButton, modifiers, points.last());
    }
}

inline QImage Picture(QSize size, QColor colour = Qt::red)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

inline QImage Grabbed(QWidget& widget)
{
    return widget.grab().toImage();
}

} // namespace quillane
