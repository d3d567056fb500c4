#include "locator/ui/status_line.h"

#include "widgets/label_lines.h"

#include <QHelpEvent>
#include <QStyle>
#include <QStyleOption>
#include <QStylePainter>
#include <QToolTip>

namespace quillane {

namespace {

constexpr qsizetype kMostShown = 2000; // units of a text that are laid out

/// The text without its middle, if it is longer than any line is wide.
QString StatusEnds(const QString& text, qsizetype most)
{
    return text.size() <= most ? text
                               : text.left(most / 2) + QChar(u'\u2026') + text.right(most / 2);
}

} // namespace

QSize StatusLine::sizeHint() const
{
    return minimumSizeHint();
}

QSize StatusLine::minimumSizeHint() const
{
    // The text is not laid out for it: it may be a path of any length.
    const QMargins around = contentsMargins();
    return {0, fontMetrics().height() + 2 * margin() + around.top() + around.bottom()};
}

void StatusLine::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    const QRect room = contentsRect();
    const QString shown = fontMetrics().elidedText(DisplayName(StatusEnds(text(), kMostShown)),
                                                   Qt::ElideMiddle, room.width());
    painter.drawItemText(room, Qt::AlignVCenter | Qt::AlignLeading, palette(), isEnabled(), shown,
                         foregroundRole());
}

bool StatusLine::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const QString shown = DisplayName(StatusEnds(text(), 2 * kMostShown));
        if (fontMetrics().horizontalAdvance(shown) > contentsRect().width()) {
            QToolTip::showText(
                static_cast<QHelpEvent*>(event)->globalPos(),
                QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(shown.toHtmlEscaped()),
                this);
            return true;
        }
    }
    return QLabel::event(event);
}

} // namespace quillane
