#include "scripts/art/town.h"

namespace art {

namespace {

constexpr uint32_t kTownSeed = 11;

struct House {
    double left, width, top; // parts of the picture's width; the top over the quay
    Vec wall;
    double lamps; // how many of its windows are lit, 0 to 1
};

std::vector<House> Row(int layer)
{
    std::vector<House> houses;
    double left = -0.02;
    for (int i = 0; left < 1.02; ++i) {
        const double pick = Grain(i, layer, kTownSeed), more = Grain(i, layer + 40, kTownSeed);
        const double width = 0.022 + 0.035 * pick;
        const double hill = 0.5 + 0.5 * std::sin(left * 5 + layer * 2.0);
        const double top =
            (layer == 0 ? 0.10 + 0.20 * more * more : 0.045 + 0.07 * more) * (0.55 + 0.6 * hill);
        const double shade = layer == 0 ? 0.010 : 0.016;
        houses.push_back({left, width, top, Vec{0.7, 0.8, 1.25} * shade, layer == 0 ? 0.35 : 0.6});
        left += width + (layer == 0 ? 0.004 : 0.001);
    }
    return houses;
}

/// Light of the town at (x, over): x from 0 to 1, `over` the height above the quay in the same
/// measure. False where there is only sky.
bool TownLight(const std::vector<House>& houses, int layer, double x, double over, Vec* light)
{
    for (size_t i = 0; i < houses.size(); ++i) {
        const House& house = houses[i];
        const double in = x - house.left;
        if (in < 0 || in > house.width || over > house.top) {
            continue;
        }
        *light = house.wall;
        const double room = layer == 0 ? 0.0058 : 0.0075;
        const double column = in / room, line = over / (room * 1.3);
        const double cx = column - std::floor(column), cy = line - std::floor(line);
        const bool pane = cx > 0.28 && cx < 0.74 && cy > 0.25 && cy < 0.78 && in > 0.2 * room
            && in < house.width - 0.3 * room && over < house.top - 0.6 * room;
        const double lit = Grain(int(column) + int(i) * 64, int(line) + layer * 512, kTownSeed + 2);
        if (pane && lit < house.lamps) {
            const double warm = Grain(int(column) + int(i) * 64, int(line), kTownSeed + 3);
            *light = Mix(Vec{1.2, 0.72, 0.28}, Vec{0.85, 0.92, 1.0}, warm > 0.85 ? 1.0 : 0.3 * warm)
                * (0.5 + 0.8 * warm);
        }
        return true;
    }
    return false;
}

Vec NightSky(double x, double over)
{
    Vec colour = Mix(Vec{0.055, 0.075, 0.16}, Vec{0.006, 0.010, 0.035}, Smooth(0.0, 0.5, over));
    const double dx = x - 0.72, dy = over - 0.43;
    const double off = std::hypot(dx, dy);
    colour = colour + Vec{0.55, 0.60, 0.70} * (0.30 * std::exp(-off * 9));
    const double clouds = 0.5 + 0.5 * Fractal(x * 4, over * 11, kTownSeed + 20, 6, 0.55);
    colour = colour
        + Vec{0.20, 0.23, 0.32} * (Smooth(0.5, 0.95, clouds) * (0.18 + 0.9 * std::exp(-off * 6)));
    const double sx = x * 420, sy = over * 420;
    const double star = Grain(int(sx), int(sy), kTownSeed + 30);
    if (star > 0.992 && clouds < 0.55) {
        colour = colour
            + Vec{0.8, 0.85, 1}
                * ((star - 0.992) * 90
                   * Smooth(0.5, 0.1, std::hypot(sx - int(sx) - 0.5, sy - int(sy) - 0.5)));
    }
    const double disc = Smooth(0.0345, 0.0335, off);
    const double seas = 0.78 + 0.22 * Fractal(dx * 45 + 3, dy * 45, kTownSeed + 31, 4);
    return Mix(colour, Vec{1.15, 1.12, 1.0} * seas, disc);
}

} // namespace

Canvas PaintHarbour(int width, int height)
{
    const std::vector<House> behind = Row(0), front = Row(1);
    Canvas canvas(width, height);
    const double quay = 0.66 * height;
    const auto scene = [&](double x, double over) {
        Vec light;
        if (TownLight(front, 1, x, over, &light) || TownLight(behind, 0, x, over, &light)) {
            return light;
        }
        return NightSky(x, over);
    };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            Vec sum;
            for (const double part : {0.25, 0.75}) {
                const double u = (x + part) / width;
                if (y < quay) {
                    sum = sum + scene(u, (quay - y - part) / width);
                    continue;
                }
                // The water mirrors, and draws every light out towards the eye.
                const double deep = (y + part - quay) / (height - quay);
                Vec mirror;
                constexpr int kLooks = 7;
                for (int i = 0; i < kLooks; ++i) {
                    const double wave = Fractal(u * 30 / (0.25 + deep),
                                                60 * std::sqrt(deep) + i * 0.37, kTownSeed + 50, 3);
                    const double over = (y - quay) / width * (0.85 + 0.06 * i)
                        + 0.012 * deep * wave * (1 + i * 0.4);
                    mirror = mirror
                        + scene(std::clamp(u + 0.004 * deep * wave, 0.0, 1.0), std::max(0.0, over));
                }
                sum = sum + mirror * (0.62 / kLooks) * Vec{0.85, 0.95, 1.05}
                    + Vec{0.002, 0.005, 0.012};
            }
            canvas.At(x, y) = sum * 0.5;
        }
    }
    // Masts of boats at the quay, and lamps along it.
    for (int i = 0; i < 26; ++i) {
        const int x = int((0.03 + 0.94 * Grain(i, 1, kTownSeed + 60)) * width);
        const int rise = int((0.05 + 0.07 * Grain(i, 2, kTownSeed + 60)) * height);
        for (int y = int(quay) - rise; y < int(quay) + rise / 2; ++y) {
            Vec& light = canvas.At(x, std::min(y, height - 1));
            light = light * (y < quay ? 0.25 : 0.6);
        }
    }
    for (int i = 0; i < 19; ++i) {
        const double cx = (i + 0.5) / 19 * width, cy = quay - 0.016 * height;
        const int reach = int(0.03 * height);
        for (int y = int(cy) - reach; y < int(cy) + 5 * reach && y < height; ++y) {
            for (int x = int(cx) - reach; x < int(cx) + reach; ++x) {
                if (x < 0 || x >= width) {
                    continue;
                }
                const double dx = (x - cx) / reach, dy = (y - cy) / reach * (y < cy ? 1.0 : 0.28);
                const double broken = y < quay
                    ? 1
                    : 0.35 + 0.5 * std::max(0.0, Fractal(x * 0.02, y * 0.25, kTownSeed + 70, 2));
                canvas.At(x, y) = canvas.At(x, y)
                    + Vec{1.1, 0.75, 0.36}
                        * (0.9 * broken * std::exp(-9 * (dx * dx * (y < cy ? 1 : 2.5) + dy * dy)));
            }
        }
    }
    return canvas;
}

