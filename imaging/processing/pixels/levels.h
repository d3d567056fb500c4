#pragma once
// Tables of values and the loops that apply them; for imaging/processing/ alone.
#include "imaging/processing/pixels/pixel_work.h"
#include <vector>

namespace quillane::processing {

/// One entry for each value that a channel can have: 256 or 65536.
using LevelTable = std::vector<quint16>;
/// Entries of the table for pixels of that type.
int LevelsOf(const cv::Mat& pixels);
/// A table from a curve over 0..1, its results clamped to 0..1.
LevelTable TableOf(int levels, const std::function<double(double)>& curve);

/// What a picture's values are, or those of a part of it.
struct LevelCounts {
    std::vector<qint64> intensity;   ///< pixels of each intensity
    std::vector<qint64> channels[3]; ///< red, green, blue; the same as intensity for grey
    qint64 pixels = 0;
    /// Mean intensity, 0..1; 0 without pixels.
    double Mean() const;
};
/// Which of them are counted; the others stay empty.
enum class CountedLevels : quint8 { Intensity, Channels };
/// Counts a picture in form Full.
LevelCounts CountLevels(const Bitmap& picture, const Region* region, CountedLevels wanted);

/// Gives each value of each colour the one of the table; form Full, on all cores.
Bitmap WithLevels(const Bitmap& picture, const Region* region, const LevelTable& table);

/// Calls work(in, out) for each row of two views of a type: pointers to the channels.
template <typename Value, typename Work>
void ForRows(const cv::Mat& in, cv::Mat& out, const Work& work)
{
    for (int y = 0; y < in.rows; ++y) {
        work(in.ptr<Value>(y), out.ptr<Value>(y));
    }
}

} // namespace quillane::processing
