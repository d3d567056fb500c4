#include "browser/ui/status_panels.h"

#include <QPainter>

namespace quillane {

namespace {

struct PanelLook {
    const char* name;
    const char16_t* widest; ///< what it is wide enough for; null: for what is left
    const char* accessible;
};
constexpr PanelLook kPanelLooks[] = {
    {"StatusBar1_1", u"Search = ON", "Search state"},
    {"StatusBar1_2", u"Search Found:", "Search result"},
    {"StatusBar1_3", u"Total Images = 1000000", "Number of files"},
    {"StatusBar1_4", nullptr, "Folder"},
};
constexpr int kTellMilliseconds = 6000;
constexpr int kPanelMargin = 6;

} // namespace

StatusPanel::StatusPanel(QWidget* parent) : QFrame(parent)
{ }

void StatusPanel::SetText(const QString& text)
{
    if (mText != text) {
        mText = text;
        setToolTip(text.isEmpty() ? QString()
                                  : QStringLiteral("<p style='white-space:pre-wrap'>%1</p>")
                                        .arg(text.toHtmlEscaped()));
        setAccessibleDescription(text);
        update();
    }
}

QSize StatusPanel::minimumSizeHint() const
{
    return {0, fontMetrics().height() + 4};
}

QSize StatusPanel::sizeHint() const
{
    return minimumSizeHint();
}

void StatusPanel::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    QRect inner = rect().adjusted(kPanelMargin, 0, -kPanelMargin, 0);
    // The end of a path says more than its middle does.
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft,
                     fontMetrics().elidedText(mText, Qt::ElideMiddle, inner.width()));
    QColor line = palette().color(QPalette::WindowText);
    line.setAlpha(50);
    painter.setPen(line);
    painter.drawLine(rect().right(), 3, rect().right(), rect().bottom() - 3);
}

StatusPanels::StatusPanels(QStatusBar* bar) : mBar(bar)
{
    // A line may be longer than the bar.
    QObject::connect(bar, &QStatusBar::messageChanged, bar, &QStatusBar::setToolTip);
    for (size_t i = 0; i < mPanels.size(); ++i) {
        const PanelLook& look = kPanelLooks[i];
        auto* panel = new StatusPanel(bar);
        panel->setObjectName(QLatin1String(look.name));
        panel->setAccessibleName(QLatin1String(look.accessible));
        if (look.widest) {
            panel->setFixedWidth(
                bar->fontMetrics().horizontalAdvance(QString::fromUtf16(look.widest))
                + 3 * kPanelMargin);
        }
        bar->addWidget(panel, look.widest ? 0 : 1);
        mPanels[i] = panel;
    }
}

void StatusPanels::SetText(int panel, const QString& text)
{
    if (panel >= 1 && panel <= int(mPanels.size())) {
        mPanels[size_t(panel - 1)]->SetText(text);
    }
}

QString StatusPanels::Text(int panel) const
{
    return panel >= 1 && panel <= int(mPanels.size()) ? mPanels[size_t(panel - 1)]->Text()
                                                      : QString();
}

void StatusPanels::Tell(const QString& message)
{
    mBar->showMessage(message, kTellMilliseconds);
}

} // namespace quillane
