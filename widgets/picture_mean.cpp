#include "widgets/picture_rows.h"
#include "widgets/picture_source.h"
#include <QThread>
#include <algorithm>
#include <cmath>
#include <functional>
#include <new>
#include <thread>
#include <vector>

namespace quillane {

namespace {

/// Which pixels of the source a new one covers along one side, and how much of each.
struct MeanSpan {
    int first = 0;
    int count = 0;
    size_t weights = 0; ///< of the first one
};

struct MeanSide {
    std::vector<MeanSpan> spans;
    std::vector<float> weights; ///< those of a span add up to 1

    /// New pixels `from` to just before `to`; each covers `step` pixels of a source that has
    /// `extent` of them.
    MeanSide(int from, int to, double step, double extent)
    {
        spans.reserve(size_t(to - from));
        const int most = std::max(1, int(std::ceil(extent)));
        for (int i = from; i < to; ++i) {
            const double begin = std::min(i * step, extent);
            const double end = std::min((i + 1) * step, extent);
            MeanSpan span;
            span.first = std::min(int(begin), most - 1);
            span.weights = weights.size();
            double sum = 0;
            for (int at = span.first; at < most && (at < end || span.count == 0); ++at) {
                const double covered = std::min(end, at + 1.0) - std::max(begin, double(at));
                weights.push_back(float(std::max(covered, 0.0)));
                sum += std::max(covered, 0.0);
                ++span.count;
            }
            for (int k = 0; k < span.count; ++k) {
                float& weight = weights[span.weights + size_t(k)];
                weight = sum > 0 ? float(weight / sum) : 1.0f / float(span.count);
            }
            spans.push_back(span);
        }
    }
    int First() const { return spans.front().first; }
    int End() const { return spans.back().first + spans.back().count; }
};

void MeanAddRow(const uchar* __restrict row, float share, float* __restrict sum, size_t count)
{
    for (size_t i = 0; i < count; ++i) {
        sum[i] += share * float(row[i]);
    }
}

/// What is added before a mean is cut to a whole number, by its place: sixteen steps of an ordered
/// pattern, so that the mean of an area is right to a fraction of a step, however flat it is.
constexpr float kMeanRounding[4][4] = {
    {1 / 32.0f, 17 / 32.0f, 5 / 32.0f, 21 / 32.0f},
    {25 / 32.0f, 9 / 32.0f, 29 / 32.0f, 13 / 32.0f},
    {7 / 32.0f, 23 / 32.0f, 3 / 32.0f, 19 / 32.0f},
    {31 / 32.0f, 15 / 32.0f, 27 / 32.0f, 11 / 32.0f},
};

float MeanRounding(int x, int y)
{
    return kMeanRounding[y & 3][x & 3];
}

/// Walks over all new pixels. `out(y, x, mean)` gets the channels of each.
template <int kChannels, typename Out>
bool MeanWalk(PictureRows& rows, const MeanSide& across, const MeanSide& down, const StopFlag* stop,
              Out&& out)
{
    const int left = across.First();
    std::vector<float> sums(size_t(across.End() - left) * kChannels);
    for (int y = 0; y < int(down.spans.size()); ++y) {
        if (stop && stop->load(std::memory_order_relaxed)) {
            return false;
        }
        const MeanSpan& span = down.spans[size_t(y)];
        std::fill(sums.begin(), sums.end(), 0.0f);
        for (int i = 0; i < span.count; ++i) {
            const uchar* const row = rows.Row(span.first + i);
            if (!row) {
                return false;
            }
            MeanAddRow(row, down.weights[span.weights + size_t(i)], sums.data(), sums.size());
        }
        int x = 0;
        for (const MeanSpan& columns : across.spans) {
            const float* in = sums.data() + qsizetype(columns.first - left) * kChannels;
            const float* const weight = across.weights.data() + columns.weights;
            float mean[kChannels] = {};
            for (int i = 0; i < columns.count; ++i, in += kChannels) {
                for (int c = 0; c < kChannels; ++c) {
                    mean[c] += weight[i] * in[c];
                }
            }
            out(y, x++, mean);
        }
    }
    return true;
}

/// The new pixels for the screen.
bool MeanToDisplay(PictureRows& rows, const MeanSide& across, const MeanSide& down,
                   const StopFlag* stop, QImage& made)
{
    uchar* const bits = made.bits();
    const qsizetype line = made.bytesPerLine();
    if (rows.Channels() == 1) {
        return MeanWalk<1>(rows, across, down, stop, [&](int y, int x, const float* mean) {
            reinterpret_cast<QRgb*>(bits + y * line)[x] =
                rows.Colours()[size_t(std::min(int(mean[0] + MeanRounding(x, y)), 255))];
        });
    }
    return MeanWalk<4>(rows, across, down, stop, [&](int y, int x, const float* mean) {
        uchar* const pixel = bits + y * line + qsizetype(x) * 4;
        for (int c = 0; c < 4; ++c) {
            pixel[c] = uchar(std::min(int(mean[c] + MeanRounding(x, y)), 255));
        }
    });
}

/// The new pixels of one channel, not looked up.
bool MeanToBytes(PictureRows& rows, const MeanSide& across, const MeanSide& down,
                 const StopFlag* stop, QImage& made)
{
    uchar* const bits = made.bits();
    const qsizetype line = made.bytesPerLine();
    return MeanWalk<1>(rows, across, down, stop, [&](int y, int x, const float* mean) {
        bits[y * line + x] = uchar(std::min(int(mean[0] + MeanRounding(x, y)), 255));
    });
}

/// Works on the rows from 0 to just before `rows` in two bands, one of them on another thread,
/// where that pays. False when one of them says so.
bool InBands(int rows, const std::function<bool(int from, int to)>& work)
{
    constexpr int kPattern = 4;      // of MeanRounding; a band begins with it
    constexpr int kWorthABand = 200; // rows
    if (rows < 2 * kWorthABand || QThread::idealThreadCount() < 2) {
        return work(0, rows);
    }
    const int middle = rows / 2 / kPattern * kPattern;
    bool upper = false;
    std::thread other([&] {
        try {
            upper = work(0, middle);
        } catch (const std::bad_alloc&) {
            upper = false; // as if there were no memory for the result
        }
    });
    const bool lower = work(middle, rows);
    other.join();
    return upper && lower;
}

QImage::Format MeanFormat(const PictureRows& rows)
{
    return rows.HasAlpha() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
}

} // namespace

QImage MeanPart(const PictureSource& source, QSize shown, const QRect& part, const StopFlag* stop)
{
    if (source.IsEmpty() || part.isEmpty()) {
        return {};
    }
    const MeanSide across(part.left(), part.right() + 1, source.extent.width() / shown.width(),
                          source.extent.width());
    const MeanSide down(part.top(), part.bottom() + 1, source.extent.height() / shown.height(),
                        source.extent.height());
    PictureRows rows(source, across.First(), across.End());
    QImage made(part.size(), MeanFormat(rows));
    if (made.isNull() || !MeanToDisplay(rows, across, down, stop, made)) {
        return {};
    }
    return made;
}

PictureSource ReducedBy(int factor, const PictureSource& source, const StopFlag* stop)
{
    if (source.IsEmpty()) {
        return {};
    }
    PictureSource reduced;
    reduced.picture = source.picture;
    reduced.extent = source.extent / factor;
    const QSize size(int(std::ceil(reduced.extent.width())),
                     int(std::ceil(reduced.extent.height())));
    const MeanSide across(0, size.width(), factor, source.extent.width());
    const PictureRows kind(source, 0, across.End());
    const bool one = kind.Channels() == 1;
    const bool grey = source.bitmap.Pixels().format() == QImage::Format_Grayscale8 && one;
    QImage made(size,
                !one       ? MeanFormat(kind)
                    : grey ? QImage::Format_Grayscale8
                           : QImage::Format_Indexed8);
    if (made.isNull()) {
        return {};
    }
    uchar* const bits = made.bits();
    const bool whole = InBands(size.height(), [&](int from, int to) {
        const MeanSide down(from, to, factor, source.extent.height());
        PictureRows rows(source, 0, across.End());
        QImage band(bits + from * made.bytesPerLine(), size.width(), to - from, made.bytesPerLine(),
                    made.format());
        return one ? MeanToBytes(rows, across, down, stop, band)
                   : MeanToDisplay(rows, across, down, stop, band);
    });
    if (!whole) {
        return {};
    }
    if (one && !grey) {
        made.setColorTable(QList<QRgb>(kind.Colours().begin(), kind.Colours().end()));
        reduced.mixes = true;
    }
    reduced.bitmap = Bitmap(std::move(made),
                            grey      ? ColourModel::Grey
                                : one ? ColourModel::Palette
                                      : ColourModel::Rgb,
                            source.bitmap.FileDepth());
    return reduced;
}

} // namespace quillane
