#include "platform/ui/group_box_keys.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGroupBox>

namespace quillane {

GroupBoxKeys::GroupBoxKeys(QObject* parent) : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool GroupBoxKeys::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        const auto* box = qobject_cast<QGroupBox*>(watched);
        if (box && !box->isCheckable()) {
            event->ignore(); // the box around it is asked next
            return true;
        }
    }
    return false;
}

} // namespace quillane
