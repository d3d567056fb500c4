#include "imaging/processing/tone.h"
#include "imaging/processing/pixels/levels.h"
#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillane::processing {

namespace {

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

template <typename Value>
void DetectColours(const cv::Mat& in, cv::Mat& out, ChannelOrder order, quint32 low, quint32 high)
{
    constexpr Value kFull = Value(~Value(0));
    ForRows<Value>(in, out, [&](const Value* from, Value* to) {
        for (int x = 0; x < in.cols; ++x, from += 4, to += 4) {
            const quint32 value = Intensity(from[order.red], from[order.green], from[order.blue]);
            to[0] = to[1] = to[2] = to[3] = value - low <= high - low ? kFull : Value(0);
        }
    });
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

Bitmap HistogramContrast(const Bitmap& picture, const Region* region, qint32 value)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    const double mean = CountLevels(from, region, CountedLevels::Intensity).Mean();
    const double steep = ToneValue(value);
    return WithCurve(from, region, [=](double level) { return Steepened(level, mean, steep); });
}

Bitmap GammaCorrect(const Bitmap& picture, const Region* region, qint32 gamma)
{
    const double power = 100.0 / std::clamp(gamma, 1, 10000);
    return WithCurve(picture, region, [=](double level) { return std::pow(level, power); });
}

Bitmap Invert(const Bitmap& picture, const Region* region)
{
    return WithCurve(picture, region, [](double level) { return 1 - level; });
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
    const LevelCounts counts = CountLevels(from, region, CountedLevels::Channels);
    const size_t levels = counts.channels[0].size();
    size_t low = levels;
    size_t high = 0;
    for (const std::vector<qint64>& channel : counts.channels) {
        for (size_t i = 0; i < levels; ++i) {
            if (channel[i] > 0) {
                low = std::min(low, i);
                high = std::max(high, i);
            }
        }
    }
    if (low >= high) {
        return WithCurve(from, region, [](double level) { return level; });
    }
    const double most = double(levels - 1);
    return WithCurve(from, region, [=](double level) {
        return (level * most - double(low)) / double(high - low);
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
                           if (in.depth() == CV_16U) {
                               DetectColours<quint16>(in, out, order, quint32(least) * 257,
                                                      quint32(most) * 257 + 256);
                           } else {
                               DetectColours<uchar>(in, out, order, quint32(least), quint32(most));
                           }
                       });
}

} // namespace quillane::processing
