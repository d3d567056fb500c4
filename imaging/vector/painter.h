#pragma once
#include "imaging/vector/drawing.h"
#include <QSize>
#include <atomic>

namespace quillane::drawing {

struct PaintRequest {
    QRectF view; ///< drawing units; what the canvas shows, with a width and a height
    QSize size;  ///< pixels, within the limits
    QRgb paper = 0xffffffff;
    const char* format = ""; ///< named in failures
    const std::atomic<bool>* cancelled = nullptr;
};

struct Painted {
    QImage image; ///< RGB32
    /// The drawing was too laborious, or more than its list could hold, and is not whole.
    bool partial = false;
};

/// The drawing on paper, with smooth edges. Its work is counted beforehand, record by record, and
/// ends at a bound, so a hostile drawing costs about as long as a large honest one. Text is drawn
/// only where the program has been made as one with fonts (QGuiApplication).
Painted Paint(const Drawing& drawing, const PaintRequest& request);

/// Size in pixels of a drawing that is `width` by `height` inches large, at 96 dots per inch and
/// within bounds; `unitless` sizes have the right shape only, and become middling pictures.
QSize NaturalSize(double width, double height, bool unitless);
/// The natural size, made smaller where `atLeast` allows it.
QSize ReducedSize(QSize natural, QSize atLeast);

} // namespace quillane::drawing
