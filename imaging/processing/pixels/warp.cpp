#include "imaging/processing/pixels/warp.h"
#include "imaging/processing/pixels/colour_pixels.h"
#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace quillane::processing {

namespace {

/// The library counts places in 16 bits: what it is given at a time may be no longer than this.
constexpr int kWarpMost = 32'000;
/// Side of the squares that longer pictures are worked on in.
constexpr int kWarpTile = 256;

QRect WarpSource(const QRect& tile, const WarpMap& map, const cv::Mat& in)
{
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;
    bool first = true;
    for (const int x : {tile.left(), tile.right()}) {
        for (const int y : {tile.top(), tile.bottom()}) {
            const double atX = map.xx * x + map.xy * y + map.x0;
            const double atY = map.yx * x + map.yy * y + map.y0;
            left = first ? atX : std::min(left, atX);
            right = first ? atX : std::max(right, atX);
            top = first ? atY : std::min(top, atY);
            bottom = first ? atY : std::max(bottom, atY);
            first = false;
        }
    }
    // Neighbours that are mixed in, and a pixel for the rounding of the library.
    const QRect needed(QPoint(int(std::floor(left)) - 2, int(std::floor(top)) - 2),
                       QPoint(int(std::ceil(right)) + 2, int(std::ceil(bottom)) + 2));
    return needed.intersected(QRect(0, 0, in.cols, in.rows));
}

void WarpTile(const cv::Mat& in, cv::Mat& out, const QRect& tile, const WarpMap& map,
              const cv::Scalar& fill)
{
    cv::Mat part = out(cv::Rect(tile.x(), tile.y(), tile.width(), tile.height()));
    const QRect source = WarpSource(tile, map, in);
    if (source.isEmpty()) {
        part.setTo(fill);
        return;
    }
    const cv::Mat from = in(cv::Rect(source.x(), source.y(), source.width(), source.height()));
    const cv::Matx23d places(
        map.xx, map.xy, map.x0 + map.xx * tile.x() + map.xy * tile.y() - source.x(), //
        map.yx, map.yy, map.y0 + map.yx * tile.x() + map.yy * tile.y() - source.y());
    cv::warpAffine(from, part, places, part.size(), cv::INTER_LINEAR | cv::WARP_INVERSE_MAP,
                   cv::BORDER_CONSTANT, fill);
}

void WarpPixels(const cv::Mat& in, cv::Mat& out, const WarpMap& map, const cv::Scalar& fill)
{
    if (std::max({in.cols, in.rows, out.cols, out.rows}) <= kWarpMost) {
        WarpTile(in, out, QRect(0, 0, out.cols, out.rows), map, fill); // on all cores by itself
        return;
    }
    ForBands(out.rows, kWarpTile, [&](int top, int bottom) {
        for (int left = 0; left < out.cols; left += kWarpTile) {
            const int right = std::min(left + kWarpTile, out.cols);
            WarpTile(in, out, QRect(left, top, right - left, bottom - top), map, fill);
        }
    });
}

} // namespace

QImage WithWeighedColours(const QImage& pixels)
{
    switch (pixels.format()) {
    case QImage::Format_ARGB32:
        return pixels.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    case QImage::Format_RGBA64:
        return pixels.convertToFormat(QImage::Format_RGBA64_Premultiplied);
    default:
        return pixels;
    }
}

void CapByAlpha(cv::Mat& weighed)
{
    const auto cap = [&](auto none) {
        using Value = decltype(none);
        for (int y = 0; y < weighed.rows; ++y) {
            Value* pixel = weighed.ptr<Value>(y);
            for (int x = 0; x < weighed.cols; ++x, pixel += 4) {
                pixel[0] = std::min(pixel[0], pixel[3]);
                pixel[1] = std::min(pixel[1], pixel[3]);
                pixel[2] = std::min(pixel[2], pixel[3]);
            }
        }
    };
    if (weighed.depth() == CV_16U) {
        cap(quint16(0));
    } else {
        cap(uchar(0));
    }
}

QImage WithPlainColours(QImage pixels, QImage::Format format)
{
    if (pixels.format() == format) {
        return pixels; // moved: a second holder would have it copied when its resolution is set
    }
    return std::move(pixels).convertToFormat(format);
}

Bitmap Warped(const Bitmap& picture, QSize size, QRgb fill, const WarpMap& map)
{
    const QImage weighed = WithWeighedColours(picture.Pixels());
    QImage pixels = BlankPixels(size, weighed.format());
    CallLibrary([&] {
        cv::Mat out = WriteView(pixels);
        WarpPixels(ReadView(weighed), out, map, ScalarOf(weighed, fill));
    });
    return PictureLike(picture, WithPlainColours(std::move(pixels), picture.Pixels().format()),
                       picture.Model());
}

Bitmap WarpedInside(const Bitmap& picture, const Region& region, QRgb fill,
                    const std::function<WarpMap(QSize from, QSize to)>& mapping)
{
    const cv::Scalar value = ScalarOf(picture.Pixels(), fill);
    return WorkOnWhole(picture, &region, PixelForm::Full, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out) {
                           const QSize size(in.cols, in.rows);
                           WarpPixels(in, out, mapping(size, size), value);
                       });
}

} // namespace quillane::processing
