#pragma once
// The arithmetic of the splitter bar and of fitting the window to the screen, in pixels.
#include "widgets/twips.h"
#include <QRect>

namespace quillane {

/// The system's metrics that the bar's limits come from.
struct SplitMetrics {
    int frame = 0;              ///< thickness of a window's frame
    int border = 0;             ///< thickness of a border
    int minimumWindowWidth = 0; ///< smallest width of a window
    int inset = 0;              ///< kept free when the parent has a sunken edge, else 0
};

/// Smallest width of either pane: what the smallest window leaves beside the bar, halved.
int MinimumPaneWidth(const SplitMetrics& metrics, int barWidth);
/// Where the bar may stand: first the larger of `left` and the lower limit, then the smaller of
/// that and the upper one (the parent's width less the bar's and the minimum).
int ClampBar(int left, int parentWidth, int barWidth, const SplitMetrics& metrics);

struct SplitPanes {
    QRect first, bar, second;
};
/// The panes for a bar at `left` in the parent's client rectangle, less `top` and
/// `heightOffset`; the bar is pulled in when the parent has shrunk below it.
SplitPanes ArrangePanes(const QRect& client, int top, int heightOffset, int left, int barWidth,
                        const SplitMetrics& metrics);

/// The window cut to the screen: too low, it gets the screen's height less 30 pixels and top 0;
/// too wide, the screen's width and left 0.
QRect FitToScreen(const QRect& window, QSize screen);

} // namespace quillane
