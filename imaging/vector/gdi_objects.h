#pragma once
// The objects of Windows' graphics that metafiles make, select and forget.
#include "imaging/vector/drawing.h"
#include <optional>
#include <set>
#include <variant>

namespace quillane::drawing {

struct GdiPen {
    Stroke stroke; ///< its width in logical units
    bool cosmetic = false;
};

struct GdiBrush {
    Fill fill;
};

struct GdiFont {
    QString family;
    double height = 0;     ///< logical units; above 0 the cell, below 0 the letters' own
    double width = 0;      ///< of a middling letter; 0: as the font has it
    double escapement = 0; ///< tenths of degrees, against the clock
    int weight = 400;
    bool italic = false, underline = false, strikeOut = false;
    int charset = 0;
    int pitchAndFamily = 0;
};

/// Rectangles in device units.
struct GdiRegion {
    Path area;
};

struct GdiPalette { };

using GdiObject = std::variant<std::monostate, GdiPen, GdiBrush, GdiFont, GdiRegion, GdiPalette>;

/// Objects by their numbers, at most kMostObjects of them.
class GdiTable {
public:
    /// Puts an object under the lowest free number.
    void Add(GdiObject object);
    /// Puts an object under that number; one too high is left out.
    void Set(quint32 number, GdiObject object);
    void Delete(quint32 number);
    /// The object of that number, or nullptr.
    const GdiObject* At(quint32 number) const;

    static constexpr quint32 kMostObjects = 65'536;

private:
    std::vector<GdiObject> mObjects;
    std::set<quint32> mFree; ///< numbers below the end that hold nothing
};

/// Style, cap and join of a pen by its number (PS_...).
Stroke GdiStroke(quint32 style);
/// A brush by its number (BS_...) and hatch (HS_...); nothing visible for a style without colour.
Fill GdiFill(quint32 style, QRgb colour, quint32 hatch);
/// A colour as it is written: red in the lowest byte.
QRgb GdiColour(quint32 reference);
/// Text in the bytes of a font's character set.
QString GdiText(QByteArrayView bytes, int charset);
/// Raster operation of P and D by the number of the drawing mode, 1 to 16; copying for others.
quint8 GdiRop2(int mode);

} // namespace quillane::drawing
