#include "imaging/processing/pixels/colour_pixels.h"
#include <opencv2/imgproc.hpp>

namespace quillane::processing {

namespace {

/// Pixels of four channels, the last alpha, laid on white.
template <typename Value> void LayOnWhite(const cv::Mat& in, cv::Mat& out)
{
    constexpr quint64 kMost = Value(~Value(0));
    for (int y = 0; y < in.rows; ++y) {
        const Value* from = in.ptr<Value>(y);
        Value* to = out.ptr<Value>(y);
        for (int x = 0; x < in.cols; ++x, from += 4, to += 4) {
            const quint64 alpha = from[3];
            for (int channel = 0; channel < 3; ++channel) {
                to[channel] =
                    Value((from[channel] * alpha + kMost * (kMost - alpha) + kMost / 2) / kMost);
            }
            to[3] = Value(kMost);
        }
    }
}

} // namespace

void GreyBand(const cv::Mat& in, cv::Mat& out, ChannelOrder order)
{
    const bool redFirst = order.red < order.blue;
    if (out.channels() == 1) {
        cv::cvtColor(in, out, redFirst ? cv::COLOR_RGBA2GRAY : cv::COLOR_BGRA2GRAY);
        return;
    }
    cv::Mat grey;
    cv::cvtColor(in, grey, redFirst ? cv::COLOR_RGBA2GRAY : cv::COLOR_BGRA2GRAY);
    SpreadGrey(grey, in, out);
}

void SpreadGrey(const cv::Mat& grey, const cv::Mat& in, cv::Mat& out)
{
    cv::cvtColor(grey, out, cv::COLOR_GRAY2BGRA);
    KeepFourthChannel(in, out);
}

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
        GreyBand(in, out, OrderOf(shown.Pixels())); // on all cores by itself
    });
    return PictureLike(from, std::move(grey), ColourModel::Grey);
}

Bitmap WithGreyDepth(const Bitmap& grey, qint32 bits)
{
    const int depth = grey.Pixels().depth();
    if (grey.Model() != ColourModel::Grey || depth == bits) {
        return grey;
    }
    QImage pixels = BlankPixels(
        grey.Pixels().size(), bits == 16 ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
    CallLibrary([&] {
        const cv::Mat in = ReadView(grey.Pixels());
        cv::Mat out = WriteView(pixels);
        ForBands(in.rows, BandRows(in), [&](int top, int bottom) {
            cv::Mat band = out.rowRange(top, bottom);
            in.rowRange(top, bottom).convertTo(band, band.type(), bits == 16 ? 257.0 : 1.0 / 257.0);
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
    QImage paper = BlankPixels(pixels.size(), deep ? QImage::Format_RGBX64 : QImage::Format_RGB32);
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

Bitmap InFormFor(const Bitmap& picture, QRgb colour)
{
    const bool grey = qRed(colour) == qGreen(colour) && qRed(colour) == qBlue(colour);
    return InForm(picture, grey ? PixelForm::Full : PixelForm::Colour);
}

cv::Scalar ScalarOf(const QImage& pixels, QRgb colour)
{
    const double scale = pixels.depth() == 16 || pixels.depth() == 64 ? 257 : 1;
    if (pixels.depth() < 32) {
        const double grey =
            Intensity(quint32(qRed(colour)), quint32(qGreen(colour)), quint32(qBlue(colour)));
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
