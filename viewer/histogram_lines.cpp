#include "viewer/histogram_lines.h"
#include "core/failure.h"
#include <algorithm>

namespace quillane {

HistogramDrawing LinesOf(const processing::HistogramTable& table)
{
    constexpr float kFoot = kHistogramHeight - 2;
    constexpr float kUnderTop = 4;
    HistogramDrawing drawing;
    drawing.max = *std::max_element(table.begin(), table.end());
    if (drawing.max == 0) {
        throw Failure(kFailureDivision, QStringLiteral("Division by zero"),
                      QStringLiteral("Histogram"));
    }
    for (size_t i = 0; i < drawing.lines.size(); ++i) {
        const double part = double(table[i]) / double(drawing.max);
        drawing.lines[i] = {float(i), kFoot, float(i),
                            float(double(kFoot) - double(kFoot - kUnderTop) * part)};
    }
    return drawing;
}

} // namespace quillane
