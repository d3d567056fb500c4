#include "browser/ui/input_hold.h"

#include <QCoreApplication>
#include <QEvent>

namespace quillane {

InputHold::InputHold()
{
    QCoreApplication::instance()->installEventFilter(this);
}

InputHold::~InputHold()
{
    QCoreApplication::instance()->removeEventFilter(this);
    for (const QPointer<QWidget>& window : std::as_const(mToClose)) {
        if (window) {
            QMetaObject::invokeMethod(window, "close", Qt::QueuedConnection);
        }
    }
}

bool InputHold::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Close: {
        auto* window = qobject_cast<QWidget*>(watched);
        if (!window) {
            return false;
        }
        if (!mToClose.contains(window)) {
            mToClose.append(window);
        }
        event->ignore();
        return true;
    }
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::InputMethod:
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

} // namespace quillane
