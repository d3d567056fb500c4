#include "browser/menu_table.h"

#include <QHash>
#include <QSet>
#include <gtest/gtest.h>

namespace quillane {

namespace {

QHash<QString, const MenuEntry*> EntriesByName()
{
    QHash<QString, const MenuEntry*> entries;
    for (const auto table : {MainMenu(), PopupMenu()}) {
        for (const MenuEntry& entry : table) {
            if (entry.name[0] != '\0') {
                entries.insert(QLatin1String(entry.name), &entry);
            }
        }
    }
    return entries;
}

} // namespace

TEST(MenuTable, EveryNameStandsOnce)
{
    QSet<QString> names;
    for (const auto table : {MainMenu(), PopupMenu()}) {
        for (const MenuEntry& entry : table) {
            const QString name = QLatin1String(entry.name);
            if (!name.isEmpty()) {
                EXPECT_FALSE(names.contains(name)) << entry.name;
                names.insert(name);
            }
        }
    }
}

TEST(MenuTable, EveryEntryStandsInAMenuThatComesBeforeIt)
{
    QSet<QString> menus{QString(), QStringLiteral("mnuPopUp")};
    for (const auto table : {MainMenu(), PopupMenu()}) {
        for (const MenuEntry& entry : table) {
            EXPECT_TRUE(menus.contains(QLatin1String(entry.menu))) << entry.name;
            if (entry.kind == EntryKind::Menu) {
                menus.insert(QLatin1String(entry.name));
            }
        }
    }
}

TEST(MenuTable, HoldsEveryEntry)
{
    const auto entries = EntriesByName();
    const char* const names[] = {"nnuNewFolder",
                                 "mnuMainFileOpen",
                                 "mnuAcquireTwain",
                                 "mnuSelectTwainSource",
                                 "mnuImportVideo",
                                 "mnuCaptureVideoPlayer",
                                 "mnuEmailImages",
                                 "mnuPopEmail",
                                 "mnuDelete",
                                 "mnuCopy",
                                 "mnuMove",
                                 "mnuRename",
                                 "mnuPopDelete",
                                 "mnuPopCopy",
                                 "mnuPopMove",
                                 "mnuPopRename",
                                 "mnuMainFilePageSetup",
                                 "mnuMainFilePrintSetup",
                                 "mnuMainFilePreferences",
                                 "mnuMainFIleExit",
                                 "mnuMainViewTileBoxTileImage",
                                 "mnuMainViewTileBoxTileFilename",
                                 "mnuMainViewTileBoxTileFilename1",
                                 "mnuMainViewTileBoxTileFilename2",
                                 "mnuMainViewTileBoxTileFilename3",
                                 "mnuShowAll",
                                 "mnuRefreshTree",
                                 "mnuSlideShowFolder",
                                 "mnuSlideShow",
                                 "mnuSlideShowAlbum",
                                 "mnuShowEditImageFileList",
                                 "mnuPopShow",
                                 "mnuRefresh",
                                 "mnuSearchSettings",
                                 "mnuSearchOn",
                                 "mnuFileFiles",
                                 "mnuTagEditApp",
                                 "mnuBatchConversionApplication",
                                 "mnuAddDateTimeStampApplication",
                                 "mnuCustomApp1",
                                 "mnuCustomApp2",
                                 "mnuCustomApp3",
                                 "mnuCustomApp4",
                                 "mnuVideoPlayer",
                                 "mnuVideoCapture",
                                 "mnuVideoConvert",
                                 "mnuWayfarix",
                                 "mnuPopWayfarix",
                                 "mnuGPSAddWaypoints",
                                 "mnuPopAddGPSWaypoints",
                                 "mnuHelpAbout",
                                 "mnuHelpContents",
                                 "mnuTechSupport",
                                 "mnuOnlineTutorial",
                                 "mnuQuillaneWeb",
                                 "mnuClearFileHistory",
                                 "mnuImage",
                                 "mnuTagEdit",
                                 "mnuCustomTool1",
                                 "mnuCustomTool2",
                                 "mnuCustomTool3",
                                 "mnuCustomTool4",
                                 "mnuWindowsDefaultViewer",
                                 "mnuPopImage",
                                 "mnuPopEditTags",
                                 "mnuPopWindowsDefaultViewer",
                                 "mnuPopCustomTool1",
                                 "mnuPopCustomTool2",
                                 "mnuPopCustomTool3",
                                 "mnuPopCustomTool4",
                                 "mnuPopSelect",
                                 "mnuPopAdd",
                                 "mnuPopSetWallpaper"};
    for (const char* name : names) {
        EXPECT_TRUE(entries.contains(QLatin1String(name))) << name;
    }
}

TEST(MenuTable, CaptionsThatAreFixedStandToTheLetter)
{
    const auto entries = EntriesByName();
    const struct {
        const char* name;
        const char* caption;
    } wanted[] = {
        {"nnuNewFolder", "&Folder"},
        {"mnuMainFileOpen", "&Open"},
        {"mnuAcquireTwain", "&Acquire"},
        {"mnuSelectTwainSource", "&Select TWAIN Source"},
        {"mnuMainFilePageSetup", "&Print"},
        {"mnuMainFilePrintSetup", "Print Setup..."},
        {"mnuMainFIleExit", "&Exit"},
        {"mnuMainViewTileBoxTileImage", "Thumbnails"},
        {"mnuMainViewTileBoxTileFilename", "Large Icons"},
        {"mnuMainViewTileBoxTileFilename1", "Small Icons"},
        {"mnuMainViewTileBoxTileFilename2", "List"},
        {"mnuMainViewTileBoxTileFilename3", "Details"},
        {"mnuShowAll", "&Show All Files"},
        {"mnuRefreshTree", "&Refresh"},
        {"mnuRefresh", "&Refresh"},
        {"mnuHelpContents", "&Help"},
        {"mnuClearFileHistory", "&Clear History"},
        {"mnuImage", "View/Enhance Photo"},
        {"mnuTagEdit", "Edit Photo Metadata"},
        {"mnuWindowsDefaultViewer", "Windows Default Photo Viewer"},
        {"mnuPopSelect", "Select &All Files"},
        {"mnuPopAdd", "&Add File(s) to Photo Album"},
        {"mnuPopSetWallpaper", "Set Photo as Wallpaper"},
        {"mnuSearchSettings", "Search Photo &Metadata"},
        {"mnuSearchOn", "Show Searched &Photos"},
    };
    for (const auto& row : wanted) {
        ASSERT_TRUE(entries.contains(QLatin1String(row.name))) << row.name;
        EXPECT_EQ(QString::fromUtf16(entries.value(QLatin1String(row.name))->caption),
                  QLatin1String(row.caption))
            << row.name;
    }
}

TEST(MenuTable, NoTwoEntriesShareAKey)
{
    QHash<QString, QString> owners;
    for (const MenuEntry& entry : MainMenu()) {
        for (const QString& key :
             QString::fromLatin1(entry.shortcut).split(u' ', Qt::SkipEmptyParts)) {
            EXPECT_FALSE(owners.contains(key)) << entry.name;
            owners.insert(key, QLatin1String(entry.name));
        }
    }
    EXPECT_EQ(owners.value(QStringLiteral("F5")), QStringLiteral("mnuRefresh"));
    EXPECT_EQ(owners.value(QStringLiteral("F2")), QStringLiteral("mnuRename"));
    EXPECT_EQ(owners.value(QStringLiteral("Shift+Del")), QStringLiteral("mnuDelete"));
}

TEST(ToolBar, HasTenButtonsOfWhichTwoAreSeparators)
{
    const char* const tips[] = {"Open Image",   "Find Image",         "Search Image Text...", "",
                                "Print Images", "TWAIN Capture...",   "Video Capture...",     "",
                                "Send...",      "View Photo Album..."};
    ASSERT_EQ(FixedToolButtons().size(), std::size(tips));
    for (size_t i = 0; i < std::size(tips); ++i) {
        EXPECT_EQ(FixedToolButtons()[i].index, int(i) + 1);
        EXPECT_EQ(QString::fromUtf16(FixedToolButtons()[i].toolTip), QLatin1String(tips[i]));
        EXPECT_EQ(FixedToolButtons()[i].name[0] == '\0', i == 3 || i == 7);
    }
    EXPECT_EQ(kComboPlaceholderWidth, 300);
    EXPECT_EQ(kProgressPlaceholderWidth, 150);
}

TEST(ViewEntries, ChooseGridOrListAndTheScan)
{
    const struct {
        const char* name;
        int style, mode;
    } wanted[] = {{"mnuMainViewTileBoxTileImage", -1, 1},
                  {"mnuMainViewTileBoxTileFilename", 0, 0},
                  {"mnuMainViewTileBoxTileFilename1", 1, 0},
                  {"mnuMainViewTileBoxTileFilename2", 2, 0},
                  {"mnuMainViewTileBoxTileFilename3", 3, 0}};
    ASSERT_EQ(ViewEntries().size(), std::size(wanted));
    for (size_t i = 0; i < std::size(wanted); ++i) {
        EXPECT_STREQ(ViewEntries()[i].name, wanted[i].name);
        EXPECT_EQ(ViewEntries()[i].style, wanted[i].style);
        EXPECT_EQ(ViewEntries()[i].scanMode, wanted[i].mode);
    }
}

TEST(NotYet, TipNamesTheEntryWithoutItsMarks)
{
    EXPECT_EQ(NotYetTip(QStringLiteral("&Find Files...")),
              QStringLiteral("Find Files is not part of this version yet."));
}

} // namespace quillane
