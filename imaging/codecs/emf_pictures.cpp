// Regions, text, pictures and gradients of an enhanced metafile.
#include "imaging/codecs/emf_records.h"
#include <algorithm>
#include <cmath>

namespace quillane::codecs {

namespace {

using EmfReader = drawing::RecordReader;

constexpr int kEmfPictureBounds = 16;
constexpr qint64 kEmfMostLetters = 100'000; ///< of one run
constexpr qint64 kEmfMostBoxes = 100'000;   ///< of one region
constexpr int kEmfGradientSteps = 64;
constexpr qint64 kEmfMostGradients = 200; ///< of one record

QRectF EmfPictureBox(EmfReader& in)
{
    const QPointF from = in.Point32();
    return {from, in.Point32()};
}

QRectF EmfSized(QPointF at, QPointF size)
{
    return {at.x(), at.y(), size.x(), size.y()};
}

/// Negative sizes of the part that is shown turn the target instead.
void EmfStraighten(drawing::GdiContext::Blit& blit)
{
    if (blit.from.width() < 0) {
        blit.to = QRectF(blit.to.right(), blit.to.top(), -blit.to.width(), blit.to.height());
    }
    if (blit.from.height() < 0) {
        blit.to = QRectF(blit.to.left(), blit.to.bottom(), blit.to.width(), -blit.to.height());
    }
    blit.from = blit.from.normalized();
}

/// The colour that stands for nothing becomes transparent.
QImage EmfWithout(const QImage& image, QRgb colour)
{
    QImage result = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < result.height(); ++y) {
        QRgb* row = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            row[x] = (row[x] & 0xffffff) == (colour & 0xffffff) ? 0 : row[x] | 0xff000000;
        }
    }
    return result;
}

struct EmfVertex {
    QPointF at;
    double red = 0, green = 0, blue = 0;
};

EmfVertex EmfBetween(const EmfVertex& a, const EmfVertex& b, double part)
{
    const auto mix = [part](double from, double to) { return from + (to - from) * part; };
    return {a.at + (b.at - a.at) * part, mix(a.red, b.red), mix(a.green, b.green),
            mix(a.blue, b.blue)};
}

QRgb EmfColourOf(const EmfVertex& vertex)
{
    return qRgb(int(vertex.red) >> 8, int(vertex.green) >> 8, int(vertex.blue) >> 8);
}

void EmfTriangle(drawing::GdiContext& context, const EmfVertex& a, const EmfVertex& b,
                 const EmfVertex& c, int depth)
{
    if (depth == 0) {
        drawing::Path path;
        path.AddPolygon({a.at, b.at, c.at}, true);
        context.Gradient(path, EmfColourOf(EmfBetween(EmfBetween(a, b, 0.5), c, 1.0 / 3)));
        return;
    }
    const EmfVertex ab = EmfBetween(a, b, 0.5);
    const EmfVertex bc = EmfBetween(b, c, 0.5);
    const EmfVertex ca = EmfBetween(c, a, 0.5);
    EmfTriangle(context, a, ab, ca, depth - 1);
    EmfTriangle(context, ab, b, bc, depth - 1);
    EmfTriangle(context, ca, bc, c, depth - 1);
    EmfTriangle(context, ab, bc, ca, depth - 1);
}

} // namespace

drawing::Path EmfRecords::Region(QByteArrayView data, bool logical)
{
    EmfReader in(data);
    const qint64 header = in.U32();
    in.Skip(4);
    const qint64 count = std::min<qint64>(in.U32(), kEmfMostBoxes);
    in.Seek(header);
    drawing::Path boxes;
    for (qint64 i = 0; i < count && in.Left() >= 16; ++i) {
        boxes.AddRectangle(EmfPictureBox(in));
    }
    return logical ? boxes.Mapped(mContext.ToDevice()) : boxes;
}

bool EmfRecords::PlayRegion(quint32 type, EmfReader& in)
{
    if (type == 75) {
        const qint64 size = in.U32();
        const quint32 mode = in.U32();
        mContext.ClipToRegion(Region(in.Bytes(size), false), mode);
        return true;
    }
    if (type < 71 || type > 74) {
        return false;
    }
    in.Skip(kEmfPictureBounds);
    const qint64 size = in.U32();
    drawing::Fill fill = mContext.Brush().fill;
    if (type == 71 || type == 72) {
        const auto* object = mObjects.At(in.U32());
        const auto* brush = object ? std::get_if<drawing::GdiBrush>(object) : nullptr;
        fill = brush ? brush->fill : fill;
    }
    in.Skip(type == 72 ? 8 : 0);
    fill.winding = true;
    const drawing::Path region = Region(in.Bytes(size), true);
    if (type == 72) {
        // The rows of a region of another shape would show as lines inside it.
        if (region.IsRectangle()) {
            drawing::Stroke frame = drawing::GdiStroke(0);
            frame.colour = fill.colour;
            mContext.Paint(region, frame, {});
        }
        return true;
    }
    if (type == 73) {
        mContext.Save();
        mContext.SetRop2(6);
        fill = drawing::GdiFill(0, 0xff000000, 0);
        fill.winding = true;
        mContext.Paint(region, {}, fill);
        mContext.Restore(-1);
        return true;
    }
    mContext.Paint(region, {}, fill);
    return true;
}

