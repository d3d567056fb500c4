#pragma once
// What people made: a harbour by night, balloons.
#include "scripts/art/colour.h"

namespace art {

/// A town at the water under a full moon, its windows mirrored.
Canvas PaintHarbour(int width, int height);
/// Balloons in the sky of a finished picture.
void PaintBalloons(Canvas& canvas);

} // namespace art
