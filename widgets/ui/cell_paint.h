#pragma once
// How cells look, in the colours of the palette.
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QRect>
#include <QSize>
#include <QString>

namespace quillane {

/// What decides the colours of a cell.
struct CellLook {
    bool selected = false, current = false, hovered = false;
    bool active = false; ///< the view has the keyboard
};

/// Background of a selected or hovered cell, and the frame of the current one.
void PaintCellBack(QPainter& painter, const QRect& rect, const QPalette& palette,
                   const CellLook& look);
/// Colour of a cell's text on that background.
QColor CellTextColour(const QPalette& palette, const CellLook& look);
/// A name, centred, in at most two lines.
void PaintCellLabel(QPainter& painter, const QRect& rect, const QString& name,
                    const QColor& colour);

/// Where a picture of so many device pixels stands in a box: centred, on whole device pixels, made
/// smaller when it does not fit.
QRectF PictureRect(const QRect& box, QSize devicePixels, double ratio);
/// The thumbnail itself with a faint outline.
void PaintThumbnail(QPainter& painter, const QRect& box, const QPixmap& picture, double ratio,
                    const QPalette& palette);
/// The quiet frame of a picture that is not there yet; `pixels` gives its shape when known.
void PaintPending(QPainter& painter, const QRect& box, QSize pixels, const QPalette& palette);
/// The mark of a picture that cannot be shown, in the colour of the text.
void PaintBroken(QPainter& painter, const QRect& box, const QColor& colour);
/// A stock picture, centred.
void PaintStock(QPainter& painter, const QRect& box, const QIcon& icon);

} // namespace quillane
