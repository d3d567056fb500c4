#include "imaging/thumbs/area_shrink.h"

#include <algorithm>
#include <vector>

namespace quillane {

namespace {

constexpr int kAreaChannels = 4;

/// Which old pixels a new one covers along one side, and how much of each.
struct AreaSpan {
    int first = 0;
    int count = 0;
    size_t weights = 0; ///< of the first one
};

struct AreaSide {
    std::vector<AreaSpan> spans;
    std::vector<float> weights; ///< those of a span add up to 1

    AreaSide(int from, int to)
    {
        spans.reserve(size_t(to));
        const double step = double(from) / to;
        for (int i = 0; i < to; ++i) {
            const double begin = i * step;
            const double end = i + 1 == to ? from : (i + 1) * step;
            AreaSpan span;
            span.first = std::min(int(begin), from - 1);
            span.weights = weights.size();
            for (int at = span.first; at < from && (at < end || span.count == 0); ++at) {
                const double covered = std::min(end, at + 1.0) - std::max(begin, double(at));
                weights.push_back(float(std::max(covered, 0.0) / (end - begin)));
                ++span.count;
            }
            spans.push_back(span);
        }
    }
};

/// Adds a share of an old row to the sums of a new one.
void AreaAddRow(const uchar* row, float share, std::vector<float>& sums)
{
    float* const sum = sums.data();
    const size_t count = sums.size();
    for (size_t i = 0; i < count; ++i) {
        sum[i] += share * float(row[i]);
    }
}

/// The sums of a new row, shrunk across, as pixels.
void AreaFinishRow(const std::vector<float>& sums, const AreaSide& across, uchar* out)
{
    for (const AreaSpan& span : across.spans) {
        const float* in = sums.data() + qsizetype(span.first) * kAreaChannels;
        const float* weight = across.weights.data() + span.weights;
        float mean[kAreaChannels] = {0.5f, 0.5f, 0.5f, 0.5f};
        for (int i = 0; i < span.count; ++i, in += kAreaChannels) {
            for (int c = 0; c < kAreaChannels; ++c) {
                mean[c] += weight[i] * in[c];
            }
        }
        for (int c = 0; c < kAreaChannels; ++c) {
            *out++ = uchar(std::min(int(mean[c]), 255));
        }
    }
}

} // namespace

QImage ShrinkByArea(const QImage& pixels, QSize size)
{
    if (pixels.size() == size || pixels.isNull() || pixels.depth() != 8 * kAreaChannels) {
        return pixels;
    }
    QImage shrunk(size, pixels.format());
    if (shrunk.isNull()) {
        return {};
    }
    const AreaSide across(pixels.width(), size.width());
    const AreaSide down(pixels.height(), size.height());
    std::vector<float> sums(size_t(pixels.width()) * kAreaChannels);
    for (int y = 0; y < size.height(); ++y) {
        const AreaSpan& span = down.spans[size_t(y)];
        std::fill(sums.begin(), sums.end(), 0.0f);
        for (int i = 0; i < span.count; ++i) {
            AreaAddRow(pixels.constScanLine(span.first + i), down.weights[span.weights + size_t(i)],
                       sums);
        }
        AreaFinishRow(sums, across, shrunk.scanLine(y));
    }
    return shrunk;
}

} // namespace quillane
