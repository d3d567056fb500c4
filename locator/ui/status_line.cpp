#include "locator/ui/status_line.h"

#include <QHelpEvent>
#include <QStyle>
#include <QStyleOption>
#include <QStylePainter>
#include <QToolTip>

namespace quillane {

QSize StatusLine::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

void StatusLine::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    const QRect room = contentsRect();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, room.width());
    painter.drawItemText(room, Qt::AlignVCenter | Qt::AlignLeading, palette(), isEnabled(), shown,
                         foregroundRole());
}

bool StatusLine::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip
        && fontMetrics().horizontalAdvance(text()) > contentsRect().width()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
        return true;
    }
    return QLabel::event(event);
}

} // namespace quillane
