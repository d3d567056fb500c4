#include "imaging/vector/canvas.h"
#include <algorithm>
#include <cmath>

namespace quillane::drawing {

namespace {

constexpr double kPictureMostZoom = 4000; ///< pixels of the canvas for one of the picture

/// The whole pixels of `part` that can be seen when `toPixels` maps them to the canvas.
QRectF PictureSeen(const QRectF& part, const QTransform& toPixels, const QRectF& canvas)
{
    bool sound = false;
    const QTransform back = toPixels.inverted(&sound);
    if (!sound) {
        return {};
    }
    const QRectF seen = back.mapRect(canvas).adjusted(-1, -1, 1, 1).intersected(part);
    const QRectF whole(QPointF(std::floor(seen.left()), std::floor(seen.top())),
                       QPointF(std::ceil(seen.right()), std::ceil(seen.bottom())));
    return whole.intersected(part);
}

} // namespace

void Canvas::DrawPicture(const Picture& picture, quint8 rop)
{
    const QTransform place = picture.place * mToPixels;
    const QRectF box = place.mapRect(QRectF(0, 0, 1, 1));
    if (!box.intersects(QRectF(mRegion.boundingRect()))) {
        return;
    }
    if (picture.image.isNull() || !RopUsesSource(rop)) {
        OnTarget(box, rop, kRopPattern, 0xff000000, [&](const Target& target) {
            Path corners;
            corners.AddRectangle(QRectF(0, 0, 1, 1));
            FillOutlines(Flatten(corners, place), picture.pattern, target);
        });
        return;
    }
    OnTarget(box, rop, kRopSource, picture.pattern.colour,
             [&](const Target& target) { PaintPicture(picture, target); });
}

void Canvas::PaintPicture(const Picture& picture, const Target& target)
{
    const QRectF part = picture.part.intersected(QRectF(picture.image.rect()));
    if (part.isEmpty() || picture.part.width() <= 0 || picture.part.height() <= 0) {
        return;
    }
    const QTransform place = picture.place * mToPixels;
    const QTransform toPixels = QTransform::fromTranslate(-picture.part.x(), -picture.part.y())
        * QTransform::fromScale(1 / picture.part.width(), 1 / picture.part.height()) * place;
    const double across = std::hypot(toPixels.m11(), toPixels.m12());
    const double down = std::hypot(toPixels.m21(), toPixels.m22());
    QRectF seen = PictureSeen(part, toPixels, QRectF(mImage.rect()));
    const double bytes = seen.width() * seen.height();
    if (seen.isEmpty() || across > kPictureMostZoom || down > kPictureMostZoom
        || !Spend(30 * (bytes + double(mImage.width()) * mImage.height() * 0.1))) {
        return;
    }
    const QRectF box = toPixels.mapRect(seen).intersected(QRectF(mImage.rect()));
    if (!Spend(10 * box.width() * box.height())) {
        return;
    }
    QImage pixels = picture.image.copy(seen.toAlignedRect());
    QTransform from = QTransform::fromTranslate(seen.x(), seen.y()) * toPixels;
    const bool smooth = picture.smooth && target.smooth;
    if (smooth && (across < 0.5 || down < 0.5)) {
        // Made smaller first: the painter looks at four pixels only.
        const QSize size(std::clamp(int(std::ceil(pixels.width() * across)), 1, pixels.width()),
                         std::clamp(int(std::ceil(pixels.height() * down)), 1, pixels.height()));
        from = QTransform::fromScale(double(pixels.width()) / size.width(),
                                     double(pixels.height()) / size.height())
            * from;
        pixels = pixels.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    QPainter& painter = *target.painter;
    const QTransform before = painter.worldTransform();
    painter.setTransform(from, true);
    painter.setRenderHint(QPainter::Antialiasing, false);
    // Pixels that are made larger stay sharp up to the size at which that looks like tiles.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
    painter.setOpacity(picture.opacity / 255.0);
    painter.drawImage(QPointF(0, 0), pixels);
    painter.setOpacity(1);
    painter.setTransform(before);
}

void Canvas::DrawText(const TextRun& run, quint8 rop)
{
    const double pixels = run.height * mScale * std::sqrt(std::abs(run.place.determinant()));
    if (!(pixels > 0.8) || !Spend(4000.0 * double(run.text.size()))) {
        return;
    }
    // Far from the canvas on every side there is nothing to lay out.
    const double reach = 8 * run.height * double(run.text.size() + 2) + 2 * run.width;
    const QTransform place = run.place * mToPixels;
    const QRectF near = place.mapRect(QRectF(-reach, -reach, 2 * reach, 2 * reach));
    if (!near.intersects(QRectF(mRegion.boundingRect()))) {
        return;
    }
    OnTarget(QRectF(mRegion.boundingRect()), rop, kRopPattern, 0xff000000,
             [&](const Target& target) { PaintText(run, target); });
}

void Canvas::PaintText(const TextRun& run, const Target& target)
{
    const TextOutlines laid = mGlyphs.Lay(run);
    const QTransform place = run.place * mToPixels;
    Fill fill;
    fill.style = Qt::SolidPattern;
    fill.winding = true;
    if (run.backed) {
        fill.colour = run.back;
        Path box;
        box.AddRectangle(laid.box);
        FillOutlines(Flatten(box, place), fill, target);
    }
    fill.colour = run.colour;
    for (const Path* path : {&laid.letters, &laid.lines}) {
        if (path->IsSane() && Spend(60.0 * double(path->Points().size()))) {
            FillOutlines(Flatten(*path, place), fill, target);
        }
    }
}

} // namespace quillane::drawing
