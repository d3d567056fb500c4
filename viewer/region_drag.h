#pragma once
// What the drags of the region tools mean, without a window.
#include "imaging/engine.h"
#include <QList>
#include <QPointF>
#include <QRectF>

namespace quillane {

/// The shape that a drag will make.
enum class RegionTool : qint16 { None, Rectangle, Ellipse, RoundedRectangle, FreeHand };

/// The pixels between two places of a picture: its edges lie at the pixels' edges next to them. An
/// edge far outside is cut to what 32 bits hold.
QRect PixelsBetween(const QRectF& places);

/// Gives the instance the region that a drag of a tool has drawn; in coordinates of the picture.
/// `line` is what the free hand drew, `places` the rectangle of the other tools. Failure where the
/// engine refuses; None changes nothing.
void MakeRegion(EngineInstance& instance, RegionTool tool, const QRectF& places,
                const QList<QPointF>& line);

/// Where a floater lies that was taken hold of at one place and dragged to another: whole pixels.
QPoint FloaterPlace(QPoint start, const QPointF& from, const QPointF& to);

} // namespace quillane
