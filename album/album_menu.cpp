#include "album/album_menu.h"

namespace quillane {

namespace {

using enum EntryKind;
constexpr EntryState kAlbumEntry = EntryState::Built;
constexpr EntryState kAlbumNotYet = EntryState::NotYet;

constexpr MenuEntry kAlbumMenu[] = {
    {"", "mnuFile", u"&File", Menu},
    {"mnuFile", "mnuOpen", u"&Open", Entry, kAlbumEntry, "Ctrl+O", "document-open"},
    {"mnuFile", "mnuSave", u"&Save", Entry, kAlbumEntry, "Ctrl+S", "document-save"},
    {"mnuFile", "", u"", Separator},
    {"mnuFile", "mnuPrint", u"&Print", Entry, kAlbumNotYet, "Ctrl+P", "document-print"},
    {"mnuFile", "mnuPrintSetup", u"&P&rinter Setup", Entry, kAlbumNotYet},
    {"mnuFile", "mnuSend", u"Send...", Entry, kAlbumEntry, "", "mail-send"},
    {"mnuFile", "", u"", Separator},
    {"mnuFile", "mnuPaste", u"P&aste", Entry, kAlbumEntry, "Ctrl+V", "edit-paste"},
    {"mnuFile", "mnuTileImages", u"&Tile Images in Browser", Entry},
    {"mnuFile", "", u"", Separator},
    {"mnuFile", "mnuRemoveSelected", u"Remove Selected...", Entry, kAlbumEntry, "Del",
     "list-remove"},
    {"mnuFile", "mnuClearALL", u"Clear ALL", Entry, kAlbumEntry, "", "edit-clear"},
    {"mnuFile", "", u"", Separator},
    {"mnuFile", "mnuExit", u"&Exit", Entry, kAlbumEntry, "Ctrl+W", "window-close"},

    {"", "mnuView", u"&View", Menu},
    {"mnuView", "mnuViewThumbnails", u"Images by Thumbnails", Check, kAlbumEntry, "Ctrl+1"},
    {"mnuView", "nmuViewFilename", u"Images by Filename", Check, kAlbumEntry, "Ctrl+2"},
};

} // namespace

std::span<const MenuEntry> AlbumMenu()
{
    return kAlbumMenu;
}

} // namespace quillane
