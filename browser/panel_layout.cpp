#include "browser/panel_layout.h"

#include <algorithm>

namespace quillane {

QVector<PlacedBlock> PlaceBlocks(const QVector<PanelBlock>& blocks, int available, int smallestGap)
{
    int gaps = 0, spareInBlocks = 0, bottom = 0;
    for (const PanelBlock& block : blocks) {
        gaps += std::max(0, block.top - bottom - smallestGap);
        spareInBlocks += std::max(0, block.height - block.minimum);
        bottom = std::max(bottom, block.top) + block.height;
    }
    const int excess = std::max(0, bottom - available);
    const int fromGaps = std::min(excess, gaps);
    const int fromBlocks = std::min(excess - fromGaps, spareInBlocks);
    const double gapScale = gaps > 0 ? 1.0 - double(fromGaps) / gaps : 1.0;
    const double blockScale = spareInBlocks > 0 ? 1.0 - double(fromBlocks) / spareInBlocks : 1.0;

    QVector<PlacedBlock> placed;
    placed.reserve(blocks.size());
    int wantedBottom = 0, placedBottom = 0;
    for (const PanelBlock& block : blocks) {
        const int gap = block.top - wantedBottom;
        const int kept = std::min(gap, smallestGap);
        const int shrunk = gap > smallestGap ? kept + int((gap - kept) * gapScale) : kept;
        const int spare = std::max(0, block.height - block.minimum);
        PlacedBlock one;
        one.top = placedBottom + std::max(0, shrunk);
        one.height = block.height - spare + int(spare * blockScale);
        placed.append(one);
        wantedBottom = std::max(wantedBottom, block.top) + block.height;
        placedBottom = one.top + one.height;
    }
    return placed;
}

} // namespace quillane
