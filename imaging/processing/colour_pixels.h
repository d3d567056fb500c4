#pragma once
// Changes of colour model and depth that several operations need; for the files of this folder
// alone.
#include "imaging/processing/pixel_work.h"

namespace quillane::processing {

/// The intensities of a picture as grey of 8 bits, or of 16 where it has 16 bits a channel.
Bitmap GreyOf(const Bitmap& picture);
/// A grey picture at 8 or 16 bits; any other as it is.
Bitmap WithGreyDepth(const Bitmap& grey, qint32 bits);
/// A picture with alpha as on white paper, without it; any other as it is.
Bitmap Opaque(const Bitmap& picture);

/// The picture in form Full where a grey colour is to be written into it, else in form Colour.
Bitmap InFormFor(const Bitmap& picture, QRgb colour);
/// The opaque colour as the values of a layout in form Full.
cv::Scalar ScalarOf(const QImage& pixels, QRgb colour);

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
                to[channel] = Value(
                    (from[channel] * alpha + kMost * (kMost - alpha) + kMost / 2) / kMost);
            }
            to[3] = Value(kMost);
        }
    }
}

} // namespace quillane::processing
