#include "imaging/processing/tone.h"
#include "imaging/processing/pixels/colour_pixels.h"
#include "imaging/processing/pixels/levels.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <numbers>

namespace quillane::processing {

namespace {

/// All bits of three channels and none of the fourth.
cv::Scalar ColoursOnly(const cv::Mat& pixels)
{
    const double most = pixels.depth() == CV_16U ? 65535 : 255;
    return {most, most, most, 0};
}

double ToneValue(qint32 value)
{
    return double(std::clamp(value, -kMostValue, kMostValue)) / kMostValue;
}

/// The picture with a curve over 0..1 laid on its values.
Bitmap WithCurve(const Bitmap& picture, const Region* region,
                 const std::function<double(double)>& curve)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    const int levels = from.Pixels().depth() == 16 || from.Pixels().depth() == 64 ? 65536 : 256;
    return WithLevels(from, region, TableOf(levels, curve));
}

/// A line through a place that stays, as steep as a value of -1..1 says.
double Steepened(double level, double around, double value)
{
    if (value >= 1) {
        return level == around ? around : level > around ? 1 : 0;
    }
    return around + (level - around) * std::tan((1 + value) * std::numbers::pi / 4);
}

/// Change of each intensity that spreads them evenly; the least stays the least.
std::vector<qint32> EqualizingSteps(const LevelCounts& counts)
{
    const size_t levels = counts.intensity.size();
    std::vector<qint32> steps(levels, 0);
    const auto first = std::find_if(counts.intensity.begin(), counts.intensity.end(),
                                    [](qint64 count) { return count > 0; });
    if (first == counts.intensity.end() || *first == counts.pixels) {
        return steps; // nothing to spread
    }
    const double scale = double(levels - 1) / double(counts.pixels - *first);
    qint64 below = 0;
    for (size_t i = size_t(first - counts.intensity.begin()) + 1; i < levels; ++i) {
        below += counts.intensity[i];
        steps[i] = qint32(std::lround(double(below) * scale)) - qint32(i);
    }
    const size_t lowest = size_t(first - counts.intensity.begin());
    steps[lowest] = -qint32(lowest);
    return steps;
}

template <typename Value>
void RaiseColours(const cv::Mat& in, cv::Mat& out, ChannelOrder order,
                  const std::vector<qint32>& steps)
{
    const qint32 most = qint32(steps.size()) - 1;
    ForRows<Value>(in, out, [&](const Value* from, Value* to) {
        for (int x = 0; x < in.cols; ++x, from += 4, to += 4) {
            const qint32 step =
                steps[Intensity(from[order.red], from[order.green], from[order.blue])];
            for (int channel = 0; channel < 4; ++channel) {
                to[channel] = Value(std::clamp(qint32(from[channel]) + step, 0, most));
            }
        }
    });
}

/// White where an intensity lies within the limits.
void DetectBand(const cv::Mat& in, cv::Mat& out, ChannelOrder order, double low, double high)
{
    cv::Mat grey(in.size(), CV_MAKETYPE(in.depth(), 1));
    GreyBand(in, grey, order);
    cv::Mat inside;
    cv::inRange(grey, low, high, inside);
    if (in.depth() == CV_16U) {
        inside.convertTo(grey, CV_16U, 257);
        SpreadGrey(grey, in, out);
    } else {
        SpreadGrey(inside, in, out);
    }
}

/// The least and the largest value of the colours of a picture, or of a part of it.
struct LevelRange {
    int low = 65536;
    int high = -1;
};

/// Values looked at side by side: the same channel comes round in each place.
constexpr int kRangeStep = 16;

template <typename Value> LevelRange RangeOfRows(const cv::Mat& in)
{
    std::array<Value, kRangeStep> low{};
    low.fill(Value(~Value(0)));
    std::array<Value, kRangeStep> high{};
    const int values = in.cols * in.channels();
    for (int y = 0; y < in.rows; ++y) {
        const Value* from = in.ptr<Value>(y);
        int at = 0;
        for (; at + kRangeStep <= values; at += kRangeStep) {
            for (int i = 0; i < kRangeStep; ++i) {
                low[size_t(i)] = std::min(low[size_t(i)], from[at + i]);
                high[size_t(i)] = std::max(high[size_t(i)], from[at + i]);
            }
        }
        for (; at < values; ++at) {
            const size_t place = size_t(at % kRangeStep);
            low[place] = std::min(low[place], from[at]);
            high[place] = std::max(high[place], from[at]);
        }
    }
    LevelRange range;
    for (int i = 0; i < kRangeStep; ++i) {
        if (in.channels() == 1 || i % 4 != 3) {
            range.low = std::min(range.low, int(low[size_t(i)]));
            range.high = std::max(range.high, int(high[size_t(i)]));
        }
    }
    return range;
}

LevelRange RangeOf(const Bitmap& picture)
{
    LevelRange range;
    std::mutex mutex;
    CallLibrary([&] {
        const cv::Mat in = ReadView(picture.Pixels());
        ForBands(in.rows, BandRows(in), [&](int top, int bottom) {
            const cv::Mat band = in.rowRange(top, bottom);
            const LevelRange part =
                in.depth() == CV_16U ? RangeOfRows<quint16>(band) : RangeOfRows<uchar>(band);
            const std::lock_guard lock(mutex);
            range.low = std::min(range.low, part.low);
            range.high = std::max(range.high, part.high);
        });
    });
    return range;
}

/// The same of the pixels of a region.
LevelRange RangeIn(const Bitmap& picture, const Region& region)
{
    LevelRange range;
    const LevelCounts counts = CountLevels(picture, &region, CountedLevels::Channels);
    for (const std::vector<qint64>& channel : counts.channels) {
        for (int i = 0; i < int(channel.size()); ++i) {
            if (channel[size_t(i)] > 0) {
                range.low = std::min(range.low, i);
                range.high = std::max(range.high, i);
            }
        }
    }
    return range;
}

} // namespace

