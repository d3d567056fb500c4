#include "imaging/processing/geometry.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/processing/pixels/colour_pixels.h"
#include "imaging/processing/pixels/warp.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace quillane::processing {

namespace {

constexpr qint32 kFullTurn = 36000;
constexpr qint32 kQuarterTurn = 9000;
constexpr qint32 kMostShear = 4500;
/// Square of pixels turned at once, so that both pictures stay in a core's nearest cache.
constexpr int kTurnTile = 32;

/// Rows top..bottom of the picture turned to the right by one or (back) by three quarters.
template <typename Pixel>
void TurnRows(const cv::Mat& in, cv::Mat& out, int top, int bottom, bool back)
{
    const qptrdiff line = back ? qptrdiff(in.step) : -qptrdiff(in.step);
    for (int left = 0; left < out.cols; left += kTurnTile) {
        const int right = std::min(left + kTurnTile, out.cols);
        for (int y = top; y < bottom; ++y) {
            Pixel* to = out.ptr<Pixel>(y);
            const int column = back ? in.cols - 1 - y : y;
            const uchar* from =
                in.ptr(back ? left : in.rows - 1 - left) + size_t(column) * sizeof(Pixel);
            for (int x = left; x < right; ++x, from += line) {
                to[x] = *reinterpret_cast<const Pixel*>(from);
            }
        }
    }
}

Bitmap TurnQuarter(const Bitmap& picture, bool back)
{
    const QImage& pixels = picture.Pixels();
    QImage turned = BlankPixels(pixels.size().transposed(), pixels.format());
    turned.setColorTable(pixels.colorTable());
    CallLibrary([&] {
        const cv::Mat in = ReadView(pixels);
        cv::Mat out = WriteView(turned);
        ForBands(out.rows, kTurnTile, [&](int top, int bottom) {
            switch (pixels.depth()) {
            case 8:
                return TurnRows<quint8>(in, out, top, bottom, back);
            case 16:
                return TurnRows<quint16>(in, out, top, bottom, back);
            case 64:
                return TurnRows<quint64>(in, out, top, bottom, back);
            default:
                return TurnRows<quint32>(in, out, top, bottom, back);
            }
        });
    });
    Bitmap result = PictureLike(picture, std::move(turned), picture.Model());
    result.Pixels().setDotsPerMeterX(pixels.dotsPerMeterY());
    result.Pixels().setDotsPerMeterY(pixels.dotsPerMeterX());
    return result;
}

/// Layouts whose pixels are no whole bytes: the bitmap's own turning.
Bitmap TurnBits(const Bitmap& picture, int orientation)
{
    Bitmap turned = picture.Upright(orientation);
    turned.SetExact(false);
    return turned;
}

/// Rows in reverse order and, when wished, each from its end.
Bitmap Mirrored(const Bitmap& picture, const Region* region, bool down, bool across)
{
    NeedPicture(picture);
    if (!region && picture.Model() == ColourModel::BlackWhite) {
        return TurnBits(picture, down ? across ? 3 : 4 : 2);
    }
    const Bitmap from = InForm(picture, PixelForm::Stored);
    return WorkOnWhole(from, region, PixelForm::Stored, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out) {
                           ForBands(in.rows, BandRows(in), [&](int top, int bottom) {
                               cv::Mat to = out.rowRange(top, bottom);
                               const cv::Mat rows = down
                                   ? in.rowRange(in.rows - bottom, in.rows - top)
                                   : in.rowRange(top, bottom);
                               cv::flip(rows, to, down ? across ? -1 : 0 : 1);
                           });
                       });
}

} // namespace

Bitmap Flip(const Bitmap& picture, const Region* region)
{
    return Mirrored(picture, region, true, false);
}

Bitmap Reverse(const Bitmap& picture, const Region* region)
{
    return Mirrored(picture, region, false, true);
}

