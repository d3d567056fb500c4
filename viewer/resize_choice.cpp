#include "viewer/resize_choice.h"
#include "core/numbers.h"
#include <algorithm>

namespace quillane {

qint32 ResizeRatio(QSize picture)
{
    if (picture.isEmpty()) {
        return kResizeUnit;
    }
    const double ratio = double(picture.height()) * kResizeUnit / picture.width();
    return std::max(1, ToInt32(std::min<double>(ratio, kResizeMostRatio)));
}

qint32 HeightForWidth(qint32 width, qint32 ratio)
{
    return std::max(1, ToInt32(double(width) * ratio / kResizeUnit));
}

qint32 WidthForHeight(qint32 height, qint32 ratio)
{
    return std::clamp(ToInt32(double(height) * kResizeUnit / ratio), 1, kResizeMostWidth);
}

} // namespace quillane