bool EmfRecords::PlayText(quint32 type, EmfReader& in)
{
    drawing::GdiContext::TextOut out;
    if (type == 108) {
        constexpr quint32 kNoBox = 0x100, kBytes = 0x200;
        out.at = in.Point32();
        const qint64 count = std::min<qint64>(in.U32(), kEmfMostLetters);
        const quint32 options = in.U32();
        in.Skip(12 + (options & kNoBox ? 0 : 16));
        for (qint64 i = 0; i < count && !in.HasEnded() && in.Left() > 0; ++i) {
            out.text += QChar(options & kBytes ? char16_t(in.U8()) : char16_t(in.U16()));
        }
        mContext.Text(out);
        return true;
    }
    if (type != 83 && type != 84) {
        return false;
    }
    constexpr quint32 kOpaque = 2, kClipped = 4, kGlyphs = 0x10, kPairs = 0x2000;
    in.Skip(kEmfPictureBounds + 12);
    out.at = in.Point32();
    const qint64 count = std::min<qint64>(in.U32(), kEmfMostLetters);
    const qint64 textAt = in.U32();
    const quint32 options = in.U32();
    out.box = EmfPictureBox(in);
    const qint64 distancesAt = in.U32();
    out.opaque = (options & kOpaque) != 0;
    out.clipped = (options & kClipped) != 0;
    const bool wide = type == 84;
    in.Seek(textAt);
    if ((options & kGlyphs) == 0) { // numbers of a font that is not here would read as letters
        if (wide) {
            for (qint64 i = 0; i < count && in.Left() >= 2; ++i) {
                out.text += QChar(char16_t(in.U16()));
            }
        } else {
            out.text = drawing::GdiText(in.Bytes(count), mContext.Font().charset);
        }
    }
    in.Seek(distancesAt);
    const qint64 step = options & kPairs ? 8 : 4;
    if (distancesAt > 0 && out.text.size() == count && in.Left() >= count * step) {
        out.advances.reserve(size_t(count));
        for (qint64 i = 0; i < count; ++i) {
            out.advances.push_back(float(in.I32()));
            in.Skip(step - 4);
        }
    }
    mContext.Text(out);
    return true;
}

/// Positions and sizes of header and pixels stand next.
QImage EmfRecords::BitmapOf(EmfReader& in, bool premultiplied)
{
    const qint64 headerAt = in.U32();
    const qint64 headerSize = in.U32();
    const qint64 pixelsAt = in.U32();
    const QByteArrayView header = in.Part(headerAt, headerSize);
    const qint64 pixelsSize = in.U32();
    // A record that is too short for its pixels may still hold some.
    const qint64 there = std::min(pixelsSize, in.Left() + in.At() - pixelsAt);
    const QByteArrayView pixels = in.Part(pixelsAt, std::max<qint64>(there, 0));
    if (header.isEmpty() || pixels.isEmpty()) {
        return {};
    }
    return premultiplied ? mBitmaps.Premultiplied(header, pixels)
                         : mBitmaps.Independent(header, pixels);
}

void EmfRecords::CreatePattern(quint32 type, EmfReader& in)
{
    const quint32 number = in.U32();
    in.Skip(4);
    drawing::GdiBrush brush;
    QImage pattern = BitmapOf(in);
    if (type == 93 && pattern.colorCount() == 2) {
        pattern.setColorTable({mContext.TextColour(), mContext.BackColour()});
    }
    brush.fill.style = pattern.isNull() ? Qt::NoBrush : Qt::TexturePattern;
    brush.fill.pattern = pattern;
    mObjects.Set(number, brush);
}

