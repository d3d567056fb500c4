// Record types and fields are those of the published format. This file: state, mapping, lines,
// figures and paths.
#include "imaging/codecs/emf_records.h"
#include <bit>
#include <cmath>

namespace quillane::codecs {

using drawing::GdiBrush;
using drawing::GdiFont;
using drawing::GdiPen;
using drawing::RecordReader;

namespace {

constexpr int kEmfBounds = 16;               ///< bytes of the box that drawing records begin with
constexpr quint32 kEmfStock = 0x80000000;    ///< marks an object that is always there
constexpr quint32 kEmfPlusMark = 0x2b464d45; ///< "EMF+"

QRectF EmfBox(RecordReader& in)
{
    const QPointF from = in.Point32();
    return {from, in.Point32()};
}

QTransform EmfTransform(RecordReader& in)
{
    const double m11 = double(in.F32()), m12 = double(in.F32()), m21 = double(in.F32());
    const double m22 = double(in.F32()), dx = double(in.F32());
    return {m11, m12, m21, m22, dx, double(in.F32())};
}

std::vector<std::vector<QPointF>> EmfPolys(RecordReader& in, bool wide)
{
    const qint64 polys = in.U32();
    in.Skip(4);
    std::vector<qint64> sizes;
    sizes.reserve(size_t(std::min(polys, in.Left() / 4)));
    for (qint64 i = 0; i < polys && !in.HasEnded(); ++i) {
        sizes.push_back(in.U32());
    }
    std::vector<std::vector<QPointF>> lines;
    lines.reserve(sizes.size());
    for (const qint64 size : sizes) {
        if (in.Left() <= 0) {
            break;
        }
        lines.push_back(in.Points(size, wide));
    }
    return lines;
}

} // namespace

void EmfRecords::Play(quint32 type, QByteArrayView record)
{
    RecordReader in(record);
    in.Skip(8);
    if (PlayState(type, in) || PlayMapping(type, in) || PlayLines(type, in) || PlayFigure(type, in)
        || PlayPath(type, in) || PlayObject(type, in) || PlayRegion(type, in) || PlayText(type, in)
        || PlayBitmap(type, in)) {
        return;
    }
    if (type == 70) {
        PlayComment(in);
    } else if (type == 118) {
        PlayGradient(in);
    }
}

bool EmfRecords::PlayState(quint32 type, RecordReader& in)
{
    switch (type) {
    case 18:
        mContext.SetBackMode(in.U32());
        return true;
    case 19:
        mContext.SetPolyFillMode(in.U32());
        return true;
    case 20:
        mContext.SetRop2(in.I32());
        return true;
    case 21:
        mContext.SetStretchMode(in.U32());
        return true;
    case 22:
        mContext.SetTextAlign(in.U32());
        return true;
    case 24:
        mContext.SetTextColour(drawing::GdiColour(in.U32()));
        return true;
    case 25:
        mContext.SetBackColour(drawing::GdiColour(in.U32()));
        return true;
    case 26:
        mContext.OffsetClip(in.Point32());
        return true;
    case 29:
        mContext.ExcludeClip(EmfBox(in));
        return true;
    case 30:
        mContext.IntersectClip(EmfBox(in));
        return true;
    case 33:
        mContext.Save();
        return true;
    case 34:
        mContext.Restore(in.I32());
        return true;
    case 57:
        mContext.SetArcClockwise(in.U32() == 2);
        return true;
    case 58: {
        // Written as a whole number by some, as a floating one by others.
        const quint32 limit = in.U32();
        mContext.SetMiterLimit(limit < 10'000 ? double(limit)
                                              : double(std::bit_cast<float>(limit)));
        return true;
    }
    default:
        return false;
    }
}

bool EmfRecords::PlayMapping(quint32 type, RecordReader& in)
{
    switch (type) {
    case 9:
        mContext.SetWindowExt(in.Point32());
        return true;
    case 10:
        mContext.SetWindowOrg(in.Point32());
        return true;
    case 11:
        mContext.SetViewportExt(in.Point32());
        return true;
    case 12:
        mContext.SetViewportOrg(in.Point32());
        return true;
    case 17:
        mContext.SetMapMode(in.I32());
        return true;
    case 31:
    case 32: {
        const double xAbove = in.I32(), xBelow = in.I32(), yAbove = in.I32(), yBelow = in.I32();
        if (xBelow == 0 || yBelow == 0) {
            return true;
        }
        if (type == 31) {
            mContext.ScaleViewportExt(xAbove / xBelow, yAbove / yBelow);
        } else {
            mContext.ScaleWindowExt(xAbove / xBelow, yAbove / yBelow);
        }
        return true;
    }
    case 35:
        mContext.SetWorld(EmfTransform(in));
        return true;
    case 36: {
        const QTransform change = EmfTransform(in);
        const quint32 mode = in.U32();
        mContext.SetWorld(mode == 1       ? QTransform()
                              : mode == 2 ? change * mContext.World()
                              : mode == 3 ? mContext.World() * change
                                          : change);
        return true;
    }
    default:
        return false;
    }
}

bool EmfRecords::PlayLines(quint32 type, RecordReader& in)
{
    // The records from 85 on are those from 2 on with points of 16 bits.
    const bool narrow = type >= 85 && type <= 92;
    const bool wide = !narrow;
    const quint32 kind = type == 92 ? 56 : narrow ? type - 83 : type;
    if (type == 27) {
        mContext.MoveTo(in.Point32());
        return true;
    }
    if (type == 54) {
        mContext.LineTo(in.Point32());
        return true;
    }
    if (kind != 56 && (kind < 2 || kind > 8)) {
        return false;
    }
    in.Skip(kEmfBounds);
    switch (kind) {
    case 2:
        mContext.Bezier(in.Points(in.U32(), wide), false);
        break;
    case 3:
        mContext.Polygon(in.Points(in.U32(), wide));
        break;
    case 4:
        mContext.Polyline(in.Points(in.U32(), wide), false);
        break;
    case 5:
        mContext.Bezier(in.Points(in.U32(), wide), true);
        break;
    case 6:
        mContext.Polyline(in.Points(in.U32(), wide), true);
        break;
    case 7:
        mContext.PolyPolyline(EmfPolys(in, wide));
        break;
    case 8:
        mContext.PolyPolygon(EmfPolys(in, wide));
        break;
    default:
        DrawPoly(in, wide);
        break;
    }
    return true;
}

/// Points, each with a byte that says what leads to it.
void EmfRecords::DrawPoly(RecordReader& in, bool wide)
{
    constexpr quint8 kClose = 1, kLine = 2, kCurve = 4, kMove = 6;
    const std::vector<QPointF> points = in.Points(in.U32(), wide);
    const QByteArrayView kinds = in.Bytes(qint64(points.size()));
    QPointF start = mContext.Current();
    for (qsizetype i = 0; i < kinds.size(); ++i) {
        const quint8 kind = quint8(kinds[i]) & 6;
        quint8 last = quint8(kinds[i]);
        if (kind == kMove) {
            start = points[size_t(i)];
            mContext.MoveTo(start);
        } else if (kind == kLine) {
            mContext.LineTo(points[size_t(i)]);
        } else if (kind == kCurve && i + 2 < kinds.size()) {
            mContext.Bezier({points[size_t(i)], points[size_t(i) + 1], points[size_t(i) + 2]},
                            true);
            i += 2;
            last = quint8(kinds[i]);
        }
        if (last & kClose) {
            if (mContext.IsInPath()) {
                mContext.CloseFigure();
            } else {
                mContext.LineTo(start);
            }
        }
    }
}

bool EmfRecords::PlayFigure(quint32 type, RecordReader& in)
{
    using Kind = drawing::GdiContext::ArcKind;
    switch (type) {
    case 15: {
        const QPointF at = in.Point32();
        mContext.Pixel(at, drawing::GdiColour(in.U32()));
        return true;
    }
    case 41: {
        const QPointF centre = in.Point32();
        const double radius = in.U32();
        const double start = double(in.F32());
        mContext.AngleArc(centre, radius, start, double(in.F32()));
        return true;
    }
    case 42:
        mContext.Ellipse(EmfBox(in));
        return true;
    case 43:
        mContext.Rectangle(EmfBox(in));
        return true;
    case 44: {
        const QRectF box = EmfBox(in);
        const QPointF corner = in.Point32();
        mContext.RoundRectangle(box, corner.x(), corner.y());
        return true;
    }
    case 45:
    case 46:
    case 47:
    case 55: {
        const QRectF box = EmfBox(in);
        const QPointF start = in.Point32();
        mContext.Arc(box, start, in.Point32(),
                     type == 45       ? Kind::Open
                         : type == 46 ? Kind::Chord
                         : type == 47 ? Kind::Pie
                                      : Kind::To);
        return true;
    }
    default:
        return false;
    }
}

bool EmfRecords::PlayPath(quint32 type, RecordReader& in)
{
    switch (type) {
    case 59:
        mContext.BeginPath();
        return true;
    case 60:
        mContext.EndPath();
        return true;
    case 61:
        mContext.CloseFigure();
        return true;
    case 62:
        mContext.FinishPath(false, true);
        return true;
    case 63:
        mContext.FinishPath(true, true);
        return true;
    case 64:
        mContext.FinishPath(true, false);
        return true;
    case 67:
        mContext.ClipToPath(in.U32());
        return true;
    case 68:
        mContext.AbortPath();
        return true;
    default:
        return false;
    }
}

bool EmfRecords::PlayObject(quint32 type, RecordReader& in)
{
    switch (type) {
    case 37: {
        const quint32 number = in.U32();
        if (number & kEmfStock) {
            mContext.SelectStock(number & ~kEmfStock);
        } else if (const auto* object = mObjects.At(number)) {
            mContext.Select(*object);
        }
        return true;
    }
    case 38: {
        const quint32 number = in.U32();
        GdiPen pen;
        pen.stroke = drawing::GdiStroke(in.U32());
        pen.stroke.width = std::abs(in.Point32().x());
        pen.stroke.colour = drawing::GdiColour(in.U32());
        mObjects.Set(number, pen);
        return true;
    }
    case 39: {
        const quint32 number = in.U32();
        const quint32 style = in.U32();
        const QRgb colour = drawing::GdiColour(in.U32());
        mObjects.Set(number, GdiBrush{drawing::GdiFill(style, colour, in.U32())});
        return true;
    }
    case 40:
        mObjects.Delete(in.U32());
        return true;
    case 82:
        CreateFont(in);
        return true;
    case 93:
    case 94:
        CreatePattern(type, in);
        return true;
    case 95:
        CreatePen(in);
        return true;
    default:
        return false;
    }
}

void EmfRecords::CreatePen(RecordReader& in)
{
    constexpr quint32 kGeometric = 0x10000;
    const quint32 number = in.U32();
    in.Skip(16);
    GdiPen pen;
    const quint32 style = in.U32();
    pen.stroke = drawing::GdiStroke(style);
    pen.cosmetic = (style & kGeometric) == 0;
    pen.stroke.width = pen.cosmetic ? 0 : double(in.U32());
    in.Skip(pen.cosmetic ? 4 : 0);
    if (in.U32() == 1) { // a brush that paints nothing
        pen.stroke.style = Qt::NoPen;
    }
    pen.stroke.colour = drawing::GdiColour(in.U32());
    mObjects.Set(number, pen);
}

void EmfRecords::CreateFont(RecordReader& in)
{
    const quint32 number = in.U32();
    GdiFont font;
    font.height = in.I32();
    font.width = in.I32();
    font.escapement = in.I32();
    in.Skip(4);
    font.weight = int(qBound(0, in.I32(), 1000));
    font.italic = in.U8() != 0;
    font.underline = in.U8() != 0;
    font.strikeOut = in.U8() != 0;
    font.charset = in.U8();
    in.Skip(3);
    font.pitchAndFamily = in.U8();
    for (int i = 0; i < 32; ++i) {
        const char16_t letter = in.U16();
        if (letter == 0) {
            break;
        }
        font.family += QChar(letter);
    }
    mObjects.Set(number, font);
}

void EmfRecords::PlayComment(RecordReader& in)
{
    const qint64 size = in.U32();
    if (size < 8 || in.U32() != kEmfPlusMark) {
        return;
    }
    mPlus = true;
    // Its header says whether the other records draw the same once more.
    if (in.U16() == 0x4001) {
        mDual = (in.U16() & 1) != 0;
    }
}

} // namespace quillane::codecs
