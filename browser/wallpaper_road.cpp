#include "browser/wallpaper_road.h"

#include "imaging/engine.h"
#include "platform/run_aside.h"

#include <QCoreApplication>
#include <memory>

namespace quillane {

namespace {

constexpr qint16 kWallpaperFormat = 6; // BMP
constexpr qint32 kWallpaperBits = 24;
constexpr qint32 kWallpaperQuality = 2; // the best; a bitmap file has no other

QString WallpaperLine(const QString& trouble)
{
    return trouble.isEmpty()
        ? QCoreApplication::translate("Launching", "The photo is the wallpaper now.")
        : QCoreApplication::translate("Launching", "The wallpaper could not be set: %1")
              .arg(trouble);
}

} // namespace

void SetPhotoAsWallpaper(const QString& file, Platform platform, const TellLine& tell)
{
    const Hourglass busy(platform.loop);
    QString trouble; // the first
    const auto step = [&](const std::function<void()>& statement) {
        try {
            statement();
        } catch (const Failure& failure) {
            trouble = trouble.isEmpty() ? failure.Description() : trouble;
        }
    };
    QString place;
    EngineInstance LEAD2;
    step([&] { RunAside(platform.loop, [&] { LEAD2.Load(file, 0, 0); }); });
    step([&] { place = platform.places.Wallpaper(); });
    step([&] {
        RunAside(platform.loop, [&] {
            LEAD2.Save(place, kWallpaperFormat, kWallpaperBits, kWallpaperQuality, kSaveReplace);
        });
    });
    bool asked = false;
    step([&] {
        platform.wallpaper.Set(place, [tell, trouble](const std::optional<Failure>& failure) {
            if (trouble.isEmpty() && failure && failure->Number() == kFailureCancelled) {
                tell(QCoreApplication::translate("Launching", "The wallpaper stays as it was."));
                return;
            }
            tell(WallpaperLine(trouble.isEmpty() && failure ? failure->Description() : trouble));
        });
        asked = true;
    });
    LEAD2.SetBitmap({});
    if (!asked) {
        tell(WallpaperLine(trouble));
    }
}

} // namespace quillane
