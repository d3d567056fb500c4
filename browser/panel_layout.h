#pragma once
// Where the blocks of the preview panel stand when the pane is lower than they need, or the
// font taller than the lines are apart. With room enough every block stands where it belongs.
#include <QVector>

namespace quillane {

/// One block of the panel, top to bottom in wanted coordinates.
struct PanelBlock {
    int top = 0;     ///< wanted top, pixels
    int height = 0;  ///< wanted height
    int minimum = 0; ///< height it may be squeezed to
};

struct PlacedBlock {
    int top = 0;
    int height = 0;
};

/// Places the blocks (ordered by top) in `available` pixels: gaps between blocks close first,
/// down to `smallestGap`; then blocks shrink towards their minimum. A block never covers the
/// one above it, even if that makes the whole taller than what is available.
QVector<PlacedBlock> PlaceBlocks(const QVector<PanelBlock>& blocks, int available, int smallestGap);

} // namespace quillane
