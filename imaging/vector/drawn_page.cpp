#include "imaging/vector/drawn_page.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/vector/painter.h"
#include <algorithm>
#include <cmath>

namespace quillane::drawing {

namespace {

constexpr double kDrawnThinnest = 1.0 / 400; ///< of the long side
constexpr double kDrawnSlack = 0.02;         ///< of the view that may stand outside it

} // namespace

void SettleView(DrawnPage& page, QRectF wanted)
{
    wanted = wanted.normalized();
    const bool sane = std::abs(wanted.left()) < 1e12 && std::abs(wanted.right()) < 1e12
        && std::abs(wanted.top()) < 1e12 && std::abs(wanted.bottom()) < 1e12;
    if (!sane) {
        wanted = QRectF(0, 0, 1, 1);
    }
    const double side = std::max(wanted.width(), wanted.height());
    const double least = side > 0 ? side * kDrawnThinnest : 1;
    const double across = std::max(0.0, least - wanted.width()) / 2;
    const double down = std::max(0.0, least - wanted.height()) / 2;
    page.view = wanted.adjusted(-across, -down, across, down);
    if (page.unitless) {
        page.inchWidth = page.view.width();
        page.inchHeight = page.view.height();
    }
}

void TakeInFigures(DrawnPage& page)
{
    const QRectF figures = page.drawing.Extents(false);
    const QRectF view = page.view;
    const double across = view.width() * kDrawnSlack;
    const double down = view.height() * kDrawnSlack;
    if (figures.isEmpty() || view.adjusted(-across, -down, across, down).contains(figures)) {
        return;
    }
    const QRectF all = view.united(figures);
    if (all.width() * all.height() <= 2 * view.width() * view.height()) {
        page.view = all;
        page.inchWidth *= all.width() / view.width();
        page.inchHeight *= all.height() / view.height();
    }
}

ImageFacts DrawnFacts(const DrawnPage& page, qint16 format)
{
    const QSize size = NaturalSize(page.inchWidth, page.inchHeight, page.unitless);
    ImageFacts facts;
    facts.width = size.width();
    facts.height = size.height();
    facts.bits = 24;
    facts.format = format;
    facts.compression = QStringLiteral("Uncompressed");
    return facts;
}

Bitmap PaintPage(const DrawnPage& page, const DecodeRequest& request, const char* format)
{
    codecs::CheckCancelled(request);
    PaintRequest paint;
    paint.view = page.view;
    paint.size =
        ReducedSize(NaturalSize(page.inchWidth, page.inchHeight, page.unitless), request.atLeast);
    paint.format = format;
    paint.cancelled = request.cancelled;
    Painted painted = Paint(page.drawing, paint);
    Bitmap bitmap(std::move(painted.image), ColourModel::Rgb, 24);
    bitmap.SetExact(false);
    bitmap.SetPartial(painted.partial || page.partial);
    return bitmap;
}

QByteArray DrawnBytes(ByteSource& source, const char* format)
{
    if (source.Size() > kDrawnMostBytes) {
        codecs::TooMuch(format, QStringLiteral("has %1 MB").arg(source.Size() >> 20));
    }
    return source.All(kDrawnMostBytes);
}

} // namespace quillane::drawing
