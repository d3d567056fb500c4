#include "imaging/comments/slots.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace quillane {

namespace {

std::vector<qint16> SlotsOf(SlotHome home)
{
    std::vector<qint16> slots;
    for (const CommentSlot& slot : CommentSlots()) {
        if (slot.home == home) {
            slots.push_back(slot.slot);
        }
    }
    return slots;
}

std::vector<qint16> Range(qint16 from, qint16 to)
{
    std::vector<qint16> range;
    for (qint16 i = from; i <= to; ++i) {
        range.push_back(i);
    }
    return range;
}

} // namespace

TEST(CommentSlots, StandInOrderAndOnce)
{
    qint16 before = -1;
    for (const CommentSlot& slot : CommentSlots()) {
        EXPECT_GT(slot.slot, before);
        EXPECT_LE(slot.slot, kLastSlot);
        before = slot.slot;
    }
}

TEST(CommentSlots, EmptyNumbersHaveNoField)
{
    for (qint16 slot = -1; slot <= kLastSlot + 1; ++slot) {
        const bool empty = slot < 0 || slot == 28 || (slot >= 36 && slot <= 40)
            || (slot >= 68 && slot <= 157) || slot == 159 || slot > kLastSlot;
        EXPECT_EQ(FindSlot(slot) == nullptr, empty) << slot;
    }
}

TEST(CommentSlots, FindGivesTheRowOfTheNumber)
{
    for (const CommentSlot& slot : CommentSlots()) {
        EXPECT_EQ(FindSlot(slot.slot), &slot);
    }
}

TEST(CommentSlots, HomesAreAsTheNumbersLie)
{
    EXPECT_EQ(SlotsOf(SlotHome::TiffDirectory), Range(0, 9));
    EXPECT_EQ(SlotsOf(SlotHome::Dicom), Range(10, 20));
    EXPECT_EQ(SlotsOf(SlotHome::GpsDirectory), Range(41, 67));
    EXPECT_EQ(SlotsOf(SlotHome::PngText), Range(175, 178));
    EXPECT_EQ(SlotsOf(SlotHome::ExifDirectory).size(), 14u + 1u + 15u);
}

TEST(CommentSlots, GeneralTagsAreNamed)
{
    const char* const names[] = {"Artist",       "Copyright", "DateTime", "ImageDescription",
                                 "HostComputer", "Make",      "Model",    "DocumentName",
                                 "PageName",     "Software"};
    const quint32 tags[] = {315, 33432, 306, 270, 316, 271, 272, 269, 285, 305};
    for (qint16 slot = 0; slot < 10; ++slot) {
        EXPECT_STREQ(FindSlot(slot)->field, names[slot]);
        EXPECT_EQ(FindSlot(slot)->tag, tags[slot]) << slot;
        EXPECT_EQ(FindSlot(slot)->shape, SlotShape::Text);
    }
}

TEST(CommentSlots, GpsSlotsFollowTheOrderOfTheirTags)
{
    for (qint16 slot = 41; slot <= 67; ++slot) {
        EXPECT_EQ(FindSlot(slot)->tag, quint32(slot - 41));
    }
}

TEST(CommentSlots, PngSlotsAreKeywords)
{
    EXPECT_STREQ(FindSlot(175)->field, "Title");
    EXPECT_STREQ(FindSlot(176)->field, "Disclaimer");
    EXPECT_STREQ(FindSlot(177)->field, "Warning");
    EXPECT_STREQ(FindSlot(178)->field, "Comment");
}

TEST(CommentSlots, CameraSlotsNameTheirStandardFields)
{
    const std::pair<qint16, const char*> names[] = {
        {21, "ExifVersion"},
        {32, "Flash"},
        {26, "BrightnessValue"},
        {35, "FNumber"},
        {29, "SubjectDistance"},
        {25, "ApertureValue"},
        {24, "ShutterSpeedValue"},
        {34, "ExposureTime"},
        {30, "MeteringMode"},
        {31, "LightSource"},
        {160, "ExposureProgram"},
        {22, "DateTimeOriginal"},
        {23, "DateTimeDigitized"},
        {164, "RelatedSoundFile"},
        {165, "FlashEnergy"},
        {33, "FocalLength"},
        {27, "ExposureBiasValue"},
        {161, "SpectralSensitivity"},
        {162, "ISOSpeedRatings"},
        {169, "SubjectLocation"},
        {170, "ExposureIndex"},
        {167, "FocalPlaneXResolution"},
        {168, "FocalPlaneYResolution"},
        {158, "FlashpixVersion"},
        {172, "FileSource"},
        {173, "SceneType"},
        {171, "SensingMethod"},
        {174, "CFAPattern"},
        {166, "SpatialFrequencyResponse"},
        {163, "OECF"},
    };
    for (const auto& [slot, name] : names) {
        ASSERT_NE(FindSlot(slot), nullptr) << slot;
        EXPECT_STREQ(FindSlot(slot)->field, name);
    }
}

} // namespace quillane
