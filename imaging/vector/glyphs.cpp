#include "imaging/vector/glyphs.h"
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainterPath>
#include <algorithm>

namespace quillane::drawing {

namespace {

constexpr int kGlyphPixels = 128;     ///< size at which outlines are taken
constexpr qsizetype kGlyphFaces = 40; ///< fonts of one drawing; then the first is used
constexpr qsizetype kGlyphFamily = 64;

QString GlyphFamily(const QString& claimed)
{
    QString family;
    for (const QChar c : claimed.left(kGlyphFamily)) {
        if (c.isPrint() && c != u',' && c != u'@') {
            family += c;
        }
    }
    return family.trimmed();
}

Path GlyphPath(const QPainterPath& outline)
{
    Path path;
    for (int i = 0; i < outline.elementCount(); ++i) {
        const QPainterPath::Element element = outline.elementAt(i);
        if (element.isMoveTo()) {
            path.Close();
            path.MoveTo(element);
        } else if (element.isLineTo()) {
            path.LineTo(element);
        } else if (i + 2 < outline.elementCount()) {
            path.CubicTo(element, outline.elementAt(i + 1), outline.elementAt(i + 2));
            i += 2;
        }
    }
    path.Close();
    return path;
}

/// Scripts whose letters change with their neighbours are laid out as a whole.
bool GlyphsStandAlone(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) {
        return c.unicode() < 0x300 || (c.unicode() >= 0x370 && c.unicode() < 0x530)
            || (c.unicode() >= 0x2000 && c.unicode() < 0xd800);
    });
}

} // namespace

bool GlyphStore::HasFonts()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

GlyphStore::Face& GlyphStore::FaceOf(const TextRun& run)
{
    const QString family = GlyphFamily(run.family);
    const int weight = std::clamp(run.weight, 100, 900);
    const QString key = family + u'|' + QString::number(weight) + (run.italic ? u'i' : u'r')
        + (run.serif ? u's' : u'-') + (run.fixed ? u'f' : u'-');
    const auto found = mFaces.find(key);
    if (found != mFaces.end()) {
        return *found;
    }
    if (mFaces.size() >= kGlyphFaces) {
        return *mFaces.begin();
    }
    Face face;
    if (!family.isEmpty()) {
        face.font.setFamilies({family});
    }
    face.font.setStyleHint(run.fixed       ? QFont::Monospace
                               : run.serif ? QFont::Serif
                                           : QFont::SansSerif,
                           QFont::ForceOutline);
    face.font.setPixelSize(kGlyphPixels);
    face.font.setWeight(QFont::Weight(weight));
    face.font.setItalic(run.italic);
    face.font.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(face.font);
    face.ascent = metrics.ascent();
    face.descent = metrics.descent();
    face.capital = std::max(metrics.capHeight(), 1.0);
    face.average = std::max(metrics.averageCharWidth(), 1.0);
    return *mFaces.insert(key, face);
}

const std::pair<Path, double>& GlyphStore::Glyph(Face& face, char32_t letter) const
{
    const auto found = face.glyphs.find(letter);
    if (found != face.glyphs.end()) {
        return *found;
    }
    const QString text = QString::fromUcs4(&letter, 1);
    QPainterPath outline;
    outline.addText(0, 0, face.font, text);
    const double advance = QFontMetricsF(face.font).horizontalAdvance(text);
    return *face.glyphs.insert(letter, {GlyphPath(outline), advance});
}

TextOutlines GlyphStore::Lay(const TextRun& run)
{
    TextOutlines out;
    if (!HasFonts()) {
        return out;
    }
    Face& face = FaceOf(run);
    const double unit = run.height
        / (run.heightOf == TextHeight::Em         ? kGlyphPixels
               : run.heightOf == TextHeight::Cell ? face.ascent + face.descent
                                                  : face.capital);
    double wide =
        unit * (run.averageWidth > 0 ? run.averageWidth / (face.average * unit) : run.stretch);
    Path letters;
    double length = 0;
    if (run.advances.empty() && run.extra == 0 && !GlyphsStandAlone(run.text)) {
        QPainterPath outline;
        outline.addText(0, 0, face.font, run.text);
        length = QFontMetricsF(face.font).horizontalAdvance(run.text);
        if (run.width > 0 && length > 0) {
            wide = run.width / length;
        }
        letters = GlyphPath(outline).Mapped(QTransform::fromScale(wide, unit));
        length *= wide;
    } else {
        if (run.width > 0) {
            double own = 0;
            for (const char32_t letter : run.text.toUcs4()) {
                own += Glyph(face, letter).second;
            }
            wide = own > 0 ? run.width / own : wide;
        }
        qsizetype unit16 = 0; // index into the advances, which count UTF-16 units
        for (const char32_t letter : run.text.toUcs4()) {
            const auto& [path, advance] = Glyph(face, letter);
            letters.Append(path.Mapped(QTransform(wide, 0, 0, unit, length, 0)));
            length += unit16 < qsizetype(run.advances.size()) ? double(run.advances[size_t(unit16)])
                                                              : advance * wide + run.extra;
            unit16 += letter > 0xffff ? 2 : 1;
        }
    }
    const double ascent = face.ascent * unit;
    const double descent = face.descent * unit;
    const double x = run.across == Qt::AlignLeft ? 0
        : run.across == Qt::AlignRight           ? -length
                                                 : -length / 2;
    const double capital = face.capital * unit;
    const double y = run.down == TextPlace::Baseline ? 0
        : run.down == TextPlace::Bottom              ? -descent
        : run.down == TextPlace::Middle              ? capital / 2
        : run.heightOf == TextHeight::Capital        ? capital
                                                     : ascent;
    out.letters = letters.Mapped(QTransform::fromTranslate(x, y));
    out.box = QRectF(x, y - ascent, length, ascent + descent);
    const double thick = std::max(kGlyphPixels * unit / 16, 1e-9);
    if (run.underline) {
        out.lines.AddRectangle(QRectF(x, y + descent / 2 - thick / 2, length, thick));
    }
    if (run.strikeOut) {
        out.lines.AddRectangle(QRectF(x, y - ascent / 3 - thick / 2, length, thick));
    }
    return out;
}

} // namespace quillane::drawing
