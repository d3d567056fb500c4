#include "imaging/processing/filters.h"
#include "viewer/effect_ranges.h"
#include "viewer/preview_pictures.h"
#include <gtest/gtest.h>
#include <set>

namespace quillane {

namespace {

constexpr quint32 kHigh = 0x40000000;

struct ExpectedEffect {
    quint32 flag;
    const char* title;
    qint32 least, most, start; ///< start: what the value 0 becomes
};
constexpr ExpectedEffect kExpected[] = {
    {1, "Sharpen", -1000, 1000, 0},
    {2, "Brightness", -1000, 1000, 0},
    {4, "Contrast", -1000, 1000, 0},
    {8, "Saturation", -1000, 1000, 0},
    {16, "Histogram Contrast", -1000, 1000, 0},
    {32, "Hue", -18000, 18000, 0},
    {64, "Halftone", 0, 9000, 0},
    {128, "Posterize", 2, 256, 2},
    {256, "Mosaic", 0, 500, 0},
    {512, "Average", 0, 255, 0},
    {1024, "Median", 0, 255, 0},
};

} // namespace

TEST(ValueEffects, AreTheElevenWithRangesThatSuitThem)
{
    ASSERT_EQ(ValueEffects().size(), std::size(kExpected));
    for (size_t i = 0; i < std::size(kExpected); ++i) {
        const ValueEffect& effect = ValueEffects()[i];
        EXPECT_EQ(effect.flag, kExpected[i].flag);
        EXPECT_STREQ(effect.title, kExpected[i].title);
        EXPECT_EQ(effect.range.least, kExpected[i].least) << effect.title;
        EXPECT_EQ(effect.range.most, kExpected[i].most) << effect.title;
        EXPECT_EQ(IntoRange(effect.range, 0), kExpected[i].start) << effect.title;
        EXPECT_EQ(FindValueEffect(effect.flag), &effect);
        EXPECT_EQ(FindValueEffect(effect.flag | kHigh), &effect);
        EXPECT_NE(QString(QLatin1String(effect.range.label)).indexOf(u'&'), -1) << effect.title;
        EXPECT_GE(effect.range.page, effect.range.step) << effect.title;
    }
    EXPECT_EQ(FindValueEffect(0), nullptr);
    EXPECT_EQ(FindValueEffect(3), nullptr) << "two at once";
    EXPECT_EQ(FindValueEffect(2048), nullptr);
}

TEST(ValueEffects, AcceptTheEndsOfTheirRangesAndChangeThePictureThere)
{
    const Bitmap picture = SmoothPicture({60, 40});
    for (const ValueEffect& effect : ValueEffects()) {
        for (const qint32 value : {effect.range.least, effect.range.most}) {
            const Bitmap result = effect.apply({picture}, value);
            EXPECT_EQ(result.Pixels().size(), picture.Pixels().size()) << effect.title;
        }
        if (effect.flag != 128 && effect.flag != 32) { // 256 levels and a whole turn are nothing
            EXPECT_NE(effect.apply({picture}, effect.range.most).Pixels(), picture.Pixels())
                << effect.title;
        }
    }
}

TEST(ValueEffects, TheStartChangesNothingWhereThatIsPossible)
{
    const Bitmap picture = SmoothPicture({60, 40});
    for (const ValueEffect& effect : ValueEffects()) {
        if (effect.flag == 64 || effect.flag == 128) {
            continue; // a halftone and two levels are what they are
        }
        EXPECT_EQ(MeanDifference(effect.apply({picture}, 0).Pixels(), picture.Pixels()), 0.0)
            << effect.title;
    }
}

TEST(IntoRange, TakesTheNearestEnd)
{
    const EffectRange range{"Value", "&Value:", 2, 256, 1, 8};
    EXPECT_EQ(IntoRange(range, -5), 2);
    EXPECT_EQ(IntoRange(range, 2), 2);
    EXPECT_EQ(IntoRange(range, 100), 100);
    EXPECT_EQ(IntoRange(range, 2'000'000'000), 256);
}

TEST(FilterGroups, HoldEveryFilterOnceByItsFamily)
{
    const char* const titles[] = {
        "Gradiant",     "Laplacian", "Sobel",   "Prewitt", "Shift and Difference",
        "Line Segment", "Erosion",   "Dilation"};
    const size_t counts[] = {8, 4, 2, 2, 3, 4, 4, 4};
    ASSERT_EQ(FilterGroups().size(), std::size(titles));
    std::set<qint32> spatial;
    std::set<qint32> binary;
    for (size_t i = 0; i < std::size(titles); ++i) {
        const FilterGroup& group = FilterGroups()[i];
        EXPECT_EQ(group.flag, 1u << i);
        EXPECT_STREQ(group.title, titles[i]);
        EXPECT_EQ(FindFilterGroup(group.flag | kHigh), &group);
        EXPECT_EQ(FiltersOf(group).size(), counts[i]) << group.title;
        for (const FilterEntry& entry : FiltersOf(group)) {
            (IsBinaryGroup(group) ? binary : spatial).insert(entry.code);
            const Bitmap picture = SmoothPicture({30, 20});
            EXPECT_FALSE(FilterWish(group, entry.code).work({picture}).IsNull()) << entry.name;
        }
    }
    EXPECT_EQ(spatial.size(), processing::SpatialKernels().size());
    EXPECT_EQ(binary.size(), processing::BinaryKernels().size());
    EXPECT_EQ(FindFilterGroup(0), nullptr);
    EXPECT_EQ(FindFilterGroup(256), nullptr);
}

TEST(GammaStart, NoGammaChangesNothing)
{
    EXPECT_EQ(GammaStart(0), 100);
    EXPECT_EQ(GammaStart(-7), 100);
    EXPECT_EQ(GammaStart(150), 150);
    EXPECT_EQ(GammaStart(100'000), 500);
}

TEST(DepthEntries, AreTheDepthsThatTheOperationTakes)
{
    const Bitmap picture = SmoothPicture({30, 20});
    qint32 last = 0;
    for (const DepthEntry& entry : DepthEntries()) {
        EXPECT_GT(entry.bits, last);
        last = entry.bits;
        for (qint32 palette = 0; palette < 3; ++palette) {
            EXPECT_FALSE(DepthWish(entry.bits, palette, 1).work({picture}).IsNull()) << entry.words;
        }
    }
    EXPECT_EQ(DepthEntries().size(), 8u);
    EXPECT_EQ(last, 64);
}

TEST(ContourOptions, AreAsManyAsTheOperationHas)
{
    EXPECT_EQ(ContourOptions().size(), 5u);
}

} // namespace quillane
