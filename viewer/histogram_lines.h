#pragma once
#include "imaging/processing/histogram.h"
#include <array>

namespace quillane {

// The scale of the drawn histogram.
inline constexpr float kHistogramLeft = -5;
inline constexpr float kHistogramTop = 0;
inline constexpr float kHistogramWidth = 270;
inline constexpr float kHistogramHeight = 100;

/// The line of one level, in that scale; it stands on Y1.
struct HistogramLine {
    float X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
};
/// What is drawn of a histogram.
struct HistogramDrawing {
    std::array<HistogramLine, 256> lines;
    qint64 max = 0; ///< pixels of the fullest level, whose line ends 4 units under the top
};

/// Lines for all levels. Failure kFailureDivision when all of them are zero.
HistogramDrawing LinesOf(const processing::HistogramTable& table);

} // namespace quillane
