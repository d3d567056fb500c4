#include "core/expect_failure.h"
#include "core/number_locale.h"
#include "core/settings_store.h"
#include "core/settings_table.h"
#include "core/temp_folder.h"
#include <QSet>
#include <gtest/gtest.h>

namespace quillane {

struct ExpectedKey {
    const char* section;
    const char* key;
    SettingType type;
    const char* fallback;
};

using enum SettingType;

// Every stored key of the main window, spelled out, in the order of loading.
constexpr ExpectedKey kExpected[] = {
    {"Globals", "jpegQuality", Int32, "10"},
    {"Globals", "lowThresh", Int16, "0"},
    {"Globals", "highThresh", Int16, "50"},
    {"Globals", "gsImageTool", Int32, "0"},
    {"Globals", "gsPath", Text, ""},
    {"Globals", "gThumbnailWidth", Int16, "100"},
    {"Globals", "gThumbnailHeight", Int16, "100"},
    {"Globals", "gBrightness", Int32, "16"},
    {"Globals", "gContrast", Int32, "16"},
    {"Globals", "gsComments", Text, ""},
    {"Globals", "gTagKeyword(0)", Text, ""},
    {"Globals", "gTagKeyword(1)", Text, ""},
    {"Globals", "gTagKeyword(2)", Text, ""},
    {"Globals", "gTagKeyword(3)", Text, ""},
    {"Globals", "gTagValue(0)", Text, ""},
    {"Globals", "gTagValue(1)", Text, ""},
    {"Globals", "gTagValue(2)", Text, ""},
    {"Globals", "gTagValue(3)", Text, ""},
    {"Globals", "gTagCheckBox(0)", Int16, "0"},
    {"Globals", "gTagCheckBox(1)", Int16, "0"},
    {"Globals", "gTagCheckBox(2)", Int16, "0"},
    {"Globals", "gTagCheckBox(3)", Int16, "0"},
    {"Globals", "gsFileKeyword(0)", Text, ""},
    {"Globals", "gsFileKeyword(1)", Text, ""},
    {"Globals", "gsFileKeyword(2)", Text, ""},
    {"Globals", "gsFileKeyword(3)", Text, ""},
    {"Settings", "lvSelected.GridLines", Boolean, "False"},
    {"Settings", "LEADThumb1.IncludeSubDirectories", Boolean, "False"},
    {"Settings", "mnuMainViewTileBoxTileImage.Checked", Boolean, "True"},
    {"Settings", "mnuMainViewTileBoxTileFilename.Checked", Boolean, "False"},
    {"Settings", "lvSelected.View", Int32, "3"},
    {"Settings", "lvSelected.Sorted", Boolean, "True"},
    {"Settings", "mnuSearchOn.Checked", Boolean, "False"},
    {"MainScreenSettings", "Me.TOp", Single, "180"},
    {"MainScreenSettings", "Me.Left", Single, "105"},
    {"CustomToolPrefs", "chkCustomTool(0).value", Int16, "0"},
    {"CustomToolPrefs", "chkCustomTool(1).value", Int16, "0"},
    {"CustomToolPrefs", "chkCustomTool(2).value", Int16, "0"},
    {"CustomToolPrefs", "chkCustomTool(3).value", Int16, "0"},
    {"CustomToolPrefs", "txtCustomTool(0).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomTool(1).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomTool(2).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomTool(3).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomToolPath(0).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomToolPath(1).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomToolPath(2).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomToolPath(3).Text", Text, ""},
    {"CustomToolPrefs", "chkCustomApp(0).value", Int16, "0"},
    {"CustomToolPrefs", "chkCustomApp(1).value", Int16, "0"},
    {"CustomToolPrefs", "chkCustomApp(2).value", Int16, "0"},
    {"CustomToolPrefs", "chkCustomApp(3).value", Int16, "0"},
    {"CustomToolPrefs", "txtCustomApp(0).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomApp(1).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomApp(2).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomApp(3).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomAppPath(0).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomAppPath(1).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomAppPath(2).Text", Text, ""},
    {"CustomToolPrefs", "txtCustomAppPath(3).Text", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text0", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text1", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text2", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text3", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text4", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text5", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text6", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text7", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text8", Text, ""},
    {"MainComboDirEntries", "cboDirPath.Text9", Text, ""},
    {"MainScreenSettings", "browsePath", Text, "C:\\"},
    {"MainScreenSettings", "exePath", Text, "C:\\Program Files"},
    {"Globals", "gsVideoTool", Int32, "0"},
};

TEST(SettingsTable, HoldsEveryKeyWithTypeAndDefaultInTheOrderOfLoading)
{
    size_t at = 0;
    for (const SettingKey& row : kSettings) {
        for (int i = 0; i < row.count; ++i, ++at) {
            ASSERT_LT(at, std::size(kExpected)) << row.key;
            EXPECT_STREQ(row.section, kExpected[at].section) << row.key;
            EXPECT_EQ(StoredKey(row, i).toStdString(), kExpected[at].key);
            EXPECT_EQ(row.type, kExpected[at].type) << row.key;
            EXPECT_STREQ(row.fallback, kExpected[at].fallback) << row.key;
        }
    }
    EXPECT_EQ(at, std::size(kExpected));
}

TEST(SettingsTable, HoldsTheAlbumWindowsTwoSwitches)
{
    ASSERT_EQ(std::size(kAlbumSettings), 2u);
    EXPECT_STREQ(kAlbumSettings[0].section, "PhotoAlbum");
    EXPECT_STREQ(kAlbumSettings[0].key, "nmuViewFilename.CHECKED");
    EXPECT_STREQ(kAlbumSettings[1].section, "PhotoAlbum");
    EXPECT_STREQ(kAlbumSettings[1].key, "mnuViewThumbnails.CHECKED");
    EXPECT_NE(QByteArray(kAlbumSettings[0].fallback), kAlbumSettings[1].fallback);
    for (const SettingKey& row : kAlbumSettings)
        EXPECT_EQ(row.type, Boolean);
}

TEST(SettingsTable, RowsAreFoundBySectionAndKey)
{
    for (const SettingKey& row : kSettings) {
        const auto& found = SettingRow(QLatin1String(row.section), QLatin1String(row.key));
        EXPECT_EQ(&found, &SettingRow(QLatin1String(row.section), QLatin1String(row.key)));
        EXPECT_STREQ(found.key, row.key);
    }
    EXPECT_EQ(FailureOf([] { SettingRow(QLatin1String("Globals"), QLatin1String("Me.TOp")); }),
              kFailureIndex);
}

class SettingsTableTest : public testing::Test {
protected:
    const SettingKey& Row(const char* section, const char* key)
    {
        return SettingRow(QLatin1String(section), QLatin1String(key));
    }
    TempFolder mFolder;
    SettingsStore mStore{mFolder.Path("s.ini")};
};

TEST_F(SettingsTableTest, AFirstRunTakesTheDefaults)
{
    // Whatever stood there before the loading goes.
    Globals globals;
    globals.jpegQuality = globals.gBrightness = globals.gContrast = globals.gsImageTool = 99;
    globals.gsVideoTool = 99;
    globals.lowThresh = globals.highThresh = globals.gThumbnailWidth = globals.gThumbnailHeight = 9;
    globals.gsPath = globals.gsComments = globals.browsePath = globals.exePath = "x";
    globals.gTagKeyword.fill("x");
    globals.gTagValue.fill("x");
    globals.gsFileKeyword.fill("x");
    globals.gTagCheckBox.fill(9);
    LoadGlobals(mStore, globals, {"/home/ann/", "/usr/bin", {}});

    EXPECT_EQ(globals.jpegQuality, 10);
    EXPECT_EQ(globals.lowThresh, 0);
    EXPECT_EQ(globals.highThresh, 50);
    EXPECT_EQ(globals.gsImageTool, 0);
    EXPECT_EQ(globals.gsPath, QString());
    EXPECT_EQ(globals.gThumbnailWidth, 100);
    EXPECT_EQ(globals.gThumbnailHeight, 100);
    EXPECT_EQ(globals.gBrightness, 16);
    EXPECT_EQ(globals.gContrast, 16);
    EXPECT_EQ(globals.gsComments, QString());
    EXPECT_EQ(globals.gTagKeyword, Four<QString>{});
    EXPECT_EQ(globals.gTagValue, Four<QString>{});
    EXPECT_EQ(globals.gTagCheckBox, Four<qint16>{});
    EXPECT_EQ(globals.gsFileKeyword, Four<QString>{});
    EXPECT_EQ(globals.gsVideoTool, 0);
    EXPECT_EQ(globals.browsePath, "/home/ann/");
    EXPECT_EQ(globals.exePath, "/usr/bin");

    MainWindowSettings settings{true, true, false, true, 9, false, true, 9, 9};
    LoadMainWindowSettings(mStore, settings);
    EXPECT_FALSE(settings.gridLines);
    EXPECT_FALSE(settings.includeSubDirectories);
    EXPECT_TRUE(settings.thumbnailsChecked);
    EXPECT_FALSE(settings.largeIconsChecked);
    EXPECT_EQ(settings.listStyle, 3);
    EXPECT_TRUE(settings.sorted);
    EXPECT_FALSE(settings.searchOn);
    EXPECT_EQ(settings.top, 180.0f);
    EXPECT_EQ(settings.left, 105.0f);
}

TEST_F(SettingsTableTest, WithoutNamedFallbacksTheTableDecides)
{
    Globals globals;
    LoadGlobals(mStore, globals);
    EXPECT_EQ(globals.browsePath, "C:\\");
    EXPECT_EQ(globals.exePath, "C:\\Program Files");
    LoadGlobals(mStore, globals, {{}, {}, "/home/ann/Pictures/"});
    EXPECT_EQ(globals.gsPath, "/home/ann/Pictures/");
    EXPECT_EQ(globals.browsePath, "C:\\");
}

TEST_F(SettingsTableTest, AStoredEmptyTextIsNotReplacedByTheFallback)
{
    mStore.SaveSetting("MainScreenSettings", "browsePath", {});
    Globals globals;
    LoadGlobals(mStore, globals, {"/home/ann/", {}, {}});
    EXPECT_EQ(globals.browsePath, QString());
}

TEST_F(SettingsTableTest, EveryValueSurvivesARoundTrip)
{
    Globals globals;
    globals.jpegQuality = 255;
    globals.lowThresh = -32768;
    globals.highThresh = 32767;
    globals.gsImageTool = 6;
    globals.gsPath = QStringLiteral("/pics/\u03B1 \"x\", ;/") + QChar(0xDCFF) + u'/';
    globals.gThumbnailWidth = 160;
    globals.gThumbnailHeight = 120;
    globals.gBrightness = 2'147'483'647;
    globals.gContrast = -2'147'483'647 - 1;
    globals.gsComments = "two\r\nlines";
    globals.gTagKeyword = {"City", "", " Name ", "=x"};
    globals.gTagValue = {"Rome", "Ann", "", "%"};
    globals.gTagCheckBox = {1, 0, 1, -1};
    globals.gsFileKeyword = {"Name", "Event", "City", "Wind"};
    globals.gsVideoTool = 1;
    globals.browsePath = "/mnt/";
    globals.exePath = "/opt/bin/";
    const MainWindowSettings settings{true, true, false, true, 1, false, true, 1234.5f, -7.25f};
    SaveGlobals(mStore, globals);
    SaveMainWindowSettings(mStore, settings);
    ASSERT_TRUE(mStore.Flush());

    const SettingsStore store(mStore.File());
    Globals read;
    LoadGlobals(store, read, {"/home/", "/usr/bin", "/x/"});
    EXPECT_EQ(read.jpegQuality, globals.jpegQuality);
    EXPECT_EQ(read.lowThresh, globals.lowThresh);
    EXPECT_EQ(read.highThresh, globals.highThresh);
    EXPECT_EQ(read.gsImageTool, globals.gsImageTool);
    EXPECT_EQ(read.gsPath, globals.gsPath);
    EXPECT_EQ(read.gThumbnailWidth, globals.gThumbnailWidth);
    EXPECT_EQ(read.gThumbnailHeight, globals.gThumbnailHeight);
    EXPECT_EQ(read.gBrightness, globals.gBrightness);
    EXPECT_EQ(read.gContrast, globals.gContrast);
    EXPECT_EQ(read.gsComments, globals.gsComments);
    EXPECT_EQ(read.gTagKeyword, globals.gTagKeyword);
    EXPECT_EQ(read.gTagValue, globals.gTagValue);
    EXPECT_EQ(read.gTagCheckBox, globals.gTagCheckBox);
    EXPECT_EQ(read.gsFileKeyword, globals.gsFileKeyword);
    EXPECT_EQ(read.gsVideoTool, globals.gsVideoTool);
    EXPECT_EQ(read.browsePath, globals.browsePath);
    EXPECT_EQ(read.exePath, globals.exePath);
    MainWindowSettings readSettings;
    LoadMainWindowSettings(store, readSettings);
    EXPECT_EQ(readSettings.gridLines, settings.gridLines);
    EXPECT_EQ(readSettings.includeSubDirectories, settings.includeSubDirectories);
    EXPECT_EQ(readSettings.thumbnailsChecked, settings.thumbnailsChecked);
    EXPECT_EQ(readSettings.largeIconsChecked, settings.largeIconsChecked);
    EXPECT_EQ(readSettings.listStyle, settings.listStyle);
    EXPECT_EQ(readSettings.sorted, settings.sorted);
    EXPECT_EQ(readSettings.searchOn, settings.searchOn);
    EXPECT_EQ(readSettings.top, settings.top);
    EXPECT_EQ(readSettings.left, settings.left);
}

TEST_F(SettingsTableTest, EveryRowOfTheTableIsWrittenByItsOwner)
{
    SaveGlobals(mStore, {});
    SaveMainWindowSettings(mStore, {});
    for (const SettingKey& row : kSettings) {
        const bool homeless = std::holds_alternative<std::monostate>(row.home);
        for (int i = 0; i < row.count; ++i) {
            EXPECT_EQ(mStore.Contains(QString::fromLatin1(row.section), StoredKey(row, i)),
                      !homeless)
                << StoredKey(row, i).toStdString();
        }
        // The folder history and the custom slots have owners of their own.
        const QByteArray section = row.section;
        EXPECT_EQ(homeless, section == "CustomToolPrefs" || section == "MainComboDirEntries");
    }
}

TEST_F(SettingsTableTest, ValuesAreStoredInTheirTextForms)
{
    MainWindowSettings settings;
    settings.top = 0.1f;
    settings.left = 1500.25f;
    settings.gridLines = true;
    Globals globals;
    globals.gBrightness = 1'000'000;
    globals.gTagCheckBox[3] = -1;
    for (const bool decimalComma : {false, true}) {
        const NumberLocale locale(decimalComma);
        SettingsStore store(mFolder.Path("none.ini"));
        SaveGlobals(store, globals);
        SaveMainWindowSettings(store, settings);
        EXPECT_EQ(store.GetSetting("MainScreenSettings", "Me.TOp"), "0.1");
        EXPECT_EQ(store.GetSetting("MainScreenSettings", "Me.Left"), "1500.25");
        EXPECT_EQ(store.GetSetting("Settings", "lvSelected.GridLines"), "True");
        EXPECT_EQ(store.GetSetting("Settings", "mnuSearchOn.Checked"), "False");
        EXPECT_EQ(store.GetSetting("Globals", "gBrightness"), "1000000");
        EXPECT_EQ(store.GetSetting("Globals", "gTagCheckBox(3)"), "-1");
        MainWindowSettings read;
        LoadMainWindowSettings(store, read);
        EXPECT_EQ(read.top, 0.1f);
        EXPECT_EQ(read.left, 1500.25f);
    }
}

TEST_F(SettingsTableTest, ABooleanWrittenByHandAsANumberIsRead)
{
    const SettingKey& row = Row("Settings", "lvSelected.GridLines");
    struct {
        const char* text;
        bool value;
    } constexpr kRows[] = {{"-1", true},   {"1", true},    {"0", false},
                           {"True", true}, {"true", true}, {"False", false}};
    for (const auto& [text, value] : kRows) {
        mStore.SaveSetting("Settings", "lvSelected.GridLines", text);
        EXPECT_EQ(ReadBool(mStore, row), value) << text;
    }
}

TEST_F(SettingsTableTest, AValueThatCannotBeConvertedTakesItsDefault)
{
    for (const char* text : {"", "many", "1,5", "99999999999999", "1e400", "\xFF", "12 pixels"}) {
        for (const SettingKey& row : kSettings) {
            if (row.type == Text)
                continue;
            for (int i = 0; i < row.count; ++i)
                mStore.SaveSetting(QString::fromLatin1(row.section), StoredKey(row, i), text);
        }
        const QByteArray shown = text;
        Globals globals;
        globals.gThumbnailWidth = 7;
        globals.gTagCheckBox.fill(7);
        LoadGlobals(mStore, globals);
        EXPECT_EQ(globals.gThumbnailWidth, 100) << shown.constData();
        EXPECT_EQ(globals.highThresh, 50);
        EXPECT_EQ(globals.jpegQuality, 10);
        EXPECT_EQ(globals.gsVideoTool, 0);
        EXPECT_EQ(globals.gTagCheckBox, Four<qint16>{});
        MainWindowSettings settings;
        settings.listStyle = 7;
        LoadMainWindowSettings(mStore, settings);
        EXPECT_EQ(settings.listStyle, 3) << shown.constData();
        if (shown != "99999999999999") { // a number for a boolean and a single
            EXPECT_TRUE(settings.thumbnailsChecked);
            EXPECT_TRUE(settings.sorted);
            EXPECT_FALSE(settings.gridLines);
            EXPECT_EQ(settings.top, 180.0f);
            EXPECT_EQ(settings.left, 105.0f);
        }
    }
}

TEST_F(SettingsTableTest, ANumberForItsWidthTooLargeTakesTheDefault)
{
    mStore.SaveSetting("Globals", "highThresh", "32768");
    mStore.SaveSetting("Globals", "lowThresh", "32767");
    mStore.SaveSetting("Globals", "jpegQuality", "32768");
    Globals globals;
    LoadGlobals(mStore, globals);
    EXPECT_EQ(globals.highThresh, 50);
    EXPECT_EQ(globals.lowThresh, 32767);
    EXPECT_EQ(globals.jpegQuality, 32768);
}

TEST_F(SettingsTableTest, FractionsOfIntegersRoundTiesToEven)
{
    mStore.SaveSetting("Globals", "gThumbnailWidth", "120.5");
    mStore.SaveSetting("Globals", "gThumbnailHeight", "121.5");
    Globals globals;
    LoadGlobals(mStore, globals);
    EXPECT_EQ(globals.gThumbnailWidth, 120);
    EXPECT_EQ(globals.gThumbnailHeight, 122);
}

} // namespace quillane
