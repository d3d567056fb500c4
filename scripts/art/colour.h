#pragma once
// Numbers, colours and noise that the sample pictures are computed from.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace art {

/// Linear mix of a and b, t from 0 to 1.
inline double Mix(double a, double b, double t)
{
    return a + (b - a) * t;
}

/// 0 below `low`, 1 above `high`, smooth between.
inline double Smooth(double low, double high, double x)
{
    const double t = std::clamp((x - low) / (high - low), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

/// A colour of light, 1 is full; also a point or a direction.
struct Vec {
    double x = 0, y = 0, z = 0;
};

inline Vec operator+(Vec a, Vec b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec operator-(Vec a, Vec b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec operator*(Vec a, double k)
{
    return {a.x * k, a.y * k, a.z * k};
}
inline Vec operator*(Vec a, Vec b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
/// The scalar product.
inline double Dot(Vec a, Vec b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
/// `a` with length 1.
inline Vec Unit(Vec a)
{
    return a * (1 / std::sqrt(Dot(a, a)));
}
/// Linear mix of two colours.
inline Vec Mix(Vec a, Vec b, double t)
{
    return a + (b - a) * t;
}

/// A number from 0 to 1 that belongs to the grid point (x, y) of field `seed`.
inline double Grain(int x, int y, uint32_t seed)
{
    uint32_t h = uint32_t(x) * 374761393U + uint32_t(y) * 668265263U + seed * 2246822519U;
    h = (h ^ (h >> 13)) * 1274126177U;
    h = (h ^ (h >> 16)) * 2654435761U;
    return double(h ^ (h >> 15)) / 4294967295.0;
}

/// Smooth noise from -1 to 1, its features about one unit wide.
double Noise(double x, double y, uint32_t seed);
/// Octaves of noise, each of double the frequency and `gain` times the strength; -1 to 1 or so.
double Fractal(double x, double y, uint32_t seed, int octaves, double gain = 0.5);
/// As Fractal, folded so that its heights are sharp crests; 0 to 1.
double Ridged(double x, double y, uint32_t seed, int octaves);

/// A picture of light, row by row from the top.
struct Canvas {
    int width = 0, height = 0;
    std::vector<Vec> light;

    Canvas(int w, int h) : width(w), height(h), light(size_t(w) * size_t(h)) { }
    Vec& At(int x, int y) { return light[size_t(y) * size_t(width) + size_t(x)]; }
};

/// Writes the canvas to the standard output as a binary PPM of 8 bits, its tones compressed as film
/// does it. False when that fails.
bool WritePpm(const Canvas& canvas);

} // namespace art
