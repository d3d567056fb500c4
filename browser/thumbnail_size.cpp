#include "browser/thumbnail_size.h"

namespace quillane {

QSizeF ThumbnailSize(qint32 width, qint32 height, qint16 cellWidth, qint16 cellHeight)
{
    if (height < width) {
        return {double(cellWidth), double(height) / width * cellHeight};
    }
    return {height == 0 ? 0.0 : double(width) / height * cellWidth, double(cellHeight)};
}

} // namespace quillane