bool EmfRecords::PlayBitmap(quint32 type, EmfReader& in)
{
    if (type == 79) {
        PlayParallelogram(in);
        return true;
    }
    if (type == 80 || type == 81) {
        PlayStretchDib(type, in);
        return true;
    }
    const bool blend = type == 114;
    const bool without = type == 116;
    if ((type < 76 || type > 78) && !blend && !without) {
        return false;
    }
    drawing::GdiContext::Blit blit;
    in.Skip(kEmfPictureBounds);
    const QPointF at = in.Point32();
    blit.to = EmfSized(at, in.Point32());
    const quint32 operation = in.U32();
    const QPointF from = in.Point32();
    in.Skip(24 + 4 + 4); // the source's own transform, its back colour, the use of its colours
    const qint64 places = in.At();
    in.Skip(16);
    const QPointF part =
        type == 76 || type == 78 ? QPointF(blit.to.width(), blit.to.height()) : in.Point32();
    blit.from = EmfSized(from, part);
    in.Seek(places);
    const quint32 alphaFormat = operation >> 24;
    blit.image = BitmapOf(in, blend && alphaFormat == 1);
    if (blend) {
        blit.opacity = int(operation >> 16 & 255);
    } else if (without) {
        if (!blit.image.isNull()) {
            blit.image = EmfWithout(blit.image, drawing::GdiColour(operation));
        }
    } else {
        blit.rop = operation;
    }
    if ((blend || without) && blit.image.isNull()) {
        return true;
    }
    if (type == 78) {
        in.Skip(12);
        const QImage mask = BitmapOf(in);
        if (!mask.isNull() && !blit.image.isNull() && mask.size() == blit.image.size()) {
            QImage masked = blit.image.convertToFormat(QImage::Format_ARGB32);
            masked.setAlphaChannel(mask.convertToFormat(QImage::Format_Grayscale8));
            blit.image = masked;
        }
    }
    EmfStraighten(blit);
    mContext.Bitmap(blit);
    return true;
}

void EmfRecords::PlayStretchDib(quint32 type, EmfReader& in)
{
    drawing::GdiContext::Blit blit;
    in.Skip(kEmfPictureBounds);
    const QPointF at = in.Point32();
    const QPointF from = in.Point32();
    const QPointF part = in.Point32();
    const qint64 places = in.At();
    in.Skip(16 + 4);
    QPointF size = part;
    if (type == 81) {
        blit.rop = in.U32();
        size = in.Point32();
    }
    in.Seek(places);
    blit.image = BitmapOf(in);
    blit.to = EmfSized(at, size);
    blit.from = EmfSized(from, part);
    if (type == 80) { // counted from the lowest row
        blit.from.moveTop(blit.image.height() - from.y() - part.y());
    }
    EmfStraighten(blit);
    mContext.Bitmap(blit);
}

void EmfRecords::PlayParallelogram(EmfReader& in)
{
    drawing::GdiContext::Blit blit;
    in.Skip(kEmfPictureBounds);
    const QPointF corner = in.Point32();
    const QPointF right = in.Point32() - corner;
    const QPointF down = in.Point32() - corner;
    const QPointF from = in.Point32();
    blit.from = EmfSized(from, in.Point32()).normalized();
    in.Skip(24 + 4 + 4);
    blit.image = BitmapOf(in);
    blit.place = QTransform(right.x(), right.y(), down.x(), down.y(), corner.x(), corner.y());
    if (!blit.image.isNull()) {
        mContext.Bitmap(blit);
    }
}

void EmfRecords::PlayGradient(EmfReader& in)
{
    in.Skip(kEmfPictureBounds);
    const qint64 vertexCount = in.U32();
    const qint64 count = std::min<qint64>(in.U32(), kEmfMostGradients);
    const quint32 mode = in.U32();
    std::vector<EmfVertex> vertices;
    vertices.reserve(size_t(std::min(vertexCount, in.Left() / 16)));
    for (qint64 i = 0; i < vertexCount && in.Left() >= 16; ++i) {
        EmfVertex vertex;
        vertex.at = in.Point32();
        vertex.red = in.U16();
        vertex.green = in.U16();
        vertex.blue = in.U16();
        in.Skip(2);
        vertices.push_back(vertex);
    }
    const auto next = [&]() -> const EmfVertex* {
        const quint32 index = in.U32();
        return index < vertices.size() && !in.HasEnded() ? &vertices[index] : nullptr;
    };
    for (qint64 i = 0; i < count; ++i) {
        const EmfVertex* a = next();
        const EmfVertex* b = next();
        const EmfVertex* c = mode == 2 ? next() : a;
        if (!a || !b || !c) {
            return;
        }
        if (mode == 2) {
            EmfTriangle(mContext, *a, *b, *c, 4);
            continue;
        }
        // Stripes, each to the far end, so that nothing shows between two.
        for (int step = 0; step < kEmfGradientSteps; ++step) {
            const double part = double(step) / kEmfGradientSteps;
            const EmfVertex here = EmfBetween(*a, *b, part + 0.5 / kEmfGradientSteps);
            const QPointF edge = a->at + (b->at - a->at) * part;
            drawing::Path stripe;
            stripe.AddRectangle(QRectF(
                mode == 0 ? QPointF(edge.x(), a->at.y()) : QPointF(a->at.x(), edge.y()), b->at));
            mContext.Gradient(stripe, EmfColourOf(here));
        }
    }
}

} // namespace quillane::codecs