void PaintBalloons(Canvas& canvas)
{
    struct Balloon {
        double x, y, radius;
        Vec one, two;
    };
    const Balloon balloons[] = {
        {0.44, 0.26, 0.150, {0.85, 0.10, 0.06}, {1.1, 0.85, 0.20}},
        {0.80, 0.42, 0.055, {0.08, 0.20, 0.62}, {0.95, 0.95, 0.95}},
        {0.16, 0.47, 0.036, {0.10, 0.42, 0.16}, {1.05, 0.92, 0.45}},
    };
    for (const Balloon& balloon : balloons) {
        const double r = balloon.radius * canvas.height, cx = balloon.x * canvas.width,
                     cy = balloon.y * canvas.height;
        for (int y = int(cy - r) - 1; y < int(cy + 2.1 * r); ++y) {
            for (int x = int(cx - r) - 1; x < int(cx + r) + 2; ++x) {
                if (x < 0 || y < 0 || x >= canvas.width || y >= canvas.height) {
                    continue;
                }
                const double dy = (y - cy) / r;
                // A ball above, drawn in towards the mouth below.
                const double wide = dy < 0.25
                    ? std::sqrt(std::max(0.0, 1 - dy * dy))
                    : 0.968 * std::pow(std::max(0.0, 1 - Smooth(0.0, 1.35, dy - 0.25)), 0.9)
                        + 0.10 * Smooth(0.25, 0.6, dy);
                const double dx = (x - cx) / r;
                Vec& light = canvas.At(x, y);
                if (dy < 1.25 && std::abs(dx) < wide) {
                    const double turn = std::asin(std::clamp(dx / wide, -1.0, 1.0));
                    const double gore = std::sin(turn * 7 + 0.6);
                    const double band = Smooth(0.02, 0.05, std::abs(dy + 0.05));
                    const Vec cloth =
                        Mix(balloon.two, Mix(balloon.one, balloon.two, Smooth(-0.12, 0.12, gore)),
                            band);
                    const double lit =
                        0.35 + 0.65 * std::max(0.0, 0.62 * std::cos(turn + 0.8) - 0.38 * dy + 0.2);
                    const double edge = Smooth(0, 2.2 / r, wide - std::abs(dx));
                    light = Mix(light, cloth * lit, edge);
                } else if (dy >= 1.25 && dy < 1.62 && std::abs(std::abs(dx) - 0.09) < 0.007) {
                    light = light * 0.3;
                } else if (dy >= 1.60 && dy < 1.80 && std::abs(dx) < 0.105) {
                    light = Vec{0.16, 0.085, 0.035} * (0.8 + 0.4 * std::sin(y * 1.3));
                }
            }
        }
    }
}

} // namespace art
