#include "core/custom_slots.h"
#include "core/settings_store.h"
#include "core/temp_folder.h"
#include <gtest/gtest.h>

namespace quillane {

class CustomSlotsTest : public testing::Test {
protected:
    TempFolder mFolder;
    SettingsStore mStore{mFolder.Path("s.ini")};
};

TEST_F(CustomSlotsTest, AFirstRunHasNoSlots)
{
    CustomSlots customSlots;
    customSlots.tools[2] = {1, "left over", "/bin/left"};
    customSlots.Load(mStore);
    for (const auto& four : {customSlots.tools, customSlots.apps}) {
        for (const CustomSlot& slot : four) {
            EXPECT_EQ(slot.active, 0);
            EXPECT_EQ(slot.caption, QString());
            EXPECT_EQ(slot.path, QString());
        }
    }
}

TEST_F(CustomSlotsTest, EverySlotHasThreeKeysOfItsOwn)
{
    CustomSlots customSlots;
    for (size_t i = 0; i < 4; ++i) {
        const QString number = QString::number(i);
        customSlots.tools[i] = {qint16(i % 2), "Tool " + number, "/bin/tool" + number};
        customSlots.apps[i] = {qint16(1 - i % 2), "App " + number, "/bin/app" + number};
    }
    customSlots.Save(mStore);
    const QString section = "CustomToolPrefs";
    EXPECT_EQ(mStore.GetSetting(section, "chkCustomTool(0).value"), "0");
    EXPECT_EQ(mStore.GetSetting(section, "chkCustomTool(3).value"), "1");
    EXPECT_EQ(mStore.GetSetting(section, "txtCustomTool(1).Text"), "Tool 1");
    EXPECT_EQ(mStore.GetSetting(section, "txtCustomToolPath(2).Text"), "/bin/tool2");
    EXPECT_EQ(mStore.GetSetting(section, "chkCustomApp(0).value"), "1");
    EXPECT_EQ(mStore.GetSetting(section, "txtCustomApp(3).Text"), "App 3");
    EXPECT_EQ(mStore.GetSetting(section, "txtCustomAppPath(0).Text"), "/bin/app0");
    ASSERT_TRUE(mStore.Flush());

    CustomSlots read;
    read.Load(SettingsStore(mStore.File()));
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(read.tools[i].active, customSlots.tools[i].active);
        EXPECT_EQ(read.tools[i].caption, customSlots.tools[i].caption);
        EXPECT_EQ(read.tools[i].path, customSlots.tools[i].path);
        EXPECT_EQ(read.apps[i].active, customSlots.apps[i].active);
        EXPECT_EQ(read.apps[i].caption, customSlots.apps[i].caption);
        EXPECT_EQ(read.apps[i].path, customSlots.apps[i].path);
    }
}

TEST_F(CustomSlotsTest, AnActiveValueThatIsNoNumberIsOff)
{
    mStore.SaveSetting("CustomToolPrefs", "chkCustomTool(0).value", "yes");
    mStore.SaveSetting("CustomToolPrefs", "chkCustomTool(1).value", "1");
    CustomSlots customSlots;
    customSlots.Load(mStore);
    EXPECT_EQ(customSlots.tools[0].active, 0);
    EXPECT_EQ(customSlots.tools[1].active, 1);
}

TEST(ApplyCustomTools, OnlyTheValueOneTurnsASlotOn)
{
    for (const qint16 active : {-1, 0, 1, 2, 256}) {
        CustomSlots customSlots;
        customSlots.tools[1] = {active, "&Sharpen", "/bin/sharpen"};
        customSlots.apps[3] = {active, "Map", "/bin/map"};
        const CustomSlotEntries entries = ApplyCustomTools(customSlots);
        EXPECT_EQ(entries.tools[1].enabled, active == 1) << active;
        EXPECT_EQ(entries.tools[1].visible, active == 1) << active;
        EXPECT_EQ(entries.apps[3].enabled, active == 1) << active;
        EXPECT_EQ(entries.apps[3].visible, active == 1) << active;
        if (active == 1) {
            EXPECT_EQ(entries.tools[1].caption, "&Sharpen");
            EXPECT_EQ(entries.apps[3].caption, "Map");
        }
    }
}

TEST(ApplyCustomTools, EachOfTheEightSlotsHasAStateOfItsOwn)
{
    for (size_t on = 0; on < 8; ++on) {
        CustomSlots customSlots;
        (on < 4 ? customSlots.tools[on] : customSlots.apps[on - 4]).active = 1;
        const CustomSlotEntries entries = ApplyCustomTools(customSlots);
        for (size_t i = 0; i < 8; ++i)
            EXPECT_EQ((i < 4 ? entries.tools[i] : entries.apps[i - 4]).visible, i == on);
    }
}

} // namespace quillane
