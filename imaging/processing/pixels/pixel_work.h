#pragma once
// What the operations on pixels share; for imaging/processing/ alone, since it brings the
// library's headers along. A view of a picture's pixels (cv::Mat) lives no longer than the call
// that was handed it: one that outlives an assignment would write into both copies.
#include "imaging/bitmap.h"
#include "imaging/region.h"
#include <QtEndian>
#include <functional>
#include <opencv2/core.hpp>

namespace quillane::processing {

/// Which layouts a work can be given.
enum class PixelForm : quint8 {
    Stored, ///< any but one bit a pixel: indexes and inks too
    Full,   ///< grey of 8 or 16 bits, RGB32, ARGB32, RGBX64 or RGBA64: values that can be mixed
    Colour, ///< Full without the grey ones
};
/// What becomes of the fourth channel of four, which is alpha or, in RGB32 and RGBX64, full.
enum class FourthChannel : quint8 { Written, Kept };

/// Where the colours stand among the channels of a layout of four.
struct ChannelOrder {
    int red, green, blue;
};
/// Of a picture in form Colour.
ChannelOrder OrderOf(const QImage& pixels);

/// Failure kFailureGeneral for no picture.
void NeedPicture(const Bitmap& picture);
/// A failure for pixels that could not be had.
[[noreturn]] void FailForMemory();
/// A picture like another, with other pixels: depth of the file, profile and missing parts stay,
/// but it is no longer what the file holds. A profile of another colour model is left out.
Bitmap PictureLike(const Bitmap& from, QImage pixels, ColourModel model);
/// The picture in a form. Black and white becomes grey of 8 bits, a palette the colours it names
/// (with alpha where one of them has any), CMYK RGB32 as the screen would show it.
Bitmap InForm(const Bitmap& picture, PixelForm form);
/// Pixels that are not set, of the size and layout of others.
QImage BlankLike(const QImage& pixels);
/// The same for another size or layout; Failure kFailureLimit beyond the limits.
QImage BlankPixels(QSize size, QImage::Format format);

/// The library's name for a layout of pixels.
int MatType(const QImage& pixels);
/// Views of pixels; the first is only read, though the library's type does not say so.
cv::Mat ReadView(const QImage& pixels);
cv::Mat WriteView(QImage& pixels);

/// Runs a step that calls the library; its exceptions become a Failure.
void CallLibrary(const std::function<void()>& step);

/// Runs `work` for bands of `rows` rows each (the last may be lower) on all cores. An exception
/// of a band comes out of this call.
void ForBands(int height, int rows, const std::function<void(int top, int bottom)>& work);
/// Rows of a band whose pixels stay in a core's cache while they are worked on.
int BandRows(const cv::Mat& pixels);

/// `in` and `out` are the same rows and columns of the picture and of the result. `in` is a part
/// of the whole picture, so a filter of the library sees the pixels around it. `at` is where they
/// begin: in the picture, or in the bounds of the region.
using BandWork = std::function<void(const cv::Mat& in, cv::Mat& out, QPoint at)>;
/// A new picture in a form, each band of which `work` has written; with a region (not null) only
/// the pixels in it, all others being those of the picture. A region that lies beside the picture
/// changes nothing. `margin`: rows that the work looks at above and below its band.
Bitmap WorkInBands(const Bitmap& picture, const Region* region, PixelForm form,
                   FourthChannel fourth, const BandWork& work, int margin = 0);
/// The same with all of the picture, or all of the region's bounds, in one call.
using WholeWork = std::function<void(const cv::Mat& in, cv::Mat& out)>;
Bitmap WorkOnWhole(const Bitmap& picture, const Region* region, PixelForm form,
                   FourthChannel fourth, const WholeWork& work);

/// Fourth channel of `out` from that of `in`; nothing for views of another number of channels.
void KeepFourthChannel(const cv::Mat& in, cv::Mat& out);

/// Intensity of a colour in 1/256: the weights of ITU-R BT.601, rounded so that they make 256.
inline constexpr quint32 kRedWeight = 77;
inline constexpr quint32 kGreenWeight = 150;
inline constexpr quint32 kBlueWeight = 29;
constexpr quint32 Intensity(quint32 red, quint32 green, quint32 blue)
{
    return (kRedWeight * red + kGreenWeight * green + kBlueWeight * blue + 128) >> 8;
}

} // namespace quillane::processing
