#include "viewer/viewer_settings.h"

#include "core/settings_store.h"
#include <cmath>

namespace quillane {

namespace {

constexpr float kSmallestTwips = 200 * kTwipsPerPixel; // below that a window cannot be used

/// Walks the table with the place of each value.
template <typename Settings, typename Step> void WalkViewerSettings(Settings& settings, Step step)
{
    const SettingKey* row = kViewerSettings;
    step(*row++, settings.top);
    step(*row++, settings.left);
    step(*row++, settings.height);
    step(*row++, settings.width);
    for (auto& checked : settings.zoom) {
        step(*row++, checked);
    }
    step(*row++, settings.zoomFit);
    step(*row, settings.paintSizeMode);
}

struct ViewerSettingReader {
    const SettingsStore& store;
    void operator()(const SettingKey& row, float& value) const { value = ReadSingle(store, row); }
    void operator()(const SettingKey& row, bool& value) const { value = ReadBool(store, row); }
    void operator()(const SettingKey& row, qint32& value) const { value = ReadInt32(store, row); }
};

struct ViewerSettingWriter {
    SettingsStore& store;
    void operator()(const SettingKey& row, float value) const { WriteSingle(store, row, value); }
    void operator()(const SettingKey& row, bool value) const { WriteBool(store, row, value); }
    void operator()(const SettingKey& row, qint32 value) const { WriteInt(store, row, value); }
};

} // namespace

ViewerSettings LoadViewerSettings(const SettingsStore& store)
{
    ViewerSettings settings;
    WalkViewerSettings(settings, ViewerSettingReader{store});
    return settings;
}

void SaveViewerSettings(SettingsStore& store, const ViewerSettings& settings)
{
    WalkViewerSettings(settings, ViewerSettingWriter{store});
}

void FitToScreen(ViewerSettings& settings, QSizeF screen)
{
    const auto usable = [](float& value, float fallback) {
        value = std::isfinite(value) ? value : fallback;
    };
    usable(settings.top, 0);
    usable(settings.left, 0);
    usable(settings.height, kSmallestTwips);
    usable(settings.width, kSmallestTwips);
    settings.height = std::max(settings.height, kSmallestTwips);
    settings.width = std::max(settings.width, kSmallestTwips);
    // A place above or left of every screen is one that nobody can reach.
    settings.top = std::max(settings.top, 0.0F);
    settings.left = std::max(settings.left, 0.0F);
    if (double(settings.top) + double(settings.height) > screen.height()) {
        settings.height = float(screen.height() - 30.0 * kTwipsPerPixel);
        settings.top = 0;
    }
    if (double(settings.left) + double(settings.width) > screen.width()) {
        settings.width = float(screen.width());
        settings.left = 0;
    }
}

} // namespace quillane
