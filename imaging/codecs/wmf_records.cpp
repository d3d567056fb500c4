// Function numbers and parameters are those of the published format: parameters stand in the
// reverse order of the call, y before x, bottom and right before top and left.
#include "imaging/codecs/wmf_records.h"
#include "imaging/vector/metafile_bitmap.h"

namespace quillane::codecs {

using drawing::GdiBrush;
using drawing::GdiFont;
using drawing::GdiPen;
using drawing::GdiRegion;
using drawing::RecordReader;

namespace {

constexpr int kWmfMostBoxes = 300'000; ///< in all regions of one file

QPointF WmfYX(RecordReader& in)
{
    const double y = in.I16();
    return {double(in.I16()), y};
}

/// Bottom, right, top, left.
QRectF WmfBox(RecordReader& in)
{
    const QPointF high = WmfYX(in);
    return {WmfYX(in), high};
}

} // namespace

void WmfRecords::Play(quint16 function, QByteArrayView parameters)
{
    RecordReader in(parameters);
    if (PlayState(function, in) || PlayMapping(function, in) || PlayFigure(function, in)
        || PlayObject(function, in) || PlayBitmap(function, in)) {
        return;
    }
    if (function == 0x0521 || function == 0x0a32) {
        PlayText(function, in);
    } else if (function == 0x012a || function == 0x012b || function == 0x0228
               || function == 0x0429) {
        PlayRegion(function, in);
    }
}

bool WmfRecords::PlayState(quint16 function, RecordReader& in)
{
    switch (function) {
    case 0x001e:
        mContext.Save();
        return true;
    case 0x0127:
        mContext.Restore(in.I16());
        return true;
    case 0x0102:
        mContext.SetBackMode(in.U16());
        return true;
    case 0x0104:
        mContext.SetRop2(in.U16());
        return true;
    case 0x0106:
        mContext.SetPolyFillMode(in.U16());
        return true;
    case 0x0107:
        mContext.SetStretchMode(in.U16());
        return true;
    case 0x0108:
        mContext.SetTextExtra(in.I16());
        return true;
    case 0x012e:
        mContext.SetTextAlign(in.U16());
        return true;
    case 0x0201:
        mContext.SetBackColour(drawing::GdiColour(in.U32()));
        return true;
    case 0x0209:
        mContext.SetTextColour(drawing::GdiColour(in.U32()));
        return true;
    case 0x012d:
        SelectNumber(in.U16());
        return true;
    case 0x012c: {
        const auto* object = mObjects.At(in.U16());
        if (object && std::holds_alternative<GdiRegion>(*object)) {
            mContext.Select(*object);
        } else {
            mContext.ClipToRegion({}, 5);
        }
        return true;
    }
    case 0x01f0:
        mObjects.Delete(in.U16());
        return true;
    case 0x0415:
        mContext.ExcludeClip(WmfBox(in));
        return true;
    case 0x0416:
        mContext.IntersectClip(WmfBox(in));
        return true;
    case 0x0220:
        mContext.OffsetClip(WmfYX(in));
        return true;
    default:
        return false;
    }
}

bool WmfRecords::PlayMapping(quint16 function, RecordReader& in)
{
    // Where the drawing goes is the player's business: the viewport's records are passed over.
    switch (function) {
    case 0x0103: {
        const int mode = in.U16();
        if (mode >= 1 && mode <= 8) {
            mContext.SetMapMode(mode == 7 ? 8 : mode);
        }
        return true;
    }
    case 0x020b:
        mContext.SetWindowOrg(WmfYX(in));
        return true;
    case 0x020c:
        mContext.SetWindowExt(WmfYX(in));
        if (!mContext.HasWindow()) {
            mContext.SetMapMode(8);
        }
        return true;
    case 0x020f:
        mContext.MoveWindowOrg(WmfYX(in));
        return true;
    case 0x0410: {
        const double yBelow = in.I16(), yAbove = in.I16(), xBelow = in.I16(), xAbove = in.I16();
        if (xBelow != 0 && yBelow != 0) {
            mContext.ScaleWindowExt(xAbove / xBelow, yAbove / yBelow);
        }
        return true;
    }
    case 0x020d:
    case 0x020e:
    case 0x0211:
    case 0x0412:
        return true;
    default:
        return false;
    }
}

bool WmfRecords::PlayFigure(quint16 function, RecordReader& in)
{
    switch (function) {
    case 0x0213:
        mContext.LineTo(WmfYX(in));
        return true;
    case 0x0214:
        mContext.MoveTo(WmfYX(in));
        return true;
    case 0x0324:
        mContext.Polygon(in.Points(in.U16(), false));
        return true;
    case 0x0325:
        mContext.Polyline(in.Points(in.U16(), false), false);
        return true;
    case 0x0538: {
        const int count = in.U16();
        std::vector<quint16> sizes;
        sizes.reserve(size_t(count));
        for (int i = 0; i < count && !in.HasEnded(); ++i) {
            sizes.push_back(in.U16());
        }
        std::vector<std::vector<QPointF>> polygons;
        polygons.reserve(sizes.size());
        for (const quint16 size : sizes) {
            polygons.push_back(in.Points(size, false));
        }
        mContext.PolyPolygon(polygons);
        return true;
    }
    case 0x0418:
        mContext.Ellipse(WmfBox(in));
        return true;
    case 0x041b:
        mContext.Rectangle(WmfBox(in));
        return true;
    case 0x041f: {
        const QRgb colour = drawing::GdiColour(in.U32());
        mContext.Pixel(WmfYX(in), colour);
        return true;
    }
    case 0x061c: {
        const QPointF corner = WmfYX(in);
        mContext.RoundRectangle(WmfBox(in), corner.x(), corner.y());
        return true;
    }
    case 0x0817:
    case 0x081a:
    case 0x0830: {
        using Kind = drawing::GdiContext::ArcKind;
        const QPointF end = WmfYX(in);
        const QPointF start = WmfYX(in);
        mContext.Arc(WmfBox(in), start, end,
                     function == 0x0817       ? Kind::Open
                         : function == 0x081a ? Kind::Pie
                                              : Kind::Chord);
        return true;
    }
    default:
        return false;
    }
}

bool WmfRecords::PlayObject(quint16 function, RecordReader& in)
{
    switch (function) {
    case 0x02fa: {
        GdiPen pen;
        pen.stroke = drawing::GdiStroke(in.U16());
        pen.stroke.width = std::abs(double(in.I16()));
        in.Skip(2);
        pen.stroke.colour = drawing::GdiColour(in.U32());
        mObjects.Add(pen);
        return true;
    }
    case 0x02fb:
        CreateFont(in);
        return true;
    case 0x02fc: {
        const quint16 style = in.U16();
        const QRgb colour = drawing::GdiColour(in.U32());
        mObjects.Add(GdiBrush{drawing::GdiFill(style, colour, in.U16())});
        return true;
    }
    case 0x0142:
    case 0x01f9:
        CreatePattern(in, function == 0x0142);
        return true;
    case 0x06ff:
        CreateRegion(in);
        return true;
    case 0x00f7:
        mObjects.Add(drawing::GdiPalette());
        return true;
    default:
        return false;
    }
}

void WmfRecords::SelectNumber(quint16 number)
{
    if (const auto* object = mObjects.At(number)) {
        mContext.Select(*object);
    }
}

void WmfRecords::CreateFont(RecordReader& in)
{
    GdiFont font;
    font.height = in.I16();
    font.width = in.I16();
    font.escapement = in.I16();
    in.Skip(2);
    font.weight = in.I16();
    font.italic = in.U8() != 0;
    font.underline = in.U8() != 0;
    font.strikeOut = in.U8() != 0;
    font.charset = in.U8();
    in.Skip(3);
    font.pitchAndFamily = in.U8();
    QByteArrayView face = in.Bytes(32);
    const qsizetype end = face.indexOf('\0');
    face = end >= 0 ? face.first(end) : face;
    font.family = drawing::GdiText(face, font.charset);
    mObjects.Add(font);
}

void WmfRecords::CreatePattern(RecordReader& in, bool independent)
{
    GdiBrush brush;
    if (independent) {
        in.Skip(4);
        brush.fill.pattern = mBitmaps.Independent(in.Bytes(in.Left()));
    } else {
        // The bitmap's header, 18 bytes of nothing behind its first 14, then the pixels.
        QByteArray bitmap = in.Bytes(10).toByteArray();
        in.Skip(22);
        bitmap += in.Bytes(in.Left());
        brush.fill.pattern = mBitmaps.Device(bitmap, mContext.TextColour(), mContext.BackColour());
    }
    brush.fill.style = brush.fill.pattern.isNull() ? Qt::NoBrush : Qt::TexturePattern;
    mObjects.Add(brush);
}

void WmfRecords::CreateRegion(RecordReader& in)
{
    GdiRegion region;
    in.Skip(10);
    const int scans = in.U16();
    in.Skip(10);
    const QTransform toDevice = mContext.ToDevice();
    for (int scan = 0; scan < scans && !in.HasEnded(); ++scan) {
        const int ends = in.U16();
        const double top = in.U16();
        const double bottom = in.U16();
        for (int i = 0; i + 1 < ends && !in.HasEnded() && mRegionBoxes < kWmfMostBoxes; i += 2) {
            ++mRegionBoxes;
            const double left = in.U16();
            const double right = in.U16();
            drawing::Path box;
            box.AddRectangle(QRectF(QPointF(left, top), QPointF(right, bottom)));
            region.area.Append(box.Mapped(toDevice));
        }
        in.Skip(2);
    }
    mObjects.Add(region);
}

void WmfRecords::PlayRegion(quint16 function, RecordReader& in)
{
    const auto* object = mObjects.At(in.U16());
    const auto* region = object ? std::get_if<GdiRegion>(object) : nullptr;
    if (!region) {
        return;
    }
    drawing::Fill fill = mContext.Brush().fill;
    if (function == 0x0228 || function == 0x0429) {
        const auto* other = mObjects.At(in.U16());
        const auto* brush = other ? std::get_if<GdiBrush>(other) : nullptr;
        fill = brush ? brush->fill : fill;
    }
    fill.winding = true;
    if (function == 0x0429) {
        // The rows of a region of another shape would show as lines inside it.
        if (region->area.IsRectangle()) {
            drawing::Stroke frame = drawing::GdiStroke(0);
            frame.colour = fill.colour;
            mContext.Paint(region->area, frame, {});
        }
        return;
    }
    if (function == 0x012a) {
        mContext.Save();
        mContext.SetRop2(6);
        mContext.Paint(region->area, {}, fill);
        mContext.Restore(-1);
        return;
    }
    mContext.Paint(region->area, {}, fill);
}

void WmfRecords::PlayText(quint16 function, RecordReader& in)
{
    drawing::GdiContext::TextOut out;
    const int charset = mContext.Font().charset;
    if (function == 0x0521) {
        const int length = in.U16();
        const QByteArrayView text = in.Bytes(length);
        in.Skip(length % 2);
        out.text = drawing::GdiText(text, charset);
        out.at = WmfYX(in);
        mContext.Text(out);
        return;
    }
    out.at = WmfYX(in);
    const int length = in.U16();
    const quint16 options = in.U16();
    out.opaque = (options & 2) != 0;
    out.clipped = (options & 4) != 0;
    if (out.opaque || out.clipped) {
        const QPointF from = in.Point16();
        out.box = QRectF(from, in.Point16());
    }
    const QByteArrayView text = in.Bytes(length);
    in.Skip(length % 2);
    out.text = drawing::GdiText(text, charset);
    const bool pairs = (options & 0x2000) != 0;
    // Distances count bytes: they say nothing where a letter takes two.
    if (out.text.size() == text.size() && in.Left() >= text.size() * (pairs ? 4 : 2)) {
        out.advances.reserve(size_t(text.size()));
        for (qsizetype i = 0; i < text.size(); ++i) {
            out.advances.push_back(in.I16());
            in.Skip(pairs ? 2 : 0);
        }
    }
    mContext.Text(out);
}

bool WmfRecords::PlayBitmap(quint16 function, RecordReader& in)
{
    drawing::GdiContext::Blit blit;
    const auto device = [&] {
        blit.image =
            mBitmaps.Device(in.Bytes(in.Left()), mContext.TextColour(), mContext.BackColour());
    };
    const auto independent = [&] { blit.image = mBitmaps.Independent(in.Bytes(in.Left())); };
    const auto size = [&] {
        const double height = in.I16();
        return QSizeF(in.I16(), height);
    };
    switch (function) {
    case 0x061d: { // a pattern alone
        blit.rop = in.U32();
        const QSizeF extent = size();
        blit.to = QRectF(WmfYX(in), extent);
        break;
    }
    case 0x0922:
    case 0x0940: { // as large as it is
        blit.rop = in.U32();
        const QPointF from = WmfYX(in);
        if (in.Left() < 12) {
            in.Skip(2); // no picture: a field without meaning stands in its place
        }
        const QSizeF extent = size();
        blit.to = QRectF(WmfYX(in), extent);
        blit.from = QRectF(from, extent);
        if (in.Left() > 0) {
            function == 0x0940 ? independent() : device();
        }
        break;
    }
    case 0x0b23:
    case 0x0b41:
    case 0x0f43: { // stretched
        blit.rop = in.U32();
        if (function == 0x0f43) {
            in.Skip(2);
        }
        const QSizeF part = size();
        blit.from = QRectF(WmfYX(in), part);
        if (function != 0x0f43 && in.Left() < 12) {
            in.Skip(2);
        }
        const QSizeF extent = size();
        blit.to = QRectF(WmfYX(in), extent);
        if (in.Left() > 0) {
            function == 0x0b23 ? device() : independent();
        }
        break;
    }
    case 0x0d33: { // rows of a picture as they come
        in.Skip(6);
        const QPointF from = WmfYX(in);
        const QSizeF extent = size();
        blit.to = QRectF(WmfYX(in), extent);
        independent();
        // Its part is counted from the lowest row.
        blit.from = QRectF(from.x(), blit.image.height() - from.y() - extent.height(),
                           extent.width(), extent.height());
        break;
    }
    default:
        return false;
    }
    if (blit.from.width() < 0 || blit.from.height() < 0) {
        blit.to = QRectF(blit.from.width() < 0 ? blit.to.right() : blit.to.left(),
                         blit.from.height() < 0 ? blit.to.bottom() : blit.to.top(),
                         blit.from.width() < 0 ? -blit.to.width() : blit.to.width(),
                         blit.from.height() < 0 ? -blit.to.height() : blit.to.height());
        blit.from = blit.from.normalized();
    }
    mContext.Bitmap(blit);
    return true;
}

} // namespace quillane::codecs
