#include "imaging/processing/colour.h"
#include "core/failure.h"
#include "imaging/processing/colour_pixels.h"
#include "imaging/processing/levels.h"
#include "imaging/processing/tone.h"
#include <algorithm>
#include <cmath>

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

template <typename Value>
void TurnHueRows(const cv::Mat& in, cv::Mat& out, ChannelOrder order, float sixths)
{
    constexpr float kMost = float(Value(~Value(0)));
    float red[kHueRun];
    float green[kHueRun];
    float blue[kHueRun];
    ForRows<Value>(in, out, [&](const Value* from, Value* to) {
        for (int left = 0; left < in.cols; left += kHueRun, from += 4 * kHueRun,
                 to += 4 * kHueRun) {
            const int count = std::min(kHueRun, in.cols - left);
            for (int i = 0; i < count; ++i) {
                red[i] = from[4 * i + order.red];
                green[i] = from[4 * i + order.green];
                blue[i] = from[4 * i + order.blue];
            }
            TurnHues(red, green, blue, count, sixths, kMost);
            for (int i = 0; i < count; ++i) {
                to[4 * i + 3] = from[4 * i + 3];
                to[4 * i + order.red] = Value(red[i]);
                to[4 * i + order.green] = Value(green[i]);
                to[4 * i + order.blue] = Value(blue[i]);
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
                to[channel] =
                    Value(std::clamp((from[channel] * factor + base) >> 10, 0, kMost));
            }
        }
    });
}

template <typename Value>
void GreyRows(const cv::Mat& in, cv::Mat& out, ChannelOrder order)
{
    for (int y = 0; y < in.rows; ++y) {
        const Value* from = in.ptr<Value>(y);
        Value* to = out.ptr<Value>(y);
        if (out.channels() == 4) {
            for (int x = 0; x < in.cols; ++x, from += 4, to += 4) {
                to[0] = to[1] = to[2] = Value(
                    Intensity(from[order.red], from[order.green], from[order.blue]));
                to[3] = from[3];
            }
            continue;
        }
        for (int x = 0; x < in.cols; ++x, from += 4) {
            to[x] = Value(Intensity(from[order.red], from[order.green], from[order.blue]));
        }
    }
}

void GreyBand(const cv::Mat& in, cv::Mat& out, ChannelOrder order)
{
    if (in.depth() == CV_16U) {
        GreyRows<quint16>(in, out, order);
    } else {
        GreyRows<uchar>(in, out, order);
    }
}

} // namespace

Bitmap GreyOf(const Bitmap& picture)
{
    NeedPicture(picture);
    const Bitmap from = InForm(Opaque(picture), PixelForm::Full);
    if (from.Model() == ColourModel::Grey) {
        return from;
    }
    // Grey has no place for a profile of colours: one that is there says what is grey.
    Bitmap shown = from;
    if (!from.Icc().isEmpty() && from.Pixels().depth() == 32) {
        shown = PictureLike(from, from.ToDisplay(), ColourModel::Rgb);
    }
    const bool deep = shown.Pixels().depth() == 64;
    QImage grey = BlankPixels(shown.Pixels().size(),
                              deep ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
    CallLibrary([&] {
        const cv::Mat in = ReadView(shown.Pixels());
        cv::Mat out = WriteView(grey);
        ForBands(in.rows, BandRows(in), [&](int top, int bottom) {
            cv::Mat band = out.rowRange(top, bottom);
            GreyBand(in.rowRange(top, bottom), band, OrderOf(shown.Pixels()));
        });
    });
    return PictureLike(from, std::move(grey), ColourModel::Grey);
}

Bitmap WithGreyDepth(const Bitmap& grey, qint32 bits)
{
    const int depth = grey.Pixels().depth();
    if (grey.Model() != ColourModel::Grey || depth == bits) {
        return grey;
    }
    QImage pixels = BlankPixels(grey.Pixels().size(),
                                bits == 16 ? QImage::Format_Grayscale16
                                           : QImage::Format_Grayscale8);
    CallLibrary([&] {
        const cv::Mat in = ReadView(grey.Pixels());
        cv::Mat out = WriteView(pixels);
        ForBands(in.rows, BandRows(in), [&](int top, int bottom) {
            cv::Mat band = out.rowRange(top, bottom);
            in.rowRange(top, bottom)
                .convertTo(band, band.type(), bits == 16 ? 257.0 : 1.0 / 257.0);
        });
    });
    return PictureLike(grey, std::move(pixels), ColourModel::Grey);
}

Bitmap Opaque(const Bitmap& picture)
{
    const QImage& pixels = picture.Pixels();
    if (picture.Model() == ColourModel::Cmyk || !pixels.hasAlphaChannel()) {
        return picture;
    }
    const Bitmap from = InForm(picture, PixelForm::Full);
    const bool deep = from.Pixels().depth() == 64;
    QImage paper = BlankPixels(pixels.size(),
                               deep ? QImage::Format_RGBX64 : QImage::Format_RGB32);
    CallLibrary([&] {
        const cv::Mat in = ReadView(from.Pixels());
        cv::Mat out = WriteView(paper);
        ForBands(in.rows, BandRows(in), [&](int top, int bottom) {
            cv::Mat band = out.rowRange(top, bottom);
            const cv::Mat part = in.rowRange(top, bottom);
            if (deep) {
                LayOnWhite<quint16>(part, band);
            } else {
                LayOnWhite<uchar>(part, band);
            }
        });
    });
    return PictureLike(from, std::move(paper), ColourModel::Rgb);
}

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
        throw Failure(kFailureGeneral,
                      QStringLiteral("Grey has 8 or 16 bits, not %1.").arg(bits));
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

Bitmap InFormFor(const Bitmap& picture, QRgb colour)
{
    const bool grey = qRed(colour) == qGreen(colour) && qRed(colour) == qBlue(colour);
    return InForm(picture, grey ? PixelForm::Full : PixelForm::Colour);
}

cv::Scalar ScalarOf(const QImage& pixels, QRgb colour)
{
    const double scale = pixels.depth() == 16 || pixels.depth() == 64 ? 257 : 1;
    if (pixels.depth() < 32) {
        const double grey = Intensity(quint32(qRed(colour)), quint32(qGreen(colour)),
                                      quint32(qBlue(colour)));
        return cv::Scalar::all(grey * scale);
    }
    const ChannelOrder order = OrderOf(pixels);
    cv::Scalar value = cv::Scalar::all(255 * scale);
    value[order.red] = qRed(colour) * scale;
    value[order.green] = qGreen(colour) * scale;
    value[order.blue] = qBlue(colour) * scale;
    return value;
}

} // namespace quillane::processing
