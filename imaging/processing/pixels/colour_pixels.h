#pragma once
// Changes of colour model and depth that several operations need; for imaging/processing/
// alone.
#include "imaging/processing/pixels/pixel_work.h"

namespace quillane::processing {

/// The intensities of a picture as grey of 8 bits, or of 16 where it has 16 bits a channel.
Bitmap GreyOf(const Bitmap& picture);
/// A grey picture at 8 or 16 bits; any other as it is.
Bitmap WithGreyDepth(const Bitmap& grey, qint32 bits);
/// A picture with alpha as on white paper, without it; any other as it is.
Bitmap Opaque(const Bitmap& picture);

/// The intensities of pixels of four channels, into one channel or into three of four.
void GreyBand(const cv::Mat& in, cv::Mat& out, ChannelOrder order);
/// One channel into the first three of four; the fourth from `in`.
void SpreadGrey(const cv::Mat& grey, const cv::Mat& in, cv::Mat& out);

/// The picture in form Full where a grey colour is to be written into it, else in form Colour.
Bitmap InFormFor(const Bitmap& picture, QRgb colour);
/// The opaque colour as the values of a layout in form Full.
cv::Scalar ScalarOf(const QImage& pixels, QRgb colour);

} // namespace quillane::processing
