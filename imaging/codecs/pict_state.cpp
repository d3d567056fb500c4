#include "imaging/codecs/pict_state.h"
#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillane::codecs {

namespace {

constexpr int kPictXorPattern = 10;  ///< pen mode
constexpr quint8 kPictInvert = 0x55; ///< raster operation: not D
constexpr quint8 kPictXor = 0x5a;    ///< raster operation: D xor P

/// Characters 128 to 255.
constexpr char16_t kPictLetters[] =
    u"\u00c4\u00c5\u00c7\u00c9\u00d1\u00d6\u00dc\u00e1\u00e0\u00e2\u00e4\u00e3\u00e5\u00e7\u00e9"
    u"\u00e8\u00ea\u00eb\u00ed\u00ec\u00ee\u00ef\u00f1\u00f3\u00f2\u00f4\u00f6\u00f5\u00fa\u00f9"
    u"\u00fb\u00fc\u2020\u00b0\u00a2\u00a3\u00a7\u2022\u00b6\u00df\u00ae\u00a9\u2122\u00b4\u00a8"
    u"\u2260\u00c6\u00d8\u221e\u00b1\u2264\u2265\u00a5\u00b5\u2202\u2211\u220f\u03c0\u222b\u00aa"
    u"\u00ba\u03a9\u00e6\u00f8\u00bf\u00a1\u00ac\u221a\u0192\u2248\u2206\u00ab\u00bb\u2026\u00a0"
    u"\u00c0\u00c3\u00d5\u0152\u0153\u2013\u2014\u201c\u201d\u2018\u2019\u00f7\u25ca\u00ff\u0178"
    u"\u2044\u20ac\u2039\u203a\ufb01\ufb02\u2021\u00b7\u201a\u201e\u2030\u00c2\u00ca\u00c1\u00cb"
    u"\u00c8\u00cd\u00ce\u00cf\u00cc\u00d3\u00d4\uf8ff\u00d2\u00da\u00db\u00d9\u0131\u02c6\u02dc"
    u"\u00af\u02d8\u02d9\u02da\u00b8\u02dd\u02db\u02c7";
static_assert(sizeof(kPictLetters) / sizeof(char16_t) == 129);

QString PictText(QByteArrayView text)
{
    QString letters;
    letters.reserve(text.size());
    for (const char one : text) {
        const uchar code = uchar(one);
        letters.append(code < 128 ? QChar(code) : QChar(kPictLetters[code - 128]));
    }
    return letters;
}

struct PictFont {
    const char* family;
    bool serif, fixed;
};

/// Families of the numbers that the system gave out.
PictFont PictFontOf(int number)
{
    switch (number) {
    case 2:
        return {"New York", true, false};
    case 4:
        return {"Monaco", false, true};
    case 20:
        return {"Times", true, false};
    case 21:
        return {"Helvetica", false, false};
    case 22:
        return {"Courier", false, true};
    case 23:
        return {"Symbol", true, false};
    case 0:
        return {"Chicago", false, false};
    default:
        return {"Geneva", false, false};
    }
}

} // namespace

QRgb PictOldColour(quint32 value)
{
    switch (value) {
    case 30:
        return qRgb(255, 255, 255);
    case 69:
        return qRgb(255, 255, 0);
    case 137:
        return qRgb(255, 0, 255);
    case 205:
        return qRgb(255, 0, 0);
    case 273:
        return qRgb(0, 255, 255);
    case 341:
        return qRgb(0, 255, 0);
    case 409:
        return qRgb(0, 0, 255);
    default:
        return qRgb(0, 0, 0);
    }
}

drawing::Path ReadPictRegion(PictReader& reader)
{
    drawing::Path path;
    const qint64 size = reader.U16();
    const QRectF box = reader.Rectangle();
    constexpr qint64 kPlain = 10; // its own size and the box
    if (size <= kPlain) {
        path.AddRectangle(box.normalized());
        return path;
    }
    PictReader rows(reader.Bytes(size - kPlain));
    constexpr int kEnd = 0x7fff;
    constexpr size_t kMostChanges = 20'000;
    std::vector<int> changes; // where inside and outside meet on the running row
    int from = 0;
    size_t made = 0;
    while (!rows.HasEnded()) {
        const int y = rows.I16();
        if (y == kEnd || rows.HasEnded()) {
            break;
        }
        for (size_t i = 0; i + 1 < changes.size() && made < kMostChanges; i += 2, ++made) {
            path.AddRectangle(QRectF(QPointF(changes[i], from), QPointF(changes[i + 1], y)));
        }
        from = y;
        // A place that is named again is one no more.
        for (int x = rows.I16(); x != kEnd && !rows.HasEnded(); x = rows.I16()) {
            const auto place = std::lower_bound(changes.begin(), changes.end(), x);
            if (place != changes.end() && *place == x) {
                changes.erase(place);
            } else if (changes.size() < kMostChanges) {
                changes.insert(place, x);
            }
        }
    }
    return path;
}

drawing::Fill PictArtist::FillOf(const PictPattern& pattern) const
{
    drawing::Fill fill;
    const auto all = [&](uchar value) {
        return std::all_of(pattern.begin(), pattern.end(),
                           [value](uchar row) { return row == value; });
    };
    if (all(255) || all(0)) {
        fill.style = Qt::SolidPattern;
        fill.colour = all(255) ? mState.ink : mState.paper;
        return fill;
    }
    fill.style = Qt::TexturePattern;
    fill.pattern = QImage(8, 8, QImage::Format_RGB32);
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            const bool set = (pattern[size_t(y)] & (0x80 >> x)) != 0;
            fill.pattern.setPixel(x, y, set ? mState.ink : mState.paper);
        }
    }
    return fill;
}

