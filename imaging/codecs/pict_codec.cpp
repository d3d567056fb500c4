// QuickDraw pictures: played, and painted pixel for unit. One that is nothing but a bitmap keeps
// the bitmap's own pixels.
#include "imaging/codecs/codec_support.h"
#include "imaging/codecs/legacy_codecs.h"
#include "imaging/codecs/pict_player.h"
#include "imaging/codecs/raster_support.h"
#include "imaging/vector/drawn_page.h"
#include "imaging/vector/painter.h"
#include <algorithm>
#include <cmath>

namespace quillane::codecs {

namespace {

constexpr qint16 kPictFormat = 56;

PictPage PictRead(ByteSource& source, const DecodeRequest& request)
{
    const QByteArray bytes = drawing::DrawnBytes(source, kPictName);
    PictPage page = PlayPict(bytes, request);
    CheckSides(kPictName, qint64(page.frame.width()), qint64(page.frame.height()));
    return page;
}

} // namespace

bool PictMatches(QByteArrayView head, QStringView extension)
{
    const bool named = extension.compare(u"PCT", Qt::CaseInsensitive) == 0
        || extension.compare(u"PICT", Qt::CaseInsensitive) == 0
        || extension.compare(u"PIC", Qt::CaseInsensitive) == 0;
    // The mark lies behind 512 bytes of anything, beyond the head that is looked at.
    constexpr qsizetype kPreamble = 512;
    const bool begins = PictBegins(head, 0);
    // Without those bytes only the second version has a mark that is long enough to be trusted.
    const bool marked = begins && head.sliced(10).startsWith(QByteArrayView("\0\x11\2\xff", 4));
    return marked || (named && (begins || head.size() >= kPreamble));
}

ImageFacts PictProbe(ByteSource& source)
{
    const PictPage page = PictRead(source, {});
    ImageFacts facts;
    facts.width = qint32(page.frame.width());
    facts.height = qint32(page.frame.height());
    facts.bits = qint16(page.alone ? page.bits : 24);
    facts.format = kPictFormat;
    // A bitmap that is all there is tells its own resolution, else the page's units do.
    const auto dots = [&](double own) {
        return qint32(std::lround(page.alone && own >= 1 ? own : page.dotsPerInch));
    };
    facts.xResolution = dots(page.alone ? page.alone->xDots : 0);
    facts.yResolution = dots(page.alone ? page.alone->yDots : 0);
    facts.compression = QStringLiteral("PackBits");
    return facts;
}

Bitmap PictDecode(ByteSource& source, const DecodeRequest& request)
{
    CheckCancelled(request);
    PictPage page = PictRead(source, request);
    if (page.alone) {
        const ColourModel model = ModelOfImage(page.alone->image);
        Bitmap bitmap(std::move(page.alone->image), model, page.bits);
        bitmap.SetPartial(page.partial);
        return bitmap;
    }
    if (page.drawing.IsEmpty()) {
        Damaged(kPictName, QStringLiteral("it ends before it draws anything"));
    }
    drawing::PaintRequest paint;
    paint.view = page.frame;
    paint.size = drawing::ReducedSize(page.frame.size().toSize(), request.atLeast);
    paint.format = kPictName;
    paint.cancelled = request.cancelled;
    drawing::Painted painted = drawing::Paint(page.drawing, paint);
    Bitmap bitmap(std::move(painted.image), ColourModel::Rgb, 24);
    bitmap.SetExact(false);
    bitmap.SetPartial(painted.partial || page.partial);
    return bitmap;
}

} // namespace quillane::codecs
