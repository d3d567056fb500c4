#include "viewer/command_table.h"
#include "viewer/menu_table.h"
#include "viewer/viewer_settings.h"

#include <QHash>
#include <QSet>
#include <gtest/gtest.h>

namespace quillane {

namespace {

QHash<QString, const MenuEntry*> ViewerEntries()
{
    QHash<QString, const MenuEntry*> entries;
    for (const MenuEntry& entry : ViewerMenu()) {
        if (entry.name[0] != '\0') {
            EXPECT_FALSE(entries.contains(QLatin1String(entry.name))) << entry.name;
            entries.insert(QLatin1String(entry.name), &entry);
        }
    }
    return entries;
}

} // namespace

TEST(ViewerMenu, EveryEntryStandsInAMenuThatComesBeforeIt)
{
    QSet<QString> menus{QString()};
    for (const MenuEntry& entry : ViewerMenu()) {
        EXPECT_TRUE(menus.contains(QLatin1String(entry.menu))) << entry.name;
        if (entry.kind == EntryKind::Menu) {
            menus.insert(QLatin1String(entry.name));
        }
    }
}

TEST(ViewerMenu, CaptionsAreToTheLetter)
{
    const auto entries = ViewerEntries();
    const std::pair<const char*, const char16_t*> rows[] = {
        {"mnuSelectNone", u"None"},
        {"mnuSelectRectangle", u"Rectangle"},
        {"mnuSelectEllipse", u"Ellipse"},
        {"mnuSelectRoundedRectangle", u"Rounded Rectangle"},
        {"mnuSelectFreeHand", u"Free Hand"},
        {"mnuCancelSelectRegion", u"Cancel Select Region"},
        {"mnuSelectRegion", u"Select Region"},
        {"mnuCrop", u"C&rop"},
        {"mnuUndoLast", u"&Undo Last"},
        {"mnuMag", u"Magnifying Glass"},
        {"mnuZoomOut", u"Zoom Fit to Window"},
    };
    for (const auto& [name, caption] : rows) {
        ASSERT_TRUE(entries.contains(QLatin1String(name))) << name;
        EXPECT_EQ(QString::fromUtf16(entries.value(QLatin1String(name))->caption),
                  QString::fromUtf16(caption));
    }
    for (const char* name : {"mnuSingleFileSave", "mnuSelectTwainSource", "mnuZoom25", "mnuZoom50",
                             "mnuZoom100", "mnuZoom150", "mnuZoom200", "mnuZoom300"}) {
        EXPECT_TRUE(entries.contains(QLatin1String(name))) << name;
    }
    for (const EnhanceCommand& command : EnhanceCommands()) {
        ASSERT_TRUE(entries.contains(QLatin1String(command.name))) << command.name;
        EXPECT_STREQ(entries.value(QLatin1String(command.name))->menu, command.menu);
    }
}

TEST(ViewerMenu, EveryZoomItemIsInTheViewMenu)
{
    const auto entries = ViewerEntries();
    for (const ZoomItem& item : kZoomItems) {
        const MenuEntry* entry = entries.value(QLatin1String(item.name));
        ASSERT_NE(entry, nullptr) << item.name;
        EXPECT_EQ(entry->kind, EntryKind::Check);
        EXPECT_EQ(QString::fromUtf16(entry->caption), QString::fromUtf16(item.caption));
        EXPECT_TRUE(QString::fromUtf16(item.caption).contains(QString::number(item.percent)));
    }
}

TEST(ViewerMenu, NoShortcutIsGivenTwice)
{
    QSet<QString> seen;
    for (const MenuEntry& entry : ViewerMenu()) {
        for (const QString& key :
             QString::fromLatin1(entry.shortcut).split(u' ', Qt::SkipEmptyParts)) {
            EXPECT_FALSE(seen.contains(key)) << entry.name;
            seen.insert(key);
        }
    }
    EXPECT_TRUE(seen.contains(QStringLiteral("Ctrl+S")));
}

TEST(ViewerTools, StandAtTheirPositions)
{
    const std::pair<int, const char16_t*> rows[] = {
        {1, u"Open Image..."},
        {2, u"Save Image..."},
        {4, u"Print"},
        {5, u"TWAIN Acquire..."},
        {7, u"Copy"},
        {8, u"Paste"},
        {9, u"Cut"},
        {10, u"Undo"},
        {12, u"Pointer"},
        {13, u"Mag Glass"},
        {14, u"Zoom Image"},
        {15, u"Un-Zoom Image"},
        {16, u"Select Rectangle Area"},
        {17, u"Select Free Hand Area"},
        {19, u"Crop Image"},
        {20, u"Fill"},
        {21, u"Draw Text"},
        {22, u"Draw"},
    };
    const auto buttons = ViewerToolButtons();
    ASSERT_EQ(buttons.size(), 22U);
    size_t row = 0;
    for (size_t i = 0; i < buttons.size(); ++i) {
        EXPECT_EQ(buttons[i].index, int(i) + 1);
        if (buttons[i].name[0] == '\0') {
            continue;
        }
        ASSERT_LT(row, std::size(rows));
        EXPECT_EQ(buttons[i].index, rows[row].first);
        EXPECT_EQ(QString::fromUtf16(buttons[i].toolTip), QString::fromUtf16(rows[row].second));
        ++row;
    }
    EXPECT_EQ(row, std::size(rows));
}

} // namespace quillane