quint8 PictArtist::Operation() const
{
    return mState.penMode == kPictXorPattern ? kPictXor : drawing::kRopPattern;
}

void PictArtist::Area(PictVerb verb, const drawing::Path& path)
{
    drawing::Fill fill;
    quint8 operation = drawing::kRopPattern;
    switch (verb) {
    case PictVerb::Frame:
        return;
    case PictVerb::Paint:
        fill = FillOf(mState.penPattern);
        operation = Operation();
        break;
    case PictVerb::Erase:
        fill = FillOf(mState.backPattern);
        break;
    case PictVerb::Invert:
        fill.style = Qt::SolidPattern;
        operation = kPictInvert;
        break;
    case PictVerb::Fill:
        fill = FillOf(mState.fillPattern);
        break;
    }
    mDrawing.AddPath(path, {}, fill, mState.clip, operation);
}

void PictArtist::Outline(const drawing::Path& path)
{
    const double width = std::max(mState.pen.width(), mState.pen.height());
    if (width <= 0) {
        return;
    }
    drawing::Stroke stroke;
    stroke.style = Qt::SolidLine;
    stroke.cap = Qt::SquareCap;
    stroke.join = Qt::MiterJoin;
    stroke.width = width;
    // A line of a pattern is drawn in the colour of most of its bits.
    int set = 0;
    for (const uchar row : mState.penPattern) {
        for (int bits = row; bits != 0; bits &= bits - 1) {
            ++set;
        }
    }
    stroke.colour = set >= 32 ? mState.ink : mState.paper;
    mDrawing.AddPath(path, stroke, {}, mState.clip, Operation());
}

QRectF PictArtist::InsidePen(const QRectF& box) const
{
    const double across = mState.pen.width() / 2;
    const double down = mState.pen.height() / 2;
    return box.normalized().adjusted(across, down, -across, -down);
}

void PictArtist::Line(QPointF to)
{
    // The pen hangs to the right of and below the line's points; a square cap reaches as far.
    const QPointF half(mState.pen.width() / 2, mState.pen.height() / 2);
    drawing::Path path;
    const QPointF from = mState.at + half;
    QPointF end = to + half;
    if (from == end) {
        end.rx() += 0.01; // a point is a line too
    }
    path.MoveTo(from);
    path.LineTo(end);
    Outline(path);
    mState.at = to;
}

void PictArtist::Rectangle(PictVerb verb, const QRectF& box)
{
    drawing::Path path;
    path.AddRectangle(verb == PictVerb::Frame ? InsidePen(box) : box.normalized());
    verb == PictVerb::Frame ? Outline(path) : Area(verb, path);
}

void PictArtist::RoundRectangle(PictVerb verb, const QRectF& box)
{
    drawing::Path path;
    path.AddRoundRectangle(verb == PictVerb::Frame ? InsidePen(box) : box.normalized(),
                           mState.corner.width(), mState.corner.height());
    verb == PictVerb::Frame ? Outline(path) : Area(verb, path);
}

void PictArtist::Oval(PictVerb verb, const QRectF& box)
{
    drawing::Path path;
    path.AddEllipse(verb == PictVerb::Frame ? InsidePen(box) : box.normalized());
    verb == PictVerb::Frame ? Outline(path) : Area(verb, path);
}

void PictArtist::Arc(PictVerb verb, const QRectF& box, int start, int sweep)
{
    constexpr double kDegree = std::numbers::pi / 180;
    const double first = (start - 90) * kDegree;
    const double over = std::clamp(sweep, -360, 360) * kDegree;
    drawing::Path path;
    if (verb == PictVerb::Frame) {
        path.AddArc(InsidePen(box), first, over, false);
        Outline(path);
        return;
    }
    path.MoveTo(box.normalized().center());
    path.AddArc(box.normalized(), first, over, true);
    path.Close();
    Area(verb, path);
}

void PictArtist::Polygon(PictVerb verb, const std::vector<QPointF>& corners)
{
    drawing::Path path;
    std::vector<QPointF> moved = corners;
    if (verb == PictVerb::Frame) {
        const QPointF half(mState.pen.width() / 2, mState.pen.height() / 2);
        std::for_each(moved.begin(), moved.end(), [half](QPointF& corner) { corner += half; });
    }
    path.AddPolygon(moved, verb != PictVerb::Frame);
    verb == PictVerb::Frame ? Outline(path) : Area(verb, path);
}

void PictArtist::Region(PictVerb verb, const drawing::Path& region)
{
    // The outline of many rectangles is not that of the region; only one is drawn.
    if (verb != PictVerb::Frame) {
        Area(verb, region);
    } else if (region.IsRectangle()) {
        Rectangle(verb, region.Bounds());
    }
}

void PictArtist::Text(QByteArrayView text)
{
    if (text.isEmpty()) {
        return;
    }
    const PictFont known = PictFontOf(mState.font);
    drawing::TextRun run;
    run.text = PictText(text);
    run.family = mState.fonts.value(mState.font, QString::fromLatin1(known.family));
    run.serif = known.serif;
    run.fixed = known.fixed;
    run.weight = mState.face & 1 ? 700 : 400;
    run.italic = (mState.face & 2) != 0;
    run.underline = (mState.face & 4) != 0;
    run.height = mState.textSize > 0 ? mState.textSize : 12;
    run.colour = mState.ink;
    run.place = QTransform::fromTranslate(mState.textAt.x(), mState.textAt.y());
    mDrawing.AddText(std::move(run), mState.clip);
}

} // namespace quillane::codecs
