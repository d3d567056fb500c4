#include "imaging/processing/pixels/pixel_work.h"
#include "core/failure.h"
#include "imaging/limits.h"
#include "imaging/worker/picture_memory.h"
#include <algorithm>
#include <cstring>
#include <opencv2/core/utility.hpp>

namespace quillane::processing {

namespace {

/// Bytes of a band: a few fit into a core's own cache.
constexpr size_t kBandBytes = size_t(512) << 10;

bool HasPixelForm(const Bitmap& picture, PixelForm form)
{
    switch (picture.Model()) {
    case ColourModel::BlackWhite:
        return false;
    case ColourModel::Palette:
    case ColourModel::Cmyk:
        return form == PixelForm::Stored;
    case ColourModel::Grey:
        return form != PixelForm::Colour;
    default:
        return true;
    }
}

/// Whether the colours of a picture with a table are greys.
bool HasGreysOnly(const QImage& pixels)
{
    const QList<QRgb> colours = pixels.colorTable();
    return std::all_of(colours.begin(), colours.end(), [](QRgb colour) {
        return qRed(colour) == qGreen(colour) && qRed(colour) == qBlue(colour);
    });
}

QImage ConvertPixels(const QImage& pixels, QImage::Format format)
{
    QImage converted = pixels.convertToFormat(format);
    if (converted.isNull()) {
        FailForMemory();
    }
    return converted;
}

/// The rest of a task once the pixels are there.
void FinishChannels(const cv::Mat& in, cv::Mat& out, FourthChannel fourth)
{
    if (fourth == FourthChannel::Kept) {
        KeepFourthChannel(in, out);
    }
}

/// Writes the pixels of a region into a copy of the picture.
template <typename Fill>
Bitmap WorkInRegion(const Bitmap& from, const Region& region, const Fill& fill)
{
    const Region inside = region.ClippedTo(from.Pixels().size());
    if (inside.IsEmpty()) {
        return from;
    }
    const QRect bounds = inside.Bounds();
    const cv::Rect place(bounds.x(), bounds.y(), bounds.width(), bounds.height());
    QImage pixels = BlankLike(from.Pixels());
    CallLibrary([&] {
        const cv::Mat in = ReadView(from.Pixels());
        cv::Mat out = WriteView(pixels);
        ForBands(in.rows, BandRows(in), [&](int top, int bottom) {
            cv::Mat band = out.rowRange(top, bottom);
            in.rowRange(top, bottom).copyTo(band);
        });
        const cv::Mat part = in(place);
        cv::Mat result = out(place);
        if (inside.IsRectangle()) {
            fill(part, result);
            return;
        }
        cv::Mat apart(place.size(), in.type());
        fill(part, apart);
        apart.copyTo(result, ReadView(inside.Mask()));
    });
    return PictureLike(from, std::move(pixels), from.Model());
}

template <typename Fill>
Bitmap WorkAnywhere(const Bitmap& picture, const Region* region, PixelForm form, const Fill& fill)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, form);
    if (region) {
        return WorkInRegion(from, *region, fill);
    }
    QImage pixels = BlankLike(from.Pixels());
    CallLibrary([&] {
        cv::Mat out = WriteView(pixels);
        fill(ReadView(from.Pixels()), out);
    });
    return PictureLike(from, std::move(pixels), from.Model());
}

} // namespace

ChannelOrder OrderOf(const QImage& pixels)
{
    if (pixels.depth() == 64) {
        return {0, 1, 2};
    }
    // RGB32 is a number with blue in its low byte.
    return QSysInfo::ByteOrder == QSysInfo::LittleEndian ? ChannelOrder{2, 1, 0}
                                                         : ChannelOrder{1, 2, 3};
}

void NeedPicture(const Bitmap& picture)
{
    if (picture.IsNull()) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no picture to work on."));
    }
}

void FailForMemory()
{
    throw Failure(kFailureLimit,
                  QStringLiteral("There is not enough memory for the changed picture."));
}

Bitmap PictureLike(const Bitmap& from, QImage pixels, ColourModel model)
{
    if (pixels.isNull()) {
        FailForMemory();
    }
    const QImage& old = from.Pixels();
    pixels.setDotsPerMeterX(old.dotsPerMeterX());
    pixels.setDotsPerMeterY(old.dotsPerMeterY());
    Bitmap result(std::move(pixels), model, from.FileDepth());
    const auto grey = [](ColourModel one) {
        return one == ColourModel::Grey || one == ColourModel::BlackWhite;
    };
    if (grey(model) == grey(from.Model())
        && (model == ColourModel::Cmyk) == (from.Model() == ColourModel::Cmyk)) {
        result.SetIcc(from.Icc());
    }
    result.SetExact(false);
    result.SetPartial(from.IsPartial());
    return result;
}

