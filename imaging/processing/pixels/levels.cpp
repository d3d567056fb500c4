#include "imaging/processing/pixels/levels.h"
#include "imaging/processing/pixels/colour_pixels.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>

namespace quillane::processing {

namespace {

void LevelsOfGrey8(const cv::Mat& in, cv::Mat& out, const LevelTable& table)
{
    std::array<uchar, 256> narrow{};
    std::copy_n(table.begin(), narrow.size(), narrow.begin());
    ForRows<uchar>(in, out, [&](const uchar* from, uchar* to) {
        for (int x = 0; x < in.cols; ++x) {
            to[x] = narrow[from[x]];
        }
    });
}

void LevelsOfGrey16(const cv::Mat& in, cv::Mat& out, const LevelTable& table)
{
    ForRows<quint16>(in, out, [&](const quint16* from, quint16* to) {
        for (int x = 0; x < in.cols; ++x) {
            to[x] = table[from[x]];
        }
    });
}

/// Whole pixels at a time: three tables whose entries stand where they belong.
void LevelsOfColour8(const cv::Mat& in, cv::Mat& out, const LevelTable& table)
{
    std::array<quint32, 256> red{};
    std::array<quint32, 256> green{};
    std::array<quint32, 256> blue{};
    for (size_t i = 0; i < blue.size(); ++i) {
        blue[i] = table[i];
        green[i] = blue[i] << 8;
        red[i] = blue[i] << 16;
    }
    for (int y = 0; y < in.rows; ++y) {
        const auto* from = reinterpret_cast<const quint32*>(in.ptr(y));
        auto* to = reinterpret_cast<quint32*>(out.ptr(y));
        for (int x = 0; x < in.cols; ++x) {
            const quint32 pixel = from[x];
            to[x] = (pixel & 0xff000000u) | red[(pixel >> 16) & 0xff] | green[(pixel >> 8) & 0xff]
                | blue[pixel & 0xff];
        }
    }
}

void LevelsOfColour16(const cv::Mat& in, cv::Mat& out, const LevelTable& table)
{
    ForRows<quint16>(in, out, [&](const quint16* from, quint16* to) {
        for (int x = 0; x < in.cols; ++x, from += 4, to += 4) {
            to[0] = table[from[0]];
            to[1] = table[from[1]];
            to[2] = table[from[2]];
            to[3] = from[3];
        }
    });
}

using LevelBins = std::array<std::vector<quint32>, 3>;

template <typename Value>
void CountGrey(const cv::Mat& in, const cv::Mat& mask, std::vector<quint32>& bins)
{
    // Neighbours are often alike: counted in turns, one count need not wait for the other.
    std::vector<quint32> others(bins.size(), 0);
    for (int y = 0; y < in.rows; ++y) {
        const Value* from = in.ptr<Value>(y);
        if (!mask.empty()) {
            const uchar* inside = mask.ptr(y);
            for (int x = 0; x < in.cols; ++x) {
                bins[from[x]] += inside[x] ? 1 : 0;
            }
            continue;
        }
        int x = 0;
        for (; x + 1 < in.cols; x += 2) {
            ++bins[from[x]];
            ++others[from[x + 1]];
        }
        if (x < in.cols) {
            ++bins[from[x]];
        }
    }
    for (size_t i = 0; i < bins.size(); ++i) {
        bins[i] += others[i];
    }
}

template <typename Value>
void CountColour(const cv::Mat& in, const cv::Mat& mask, ChannelOrder order, LevelBins& bins)
{
    for (int y = 0; y < in.rows; ++y) {
        const Value* from = in.ptr<Value>(y);
        const uchar* inside = mask.empty() ? nullptr : mask.ptr(y);
        for (int x = 0; x < in.cols; ++x, from += 4) {
            if (!inside || inside[x]) {
                ++bins[0][from[order.red]];
                ++bins[1][from[order.green]];
                ++bins[2][from[order.blue]];
            }
        }
    }
}

/// The intensities of some rows at a time, counted while they are in the cache.
template <typename Value>
void CountIntensity(const cv::Mat& in, const cv::Mat& mask, ChannelOrder order,
                    std::vector<quint32>& bins)
{
    const int rows = BandRows(in);
    cv::Mat grey(std::min(rows, in.rows), in.cols, CV_MAKETYPE(in.depth(), 1));
    for (int top = 0; top < in.rows; top += rows) {
        const int bottom = std::min(top + rows, in.rows);
        cv::Mat band = grey.rowRange(0, bottom - top);
        GreyBand(in.rowRange(top, bottom), band, order);
        CountGrey<Value>(band, mask.empty() ? mask : mask.rowRange(top, bottom), bins);
    }
}

void AddBins(std::vector<qint64>& sums, const std::vector<quint32>& bins)
{
    for (size_t i = 0; i < bins.size(); ++i) {
        sums[i] += bins[i];
    }
}

} // namespace

int LevelsOf(const cv::Mat& pixels)
{
    return pixels.depth() == CV_16U ? 65536 : 256;
}

LevelTable TableOf(int levels, const std::function<double(double)>& curve)
{
    LevelTable table(static_cast<size_t>(levels));
    const double most = levels - 1;
    for (int i = 0; i < levels; ++i) {
        table[size_t(i)] = quint16(std::lround(std::clamp(curve(i / most), 0.0, 1.0) * most));
    }
    return table;
}

double LevelCounts::Mean() const
{
    double sum = 0;
    for (size_t i = 0; i < intensity.size(); ++i) {
        sum += double(i) * double(intensity[i]);
    }
    return pixels == 0 ? 0 : sum / double(pixels) / double(intensity.size() - 1);
}

LevelCounts CountLevels(const Bitmap& picture, const Region* region, CountedLevels wanted)
{
    const QImage& pixels = picture.Pixels();
    const Region part = region
        ? region->ClippedTo(pixels.size())
        : Region::Rectangle(pixels.size(), 0, 0, pixels.width(), pixels.height());
    LevelCounts counts;
    const size_t levels = pixels.depth() == 16 || pixels.depth() == 64 ? 65536 : 256;
    const bool grey = picture.Model() == ColourModel::Grey;
    const size_t kinds = grey || wanted == CountedLevels::Intensity ? 1 : 3;
    std::vector<qint64>* const sums[3] = {kinds == 1 ? &counts.intensity : &counts.channels[0],
                                          &counts.channels[1], &counts.channels[2]};
    for (size_t i = 0; i < kinds; ++i) {
        sums[i]->assign(levels, 0);
    }
    if (!part.IsEmpty()) {
        std::mutex mutex;
        CallLibrary([&] {
            const QRect bounds = part.Bounds();
            const cv::Mat in =
                ReadView(pixels)(cv::Rect(bounds.x(), bounds.y(), bounds.width(), bounds.height()));
            const cv::Mat mask = part.IsRectangle() ? cv::Mat() : ReadView(part.Mask());
            // Few bands: each fills tables of its own.
            ForBands(in.rows, std::max(64, in.rows / 16), [&](int top, int bottom) {
                LevelBins bins;
                for (size_t i = 0; i < kinds; ++i) {
                    bins[i].assign(levels, 0);
                }
                const cv::Mat band = in.rowRange(top, bottom);
                const cv::Mat inside = mask.empty() ? mask : mask.rowRange(top, bottom);
                const bool deep = levels != 256;
                const ChannelOrder order = OrderOf(pixels);
                if (grey) {
                    deep ? CountGrey<quint16>(band, inside, bins[0])
                         : CountGrey<uchar>(band, inside, bins[0]);
                } else if (kinds == 1) {
                    deep ? CountIntensity<quint16>(band, inside, order, bins[0])
                         : CountIntensity<uchar>(band, inside, order, bins[0]);
                } else {
                    deep ? CountColour<quint16>(band, inside, order, bins)
                         : CountColour<uchar>(band, inside, order, bins);
                }
                const std::lock_guard lock(mutex);
                for (size_t i = 0; i < kinds; ++i) {
                    AddBins(*sums[i], bins[i]);
                }
            });
        });
    }
    for (const qint64 count : *sums[0]) {
        counts.pixels += count;
    }
    if (grey && wanted == CountedLevels::Channels) {
        counts.channels[0] = counts.channels[1] = counts.channels[2] = counts.intensity;
    }
    return counts;
}

Bitmap WithLevels(const Bitmap& picture, const Region* region, const LevelTable& table)
{
    return WorkInBands(picture, region, PixelForm::Full, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint) {
                           switch (in.type()) {
                           case CV_8UC1:
                               return LevelsOfGrey8(in, out, table);
                           case CV_16UC1:
                               return LevelsOfGrey16(in, out, table);
                           case CV_16UC4:
                               return LevelsOfColour16(in, out, table);
                           default:
                               return LevelsOfColour8(in, out, table);
                           }
                       });
}

} // namespace quillane::processing
