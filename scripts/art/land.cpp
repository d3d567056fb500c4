#include "scripts/art/land.h"

namespace art {

namespace {

constexpr int kField = 1024;      // points of the height field along one side
constexpr double kUnit = 40.0;    // its side in units of way
constexpr double kFarAway = 38.0; // what lies behind is haze

class Heights {
public:
    explicit Heights(const Land& land) : mPoints(size_t(kField) * kField)
    {
        for (int y = 0; y < kField; ++y) {
            for (int x = 0; x < kField; ++x) {
                const double u = x * kUnit / kField / land.scale;
                const double v = y * kUnit / kField / land.scale;
                mPoints[size_t(y) * kField + size_t(x)] = land.relief * Shape(land, u, v);
            }
        }
    }

    /// Height at a place, the field repeated without end.
    double At(double x, double z) const
    {
        const double u = x * kField / kUnit, v = z * kField / kUnit;
        const double fu = std::floor(u), fv = std::floor(v);
        const int iu = int(fu), iv = int(fv);
        const double a = u - fu, b = v - fv;
        return Mix(Mix(Point(iu, iv), Point(iu + 1, iv), a),
                   Mix(Point(iu, iv + 1), Point(iu + 1, iv + 1), a), b);
    }

    Vec Normal(double x, double z, double step) const
    {
        return Unit(
            {At(x - step, z) - At(x + step, z), 2 * step, At(x, z - step) - At(x, z + step)});
    }

private:
    static double Shape(const Land& land, double u, double v)
    {
        switch (land.ground) {
        case Ground::Alpine:
        case Ground::Snow: {
            const double broad = 0.5 + 0.5 * Fractal(u * 0.11, v * 0.11, land.seed + 7, 3);
            return 3.4 * Ridged(u * 0.22, v * 0.22, land.seed, 9) * Smooth(0.1, 0.9, broad)
                + 0.5 * broad;
        }
        case Ground::Canyon: {
            const double broad = 0.5 + 0.5 * Fractal(u * 0.16, v * 0.16, land.seed, 8);
            const double step = Smooth(0.30, 0.42, broad) * 0.9 + Smooth(0.52, 0.60, broad) * 1.0
                + Smooth(0.66, 0.72, broad) * 0.7;
            return step + 0.16 * Fractal(u * 0.9, v * 0.9, land.seed + 3, 6);
        }
        case Ground::Dunes: {
            const double bend = 1.6 * Fractal(u * 0.12, v * 0.12, land.seed, 3);
            const double wave = std::fmod(v * 0.20 + u * 0.06 + bend + 100, 1.0);
            const double crest = wave < 0.72 ? Smooth(0, 0.74, wave) : 1 - Smooth(0.70, 1.0, wave);
            return 1.2 * crest * (0.55 + 0.45 * Noise(u * 0.2, v * 0.2, land.seed + 5))
                + 0.008 * std::sin(40 * (v + 0.3 * u + 0.4 * bend));
        }
        case Ground::Islands: {
            const double broad = Fractal(u * 0.13, v * 0.13, land.seed, 8);
            return 0.55 + 1.9 * std::max(-0.4, broad - 0.12);
        }
        }
        return 0;
    }

    double Point(int x, int y) const
    {
        return mPoints[size_t(y & (kField - 1)) * kField + size_t(x & (kField - 1))];
    }

    std::vector<double> mPoints;
};

class Painter {
public:
    explicit Painter(const Land& land) : mLand(land), mHeights(land), mSun(Unit(Turned(land.sun)))
    {
        mEye = {17, std::max(mHeights.At(17, 5), land.water) + land.eye, 5};
    }

    Vec Along(Vec ray) const
    {
        double way = 0;
        if (!Meet(mEye, ray, &way)) {
            return Sky(ray, true);
        }
        const Vec place = mEye + ray * way;
        const bool wet = place.y <= mLand.water + 1e-6;
        return Hazed(wet ? Water(place, ray, way) : Soil(place, way), ray, way);
    }

    /// A direction of the camera as one of the world.
    Vec Turned(Vec v) const
    {
        const double s = std::sin(mLand.turn), c = std::cos(mLand.turn);
        return {v.x * c + v.z * s, v.y, v.z * c - v.x * s};
    }

private:
    bool Meet(Vec from, Vec ray, double* way) const
    {
        double before = 0;
        for (double t = 0.02; t < kFarAway;) {
            const Vec at = from + ray * t;
            const double ground = std::max(mHeights.At(at.x, at.z), mLand.water);
            if (at.y < ground) {
                double low = before, high = t;
                for (int i = 0; i < 12; ++i) {
                    const double middle = (low + high) / 2;
                    const Vec p = from + ray * middle;
                    (p.y < std::max(mHeights.At(p.x, p.z), mLand.water) ? high : low) = middle;
                }
                *way = high;
                return true;
            }
            if (at.y > 5 * mLand.relief && ray.y > 0) {
                return false;
            }
            before = t;
            t += std::max(0.006 * (1 + t), 0.35 * (at.y - ground));
        }
        return false;
    }

