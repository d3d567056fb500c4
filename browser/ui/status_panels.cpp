#include "browser/ui/status_panels.h"

#include <QPainter>

namespace quillane {

namespace {

struct PanelLook {
    const char* name;
    int width; ///< in average characters
    int stretch;
    const char* accessible;
};
constexpr PanelLook kPanelLooks[] = {
    {"StatusBar1_1", 14, 0, "Search state"},
    {"StatusBar1_2", 14, 0, "Search result"},
    {"StatusBar1_3", 24, 0, "Number of files"},
    {"StatusBar1_4", 20, 1, "Folder"},
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
        setToolTip(text);
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
        if (look.stretch == 0) {
            panel->setFixedWidth(look.width * bar->fontMetrics().averageCharWidth()
                                 + 2 * kPanelMargin);
        }
        bar->addWidget(panel, look.stretch);
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
