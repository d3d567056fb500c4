#pragma once
#include <QSizeF>
#include <QtGlobal>

namespace quillane {

/// Size of a picture of `width` by `height` pixels in a cell. Lower than wide: the cell's width
/// and H / W of its height; anything else, a square too: W / H of its width and its height.
QSizeF ThumbnailSize(qint32 width, qint32 height, qint16 cellWidth, qint16 cellHeight);

} // namespace quillane
