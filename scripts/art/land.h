#pragma once
// A landscape: a field of heights seen through a camera, under a sky, with water where it lies low.
#include "scripts/art/colour.h"

namespace art {

enum class Ground { Alpine, Snow, Canyon, Dunes, Islands };

struct Land {
    uint32_t seed = 1;
    Ground ground = Ground::Alpine;
    double relief = 1.0;    ///< heights are multiplied by it
    double scale = 1.0;     ///< width of the features
    double water = -1;      ///< its level; below 0 there is none
    double waves = 1.0;     ///< how rough the water is
    double eye = 0.35;      ///< height of the camera over what lies under it
    double pitch = 0.0;     ///< up is above 0
    double turn = 0.0;      ///< direction of the view, radians
    double lens = 1.0;      ///< 1 is a standard lens, 0.7 a wide one
    Vec sun{0.4, 0.5, 0.7}; ///< towards the sun or moon, seen from the camera (z is forward)
    double disc = 0.022;    ///< its radius
    Vec sunLight{1.3, 1.2, 1.05};
    Vec zenith{0.12, 0.30, 0.72};
    Vec horizon{0.62, 0.76, 0.92};
    Vec haze{0.62, 0.74, 0.88};
    double fog = 0.02;    ///< a unit of way; 0.02 is a clear day
    double clouds = 0.45; ///< 0 none, 1 all over
    double stars = 0;     ///< 0 to 1
    double aurora = 0;    ///< 0 to 1
};

/// The landscape as a picture.
Canvas PaintLand(const Land& land, int width, int height);

} // namespace art
