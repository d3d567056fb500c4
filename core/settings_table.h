#pragma once
// Every stored value of the main window and the album window: section, key, type, default.
// Loading, saving, defaults and tests all walk this one table.
#include "core/globals.h"
#include <QLatin1String>
#include <QString>
#include <array>
#include <variant>

namespace quillane {

class SettingsStore;

/// Values of the store that only the main window's controls hold.
struct MainWindowSettings {
    bool gridLines = false;             ///< grid lines of the list view
    bool includeSubDirectories = false; ///< the scan follows sub-folders
    bool thumbnailsChecked = true;      ///< the Thumbnails view is on
    bool largeIconsChecked = false;     ///< check of the Large Icons entry
    qint32 listStyle = 3;               ///< 0 large icons, 1 small icons, 2 list, 3 details
    bool sorted = true;                 ///< the list view is sorted
    bool searchOn = false;              ///< read and written, but search starts off all the same
    float top = 180;                    ///< of the window, in twips
    float left = 105;
};

enum class SettingType : quint8 { Int16, Int32, Boolean, Single, Text };

/// Defaults that only the running system knows. An empty one leaves the table's own.
enum class SettingFallback : quint8 { InTable, BrowsePath, ExePath, GsPath };
struct SettingFallbacks {
    QString browsePath; ///< the home folder, with separator
    QString exePath;    ///< where programs are looked for first
    QString gsPath;     ///< the folder of a first run
};

/// Where a value lives in memory; nothing for values that a class of their own keeps.
using SettingHome =
    std::variant<std::monostate, qint16 Globals::*, qint32 Globals::*, QString Globals::*,
                 Four<qint16> Globals::*, Four<QString> Globals::*, bool MainWindowSettings::*,
                 qint32 MainWindowSettings::*, float MainWindowSettings::*>;

struct SettingKey {
    const char* section;
    const char* key; ///< '#' stands for the index of an indexed key
    SettingType type;
    const char* fallback; ///< default as text
    SettingHome home = {};
    int count = 1; ///< indexes 0 to count - 1
    SettingFallback named = SettingFallback::InTable;

