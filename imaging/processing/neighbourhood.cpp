#include "imaging/processing/neighbourhood.h"
#include "core/failure.h"
#include "imaging/processing/filters.h"
#include "imaging/processing/pixels/deep_median.h"
#include "imaging/processing/pixels/pixel_work.h"
#include "imaging/processing/tone.h"
#include <algorithm>
#include <array>
#include <opencv2/imgproc.hpp>

namespace quillane::processing {

namespace {

/// The widest square that the library's median takes with 16 bits a channel.
constexpr int kDeepMedianOfLibrary = 5;

[[noreturn]] void FailForFilter(qint32 code)
{
    throw Failure(kFailureGeneral, QStringLiteral("There is no filter of number %1.").arg(code));
}

/// The library takes what it is given as the whole picture here: more rows and columns around it
/// are handed over, and the middle is taken out.
void MedianBand(const cv::Mat& in, cv::Mat& out, int size)
{
    const int around = size / 2;
    cv::Mat wide = in;
    wide.adjustROI(around, around, around, around);
    cv::Size whole;
    cv::Point at;
    cv::Point atWide;
    in.locateROI(whole, at);
    wide.locateROI(whole, atWide);
    cv::Mat filtered;
    if (in.depth() == CV_16U && size > kDeepMedianOfLibrary) {
        DeepMedian(wide, filtered, size);
    } else {
        cv::medianBlur(wide, filtered, size);
    }
    filtered(cv::Rect(at - atWide, in.size())).copyTo(out);
}

Bitmap WithKernel(const Bitmap& picture, const Region* region, const cv::Mat& kernel, double offset)
{
    return WorkInBands(
        picture, region, PixelForm::Full, FourthChannel::Kept,
        [&](const cv::Mat& in, cv::Mat& out, QPoint) {
            const double middle = in.depth() == CV_16U ? 257 * offset : offset;
            cv::filter2D(in, out, -1, kernel, cv::Point(-1, -1), middle);
        },
        1);
}

/// The three weights down and the three across whose products are the kernel, where there are.
struct KernelParts {
    std::array<float, 3> down{}, across{};
    bool found = false;
};

KernelParts PartsOf(const SpatialKernel& kernel)
{
    KernelParts parts;
    const int* const rows[] = {kernel.weights, kernel.weights + 3, kernel.weights + 6};
    for (const int* row : rows) {
        // Each row a multiple of this one, told by a weight of one that it has.
        const auto one = std::find_if(row, row + 3, [](int weight) { return qAbs(weight) == 1; });
        if (one == row + 3) {
            continue;
        }
        const auto column = one - row;
        std::copy_n(row, 3, parts.across.begin());
        for (size_t i = 0; i < 3; ++i) {
            parts.down[i] = float(rows[i][column] * *one);
        }
        break;
    }
    parts.found = true;
    for (size_t i = 0; i < 9; ++i) {
        parts.found =
            parts.found && parts.down[i / 3] * parts.across[i % 3] == float(kernel.weights[i]);
    }
    return parts;
}

/// The result of a kernel with its sign, in a wider type.
void ApplyKernel(const cv::Mat& in, cv::Mat& wide, const SpatialKernel& kernel,
                 const KernelParts& parts)
{
    const int depth = in.depth() == CV_16U ? CV_32F : CV_16S;
    if (parts.found) {
        cv::sepFilter2D(in, wide, depth, parts.across, parts.down);
        return;
    }
    const cv::Mat weights(3, 3, CV_32S, const_cast<int*>(kernel.weights));
    cv::Mat numbers;
    weights.convertTo(numbers, CV_32F);
    cv::filter2D(in, wide, depth, numbers);
}

template <typename Value, int Channels>
void MosaicRows(const cv::Mat& in, cv::Mat& out, int top, int bottom, int size)
{
    const int colours = Channels == 4 ? 3 : 1;
    const int cells = (in.cols + size - 1) / size;
    std::vector<quint64> sums(size_t(cells) * Channels, 0);
    for (int y = top; y < bottom; ++y) {
        const Value* from = in.ptr<Value>(y);
        for (int cell = 0; cell < cells; ++cell) {
            const int end = std::min((cell + 1) * size, in.cols);
            quint64 sum[Channels] = {};
            for (int x = cell * size; x < end; ++x, from += Channels) {
                for (int channel = 0; channel < Channels; ++channel) {
                    sum[channel] += from[channel];
                }
            }
            for (int channel = 0; channel < Channels; ++channel) {
                sums[size_t(cell) * Channels + size_t(channel)] += sum[channel];
            }
        }
    }
    for (int y = top; y < bottom; ++y) {
        const Value* from = in.ptr<Value>(y);
        Value* to = out.ptr<Value>(y);
        for (int cell = 0; cell < cells; ++cell) {
            const int left = cell * size;
            const int end = std::min(left + size, in.cols);
            const quint64 count = quint64(end - left) * quint64(bottom - top);
            Value mean[Channels] = {};
            for (int channel = 0; channel < colours; ++channel) {
                mean[channel] =
                    Value((sums[size_t(cell) * Channels + size_t(channel)] + count / 2) / count);
            }
            for (int x = left; x < end; ++x, from += Channels, to += Channels) {
                if (Channels == 4) {
                    mean[Channels - 1] = from[Channels - 1];
                }
                std::copy_n(mean, Channels, to);
            }
        }
    }
}

} // namespace

Bitmap Average(const Bitmap& picture, const Region* region, qint32 size)
{
    NeedPicture(picture);
    const int side = std::clamp(size, 0, kMostNeighbours);
    if (side <= 1) {
        return InForm(picture, PixelForm::Full);
    }
    return WorkInBands(
        picture, region, PixelForm::Full, FourthChannel::Kept,
        [&](const cv::Mat& in, cv::Mat& out, QPoint) { cv::blur(in, out, cv::Size(side, side)); },
        side / 2);
}

Bitmap Median(const Bitmap& picture, const Region* region, qint32 size)
{
    NeedPicture(picture);
    const int side = std::clamp(size, 0, kMostNeighbours) | 1;
    if (side <= 1) {
        return InForm(picture, PixelForm::Full);
    }
    return WorkInBands(
        picture, region, PixelForm::Full, FourthChannel::Kept,
        [&](const cv::Mat& in, cv::Mat& out, QPoint) { MedianBand(in, out, side); }, side / 2);
}

Bitmap Sharpen(const Bitmap& picture, const Region* region, qint32 value)
{
    const float part = float(std::clamp(value, -kMostValue, kMostValue)) / float(kMostValue);
    const float neighbour = part >= 0 ? -part : -part / 9;
    cv::Mat kernel(3, 3, CV_32F, cv::Scalar(double(neighbour)));
    kernel.at<float>(1, 1) = 1 - 8 * neighbour;
    return WithKernel(picture, region, kernel, 0);
}

Bitmap Emboss(const Bitmap& picture, const Region* region, qint32 direction, qint32 depth)
{
    // Around the pixel clockwise from the upper left; the light side and its two neighbours add.
    constexpr int kRound[] = {0, 1, 2, 5, 8, 7, 6, 3};
    const float strength = float(std::clamp(depth, 0, kMostValue)) / float(kMostValue);
    const int light = 1 + std::clamp(direction, 0, 7);
    cv::Mat kernel = cv::Mat::zeros(3, 3, CV_32F);
    for (const int step : {-1, 0, 1}) {
        kernel.at<float>(kRound[(light + step) % 8] / 3, kRound[(light + step) % 8] % 3) =
            -strength;
        kernel.at<float>(kRound[(light + step + 4) % 8] / 3, kRound[(light + step + 4) % 8] % 3) =
            strength;
    }
    return WithKernel(picture, region, kernel, 128);
}

Bitmap SpatialFilter(const Bitmap& picture, const Region* region, qint32 code)
{
    const SpatialKernel* const kernel = FindSpatialKernel(code);
    if (!kernel) {
        FailForFilter(code);
    }
    const KernelParts parts = PartsOf(*kernel);
    return WorkInBands(
        picture, region, PixelForm::Full, FourthChannel::Kept,
        [&](const cv::Mat& in, cv::Mat& out, QPoint) {
            cv::Mat wide;
            ApplyKernel(in, wide, *kernel, parts);
            if (kernel->bright) {
                wide.convertTo(out, out.type());
            } else if (in.depth() == CV_8U) {
                cv::convertScaleAbs(wide, out);
            } else {
                wide = cv::abs(wide);
                wide.convertTo(out, out.type());
            }
        },
        1);
}

Bitmap BinaryFilter(const Bitmap& picture, const Region* region, qint32 code)
{
    const BinaryKernel* const kernel = FindBinaryKernel(code);
    if (!kernel) {
        FailForFilter(code);
    }
    const cv::Mat members(3, 3, CV_8UC1, const_cast<quint8*>(kernel->members));
    return WorkInBands(
        picture, region, PixelForm::Full, FourthChannel::Kept,
        [&](const cv::Mat& in, cv::Mat& out, QPoint) {
            if (kernel->family == FilterFamily::Erosion) {
                cv::erode(in, out, members);
            } else {
                cv::dilate(in, out, members);
            }
        },
        1);
}

Bitmap Mosaic(const Bitmap& picture, const Region* region, qint32 size)
{
    NeedPicture(picture);
    if (size <= 1) {
        return InForm(picture, PixelForm::Full);
    }
    return WorkOnWhole(picture, region, PixelForm::Full, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out) {
                           const int side = std::min(size, std::max(in.cols, in.rows));
                           ForBands(in.rows, side, [&](int top, int bottom) {
                               switch (in.type()) {
                               case CV_8UC1:
                                   return MosaicRows<uchar, 1>(in, out, top, bottom, side);
                               case CV_16UC1:
                                   return MosaicRows<quint16, 1>(in, out, top, bottom, side);
                               case CV_16UC4:
                                   return MosaicRows<quint16, 4>(in, out, top, bottom, side);
                               default:
                                   return MosaicRows<uchar, 4>(in, out, top, bottom, side);
                               }
                           });
                       });
}

} // namespace quillane::processing
