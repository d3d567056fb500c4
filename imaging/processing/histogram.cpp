#include "imaging/processing/histogram.h"
#include "imaging/processing/pixels/levels.h"

namespace quillane::processing {

HistogramTable Histogram(const Bitmap& picture, const Region* region, HistogramChannel channel)
{
    NeedPicture(picture);
    const Bitmap from = InForm(picture, PixelForm::Full);
    const bool master = channel == HistogramChannel::Master;
    const LevelCounts counts =
        CountLevels(from, region, master ? CountedLevels::Intensity : CountedLevels::Channels);
    const std::vector<qint64>& levels =
        master ? counts.intensity : counts.channels[qint32(channel) - 1];
    HistogramTable table{};
    const size_t each = levels.size() / table.size();
    for (size_t i = 0; i < levels.size(); ++i) {
        table[i / each] += levels[i];
    }
    return table;
}

} // namespace quillane::processing