    double Shade(Vec place) const // 1 in the light, 0 in the shade
    {
        double light = 1;
        for (double t = 0.06; t < 9; t *= 1.22) {
            const Vec at = place + mSun * t;
            const double over = at.y - mHeights.At(at.x, at.z);
            light = std::min(light, 0.5 + 9 * over / t);
            if (light < 0) {
                return 0;
            }
        }
        return light;
    }

    /// The normal with the stones and tufts that the field is too coarse for; they fade with the
    /// way.
    Vec Rough(Vec normal, Vec place, double way) const
    {
        const double strength = (mLand.ground == Ground::Dunes ? 0.05 : 0.32) / (1 + 0.25 * way);
        const double x = place.x * 22 + place.y * 13, z = place.z * 22;
        return Unit(
            normal
            + Vec{Fractal(x, z, mLand.seed + 51, 4, 0.7), 0, Fractal(x, z, mLand.seed + 52, 4, 0.7)}
                * strength);
    }

    Vec Soil(Vec place, double way) const
    {
        const double grain = Fractal(place.x * 9, place.z * 9, mLand.seed + 50, 4, 0.6);
        const Vec broad = mHeights.Normal(place.x, place.z, 0.012 + 0.003 * way);
        const double steep = 1 - broad.y;
        const Vec normal = Rough(broad, place, way);
        const double height = place.y / mLand.relief;
        Vec colour;
        switch (mLand.ground) {
        case Ground::Alpine: {
            const Vec rock = Vec{0.20, 0.18, 0.17} * (1 + 0.35 * grain);
            const Vec grass = Mix(Vec{0.07, 0.13, 0.025}, {0.16, 0.19, 0.05}, 0.5 + 0.5 * grain);
            const Vec wood = Vec{0.018, 0.045, 0.018} * (1 + 0.6 * grain);
            colour =
                Mix(grass, wood,
                    Smooth(-0.15, 0.15, Fractal(place.x * 1.4, place.z * 1.4, mLand.seed + 9, 5)));
            const double bare =
                Smooth(0.25, 0.4, steep + 0.1 * grain) + Smooth(1.1, 1.5, height + 0.15 * grain);
            colour = Mix(colour, rock, std::min(1.0, bare));
            colour = Mix(colour, {0.86, 0.89, 0.95},
                         Smooth(1.25, 1.6, height + 0.2 * grain - 0.6 * steep));
            break;
        }
        case Ground::Snow:
            colour = Mix(Vec{0.86, 0.89, 0.96}, Vec{0.16, 0.15, 0.16} * (1 + 0.4 * grain),
                         Smooth(0.42, 0.62, steep + 0.08 * grain));
            break;
        case Ground::Canyon: {
            const double layer = height * 9 + 0.35 * grain;
            const double band = 0.5 + 0.5 * std::sin(layer * 2.4) * std::cos(layer * 1.1 + 1);
            colour = Mix(Vec{0.42, 0.12, 0.05}, {0.66, 0.36, 0.19}, band) * (1 + 0.18 * grain);
            colour = Mix(colour, Vec{0.30, 0.25, 0.12}, 0.7 * Smooth(0.2, 0.02, steep));
            break;
        }
        case Ground::Dunes:
            colour = Vec{0.72, 0.42, 0.20} * (1 + 0.05 * grain);
            break;
        case Ground::Islands:
            colour = Mix(Vec{0.50, 0.42, 0.28}, Vec{0.05, 0.09, 0.03} * (1 + 0.5 * grain),
                         Smooth(0.03, 0.10, place.y - mLand.water + 0.02 * grain));
            colour =
                Mix(colour, Vec{0.16, 0.13, 0.11} * (1 + 0.4 * grain), Smooth(0.3, 0.5, steep));
            break;
        }
        const double direct = std::max(0.0, Dot(normal, mSun)) * Shade(place);
        const Vec sky = Mix(mLand.horizon, mLand.zenith, 0.5) * (0.45 * (0.5 + 0.5 * normal.y));
        return colour * (mLand.sunLight * (1.7 * direct) + sky);
    }

