#include "scripts/art/colour.h"

#include <cstdio>

namespace art {

double Noise(double x, double y, uint32_t seed)
{
    const double fx = std::floor(x), fy = std::floor(y);
    const int ix = int(fx), iy = int(fy);
    const double u = x - fx, v = y - fy;
    const double su = u * u * u * (u * (u * 6 - 15) + 10), sv = v * v * v * (v * (v * 6 - 15) + 10);
    // A slope of a random direction at every grid point.
    const auto slope = [&](int gx, int gy) {
        const double angle = Grain(gx, gy, seed) * 6.283185307179586;
        return std::cos(angle) * (x - gx) + std::sin(angle) * (y - gy);
    };
    return 1.5
        * Mix(Mix(slope(ix, iy), slope(ix + 1, iy), su),
              Mix(slope(ix, iy + 1), slope(ix + 1, iy + 1), su), sv);
}

double Fractal(double x, double y, uint32_t seed, int octaves, double gain)
{
    double sum = 0, strength = 1, whole = 0;
    for (int i = 0; i < octaves; ++i) {
        sum += strength * Noise(x, y, seed + uint32_t(i) * 101U);
        whole += strength;
        strength *= gain;
        // Turned besides, so that no grid shows.
        const double nx = 1.6 * x + 1.2 * y;
        y = 1.6 * y - 1.2 * x;
        x = nx;
    }
    return sum / whole * 1.6;
}

double Ridged(double x, double y, uint32_t seed, int octaves)
{
    double sum = 0, strength = 0.5, above = 1;
    for (int i = 0; i < octaves; ++i) {
        const double crest = 1 - std::min(1.0, std::abs(Noise(x, y, seed + uint32_t(i) * 101U)));
        const double part = crest * crest;
        sum += strength * part * above;
        above = std::clamp(part * 1.4, 0.0, 1.0);
        strength *= 0.5;
        const double nx = 1.6 * x + 1.2 * y;
        y = 1.6 * y - 1.2 * x;
        x = nx;
    }
    return sum;
}

bool WritePpm(const Canvas& canvas)
{
    std::printf("P6\n%d %d\n255\n", canvas.width, canvas.height);
    std::vector<uint8_t> bytes;
    bytes.reserve(canvas.light.size() * 3);
    for (const Vec& light : canvas.light) {
        for (double value : {light.x, light.y, light.z}) {
            value = std::max(0.0, value);
            value = value * (1 + value / 6) / (1 + value * 0.42); // shoulder
            bytes.push_back(uint8_t(std::lround(255 * std::pow(std::min(1.0, value), 1 / 2.2))));
        }
    }
    return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size()
        && std::fflush(stdout) == 0;
}

} // namespace art
