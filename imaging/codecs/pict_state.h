#pragma once
// What a QuickDraw picture draws with, and the figures it draws.
#include "imaging/codecs/pict_reader.h"
#include "imaging/vector/drawing.h"
#include <QHash>
#include <array>

namespace quillane::codecs {

/// What is done with a figure; the numbers are those in the operations.
enum class PictVerb : quint8 { Frame, Paint, Erase, Invert, Fill };

/// Eight rows of eight bits, a set one for ink.
using PictPattern = std::array<uchar, 8>;

/// The port of a picture while it is played.
struct PictState {
    QRgb ink = 0xff000000;
    QRgb paper = 0xffffffff;
    QSizeF pen{1, 1};
    int penMode = 8;
    PictPattern penPattern{255, 255, 255, 255, 255, 255, 255, 255};
    PictPattern backPattern{};
    PictPattern fillPattern{255, 255, 255, 255, 255, 255, 255, 255};
    QPointF origin; ///< taken off every coordinate
    QPointF at;     ///< the pen
    QPointF textAt;
    int font = 0;
    int face = 0;
    int textSize = 12;
    QSizeF corner; ///< of rounded rectangles
    QRectF rectangle, rounded, oval, arc;
    int arcStart = 0, arcSweep = 0;
    std::vector<QPointF> polygon;
    drawing::Path region;
    QHash<int, QString> fonts; ///< names of numbers
    drawing::ClipPointer clip;
};

/// Draws figures of a state.
class PictArtist {
public:
    PictArtist(PictState& state, drawing::Drawing& drawing) : mState(state), mDrawing(drawing) { }
    /// From the pen's place, which is there afterwards.
    void Line(QPointF to);
    /// An upright box.
    void Rectangle(PictVerb verb, const QRectF& box);
    /// A box with the state's corners.
    void RoundRectangle(PictVerb verb, const QRectF& box);
    /// The ellipse in a box.
    void Oval(PictVerb verb, const QRectF& box);
    /// Degrees, clockwise from the top.
    void Arc(PictVerb verb, const QRectF& box, int start, int sweep);
    /// Closed where it is filled.
    void Polygon(PictVerb verb, const std::vector<QPointF>& corners);
    /// Rectangles that belong together; of several no outline is drawn.
    void Region(PictVerb verb, const drawing::Path& region);
    /// Text in the encoding of the Macintosh at the text's place.
    void Text(QByteArrayView text);

private:
    void Area(PictVerb verb, const drawing::Path& path);
    void Outline(const drawing::Path& path);
    drawing::Fill FillOf(const PictPattern& pattern) const;
    quint8 Operation() const;
    QRectF InsidePen(const QRectF& box) const;
    PictState& mState;
    drawing::Drawing& mDrawing;
};

/// Colours that the first version names by the planes of a printer.
QRgb PictOldColour(quint32 value);
/// The rectangles of a region, whose size has not been read yet.
drawing::Path ReadPictRegion(PictReader& reader);

} // namespace quillane::codecs
