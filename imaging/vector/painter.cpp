#include "imaging/vector/painter.h"
#include "imaging/codecs/codec_support.h"
#include "imaging/vector/canvas.h"
#include <algorithm>
#include <cmath>

namespace quillane::drawing {

namespace {

constexpr double kDotsPerInch = 96;
constexpr double kUnitlessSide = 1000; ///< pixels of the long side
constexpr double kLongestSide = 6000;
constexpr double kMostPixels = 24e6;
constexpr double kShortestLongSide = 16;

} // namespace

QSize NaturalSize(double width, double height, bool unitless)
{
    width = std::isfinite(width) ? std::abs(width) : 0;
    height = std::isfinite(height) ? std::abs(height) : 0;
    const double side = std::max(width, height);
    if (!(side > 0)) {
        return {int(kUnitlessSide), int(kUnitlessSide)};
    }
    double scale = unitless ? kUnitlessSide / side : kDotsPerInch;
    scale = std::clamp(scale, kShortestLongSide / side, kLongestSide / side);
    const double area = (width * scale) * (height * scale);
    if (area > kMostPixels) {
        scale *= std::sqrt(kMostPixels / area);
    }
    return {std::max(1, int(std::lround(width * scale))),
            std::max(1, int(std::lround(height * scale)))};
}

QSize ReducedSize(QSize natural, QSize atLeast)
{
    if (atLeast.isEmpty()) {
        return natural;
    }
    const double scale = std::max(double(atLeast.width()) / natural.width(),
                                  double(atLeast.height()) / natural.height());
    if (scale >= 1) {
        return natural;
    }
    return {std::max(1, int(std::ceil(natural.width() * scale))),
            std::max(1, int(std::ceil(natural.height() * scale)))};
}

Painted Paint(const Drawing& drawing, const PaintRequest& request)
{
    codecs::CheckSides(request.format, request.size.width(), request.size.height());
    Canvas canvas(request);
    Painted painted;
    for (const Record& record : drawing.Records()) {
        if (request.cancelled && request.cancelled->load(std::memory_order_relaxed)) {
            codecs::Cancelled();
        }
        if (canvas.IsExhausted()) {
            break;
        }
        canvas.Draw(drawing, record);
    }
    painted.partial = canvas.IsCutShort() || drawing.IsCutShort();
    painted.image = canvas.Take();
    return painted;
}

} // namespace quillane::drawing
