#pragma once
// What the viewer keeps from one run to the next: its place on the screen and its zoom.
#include "core/settings_table.h"
#include "widgets/twips.h"
#include <QSizeF>
#include <array>
#include <span>

namespace quillane {

struct ZoomItem {
    const char* name;
    const char16_t* caption;
    qint32 percent;
};
/// The percentages of the zoom menu.
inline constexpr ZoomItem kZoomItems[] = {
    {"mnuZoom25", u"Zoom 25%", 25},    {"mnuZoom50", u"Zoom 50%", 50},
    {"mnuZoom100", u"Zoom 100%", 100}, {"mnuZoom150", u"Zoom 150%", 150},
    {"mnuZoom200", u"Zoom 200%", 200}, {"mnuZoom300", u"Zoom 300%", 300},
};
inline constexpr size_t kZoomItemCount = std::size(kZoomItems);
inline constexpr ZoomItem kZoomFit{"mnuZoomOut", u"Zoom Fit to Window", 0};

struct ViewerSettings {
    float top = 0; ///< of the window, in twips, and so on
    float left = 105;
    float height = 8500;
    float width = 9300;
    std::array<bool, kZoomItemCount> zoom{}; ///< checks of kZoomItems
    bool zoomFit = true;                     ///< check of kZoomFit
    qint32 paintSizeMode = 3;
};

// clang-format off
inline constexpr SettingKey kViewerSettings[] = {
    {"ImageDisplay", "Me.TOp", SettingType::Single, "0"},
    {"ImageDisplay", "Me.Left", SettingType::Single, "105"},
    {"ImageDisplay", "Me.Height", SettingType::Single, "8500"},
    {"ImageDisplay", "Me.Width", SettingType::Single, "9300"},
    {"ImageDisplay", "mnuZoom25.Checked", SettingType::Boolean, "False"},
    {"ImageDisplay", "mnuZoom50.Checked", SettingType::Boolean, "False"},
    {"ImageDisplay", "mnuZoom100.Checked", SettingType::Boolean, "False"},
    {"ImageDisplay", "mnuZoom150.Checked", SettingType::Boolean, "False"},
    {"ImageDisplay", "mnuZoom200.Checked", SettingType::Boolean, "False"},
    {"ImageDisplay", "mnuZoom300.Checked", SettingType::Boolean, "False"},
    {"ImageDisplay", "mnuZoomOut.Checked", SettingType::Boolean, "True"},
    {"ImageDisplay", "LEAD1.PaintSizeMode", SettingType::Int32, "3"},
};
// clang-format on

/// Reads every value; one that is absent or cannot be converted has its default.
ViewerSettings LoadViewerSettings(const SettingsStore& store);
/// Hands every value to the store.
void SaveViewerSettings(SettingsStore& store, const ViewerSettings& settings);
/// Fits the window to a screen of that size in twips: one that reaches beneath it goes to its top,
/// 30 pixels lower than the screen; one that reaches beyond its right side to its left, as wide.
void FitToScreen(ViewerSettings& settings, QSizeF screen);

} // namespace quillane