Bitmap InForm(const Bitmap& picture, PixelForm form)
{
    if (HasPixelForm(picture, form)) {
        return picture;
    }
    const QImage& pixels = picture.Pixels();
    switch (picture.Model()) {
    case ColourModel::BlackWhite:
        if (form != PixelForm::Colour && HasGreysOnly(pixels)) {
            return PictureLike(picture, ConvertPixels(pixels, QImage::Format_Grayscale8),
                               ColourModel::Grey);
        }
        return PictureLike(picture, ConvertPixels(pixels, QImage::Format_RGB32), ColourModel::Rgb);
    case ColourModel::Palette:
        return PictureLike(
            picture,
            ConvertPixels(pixels,
                          pixels.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32),
            ColourModel::Rgb);
    case ColourModel::Cmyk:
        return PictureLike(picture, picture.ToDisplay(), ColourModel::Rgb);
    default:
        break;
    }
    // Grey whose own profile says what its values mean is brought to sRGB with it.
    if (picture.Icc().isEmpty() && pixels.depth() == 16) {
        return PictureLike(picture, ConvertPixels(pixels, QImage::Format_RGBX64), ColourModel::Rgb);
    }
    const QImage shown = picture.Icc().isEmpty() ? pixels : picture.ToDisplay();
    return PictureLike(picture, ConvertPixels(shown, QImage::Format_RGB32), ColourModel::Rgb);
}

QImage BlankPixels(QSize size, QImage::Format format)
{
    const qint64 count = qint64(size.width()) * size.height();
    const qint64 bits = QImage::toPixelFormat(format).bitsPerPixel();
    if (size.width() > limits::kMaxSide || size.height() > limits::kMaxSide
        || count > limits::kMaxPixels || count * bits / 8 > limits::kMaxPictureBytes) {
        throw Failure(kFailureLimit,
                      QStringLiteral("A picture of %1 x %2 pixels is more than can be held.")
                          .arg(size.width())
                          .arg(size.height()));
    }
    QImage pixels = worker::RecycledPicture(size.width(), size.height(), format);
    if (pixels.isNull()) {
        FailForMemory();
    }
    return pixels;
}

QImage BlankLike(const QImage& pixels)
{
    QImage blank = BlankPixels(pixels.size(), pixels.format());
    if (pixels.colorCount() > 0) {
        blank.setColorTable(pixels.colorTable());
    }
    return blank;
}

int MatType(const QImage& pixels)
{
    switch (pixels.depth()) {
    case 8:
        return CV_8UC1;
    case 16:
        return CV_16UC1;
    case 64:
        return CV_16UC4;
    default:
        return CV_8UC4;
    }
}

cv::Mat ReadView(const QImage& pixels)
{
    return cv::Mat(pixels.height(), pixels.width(), MatType(pixels),
                   const_cast<uchar*>(pixels.constBits()), size_t(pixels.bytesPerLine()));
}

cv::Mat WriteView(QImage& pixels)
{
    return cv::Mat(pixels.height(), pixels.width(), MatType(pixels), pixels.bits(),
                   size_t(pixels.bytesPerLine()));
}

void CallLibrary(const std::function<void()>& step)
{
    try {
        step();
    } catch (const cv::Exception& exception) {
        if (exception.code == cv::Error::StsNoMem) {
            FailForMemory();
        }
        throw Failure(kFailureGeneral,
                      QStringLiteral("The picture could not be changed: %1")
                          .arg(QString::fromStdString(exception.err)));
    }
}

void ForBands(int height, int rows, const std::function<void(int top, int bottom)>& work)
{
    const int step = std::max(rows, 1);
    const int bands = (height + step - 1) / step;
    cv::parallel_for_(cv::Range(0, bands), [&](const cv::Range& range) {
        for (int band = range.start; band < range.end; ++band) {
            work(band * step, std::min((band + 1) * step, height));
        }
    });
}

int BandRows(const cv::Mat& pixels)
{
    return int(std::clamp<size_t>(
        kBandBytes / std::max<size_t>(pixels.elemSize() * size_t(pixels.cols), 1), 16, 1024));
}

void KeepFourthChannel(const cv::Mat& in, cv::Mat& out)
{
    if (in.channels() == 4 && out.channels() == 4) {
        const int pairs[] = {3, 3};
        cv::mixChannels(&in, 1, &out, 1, pairs, 1);
    }
}

Bitmap WorkInBands(const Bitmap& picture, const Region* region, PixelForm form,
                   FourthChannel fourth, const BandWork& work, int margin)
{
    return WorkAnywhere(picture, region, form, [&](const cv::Mat& in, cv::Mat& out) {
        // Rows above and below are read again for each band: few of them to a band.
        ForBands(in.rows, std::max(BandRows(in), 8 * margin), [&](int top, int bottom) {
            const cv::Mat from = in.rowRange(top, bottom);
            cv::Mat to = out.rowRange(top, bottom);
            const uchar* const place = to.data;
            work(from, to, QPoint(0, top));
            CV_Assert(to.data == place);
            FinishChannels(from, to, fourth);
        });
    });
}

Bitmap WorkOnWhole(const Bitmap& picture, const Region* region, PixelForm form,
                   FourthChannel fourth, const WholeWork& work)
{
    return WorkAnywhere(picture, region, form, [&](const cv::Mat& in, cv::Mat& out) {
        const uchar* const place = out.data;
        work(in, out);
        CV_Assert(out.data == place);
        FinishChannels(in, out, fourth);
    });
}

} // namespace quillane::processing