Bitmap Rotate(const Bitmap& picture, const Region* region, qint32 angle, bool resize, QRgb fill)
{
    NeedPicture(picture);
    const qint32 turn = (angle % kFullTurn + kFullTurn) % kFullTurn;
    if (turn == 0) {
        return picture;
    }
    if (turn == 2 * kQuarterTurn) {
        return Mirrored(picture, region, true, true);
    }
    const bool quarter = turn % kQuarterTurn == 0;
    if (!region && quarter && (resize || picture.Width() == picture.Height())) {
        const bool back = turn != kQuarterTurn;
        return picture.Model() == ColourModel::BlackWhite ? TurnBits(picture, back ? 8 : 6)
                                                          : TurnQuarter(picture, back);
    }
    const double radians = double(turn) / (kFullTurn / 2.0) * std::numbers::pi;
    const double sine = quarter ? std::round(std::sin(radians)) : std::sin(radians);
    const double cosine = quarter ? 0 : std::cos(radians);
    const auto mapping = [&](QSize from, QSize to) {
        // Back from the result: turned to the left around the middles.
        const double fromX = (from.width() - 1) / 2.0;
        const double fromY = (from.height() - 1) / 2.0;
        const double toX = (to.width() - 1) / 2.0;
        const double toY = (to.height() - 1) / 2.0;
        WarpMap map{cosine, sine,   fromX - cosine * toX - sine * toY,
                    -sine,  cosine, fromY + sine * toX - cosine * toY};
        if (quarter) {
            // Half a pixel more or less, so that pixels stay what they are.
            map.x0 = std::floor(map.x0);
            map.y0 = std::floor(map.y0);
        }
        return map;
    };
    const Bitmap from = InFormFor(picture, fill);
    if (region) {
        return WarpedInside(from, *region, fill, mapping);
    }
    QSize size = from.Pixels().size();
    if (resize) {
        const double width = std::abs(size.width() * cosine) + std::abs(size.height() * sine);
        const double height = std::abs(size.width() * sine) + std::abs(size.height() * cosine);
        size = QSize(std::max(1, int(std::ceil(width - 1e-6))),
                     std::max(1, int(std::ceil(height - 1e-6))));
    }
    return Warped(from, size, fill, mapping(from.Pixels().size(), size));
}

Bitmap Shear(const Bitmap& picture, const Region* region, qint32 angle, bool horizontal, QRgb fill)
{
    NeedPicture(picture);
    const qint32 slant = std::clamp(angle, -kMostShear, kMostShear);
    if (slant == 0) {
        return picture;
    }
    const double slope = std::tan(double(slant) / (kFullTurn / 2.0) * std::numbers::pi);
    const auto mapping = [&](QSize from, QSize to) {
        const double fromX = (from.width() - 1) / 2.0;
        const double fromY = (from.height() - 1) / 2.0;
        const double toX = (to.width() - 1) / 2.0;
        const double toY = (to.height() - 1) / 2.0;
        return horizontal ? WarpMap{1, -slope, fromX - toX + slope * toY, 0, 1, fromY - toY}
                          : WarpMap{1, 0, fromX - toX, -slope, 1, fromY - toY + slope * toX};
    };
    const Bitmap from = InFormFor(picture, fill);
    if (region) {
        return WarpedInside(from, *region, fill, mapping);
    }
    QSize size = from.Pixels().size();
    const int along = horizontal ? size.height() : size.width();
    const int more = int(std::ceil(std::abs(slope) * (along - 1)));
    size += horizontal ? QSize(more, 0) : QSize(0, more);
    return Warped(from, size, fill, mapping(from.Pixels().size(), size));
}

Bitmap Trim(const Bitmap& picture, QRect part)
{
    NeedPicture(picture);
    const QRect inside = part.intersected(picture.Pixels().rect());
    if (inside.isEmpty()) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("There is no picture in the part to be cut out."));
    }
    if (picture.Model() == ColourModel::BlackWhite) {
        return PictureLike(picture, picture.Pixels().copy(inside), picture.Model());
    }
    QImage pixels = BlankPixels(inside.size(), picture.Pixels().format());
    pixels.setColorTable(picture.Pixels().colorTable());
    CallLibrary([&] {
        const cv::Mat in = ReadView(picture.Pixels())(
            cv::Rect(inside.x(), inside.y(), inside.width(), inside.height()));
        cv::Mat out = WriteView(pixels);
        ForBands(in.rows, BandRows(in), [&](int top, int bottom) {
            cv::Mat band = out.rowRange(top, bottom);
            in.rowRange(top, bottom).copyTo(band);
        });
    });
    return PictureLike(picture, std::move(pixels), picture.Model());
}

} // namespace quillane::processing
