#pragma once
#include <QColor>

namespace quillane {

/// How a magnifying glass looks and what it does; lengths in logical pixels.
struct MagnifierLook {
    qint32 width = 260;
    qint32 height = 260;
    /// Device pixels for a pixel of the picture: 1.0 shows it pixel by pixel.
    double zoom = 1.0;
    /// The glass shows at least so many times what is around it, whatever `zoom` says.
    double leastTimes = 2.0;
    QColor background; ///< beside the picture; invalid: the view's own
    QColor border = QColor(250, 250, 250);
    qint32 borderWidth = 3;
    bool round = true;    ///< an ellipse, otherwise a rectangle
    bool shadow = true;   ///< a thin dark line around the border
    bool cross = false;   ///< marks the place under the mouse
    bool pointer = false; ///< whether the mouse pointer stays visible
};

} // namespace quillane
