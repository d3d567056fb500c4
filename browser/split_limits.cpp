#include "browser/split_limits.h"

#include <algorithm>

namespace quillane {

int MinimumPaneWidth(const SplitMetrics& metrics, int barWidth)
{
    return std::max(0, (metrics.minimumWindowWidth - (barWidth + 2 * metrics.frame)) / 2);
}

int ClampBar(int left, int parentWidth, int barWidth, const SplitMetrics& metrics)
{
    const int minimum = MinimumPaneWidth(metrics, barWidth);
    const int upper = parentWidth - barWidth - minimum - metrics.inset;
    return std::max(0, std::min(std::max(left, minimum), upper));
}

SplitPanes ArrangePanes(const QRect& client, int top, int heightOffset, int left, int barWidth,
                        const SplitMetrics& metrics)
{
    const int height = std::max(0, client.height() - top - heightOffset);
    const int bar = ClampBar(left, client.width(), barWidth, metrics);
    const int y = client.top() + top;
    const int secondLeft = bar + barWidth;
    return {QRect(client.left(), y, bar, height), QRect(client.left() + bar, y, barWidth, height),
            QRect(client.left() + secondLeft, y, std::max(0, client.width() - secondLeft), height)};
}

QRect FitToScreen(const QRect& window, QSize screen)
{
    constexpr int kKeptFreeBelow = 30;
    QRect fitted = window;
    if (window.top() + window.height() > screen.height()) {
        fitted = QRect(fitted.left(), 0, fitted.width(), screen.height() - kKeptFreeBelow);
    }
    if (window.left() + window.width() > screen.width()) {
        fitted = QRect(0, fitted.top(), screen.width(), fitted.height());
    }
    return fitted;
}

} // namespace quillane
