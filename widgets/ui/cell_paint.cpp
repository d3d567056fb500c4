#include "widgets/ui/cell_paint.h"

#include "widgets/label_lines.h"

#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace quillane {

namespace {

constexpr double kCellCorner = 5.0; // radius of the background in logical pixels

QPalette::ColorGroup GroupOf(const CellLook& look)
{
    return look.active ? QPalette::Active : QPalette::Inactive;
}

QColor Faint(QColor colour, int alpha)
{
    colour.setAlpha(alpha);
    return colour;
}

} // namespace

void PaintCellBack(QPainter& painter, const QRect& rect, const QPalette& palette,
                   const CellLook& look)
{
    const QColor highlight = palette.color(GroupOf(look), QPalette::Highlight);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF back = QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (look.selected || look.hovered) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(look.selected ? highlight : Faint(highlight, 40));
        painter.drawRoundedRect(back, kCellCorner, kCellCorner);
    }
    if (look.current && look.active) {
        const QColor frame = look.selected ? CellTextColour(palette, look) : highlight;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Faint(frame, 200), 1));
        const double inset = look.selected ? 1.5 : 0.0;
        painter.drawRoundedRect(back.adjusted(inset, inset, -inset, -inset), kCellCorner - 1,
                                kCellCorner - 1);
    }
    painter.restore();
}

QColor CellTextColour(const QPalette& palette, const CellLook& look)
{
    return palette.color(GroupOf(look), look.selected ? QPalette::HighlightedText : QPalette::Text);
}

void PaintCellLabel(QPainter& painter, const QRect& rect, const QString& name, const QColor& colour)
{
    const QFontMetrics metrics = painter.fontMetrics();
    painter.setPen(colour);
    QRect line = rect;
    line.setHeight(metrics.lineSpacing());
    for (const QString& text : LabelLines(name, metrics, rect.width())) {
        painter.drawText(line, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine, text);
        line.translate(0, metrics.lineSpacing());
    }
}

QRectF PictureRect(const QRect& box, QSize devicePixels, double ratio)
{
    QSizeF size = QSizeF(devicePixels) / ratio;
    if (size.width() > box.width() || size.height() > box.height()) {
        size.scale(box.size(), Qt::KeepAspectRatio);
    }
    const auto whole = [&](double position) { return std::round(position * ratio) / ratio; };
    return QRectF(whole(box.x() + (box.width() - size.width()) / 2),
                  whole(box.y() + (box.height() - size.height()) / 2), size.width(), size.height());
}

void PaintThumbnail(QPainter& painter, const QRect& box, const QPixmap& picture, double ratio,
                    const QPalette& palette)
{
    const QRectF target = PictureRect(box, picture.size(), ratio);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(target, picture, QRectF(picture.rect()));
    // The outline keeps a white picture apart from a white page.
    painter.setPen(QPen(Faint(palette.color(QPalette::Text), 48), 1 / ratio));
    painter.setBrush(Qt::NoBrush);
    const double half = 0.5 / ratio;
    painter.drawRect(target.adjusted(-half, -half, half, half));
    painter.restore();
}

void PaintPending(QPainter& painter, const QRect& box, QSize pixels, const QPalette& palette)
{
    QSizeF size = pixels.isEmpty() ? QSizeF(4, 3) : QSizeF(pixels);
    size.scale(QSizeF(box.size()), Qt::KeepAspectRatio);
    QRectF frame(QPointF(), size);
    frame.moveCenter(QRectF(box).center());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Faint(palette.color(QPalette::Text), 40), 1));
    painter.setBrush(Faint(palette.color(QPalette::Text), 12));
    painter.drawRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    painter.restore();
}

void PaintBroken(QPainter& painter, const QRect& box, const QColor& colour)
{
    // A picture of a hill and a sun, torn from top to bottom.
    const double side = std::min(box.width(), box.height());
    const QRectF page = QRectF(0, 0, side * 0.56, side * 0.44);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(QRectF(box).center() - page.center());
    const QColor ink = Faint(colour, 130);
    const double tear = page.width() * 0.52;
    const double step = page.width() * 0.07;
    const double gap = page.width() * 0.07;
    const auto tornEdge = [&](double shift) {
        QPolygonF edge;
        for (int i = 0; i <= 4; ++i) {
            edge << QPointF(tear + shift + (i % 2 ? step : -step), page.height() * i / 4);
        }
        return edge;
    };
    QPainterPath left;
    left.moveTo(page.topLeft());
    for (const QPointF& point : tornEdge(-gap)) {
        left.lineTo(point);
    }
    left.lineTo(page.bottomLeft());
    left.closeSubpath();
    QPainterPath right;
    right.moveTo(page.topRight());
    for (const QPointF& point : tornEdge(gap)) {
        right.lineTo(point);
    }
    right.lineTo(page.bottomRight());
    right.closeSubpath();

    painter.setPen(QPen(ink, 1.5, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Faint(colour, 18));
    painter.drawPath(left);
    painter.drawPath(right);

    QPainterPath hill;
    hill.moveTo(page.width() * 0.08, page.height() * 0.88);
    hill.lineTo(page.width() * 0.26, page.height() * 0.45);
    hill.lineTo(page.width() * 0.40, page.height() * 0.88);
    hill.closeSubpath();
    painter.setPen(Qt::NoPen);
    painter.setBrush(Faint(colour, 80));
    painter.drawPath(hill);
    painter.drawEllipse(QPointF(page.width() * 0.80, page.height() * 0.28), page.height() * 0.10,
                        page.height() * 0.10);
    painter.restore();
}

void PaintStock(QPainter& painter, const QRect& box, const QIcon& icon)
{
    const int side = std::min({box.width(), box.height(), 128}) * 3 / 4;
    QRect target(0, 0, side, side);
    target.moveCenter(box.center());
    icon.paint(&painter, target);
}

} // namespace quillane
