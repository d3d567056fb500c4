#include "imaging/processing/noise.h"
#include "imaging/processing/pixels/levels.h"
#include "imaging/processing/tone.h"
#include <algorithm>
#include <array>
#include <cmath>

namespace quillane::processing {

namespace {

/// Random numbers by a xorshift generator (Marsaglia, shifts 13, 17 and 5).
class NoiseSource {
public:
    NoiseSource(quint32 seed, int row)
        // Rows next to one another start far apart; never at 0, where the generator stays.
        : mState((seed ^ (quint32(row) * 0x9e3779b9u)) * 0x85ebca6bu | 1u)
    {
        Next();
        Next();
    }
    quint32 Next()
    {
        mState ^= mState << 13;
        mState ^= mState >> 17;
        mState ^= mState << 5;
        return mState;
    }

private:
    quint32 mState;
};

/// Noise by ten of the bits of a random number: so one number serves the colours of a pixel.
constexpr quint32 kNoiseSteps = 1024;
using NoiseTable = std::array<qint32, kNoiseSteps>;

NoiseTable NoiseTableOf(double range, double most)
{
    NoiseTable table{};
    for (size_t i = 0; i < table.size(); ++i) {
        const double place = double(i) * 2 / (kNoiseSteps - 1) - 1;
        table[i] = qint32(std::lround(place * range * most));
    }
    return table;
}

template <typename Value>
void NoiseRows(const cv::Mat& in, cv::Mat& out, int firstRow, const NoiseTable& table, quint32 seed,
               const std::array<bool, 3>& wanted)
{
    constexpr qint32 kMost = Value(~Value(0));
    // A channel without noise reads a table of zeros.
    static constexpr NoiseTable kSilence{};
    const NoiseTable* const tables[] = {wanted[0] ? &table : &kSilence,
                                        wanted[1] ? &table : &kSilence,
                                        wanted[2] ? &table : &kSilence};
    const int channels = in.channels();
    for (int y = 0; y < in.rows; ++y) {
        NoiseSource source(seed, firstRow + y);
        const Value* from = in.ptr<Value>(y);
        Value* to = out.ptr<Value>(y);
        const auto noisy = [&](qint32 value, const NoiseTable& noise, quint32 random) {
            return Value(std::clamp(value + noise[random % kNoiseSteps], 0, kMost));
        };
        if (channels == 1) {
            for (int x = 0; x < in.cols; ++x) {
                to[x] = noisy(from[x], table, source.Next() >> 16);
            }
            continue;
        }
        for (int x = 0; x < in.cols; ++x, from += 4, to += 4) {
            const quint32 random = source.Next();
            to[0] = noisy(from[0], *tables[0], random);
            to[1] = noisy(from[1], *tables[1], random >> 11);
            to[2] = noisy(from[2], *tables[2], random >> 22);
            to[3] = from[3];
        }
    }
}

} // namespace

Bitmap AddNoise(const Bitmap& picture, const Region* region, qint32 range, NoiseChannel channel,
                quint32 seed)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    std::array<bool, 3> wanted = {true, true, true};
    if (from.Model() != ColourModel::Grey && channel != NoiseChannel::All) {
        const ChannelOrder order = OrderOf(from.Pixels());
        wanted = {};
        wanted[size_t(channel == NoiseChannel::Red         ? order.red
                          : channel == NoiseChannel::Green ? order.green
                                                           : order.blue)] = true;
    }
    const double part = double(std::clamp(range, 0, kMostValue)) / kMostValue;
    const bool deep = from.Pixels().depth() == 16 || from.Pixels().depth() == 64;
    const NoiseTable table = NoiseTableOf(part, deep ? 65535 : 255);
    return WorkInBands(from, region, PixelForm::Full, FourthChannel::Written,
                       [&](const cv::Mat& in, cv::Mat& out, QPoint at) {
                           if (deep) {
                               NoiseRows<quint16>(in, out, at.y(), table, seed, wanted);
                           } else {
                               NoiseRows<uchar>(in, out, at.y(), table, seed, wanted);
                           }
                       });
}

} // namespace quillane::processing
