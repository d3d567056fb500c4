#include "imaging/processing/contour.h"
#include "imaging/processing/pixels/colour_pixels.h"
#include "imaging/processing/pixels/levels.h"
#include <algorithm>
#include <array>
#include <opencv2/imgproc.hpp>

namespace quillane::processing {

namespace {

/// Number of the step that each intensity of 0..255 lies on; 0 below the threshold.
using ContourSteps = std::array<uchar, 256>;

ContourSteps ContourStepsOf(int threshold, int interval)
{
    ContourSteps steps{};
    for (int i = threshold; i < 256; ++i) {
        steps[size_t(i)] = uchar(1 + std::min((i - threshold) / interval, 254));
    }
    return steps;
}

/// The steps of a band and of the row below it.
cv::Mat ContourStepsIn(const cv::Mat& in, ChannelOrder order, int smoothing,
                       const ContourSteps& steps)
{
    const int around = smoothing / 2 + 1;
    cv::Mat wide = in;
    wide.adjustROI(around, around, around, around);
    cv::Size whole;
    cv::Point at;
    cv::Point atWide;
    in.locateROI(whole, at);
    wide.locateROI(whole, atWide);
    cv::Mat grey = wide;
    if (wide.channels() == 4) {
        grey.create(wide.size(), CV_MAKETYPE(wide.depth(), 1));
        GreyBand(wide, grey, order);
    }
    if (grey.depth() == CV_16U) {
        cv::Mat narrow;
        grey.convertTo(narrow, CV_8U, 1.0 / 257);
        grey = narrow;
    }
    if (smoothing > 1) {
        cv::Mat smooth;
        cv::blur(grey, smooth, cv::Size(smoothing, smoothing), cv::Point(-1, -1),
                 cv::BORDER_REFLECT_101 | cv::BORDER_ISOLATED);
        grey = smooth;
    }
    const cv::Mat table(1, 256, CV_8UC1, const_cast<uchar*>(steps.data()));
    cv::Mat numbers;
    cv::LUT(grey, table, numbers);
    const int rows = std::min(in.rows + 1, numbers.rows - (at.y - atWide.y));
    const int columns = std::min(in.cols + 1, numbers.cols - (at.x - atWide.x));
    return numbers(cv::Rect(at.x - atWide.x, at.y - atWide.y, columns, rows)).clone();
}

template <typename Value>
void DrawContours(const cv::Mat& in, cv::Mat& out, const cv::Mat& steps, ContourOption option,
                  const std::array<uchar, 256>& greys)
{
    constexpr Value kFull = Value(~Value(0));
    constexpr Value kScale = sizeof(Value) == 1 ? 1 : 257;
    const int channels = in.channels();
    const int colours = std::min(channels, 3);
    for (int y = 0; y < in.rows; ++y) {
        const uchar* row = steps.ptr(y);
        const uchar* below = steps.ptr(std::min(y + 1, steps.rows - 1));
        const Value* from = in.ptr<Value>(y);
        Value* to = out.ptr<Value>(y);
        for (int x = 0; x < in.cols; ++x, from += channels, to += channels) {
            const bool line = row[x] != row[std::min(x + 1, steps.cols - 1)] || row[x] != below[x];
            Value value = 0;
            switch (option) {
            case ContourOption::BlackLines:
                value = line ? Value(0) : kFull;
                break;
            case ContourOption::WhiteLines:
                value = line ? kFull : Value(0);
                break;
            case ContourOption::LinesOnPicture:
                if (!line) {
                    std::copy_n(from, channels, to);
                    continue;
                }
                break;
            case ContourOption::Fill:
                value = Value(greys[row[x]] * kScale);
                break;
            case ContourOption::FillAndLines:
                value = line ? Value(0) : Value(greys[row[x]] * kScale);
                break;
            }
            std::fill_n(to, colours, value);
            if (channels == 4) {
                to[3] = from[3];
            }
        }
    }
}

} // namespace

Bitmap ContourFilter(const Bitmap& picture, const Region* region, const ContourChoice& choice)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    const int threshold = std::clamp(choice.threshold, 0, 255);
    const int smoothing = std::clamp(choice.smoothing, 0, 255);
    const ContourSteps steps = ContourStepsOf(threshold, std::clamp(choice.interval, 1, 255));
    std::array<uchar, 256> greys{};
    const int last = std::max<int>(steps[255], 1);
    for (int i = 0; i < 256; ++i) {
        greys[size_t(i)] = uchar(std::min(i, last) * 255 / last);
    }
    const ChannelOrder order = OrderOf(from.Pixels());
    return WorkInBands(
        from, region, PixelForm::Full, FourthChannel::Written,
        [&](const cv::Mat& in, cv::Mat& out, QPoint) {
            const cv::Mat numbers = ContourStepsIn(in, order, smoothing, steps);
            if (in.depth() == CV_16U) {
                DrawContours<quint16>(in, out, numbers, choice.option, greys);
            } else {
                DrawContours<uchar>(in, out, numbers, choice.option, greys);
            }
        },
        smoothing / 2 + 1);
}

} // namespace quillane::processing
