#include "browser/menu_table.h"

namespace quillane {

namespace {

using enum EntryKind;
constexpr EntryState kBuilt = EntryState::Built;
constexpr EntryState kNotYet = EntryState::NotYet;

constexpr MenuEntry kMainMenu[] = {
    {"", "mnuMainFile", u"&File", Menu},
    {"", "mnuMainView", u"&View", Menu},
    {"", "mnuSearch", u"&Search", Menu},
    {"", "mnuTools", u"&Tools", Menu},
    {"", "mnuApplications", u"&Applications", Menu},
    {"", "mnuSlideShowMenu", u"S&lide Show", Menu},
    {"", "mnuVideo", u"Vi&deo", Menu},
    {"", "mnuHelp", u"&Help", Menu},

    {"mnuMainFile", "mnuMainFileNew", u"&New", Menu},
    {"mnuMainFileNew", "nnuNewFolder", u"&Folder", Entry, kBuilt, "Ctrl+Shift+N", "folder-new"},
    {"mnuMainFile", "mnuMainFileOpen", u"&Open", Entry, kBuilt, "Ctrl+O", "document-open"},
    {"mnuMainFile", "", u"", Separator},
    {"mnuMainFile", "mnuAcquireTwain", u"&Acquire", Entry, kBuilt, "", "scanner"},
    {"mnuMainFile", "mnuSelectTwainSource", u"&Select TWAIN Source", Entry},
    {"mnuMainFile", "mnuImportVideo", u"&Import Video", Entry, kNotYet, "", "video-x-generic"},
    {"mnuMainFile", "", u"", Separator},
    {"mnuMainFile", "mnuEmailImages", u"E-&mail Images...", Entry, kBuilt, "", "mail-send"},
    {"mnuMainFile", "", u"", Separator},
    {"mnuMainFile", "mnuDelete", u"&Delete...", Entry, kBuilt, "Shift+Del", "edit-delete"},
    {"mnuMainFile", "mnuCopy", u"Cop&y To...", Entry, kBuilt, "", "edit-copy"},
    {"mnuMainFile", "mnuMove", u"&Move To...", Entry},
    {"mnuMainFile", "mnuRename", u"&Rename...", Entry, kBuilt, "F2", "edit-rename"},
    {"mnuMainFile", "", u"", Separator},
    {"mnuMainFile", "mnuMainFilePageSetup", u"&Print", Entry, kNotYet, "Ctrl+P", "document-print"},
    {"mnuMainFile", "mnuMainFilePrintSetup", u"Print Setup...", Entry, kNotYet},
    {"mnuMainFile", "", u"", Separator},
    {"mnuMainFile", "mnuMainFilePreferences", u"Pre&ferences...", Entry, kBuilt, "",
     "preferences-system"},
    {"mnuMainFile", "mnuClearFileHistory", u"&Clear History", Entry, kBuilt, "",
     "edit-clear-history"},
    {"mnuMainFile", "", u"", Separator},
    {"mnuMainFile", "mnuMainFIleExit", u"&Exit", Entry, kBuilt, "Ctrl+Q", "application-exit"},

    {"mnuMainView", "mnuMainViewTileBoxTileImage", u"Thumbnails", Check, kBuilt, "Ctrl+1"},
    {"mnuMainView", "mnuMainViewTileBoxTileFilename", u"Large Icons", Check, kBuilt, "Ctrl+2"},
    {"mnuMainView", "mnuMainViewTileBoxTileFilename1", u"Small Icons", Check, kBuilt, "Ctrl+3"},
    {"mnuMainView", "mnuMainViewTileBoxTileFilename2", u"List", Check, kBuilt, "Ctrl+4"},
    {"mnuMainView", "mnuMainViewTileBoxTileFilename3", u"Details", Check, kBuilt, "Ctrl+5"},
    {"mnuMainView", "", u"", Separator},
    {"mnuMainView", "mnuRefresh", u"&Refresh", Entry, kBuilt, "F5", "view-refresh"},
    {"mnuMainView", "", u"", Separator},
    {"mnuMainView", "mnuFolders", u"&Folders", Menu},
    {"mnuFolders", "mnuShowAll", u"&Show All Files", Check},
    {"mnuFolders", "mnuRefreshTree", u"&Refresh", Entry, kBuilt, "Shift+F5", "view-refresh"},

    {"mnuSearch", "mnuSearchSettings", u"Search Photo &Metadata", Entry, kBuilt, "Ctrl+F",
     "edit-find"},
    {"mnuSearch", "mnuSearchOn", u"Show Searched &Photos", Check},
    {"mnuSearch", "", u"", Separator},
    {"mnuSearch", "mnuFileFiles", u"&Find Files...", Entry, kBuilt, "Ctrl+Shift+F",
     "system-search"},

    {"mnuTools", "mnuImage", u"View/Enhance Photo", Check},
    {"mnuTools", "mnuTagEdit", u"Edit Photo Metadata", Check, kBuilt},
    {"mnuTools", "mnuCustomTool1", u"Custom Tool 1", Check},
    {"mnuTools", "mnuCustomTool2", u"Custom Tool 2", Check},
    {"mnuTools", "mnuCustomTool3", u"Custom Tool 3", Check},
    {"mnuTools", "mnuCustomTool4", u"Custom Tool 4", Check},
    {"mnuTools", "mnuWindowsDefaultViewer", u"Windows Default Photo Viewer", Check},
    {"mnuTools", "", u"", Separator},
    {"mnuTools", "mnuShowEditImageFileList", u"Photo &Album...", Entry, EntryState::Built,
     "Ctrl+L"},
    {"mnuTools", "mnuWayfarix", u"&Map Photo Position"},

    {"mnuApplications", "mnuTagEditApp", u"&Photo Metadata...", Entry, kNotYet},
    {"mnuApplications", "mnuBatchConversionApplication", u"&Batch Conversion...", Entry, kNotYet},
    {"mnuApplications", "mnuAddDateTimeStampApplication", u"Add &Date/Time Stamp...", Entry,
     kNotYet},
    {"mnuApplications", "mnuGPSAddWaypoints", u"Add &GPS Waypoints...", Entry, kNotYet},
    {"mnuApplications", "", u"", Separator},
    {"mnuApplications", "mnuCustomApp1", u"Custom Application 1", Entry},
    {"mnuApplications", "mnuCustomApp2", u"Custom Application 2", Entry},
    {"mnuApplications", "mnuCustomApp3", u"Custom Application 3", Entry},
    {"mnuApplications", "mnuCustomApp4", u"Custom Application 4", Entry},

    {"mnuSlideShowMenu", "mnuSlideShowFolder", u"&Folder", Entry, kNotYet, "F11"},
    {"mnuSlideShowMenu", "mnuSlideShow", u"&Selected Images", Entry, kNotYet},
    {"mnuSlideShowMenu", "mnuSlideShowAlbum", u"Photo &Album", Entry, kNotYet},

    {"mnuVideo", "mnuVideoPlayer", u"&Media Player...", Entry, kNotYet},
    {"mnuVideo", "mnuCaptureVideoPlayer", u"Play and &Edit Video...", Entry, kNotYet},
    {"mnuVideo", "mnuVideoCapture", u"&Capture Video...", Entry, kNotYet},
    {"mnuVideo", "mnuVideoConvert", u"C&onvert Video...", Entry, kNotYet},

    {"mnuHelp", "mnuHelpContents", u"&Help", Entry, kBuilt, "F1", "help-contents"},
    {"mnuHelp", "", u"", Separator},
    {"mnuHelp", "mnuTechSupport", u"Technical &Support"},
    {"mnuHelp", "mnuOnlineTutorial", u"Online &Tutorial"},
    {"mnuHelp", "mnuQuillaneWeb", u"Quillane on the &Web"},
    {"mnuHelp", "", u"", Separator},
    {"mnuHelp", "mnuHelpAbout", u"&About Quillane", Entry, kBuilt, "", "help-about"},
};

constexpr MenuEntry kPopupMenu[] = {
    {"mnuPopUp", "mnuPopImage", u"View/Enhance Photo"},
    {"mnuPopUp", "mnuPopEditTags", u"Edit Photo Metadata", Entry, kBuilt},
    {"mnuPopUp", "mnuPopCustomTool1", u"Custom Tool 1"},
    {"mnuPopUp", "mnuPopCustomTool2", u"Custom Tool 2"},
    {"mnuPopUp", "mnuPopCustomTool3", u"Custom Tool 3"},
    {"mnuPopUp", "mnuPopCustomTool4", u"Custom Tool 4"},
    {"mnuPopUp", "mnuPopWindowsDefaultViewer", u"Windows Default Photo Viewer"},
    {"mnuPopUp", "", u"", Separator},
    {"mnuPopUp", "mnuPopSelect", u"Select &All Files"},
    {"mnuPopUp", "mnuPopAdd", u"&Add File(s) to Photo Album"},
    {"mnuPopUp", "mnuPopShow", u"&Show Photo Album"},
    {"mnuPopUp", "", u"", Separator},
    {"mnuPopUp", "mnuPopSetWallpaper", u"Set Photo as Wallpaper"},
    {"mnuPopUp", "mnuPopEmail", u"E-&mail Images..."},
    {"mnuPopUp", "mnuPopWayfarix", u"Map Photo &Position"},
    {"mnuPopUp", "mnuPopAddGPSWaypoints", u"Add &GPS Waypoints...", Entry, kNotYet},
    {"mnuPopUp", "", u"", Separator},
    {"mnuPopUp", "mnuPopDelete", u"&Delete..."},
    {"mnuPopUp", "mnuPopCopy", u"Cop&y To..."},
    {"mnuPopUp", "mnuPopMove", u"Mo&ve To..."},
    {"mnuPopUp", "mnuPopRename", u"&Rename..."},
};

constexpr ToolButton kToolButtons[] = {
    {1, "Toolbar1_1", u"Open Image", "open-image"},
    {2, "Toolbar1_2", u"Find Image", "find-image"},
    {3, "Toolbar1_3", u"Search Image Text...", "search-text"},
    {4, "", u"", ""},
    {5, "Toolbar1_5", u"Print Images", "print", kNotYet},
    {6, "Toolbar1_6", u"TWAIN Capture...", "scan"},
    {7, "Toolbar1_7", u"Video Capture...", "video-capture"},
    {8, "", u"", ""},
    {9, "Toolbar1_9", u"Send...", "send"},
    {10, "Toolbar1_10", u"View Photo Album...", "album"},
};

constexpr ViewEntry kViewEntries[] = {
    {"mnuMainViewTileBoxTileImage", u"Thumbnails", -1, 1},
    {"mnuMainViewTileBoxTileFilename", u"Large Icons", 0, 0},
    {"mnuMainViewTileBoxTileFilename1", u"Small Icons", 1, 0},
    {"mnuMainViewTileBoxTileFilename2", u"List", 2, 0},
    {"mnuMainViewTileBoxTileFilename3", u"Details", 3, 0},
};

} // namespace

std::span<const MenuEntry> MainMenu()
{
    return kMainMenu;
}

std::span<const MenuEntry> PopupMenu()
{
    return kPopupMenu;
}

std::span<const ToolButton> FixedToolButtons()
{
    return kToolButtons;
}

std::span<const ViewEntry> ViewEntries()
{
    return kViewEntries;
}

} // namespace quillane
