#include "viewer/menu_table.h"

#include "viewer/command_table.h"
#include "viewer/viewer_settings.h"

#include <algorithm>
#include <vector>

namespace quillane {

namespace {

using enum EntryKind;
constexpr EntryState kThere = EntryState::Built;

constexpr MenuEntry kViewerFixedMenus[] = {
    {"", "mnuFile", u"&File", Menu},
    {"mnuFile", "mnuOpen", u"&Open...", Entry, kThere, "Ctrl+O", "document-open"},
    {"mnuFile", "mnuSingleFileSave", u"&Save", Entry, kThere, "Ctrl+S", "document-save"},
    {"mnuFile", "mnuSingleFileSaveAs", u"Save &As...", Entry, kThere, "Ctrl+Shift+S",
     "document-save-as"},
    {"mnuFile", "", u"", Separator},
    {"mnuFile", "mnuPrint", u"&Print", Entry, kThere, "Ctrl+P", "document-print"},
    {"mnuFile", "", u"", Separator},
    {"mnuFile", "mnuAcquireTwain", u"TWAIN A&cquire...", Entry, kThere, "", "scanner"},
    {"mnuFile", "mnuSelectTwainSource", u"Select &TWAIN Source", Entry},
    {"mnuFile", "", u"", Separator},
    {"mnuFile", "mnuExit", u"E&xit", Entry, kThere, "Ctrl+W", "window-close"},

    {"", "mnuEdit", u"&Edit", Menu},
    {"mnuEdit", "mnuUndoLast", u"&Undo Last", Entry, kThere, "Ctrl+Z", "edit-undo"},
    {"mnuEdit", "", u"", Separator},
    {"mnuEdit", "mnuCopy", u"&Copy", Entry, kThere, "Ctrl+C", "edit-copy"},
    {"mnuEdit", "mnuPaste", u"&Paste", Entry, kThere, "Ctrl+V", "edit-paste"},
    {"mnuEdit", "", u"", Separator},
    {"mnuEdit", "mnuSelectRegion", u"Select Region", Menu},
    {"mnuSelectRegion", "mnuSelectNone", u"None", Check},
    {"mnuSelectRegion", "mnuSelectRectangle", u"Rectangle", Check},
    {"mnuSelectRegion", "mnuSelectEllipse", u"Ellipse", Check},
    {"mnuSelectRegion", "mnuSelectRoundedRectangle", u"Rounded Rectangle", Check},
    {"mnuSelectRegion", "mnuSelectFreeHand", u"Free Hand", Check},
    {"mnuEdit", "mnuCancelSelectRegion", u"Cancel Select Region"},
    {"mnuEdit", "mnuCrop", u"C&rop", Entry, kThere, "", "transform-crop"},

    {"", "mnuView", u"&View", Menu},
    {"mnuView", "mnuZoom25", kZoomItems[0].caption, Check},
    {"mnuView", "mnuZoom50", kZoomItems[1].caption, Check},
    {"mnuView", "mnuZoom100", kZoomItems[2].caption, Check, kThere, "Ctrl+1"},
    {"mnuView", "mnuZoom150", kZoomItems[3].caption, Check},
    {"mnuView", "mnuZoom200", kZoomItems[4].caption, Check, kThere, "Ctrl+2"},
    {"mnuView", "mnuZoom300", kZoomItems[5].caption, Check, kThere, "Ctrl+3"},
    {"mnuView", "mnuZoomOut", kZoomFit.caption, Check, kThere, "Ctrl+0"},
    {"mnuView", "", u"", Separator},
    {"mnuView", "mnuMag", u"Magnifying Glass", Check, kThere, "Ctrl+M"},
};

struct CommandMenu {
    const char* parent;
    const char* name;
    const char16_t* caption;
};
constexpr CommandMenu kCommandMenus[] = {
    {"", "mnuImage", u"&Image"},
    {"", "mnuEffects", u"E&ffects"},
    {"mnuEffects", "mnuSpatialFilters", u"Spatial Filters"},
    {"mnuEffects", "mnuBinaryFilters", u"Binary Filters"},
    {"", "mnuColors", u"&Colors"},
};

struct CommandKey {
    const char* name;
    const char* shortcut;
};
constexpr CommandKey kCommandKeys[] = {
    {"mnuRotate90", "Ctrl+R"},
    {"mnuRotate270", "Ctrl+Shift+R"},
    {"mnuViewHistogram", "Ctrl+H"},
    {"mnuInvert", "Ctrl+I"},
};

std::vector<MenuEntry> MakeViewerMenu()
{
    std::vector<MenuEntry> all(std::begin(kViewerFixedMenus), std::end(kViewerFixedMenus));
    all.reserve(all.size() + EnhanceCommands().size() + std::size(kCommandMenus));
    QLatin1String last;
    QList<QLatin1String> begun;
    for (const EnhanceCommand& command : EnhanceCommands()) {
        const QLatin1String menu(command.menu);
        if (menu != last && !begun.contains(menu)) {
            const auto row = std::find_if(
                std::begin(kCommandMenus), std::end(kCommandMenus),
                [&](const CommandMenu& each) { return menu == QLatin1String(each.name); });
            all.push_back({row->parent, row->name, row->caption, Menu});
            begun.append(menu);
        }
        last = menu;
        const auto key = std::find_if(
            std::begin(kCommandKeys), std::end(kCommandKeys), [&](const CommandKey& each) {
                return QLatin1String(each.name) == QLatin1String(command.name);
            });
        all.push_back({command.menu, command.name, command.caption, Entry, kThere,
                       key == std::end(kCommandKeys) ? "" : key->shortcut});
    }
    return all;
}

constexpr ToolButton kViewerButtons[] = {
    {1, "Toolbar1_1", u"Open Image...", "open-image"},
    {2, "Toolbar1_2", u"Save Image...", "save-image"},
    {3, "", u"", ""},
    {4, "Toolbar1_4", u"Print", "print"},
    {5, "Toolbar1_5", u"TWAIN Acquire...", "scan"},
    {6, "", u"", ""},
    {7, "Toolbar1_7", u"Copy", "copy"},
    {8, "Toolbar1_8", u"Paste", "paste"},
    {9, "Toolbar1_9", u"Cut", "cut"},
    {10, "Toolbar1_10", u"Undo", "undo"},
    {11, "", u"", ""},
    {12, "Toolbar1_12", u"Pointer", "pointer"},
    {13, "Toolbar1_13", u"Mag Glass", "magnifier"},
    {14, "Toolbar1_14", u"Zoom Image", "zoom-in"},
    {15, "Toolbar1_15", u"Un-Zoom Image", "zoom-out"},
    {16, "Toolbar1_16", u"Select Rectangle Area", "select-rectangle"},
    {17, "Toolbar1_17", u"Select Free Hand Area", "select-free-hand"},
    {18, "", u"", ""},
    {19, "Toolbar1_19", u"Crop Image", "crop"},
    {20, "Toolbar1_20", u"Fill", "fill"},
    {kDrawTextButton, "Toolbar1_21", u"Draw Text", "draw-text"},
    {kDrawButton, "Toolbar1_22", u"Draw", "draw"},
};

} // namespace

std::span<const MenuEntry> ViewerMenu()
{
    static const std::vector<MenuEntry> all = MakeViewerMenu();
    return all;
}

std::span<const ToolButton> ViewerToolButtons()
{
    return kViewerButtons;
}

} // namespace quillane
