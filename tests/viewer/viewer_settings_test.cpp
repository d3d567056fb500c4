#include "viewer/viewer_settings.h"

#include "core/settings_store.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace quillane {

namespace {

struct Store {
    QTemporaryDir folder;
    SettingsStore store{folder.filePath(QStringLiteral("s.ini"))};
    void Put(const char* key, const char* value)
    {
        store.SaveSetting(QStringLiteral("ImageDisplay"), QLatin1String(key), QLatin1String(value));
    }
    QString Get(const char* key) const
    {
        return store.GetSetting(QStringLiteral("ImageDisplay"), QLatin1String(key));
    }
};

constexpr QSizeF kScreen(1920.0 * kTwipsPerPixel, 1080.0 * kTwipsPerPixel);

} // namespace

TEST(ViewerSettings, AFirstRunHasTheDefaults)
{
    const Store none;
    const ViewerSettings settings = LoadViewerSettings(none.store);
    EXPECT_EQ(settings.top, 0);
    EXPECT_EQ(settings.left, 105);
    EXPECT_EQ(settings.height, 8500);
    EXPECT_EQ(settings.width, 9300);
    EXPECT_EQ(settings.zoom, (std::array<bool, 6>{}));
    EXPECT_TRUE(settings.zoomFit);
    EXPECT_EQ(settings.paintSizeMode, 3);
}

TEST(ViewerSettings, KeysAreSpelledAsTheyAlwaysWere)
{
    Store kept;
    ViewerSettings settings;
    settings.zoom[4] = true;
    settings.zoomFit = false;
    settings.top = 1.5F;
    SaveViewerSettings(kept.store, settings);
    const std::pair<const char*, const char*> rows[] = {
        {"Me.TOp", "1.5"},
        {"Me.Left", "105"},
        {"Me.Height", "8500"},
        {"Me.Width", "9300"},
        {"mnuZoom25.Checked", "False"},
        {"mnuZoom50.Checked", "False"},
        {"mnuZoom100.Checked", "False"},
        {"mnuZoom150.Checked", "False"},
        {"mnuZoom200.Checked", "True"},
        {"mnuZoom300.Checked", "False"},
        {"mnuZoomOut.Checked", "False"},
        {"LEAD1.PaintSizeMode", "3"},
    };
    for (const auto& [key, value] : rows) {
        EXPECT_EQ(kept.Get(key), QLatin1String(value)) << key;
    }
    EXPECT_EQ(std::size(rows), std::size(kViewerSettings));
}

TEST(ViewerSettings, WhatWasSavedIsLoadedAgain)
{
    Store kept;
    ViewerSettings settings;
    settings.top = 15;
    settings.left = 30;
    settings.height = 4500;
    settings.width = 6000;
    settings.zoom = {true, false, true, false, true, false};
    settings.zoomFit = false;
    settings.paintSizeMode = 4;
    SaveViewerSettings(kept.store, settings);
    const ViewerSettings loaded = LoadViewerSettings(kept.store);
    EXPECT_EQ(loaded.top, 15);
    EXPECT_EQ(loaded.left, 30);
    EXPECT_EQ(loaded.height, 4500);
    EXPECT_EQ(loaded.width, 6000);
    EXPECT_EQ(loaded.zoom, settings.zoom);
    EXPECT_FALSE(loaded.zoomFit);
    EXPECT_EQ(loaded.paintSizeMode, 4);
}

TEST(ViewerSettings, ValuesThatCannotBeConvertedTakeTheirDefaults)
{
    Store kept;
    kept.Put("Me.Width", "wide");
    kept.Put("LEAD1.PaintSizeMode", "many");
    kept.Put("mnuZoomOut.Checked", "perhaps");
    kept.Put("mnuZoom25.Checked", "-1");
    const ViewerSettings loaded = LoadViewerSettings(kept.store);
    EXPECT_EQ(loaded.width, 9300);
    EXPECT_EQ(loaded.paintSizeMode, 3);
    EXPECT_TRUE(loaded.zoomFit);
    EXPECT_TRUE(loaded.zoom[0]);
}

TEST(FitToScreen, AWindowThatFitsStays)
{
    ViewerSettings settings;
    FitToScreen(settings, kScreen);
    EXPECT_EQ(settings.top, 0);
    EXPECT_EQ(settings.left, 105);
    EXPECT_EQ(settings.height, 8500);
    EXPECT_EQ(settings.width, 9300);
}

TEST(FitToScreen, OneThatIsTooTallGoesToTheTopAndEndsThirtyPixelsAboveTheBottom)
{
    ViewerSettings settings;
    settings.top = 9000;
    FitToScreen(settings, kScreen);
    EXPECT_EQ(settings.top, 0);
    EXPECT_EQ(settings.height, float((1080 - 30) * kTwipsPerPixel));
    EXPECT_EQ(settings.left, 105);
    EXPECT_EQ(settings.width, 9300);
}

TEST(FitToScreen, OneThatIsTooWideGoesToTheLeftAsWideAsTheScreen)
{
    ViewerSettings settings;
    settings.width = 40000;
    FitToScreen(settings, kScreen);
    EXPECT_EQ(settings.left, 0);
    EXPECT_EQ(settings.width, float(kScreen.width()));
    EXPECT_EQ(settings.height, 8500);
}

TEST(FitToScreen, PlacesAndSizesThatNobodyCouldUseAreMended)
{
    ViewerSettings settings;
    settings.top = -90000;
    settings.left = std::numeric_limits<float>::quiet_NaN();
    settings.height = -1;
    settings.width = std::numeric_limits<float>::infinity();
    FitToScreen(settings, kScreen);
    EXPECT_EQ(settings.top, 0);
    EXPECT_EQ(settings.left, 0);
    EXPECT_GT(settings.height, 0);
    EXPECT_GT(settings.width, 0);
}

} // namespace quillane
