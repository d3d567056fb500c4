#pragma once
#include "imaging/codec.h"
#include "imaging/vector/drawing.h"

namespace quillane::drawing {

/// A drawing with the part of it that is the picture.
struct DrawnPage {
    Drawing drawing;
    QRectF view;          ///< drawing units
    double inchWidth = 0; ///< size on paper
    double inchHeight = 0;
    bool unitless = true; ///< nothing tells how large it is: its shape alone counts
    bool partial = false; ///< the file ended early
};

/// Gives the view a width and a height: lines along an axis become pictures one unit high.
void SettleView(DrawnPage& page, QRectF wanted);
/// Makes the view larger where figures stand outside it, unless that would more than double it:
/// files exist whose frame is too small for what they draw.
void TakeInFigures(DrawnPage& page);
/// Facts of a drawn page under a format code.
ImageFacts DrawnFacts(const DrawnPage& page, qint16 format);
/// The page painted, at reduced scale where the request allows it.
Bitmap PaintPage(const DrawnPage& page, const DecodeRequest& request, const char* format);
/// The whole file, at most kDrawnMostBytes; Failure kFailureLimit when it is larger.
QByteArray DrawnBytes(ByteSource& source, const char* format);

inline constexpr qint64 kDrawnMostBytes = 96ll << 20;

} // namespace quillane::drawing
