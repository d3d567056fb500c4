#pragma once
#include "imaging/bitmap.h"
#include "imaging/region.h"
#include <QFont>
#include <QString>

namespace quillane::processing {

/// How text is drawn into a picture.
struct TextStyle {
    QFont font; ///< a size in points counts 96 pixels to the inch, whatever the screen
    QRgb colour = 0xff000000u;
    bool transparent = true; ///< else white behind the text
};

/// Width of the longest line and height of all lines (ended by CR LF, CR or LF), in pixels. No
/// text has no width and the height of one line. A running QGuiApplication is needed here and
/// in DrawText.
QSize TextSize(const QString& text, const QFont& font);
/// The text with its upper left corner at a place, which may lie beside the picture. Pixels
/// outside the region (not null) stay. A grey picture stays grey with a grey colour and becomes
/// RGB with any other; black and white becomes grey of 8 bits, a palette full colour, CMYK RGB.
/// Failure kFailureGeneral without a picture, kFailureLimit without memory.
Bitmap DrawText(const Bitmap& picture, const Region* region, const QString& text, QPoint place,
                const TextStyle& style);

} // namespace quillane::processing
