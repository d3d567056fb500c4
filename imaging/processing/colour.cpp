#include "imaging/processing/colour.h"
#include "core/failure.h"
#include "imaging/processing/pixels/colour_pixels.h"
#include "imaging/processing/pixels/levels.h"
#include "imaging/processing/tone.h"
#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <type_traits>

namespace quillane::processing {

namespace {

/// Pixels worked on at a time: their values as numbers stay in the nearest cache.
constexpr int kHueRun = 512;

/// Turns the hue of a run of pixels. Without branches, so that the compiler does several at once.
void TurnHues(float* red, float* green, float* blue, int count, float sixths, float most)
{
    for (int i = 0; i < count; ++i) {
        const float r = red[i];
        const float g = green[i];
        const float b = blue[i];
        const float high = std::max(r, std::max(g, b));
        const float range = high - std::min(r, std::min(g, b));
        // Place on the circle in sixths of it: red 0, green 2, blue 4.
        const float scale = 1.0f / std::max(range, 1e-6f);
        const float byRed = (g - b) * scale;
        const float byGreen = (b - r) * scale + 2.0f;
        const float byBlue = (r - g) * scale + 4.0f;
        const float other = high == g ? byGreen : byBlue;
        const float hue = (high == r ? byRed : other) + sixths;
        const auto value = [&](float place) {
            // How far a colour lies below the largest, by its distance on the circle.
            const float at = place + hue;
            const float turned = at - 6.0f * float(int(at * (1.0f / 6.0f)));
            const float fall = std::max(0.0f, std::min(1.0f, std::min(turned, 4.0f - turned)));
            return std::min(most, high - range * fall + 0.5f);
        };
        red[i] = value(5.0f);
        green[i] = value(3.0f);
        blue[i] = value(1.0f);
    }
}

/// Pixels as words, so that the compiler takes several apart and puts them together at once.
template <typename Value>
void TurnHueRows(const cv::Mat& in, cv::Mat& out, ChannelOrder order, float sixths)
{
    using Word = std::conditional_t<sizeof(Value) == 1, quint32, quint64>;
    constexpr Word kFull = Value(~Value(0));
    constexpr int kBits = 8 * sizeof(Value);
    const int redAt = order.red * kBits;
    const int greenAt = order.green * kBits;
    const int blueAt = order.blue * kBits;
    const Word rest = kFull << (3 * kBits);
    float red[kHueRun];
    float green[kHueRun];
    float blue[kHueRun];
    ForRows<Value>(in, out, [&](const Value* from, Value* to) {
        for (int left = 0; left < in.cols;
             left += kHueRun, from += 4 * kHueRun, to += 4 * kHueRun) {
            const int count = std::min(kHueRun, in.cols - left);
            for (int i = 0; i < count; ++i) {
                const Word word = qFromLittleEndian<Word>(from + 4 * i);
                red[i] = float(int(word >> redAt & kFull));
                green[i] = float(int(word >> greenAt & kFull));
                blue[i] = float(int(word >> blueAt & kFull));
            }
            TurnHues(red, green, blue, count, sixths, float(kFull));
            for (int i = 0; i < count; ++i) {
                const Word word = qFromLittleEndian<Word>(from + 4 * i);
                qToLittleEndian<Word>((word & rest) | Word(int(red[i])) << redAt
                                          | Word(int(green[i])) << greenAt
                                          | Word(int(blue[i])) << blueAt,
                                      to + 4 * i);
            }
        }
    });
}

/// Saturation counts in 1/1024.
constexpr qint32 kSaturationOne = 1024;

template <typename Value>
void SaturateRows(const cv::Mat& in, cv::Mat& out, ChannelOrder order, qint32 factor)
{
    constexpr qint32 kMost = Value(~Value(0));
    ForRows<Value>(in, out, [&](const Value* from, Value* to) {
        for (int x = 0; x < in.cols; ++x, from += 4, to += 4) {
            const qint32 grey =
                qint32(Intensity(from[order.red], from[order.green], from[order.blue]));
            const qint32 base = grey * (kSaturationOne - factor) + kSaturationOne / 2;
            for (int channel = 0; channel < 4; ++channel) {
                to[channel] = Value(std::clamp((from[channel] * factor + base) >> 10, 0, kMost));
            }
        }
    });
}

} // namespace

Bitmap Hue(const Bitmap& picture, const Region* region, qint32 angle)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    const qint32 turn = (angle % 36000 + 36000) % 36000;
    if (turn == 0 || from.Model() == ColourModel::Grey) {
        return from;
    }
    const ChannelOrder order = OrderOf(from.Pixels());
    const float sixths = float(turn) / 6000.0f;
    return WorkInBands(from, region, PixelForm::Full, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint) {
                           if (in.depth() == CV_16U) {
                               TurnHueRows<quint16>(in, out, order, sixths);
                           } else {
                               TurnHueRows<uchar>(in, out, order, sixths);
                           }
                       });
}

Bitmap Saturation(const Bitmap& picture, const Region* region, qint32 value)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    if (from.Model() == ColourModel::Grey) {
        return from;
    }
    const ChannelOrder order = OrderOf(from.Pixels());
    const double part = double(std::clamp(value, -kMostValue, kMostValue)) / kMostValue;
    const qint32 factor = qint32(std::lround((1 + part) * kSaturationOne));
    return WorkInBands(from, region, PixelForm::Full, FourthChannel::Kept,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint) {
                           if (in.depth() == CV_16U) {
                               SaturateRows<quint16>(in, out, order, factor);
                           } else {
                               SaturateRows<uchar>(in, out, order, factor);
                           }
                       });
}

Bitmap Grayscale(const Bitmap& picture, const Region* region, qint32 bits)
{
    NeedPicture(picture);
    if (bits != 8 && bits != 16) {
        throw Failure(kFailureGeneral, QStringLiteral("Grey has 8 or 16 bits, not %1.").arg(bits));
    }
    if (!region) {
        return WithGreyDepth(GreyOf(picture), bits);
    }
    const Bitmap from = InForm(picture, PixelForm::Full);
    if (from.Model() == ColourModel::Grey) {
        return from;
    }
    return WorkInBands(from, region, PixelForm::Full, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint) {
                           GreyBand(in, out, OrderOf(from.Pixels()));
                       });
}

Bitmap FillColor(const Bitmap& picture, const Region* region, QRgb colour)
{
    NeedPicture(picture);
    const Bitmap from = InFormFor(picture, colour);
    const cv::Scalar value = ScalarOf(from.Pixels(), colour);
    return WorkInBands(from, region, PixelForm::Full, FourthChannel::Written,
                       [&](const cv::Mat&, cv::Mat& out, QPoint) { out.setTo(value); });
}

} // namespace quillane::processing