    Vec Water(Vec place, Vec ray, double way) const
    {
        const double rough = 0.035 * mLand.waves / (1 + 0.05 * way);
        const double x = place.x * 5, z = place.z * 11;
        const Vec normal = Unit({rough * Fractal(x, z, mLand.seed + 60, 4, 0.6), 1,
                                 1.6 * rough * Fractal(x, z, mLand.seed + 61, 4, 0.6)});
        Vec back = ray - normal * (2 * Dot(ray, normal));
        back.y = std::abs(back.y) + 0.002;
        back = Unit(back);
        double far = 0;
        Vec mirrored = Sky(back, false);
        if (Meet(place + Vec{0, 0.004, 0}, back, &far)) {
            const Vec there = place + back * far;
            mirrored = Hazed(Soil(there, way + far), back, way + far);
        }
        const double glance = std::pow(1 - std::clamp(Dot(ray * -1, normal), 0.0, 1.0), 5);
        const double depth = mLand.water - mHeights.At(place.x, place.z);
        const Vec deep =
            Mix(Vec{0.05, 0.14, 0.15}, Vec{0.012, 0.045, 0.075}, Smooth(0, 0.4, depth));
        const Vec body = deep * Mix(mLand.horizon, mLand.zenith, 0.4) * 1.6;
        const double glitter = std::pow(std::max(0.0, Dot(back, mSun)), 260);
        return Mix(body, mirrored, 0.06 + 0.9 * glance) + mLand.sunLight * (2.2 * glitter);
    }

    Vec Hazed(Vec colour, Vec ray, double way) const
    {
        const double thick = 1 - std::exp(-mLand.fog * way * std::sqrt(way) * 0.6);
        const double glow = std::pow(std::max(0.0, Dot(ray, mSun)), 9);
        return Mix(colour, mLand.haze + mLand.sunLight * (0.22 * glow), thick);
    }

    Vec Sky(Vec ray, bool sharp) const
    {
        const double up = std::max(0.0, ray.y);
        Vec colour = Mix(mLand.horizon, mLand.zenith, 1 - std::pow(1 - std::min(1.0, up), 3.2));
        const double near = Dot(ray, mSun);
        colour = colour
            + mLand.sunLight
                * (0.25 * std::pow(std::max(0.0, near), 40)
                   + 0.13 * std::pow(std::max(0.0, near), 5));
        if (mLand.stars > 0 && sharp) {
            const double sx = std::atan2(ray.x, ray.z) * 260, sy = ray.y * 260;
            const double one = Grain(int(std::floor(sx)), int(std::floor(sy)), mLand.seed + 70);
            if (one > 0.985) {
                const double off = std::hypot(sx - std::floor(sx) - 0.5, sy - std::floor(sy) - 0.5);
                colour = colour
                    + Vec{0.9, 0.95, 1.0}
                        * (mLand.stars * (one - 0.985) * 66 * Smooth(0.5, 0.1, off));
            }
        }
        if (mLand.aurora > 0) {
            const double across = std::atan2(ray.x, ray.z);
            const double bend = 0.30 + 0.10 * Fractal(across * 1.6, 0.3, mLand.seed + 80, 3);
            const double rise = ray.y - bend;
            const double curtain = (rise < 0 ? Smooth(-0.05, 0, rise) : std::exp(-rise * 5.5))
                * (0.45 + 0.55 * Fractal(across * 9 + 2 * ray.y, 1.5, mLand.seed + 81, 4));
            colour = colour
                + Mix(Vec{0.10, 0.75, 0.32}, Vec{0.40, 0.16, 0.62}, Smooth(0.05, 0.4, rise))
                    * (mLand.aurora * std::max(0.0, curtain));
        }
        if (mLand.clouds > 0 && ray.y > 0.015) {
            const double x = ray.x / (ray.y + 0.08) * 0.9, z = ray.z / (ray.y + 0.08) * 0.9;
            const double body = 0.5 + 0.5 * Fractal(x, z, mLand.seed + 90, 6, 0.55);
            const double lit =
                0.5 + 0.5 * Fractal(x + mSun.x * 0.12, z + mSun.z * 0.12, mLand.seed + 90, 4, 0.55);
            const double cover =
                Smooth(1 - mLand.clouds, 1.35 - mLand.clouds, body) * Smooth(0.015, 0.12, ray.y);
            const Vec bright =
                mLand.sunLight * (0.55 + 0.5 * std::clamp(0.5 + 2.2 * (body - lit), 0.0, 1.0))
                + mLand.horizon * 0.25;
            colour = Mix(colour, bright, 0.85 * cover);
        }
        if (sharp && mLand.disc > 0) {
            const double off = std::acos(std::clamp(near, -1.0, 1.0));
            colour = Mix(colour, mLand.sunLight * 2.4,
                         Smooth(mLand.disc * 1.08, mLand.disc * 0.92, off));
        }
        return colour;
    }

    const Land& mLand;
    Heights mHeights;
    Vec mSun;
    Vec mEye;
};

} // namespace

Canvas PaintLand(const Land& land, int width, int height)
{
    const Painter painter(land);
    Canvas canvas(width, height);
    const double half = 0.62 / land.lens / std::max(width, height) * 2;
    const double s = std::sin(land.pitch), c = std::cos(land.pitch);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Vec view =
                Unit({(x + 0.5 - width / 2.0) * half, (height / 2.0 - y - 0.5) * half, 1});
            const Vec tilted{view.x, view.y * c + view.z * s, view.z * c - view.y * s};
            canvas.At(x, y) = painter.Along(painter.Turned(tilted));
        }
    }
    return canvas;
}

} // namespace art
