#pragma once
#include "imaging/vector/drawing.h"
#include <QFont>
#include <QHash>

namespace quillane::drawing {

/// A run of text as outlines, in text units.
struct TextOutlines {
    Path letters;
    Path lines; ///< underline, and the line through
    QRectF box; ///< of the whole run, for its background
};

/// Outlines of letters, each made once per font.
class GlyphStore {
public:
    /// Whether there are fonts.
    static bool HasFonts();
    /// The run laid out; empty without fonts.
    TextOutlines Lay(const TextRun& run);

private:
    struct Face {
        QFont font;
        double ascent = 0, descent = 0, capital = 0, average = 0;
        QHash<char32_t, std::pair<Path, double>> glyphs;
    };
    Face& FaceOf(const TextRun& run);
    const std::pair<Path, double>& Glyph(Face& face, char32_t letter) const;
    QHash<QString, Face> mFaces;
};

} // namespace quillane::drawing
