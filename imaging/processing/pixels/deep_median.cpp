#include "imaging/processing/pixels/deep_median.h"
#include <QtGlobal>
#include <algorithm>
#include <vector>

namespace quillane::processing {

namespace {

/// How often each value stands in the square, with sums of 256 values each so that the middle one
/// is found in few steps.
class DeepCounts {
public:
    DeepCounts() : mFine(65536, 0), mCoarse(256, 0) { }

    void Clear()
    {
        std::fill(mFine.begin(), mFine.end(), 0);
        std::fill(mCoarse.begin(), mCoarse.end(), 0);
    }
    void Add(quint16 value, int count)
    {
        mFine[value] += count;
        mCoarse[value >> 8] += count;
    }
    /// The value that has `below` others before it.
    quint16 At(int below) const
    {
        size_t part = 0;
        while (mCoarse[part] <= below) {
            below -= mCoarse[part++];
        }
        size_t value = part * 256;
        while (mFine[value] <= below) {
            below -= mFine[value++];
        }
        return quint16(value);
    }

private:
    std::vector<int> mFine, mCoarse;
};

} // namespace

void DeepMedian(const cv::Mat& in, cv::Mat& out, int size)
{
    const int channels = in.channels();
    const int around = size / 2;
    out.create(in.size(), in.type());
    DeepCounts counts;
    std::vector<const quint16*> rows(static_cast<size_t>(size));
    for (int y = 0; y < in.rows; ++y) {
        for (int i = 0; i < size; ++i) {
            rows[size_t(i)] = in.ptr<quint16>(std::clamp(y + i - around, 0, in.rows - 1));
        }
        quint16* to = out.ptr<quint16>(y);
        for (int channel = 0; channel < channels; ++channel) {
            const auto addColumn = [&](int x, int count) {
                const int at = std::clamp(x, 0, in.cols - 1) * channels + channel;
                for (const quint16* row : rows) {
                    counts.Add(row[at], count);
                }
            };
            counts.Clear();
            for (int x = -around; x <= around; ++x) {
                addColumn(x, 1);
            }
            for (int x = 0; x < in.cols; ++x) {
                to[x * channels + channel] = counts.At(size * size / 2);
                addColumn(x - around, -1);
                addColumn(x + around + 1, 1);
            }
        }
    }
}

} // namespace quillane::processing