Bitmap Brightness(const Bitmap& picture, const Region* region, qint32 value)
{
    const double step = ToneValue(value);
    return WithCurve(picture, region, [=](double level) { return level + step; });
}

Bitmap Contrast(const Bitmap& picture, const Region* region, qint32 value)
{
    const double steep = ToneValue(value);
    return WithCurve(picture, region, [=](double level) { return Steepened(level, 0.5, steep); });
}

double MeanIntensity(const Bitmap& picture, const Region* region)
{
    NeedPicture(picture);
    return CountLevels(InForm(picture, PixelForm::Full), region, CountedLevels::Intensity).Mean();
}

Bitmap ContrastAround(const Bitmap& picture, const Region* region, qint32 value, double mean)
{
    const double steep = ToneValue(value);
    return WithCurve(picture, region, [=](double level) { return Steepened(level, mean, steep); });
}

Bitmap HistogramContrast(const Bitmap& picture, const Region* region, qint32 value)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    return ContrastAround(from, region, value, MeanIntensity(from, region));
}

Bitmap GammaCorrect(const Bitmap& picture, const Region* region, qint32 gamma)
{
    const double power = 100.0 / std::clamp(gamma, 1, 10000);
    return WithCurve(picture, region, [=](double level) { return std::pow(level, power); });
}

Bitmap Invert(const Bitmap& picture, const Region* region)
{
    return WorkInBands(picture, region, PixelForm::Full, FourthChannel::Written,
                       [](const cv::Mat& in, cv::Mat& out, QPoint) {
                           if (in.channels() == 1) {
                               cv::bitwise_not(in, out);
                           } else {
                               cv::bitwise_xor(in, ColoursOnly(in), out);
                           }
                       });
}

Bitmap Posterize(const Bitmap& picture, const Region* region, qint32 levels)
{
    const double steps = std::clamp(levels, 2, 256) - 1;
    return WithCurve(picture, region, [=](double level) {
        return std::min(std::floor(level * (steps + 1)), steps) / steps;
    });
}

Bitmap StretchIntensity(const Bitmap& picture, const Region* region)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    const LevelRange range = region ? RangeIn(from, *region) : RangeOf(from);
    if (range.low >= range.high) {
        return WithCurve(from, region, [](double level) { return level; });
    }
    const bool deep = from.Pixels().depth() == 16 || from.Pixels().depth() == 64;
    const double most = deep ? 65535 : 255;
    return WithCurve(from, region, [=](double level) {
        return (level * most - range.low) / (range.high - range.low);
    });
}

Bitmap HistogramEqualize(const Bitmap& picture, const Region* region)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    const std::vector<qint32> steps =
        EqualizingSteps(CountLevels(from, region, CountedLevels::Intensity));
    if (from.Model() == ColourModel::Grey) {
        LevelTable table(steps.size());
        for (size_t i = 0; i < steps.size(); ++i) {
            table[i] = quint16(qint32(i) + steps[i]);
        }
        return WithLevels(from, region, table);
    }
    const ChannelOrder order = OrderOf(from.Pixels());
    return WorkInBands(from, region, PixelForm::Full, FourthChannel::Kept,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint) {
                           if (in.depth() == CV_16U) {
                               RaiseColours<quint16>(in, out, order, steps);
                           } else {
                               RaiseColours<uchar>(in, out, order, steps);
                           }
                       });
}

Bitmap IntensityDetect(const Bitmap& picture, const Region* region, qint32 low, qint32 high)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    const qint32 least = std::clamp(std::min(low, high), 0, 255);
    const qint32 most = std::clamp(std::max(low, high), 0, 255);
    if (from.Model() == ColourModel::Grey) {
        return WithCurve(from, region, [=](double level) {
            const qint32 value = qint32(level * 255 + 1e-6);
            return value >= least && value <= most ? 1.0 : 0.0;
        });
    }
    const ChannelOrder order = OrderOf(from.Pixels());
    return WorkInBands(from, region, PixelForm::Full, FourthChannel::Kept,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint) {
                           const bool deep = in.depth() == CV_16U;
                           DetectBand(in, out, order, deep ? least * 257 : least,
                                      deep ? most * 257 + 256 : most);
                       });
}

} // namespace quillane::processing
