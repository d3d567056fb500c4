// draw NAME WIDTH HEIGHT [SUN]: computes one of the sample landscapes and writes it to the standard
// output as a PPM; SUN is the height of the sun, about -0.2 to 1.
#include "scripts/art/land.h"
#include "scripts/art/town.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

namespace art {

const std::map<std::string, Land>& Lands()
{
    static const std::map<std::string, Land> kLands = [] {
        std::map<std::string, Land> lands;

        Land& tarn = lands["tarn"];
        tarn.seed = 57;
        tarn.eye = 0.45;
        tarn.water = 0.62;
        tarn.waves = 0.5;
        tarn.sun = {-0.5, 0.55, 0.25};

        Land& dawn = lands["dawn"];
        dawn.seed = 12;
        dawn.relief = 0.8;
        dawn.eye = 1.1;
        dawn.pitch = -0.06;
        dawn.sun = {0.22, 0.10, 1};
        dawn.sunLight = {1.5, 0.92, 0.52};
        dawn.zenith = {0.16, 0.22, 0.46};
        dawn.horizon = {0.95, 0.55, 0.36};
        dawn.haze = {0.66, 0.46, 0.44};
        dawn.fog = 0.10;
        dawn.clouds = 0.4;

        Land& sea = lands["sunset"];
        sea.seed = 21;
        sea.ground = Ground::Islands;
        sea.water = 0.62;
        sea.eye = 0.22;
        sea.sun = {-0.12, 0.085, 1};
        sea.sunLight = {1.7, 0.78, 0.30};
        sea.zenith = {0.11, 0.10, 0.30};
        sea.horizon = {1.05, 0.42, 0.18};
        sea.haze = {0.60, 0.28, 0.20};
        sea.fog = 0.035;
        sea.clouds = 0.6;

        Land& valley = lands["valley"];
        valley.seed = 33;
        valley.relief = 0.9;
        valley.eye = 0.7;
        valley.sun = {0.6, 0.6, 0.4};
        valley.sunLight = {0.85, 0.86, 0.84};
        valley.zenith = {0.46, 0.53, 0.60};
        valley.horizon = {0.78, 0.80, 0.80};
        valley.haze = {0.70, 0.74, 0.75};
        valley.fog = 0.16;
        valley.clouds = 0.75;

        Land& snow = lands["snow"];
        snow.seed = 46;
        snow.ground = Ground::Snow;
        snow.relief = 1.15;
        snow.eye = 0.8;
        snow.pitch = 0.05;
        snow.sun = {0.75, 0.42, 0.25};
        snow.zenith = {0.06, 0.19, 0.58};
        snow.horizon = {0.46, 0.66, 0.92};
        snow.clouds = 0.3;

        Land& canyon = lands["canyon"];
        canyon.seed = 31;
        canyon.ground = Ground::Canyon;
        canyon.relief = 0.8;
        canyon.eye = 0.45;
        canyon.pitch = -0.12;
        canyon.sun = {-0.8, 0.32, 0.35};
        canyon.sunLight = {1.5, 1.1, 0.75};
        canyon.zenith = {0.14, 0.28, 0.60};
        canyon.horizon = {0.80, 0.72, 0.66};
        canyon.haze = {0.62, 0.55, 0.58};
        canyon.fog = 0.02;
        canyon.clouds = 0.35;

        Land& dunes = lands["dunes"];
        dunes.seed = 63;
        dunes.ground = Ground::Dunes;
        dunes.eye = 0.7;
        dunes.pitch = -0.10;
        dunes.sun = {-0.85, 0.24, 0.3};
        dunes.sunLight = {1.5, 1.12, 0.78};
        dunes.zenith = {0.10, 0.26, 0.62};
        dunes.horizon = {0.78, 0.78, 0.78};
        dunes.haze = {0.80, 0.70, 0.58};
        dunes.clouds = 0.15;

        Land& aurora = lands["aurora"];
        aurora.seed = 70;
        aurora.eye = 0.45;
        aurora.water = 0.7;
        aurora.waves = 0.3;
        aurora.pitch = 0.14;
        aurora.lens = 0.8;
        aurora.sun = {-0.5, 0.5, -0.4};
        aurora.disc = 0;
        aurora.sunLight = {0.05, 0.10, 0.10};
        aurora.zenith = {0.008, 0.014, 0.045};
        aurora.horizon = {0.03, 0.08, 0.11};
        aurora.haze = {0.025, 0.06, 0.07};
        aurora.clouds = 0;
        aurora.stars = 1;
        aurora.aurora = 0.9;

        Land& fjord = lands["fjord"];
        fjord.seed = 83;
        fjord.relief = 1.2;
        fjord.water = 0.75;
        fjord.waves = 0.8;
        fjord.eye = 0.45;
        fjord.sun = {0.5, 0.5, 0.3};
        fjord.clouds = 0.6;

        Land& meadow = lands["balloon"];
        meadow.seed = 97;
        meadow.relief = 0.45;
        meadow.eye = 0.6;
        meadow.pitch = 0.12;
        meadow.sun = {-0.6, 0.4, 0.1};
        meadow.sunLight = {1.4, 1.18, 0.9};
        meadow.horizon = {0.80, 0.82, 0.84};
        meadow.fog = 0.04;
        meadow.clouds = 0.4;
        return lands;
    }();
    return kLands;
}

} // namespace art

int main(int argc, char** argv)
{
    if (argc != 4 && argc != 5) {
        std::fprintf(stderr, "draw NAME WIDTH HEIGHT [SUN]\n");
        return 2;
    }
    const std::string name = argv[1];
    const int width = std::atoi(argv[2]), height = std::atoi(argv[3]);
    if (width < 16 || height < 16 || width > 8192 || height > 8192) {
        std::fprintf(stderr, "draw: sizes are from 16 to 8192\n");
        return 2;
    }
    if (name == "harbour") {
        return art::WritePpm(art::PaintHarbour(width, height)) ? 0 : 1;
    }
    const auto land = art::Lands().find(name);
    if (land == art::Lands().end()) {
        std::fprintf(stderr, "draw: no picture is called %s\n", argv[1]);
        return 2;
    }
    art::Land chosen = land->second;
    if (argc == 5) {
        chosen.sun.y = std::atof(argv[4]);
    }
    art::Canvas canvas = art::PaintLand(chosen, width, height);
    if (name == "balloon") {
        art::PaintBalloons(canvas);
    }
    return art::WritePpm(canvas) ? 0 : 1;
}