    bool IsIndexed() const { return count > 1; }
};

inline constexpr int kStoredFolders = 10; ///< entries of the folder history that are kept

// clang-format off
/// The main window's values in the order of their loading and saving.
inline constexpr SettingKey kSettings[] = {
    {"Globals", "jpegQuality", SettingType::Int32, "10", &Globals::jpegQuality},
    {"Globals", "lowThresh", SettingType::Int16, "0", &Globals::lowThresh},
    {"Globals", "highThresh", SettingType::Int16, "50", &Globals::highThresh},
    {"Globals", "gsImageTool", SettingType::Int32, "0", &Globals::gsImageTool},
    {"Globals", "gsPath", SettingType::Text, "", &Globals::gsPath, 1, SettingFallback::GsPath},
    {"Globals", "gThumbnailWidth", SettingType::Int16, "100", &Globals::gThumbnailWidth},
    {"Globals", "gThumbnailHeight", SettingType::Int16, "100", &Globals::gThumbnailHeight},
    {"Globals", "gBrightness", SettingType::Int32, "16", &Globals::gBrightness},
    {"Globals", "gContrast", SettingType::Int32, "16", &Globals::gContrast},
    {"Globals", "gsComments", SettingType::Text, "", &Globals::gsComments},
    {"Globals", "gTagKeyword(#)", SettingType::Text, "", &Globals::gTagKeyword, 4},
    {"Globals", "gTagValue(#)", SettingType::Text, "", &Globals::gTagValue, 4},
    {"Globals", "gTagCheckBox(#)", SettingType::Int16, "0", &Globals::gTagCheckBox, 4},
    {"Globals", "gsFileKeyword(#)", SettingType::Text, "", &Globals::gsFileKeyword, 4},

    {"Settings", "lvSelected.GridLines", SettingType::Boolean, "False", &MainWindowSettings::gridLines},
    {"Settings", "LEADThumb1.IncludeSubDirectories", SettingType::Boolean, "False", &MainWindowSettings::includeSubDirectories},
    {"Settings", "mnuMainViewTileBoxTileImage.Checked", SettingType::Boolean, "True", &MainWindowSettings::thumbnailsChecked},
    {"Settings", "mnuMainViewTileBoxTileFilename.Checked", SettingType::Boolean, "False", &MainWindowSettings::largeIconsChecked},
    {"Settings", "lvSelected.View", SettingType::Int32, "3", &MainWindowSettings::listStyle},
    {"Settings", "lvSelected.Sorted", SettingType::Boolean, "True", &MainWindowSettings::sorted},
    {"Settings", "mnuSearchOn.Checked", SettingType::Boolean, "False", &MainWindowSettings::searchOn},

    {"MainScreenSettings", "Me.TOp", SettingType::Single, "180", &MainWindowSettings::top},
    {"MainScreenSettings", "Me.Left", SettingType::Single, "105", &MainWindowSettings::left},

    {"CustomToolPrefs", "chkCustomTool(#).value", SettingType::Int16, "0", {}, 4},
    {"CustomToolPrefs", "txtCustomTool(#).Text", SettingType::Text, "", {}, 4},
    {"CustomToolPrefs", "txtCustomToolPath(#).Text", SettingType::Text, "", {}, 4},
    {"CustomToolPrefs", "chkCustomApp(#).value", SettingType::Int16, "0", {}, 4},
    {"CustomToolPrefs", "txtCustomApp(#).Text", SettingType::Text, "", {}, 4},
    {"CustomToolPrefs", "txtCustomAppPath(#).Text", SettingType::Text, "", {}, 4},

    {"MainComboDirEntries", "cboDirPath.Text#", SettingType::Text, "", {}, kStoredFolders},

    {"MainScreenSettings", "browsePath", SettingType::Text, "C:\\", &Globals::browsePath, 1, SettingFallback::BrowsePath},
    {"MainScreenSettings", "exePath", SettingType::Text, "C:\\Program Files", &Globals::exePath, 1, SettingFallback::ExePath},

    {"Globals", "gsVideoTool", SettingType::Int32, "0", &Globals::gsVideoTool},
};

/// The album window's values, which it loads and saves by itself.
inline constexpr SettingKey kAlbumSettings[] = {
    {"PhotoAlbum", "nmuViewFilename.CHECKED", SettingType::Boolean, "True"},
    {"PhotoAlbum", "mnuViewThumbnails.CHECKED", SettingType::Boolean, "False"},
};
// clang-format on

/// The row of a section and key, spelled as in the tables; Failure kFailureIndex if there is none.
const SettingKey& SettingRow(QLatin1String section, QLatin1String key);
/// The key as it is stored: '#' replaced by the index.
QString StoredKey(const SettingKey& row, int index = 0);
/// The default as text: the named fallback if the row asks for one and there is one, else the
/// table's.
QString DefaultText(const SettingKey& row, const SettingFallbacks& fallbacks = {});

/// The stored value, converted; the default for an absent key and for a text that cannot be
/// converted. A boolean is "True", "False" or a number, 0 being false.
QString ReadText(const SettingsStore& store, const SettingKey& row, int index = 0,
                 const SettingFallbacks& fallbacks = {});
qint16 ReadInt16(const SettingsStore& store, const SettingKey& row, int index = 0);
qint32 ReadInt32(const SettingsStore& store, const SettingKey& row, int index = 0);
bool ReadBool(const SettingsStore& store, const SettingKey& row, int index = 0);
float ReadSingle(const SettingsStore& store, const SettingKey& row, int index = 0);

/// Hands a value to the store in its text form: plain decimal text, "True" and "False", and the
/// shortest decimal text of a single.
void WriteText(SettingsStore& store, const SettingKey& row, const QString& value, int index = 0);
void WriteInt(SettingsStore& store, const SettingKey& row, qint32 value, int index = 0);
void WriteBool(SettingsStore& store, const SettingKey& row, bool value, int index = 0);
void WriteSingle(SettingsStore& store, const SettingKey& row, float value, int index = 0);

/// Every value of kSettings that lives in one of the two structs.
void LoadGlobals(const SettingsStore& store, Globals& globals,
                 const SettingFallbacks& fallbacks = {});
void SaveGlobals(SettingsStore& store, const Globals& globals);
void LoadMainWindowSettings(const SettingsStore& store, MainWindowSettings& settings);
void SaveMainWindowSettings(SettingsStore& store, const MainWindowSettings& settings);

} // namespace quillane
