#pragma once
// The one meaning of the quality factor for every lossy format.
#include "imaging/encode.h"
#include <algorithm>

namespace quillane {

/// Percent of quality, 100 (kBestQuality) falling evenly to 1 (kLeastQuality). Factors outside
/// their range count as the nearest inside it.
constexpr double QualityPercent(qint32 quality)
{
    const qint32 inside = std::clamp(quality, kBestQuality, kLeastQuality);
    return 100.0 - 99.0 * (inside - kBestQuality) / (kLeastQuality - kBestQuality);
}

/// Percent by which the example tables of the JPEG standard (T.81, Annex K) are multiplied: 0 (all
/// ones) to 5000, never falling as the factor rises. It is the usual curve of JPEG encoders,
/// 200 - 2p above half quality and 5000 / p below, without its steps at whole percents.
constexpr int JpegTableScale(qint32 quality)
{
    const double percent = QualityPercent(quality);
    return int((percent >= 50 ? 200 - 2 * percent : 5000 / percent) + 0.5);
}

} // namespace quillane
