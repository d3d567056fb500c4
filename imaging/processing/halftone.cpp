#include "imaging/processing/halftone.h"
#include "imaging/processing/pixels/colour_pixels.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>

namespace quillane::processing {

namespace {

/// Pixels from one line or dot to the next.
constexpr double kScreenPitch = 8;
/// Places that a cell of the screen is told apart by, across and down: a power of two.
constexpr int kCellSide = 64;
constexpr int kCellShift = 32 - 6;
/// Intensities at or above which a place of the cell is white: each as often as another.
using ScreenCell = std::array<quint16, size_t(kCellSide) * kCellSide>;

ScreenCell ScreenCellOf(HalftoneType type, double most)
{
    std::array<double, size_t(kCellSide) * kCellSide> heights{};
    for (int y = 0; y < kCellSide; ++y) {
        for (int x = 0; x < kCellSide; ++x) {
            const double across = std::cos((x + 0.5) / kCellSide * 2 * std::numbers::pi);
            const double down = std::cos((y + 0.5) / kCellSide * 2 * std::numbers::pi);
            heights[size_t(y * kCellSide + x)] = type == HalftoneType::Dots ? across + down : down;
        }
    }
    std::array<int, heights.size()> order{};
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return heights[size_t(a)] < heights[size_t(b)]; });
    ScreenCell cell{};
    for (size_t rank = 0; rank < order.size(); ++rank) {
        // From just above black to white, so that black stays black and white white.
        cell[size_t(order[rank])] =
            quint16(1 + std::lround(double(rank) / double(order.size() - 1) * (most - 1)));
    }
    return cell;
}

/// Parts of a turn of the screen as a number that runs over where the cell ends.
quint32 ScreenPlace(double cells)
{
    return quint32(qint64(std::floor((cells - std::floor(cells)) * 4294967296.0)));
}

struct ScreenWalk {
    double cosine, sine; ///< cells from one pixel to the next
    quint32 stepAcross, stepDown;
};

/// The screen laid on grey, in place.
template <typename Value>
void ScreenRows(cv::Mat& grey, int firstRow, const ScreenWalk& walk, const ScreenCell& cell)
{
    constexpr Value kFull = Value(~Value(0));
    for (int y = 0; y < grey.rows; ++y) {
        quint32 across = ScreenPlace((firstRow + y) * walk.sine);
        quint32 down = ScreenPlace((firstRow + y) * walk.cosine);
        Value* value = grey.ptr<Value>(y);
        for (int x = 0; x < grey.cols; ++x) {
            const quint32 place = (down >> kCellShift) * kCellSide + (across >> kCellShift);
            value[x] = value[x] >= cell[place] ? kFull : Value(0);
            across += walk.stepAcross;
            down += walk.stepDown;
        }
    }
}

void ScreenBand(const cv::Mat& in, cv::Mat& out, int firstRow, ChannelOrder order,
                const ScreenWalk& walk, const ScreenCell& cell)
{
    cv::Mat grey = out;
    if (in.channels() == 1) {
        in.copyTo(out);
    } else {
        grey = cv::Mat(in.size(), CV_MAKETYPE(in.depth(), 1));
        GreyBand(in, grey, order);
    }
    if (in.depth() == CV_16U) {
        ScreenRows<quint16>(grey, firstRow, walk, cell);
    } else {
        ScreenRows<uchar>(grey, firstRow, walk, cell);
    }
    if (in.channels() == 4) {
        SpreadGrey(grey, in, out);
    }
}

} // namespace

Bitmap Halftone(const Bitmap& picture, const Region* region, HalftoneType type, qint32 angle)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    const double radians = double(angle % 36000) / 18000 * std::numbers::pi;
    ScreenWalk walk{std::cos(radians) / kScreenPitch, std::sin(radians) / kScreenPitch, 0, 0};
    walk.stepAcross = ScreenPlace(walk.cosine);
    walk.stepDown = ScreenPlace(-walk.sine);
    const bool deep = from.Pixels().depth() == 16 || from.Pixels().depth() == 64;
    const ScreenCell cell = ScreenCellOf(type, deep ? 65535 : 255);
    const ChannelOrder order = OrderOf(from.Pixels());
    return WorkInBands(from, region, PixelForm::Full, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint at) {
                           ScreenBand(in, out, at.y(), order, walk, cell);
                       });
}

} // namespace quillane::processing
