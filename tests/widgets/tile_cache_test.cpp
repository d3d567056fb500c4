#include "widgets/tile_cache.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

TileKey Key(int column, int row = 0, QSize shown = {1000, 1000})
{
    return {shown, column, row};
}

Tile Made(int rows, bool rough = false)
{
    return {QImage(256, rows, QImage::Format_RGB32), rough};
}

TEST(TileCache, StaysWithinItsBudget)
{
    TileCache cache(10 * 1024);
    for (int i = 0; i < 100; ++i) {
        cache.Put(Key(i), Made(2)); // 2048 bytes
        EXPECT_LE(cache.Bytes(), 10 * 1024);
    }
    EXPECT_EQ(cache.Count(), 5);
    EXPECT_EQ(cache.Bytes(), 5 * 2048);
}

TEST(TileCache, LetsGoWhatWasNotUsedForLongest)
{
    TileCache cache(3 * 1024);
    cache.Put(Key(1), Made(1));
    cache.Put(Key(2), Made(1));
    cache.Put(Key(3), Made(1));
    EXPECT_NE(cache.Find(Key(1)), nullptr);
    cache.Put(Key(4), Made(1));
    EXPECT_NE(cache.Find(Key(1)), nullptr);
    EXPECT_EQ(cache.Find(Key(2)), nullptr);
    cache.SetBudget(1024);
    EXPECT_EQ(cache.Count(), 1);
    EXPECT_NE(cache.Find(Key(1)), nullptr) << "the one used last";
}

TEST(TileCache, ABetterTileTakesThePlaceOfARoughOne)
{
    TileCache cache(100'000);
    cache.Put(Key(1), Made(4, true));
    EXPECT_TRUE(cache.Find(Key(1))->rough);
    cache.Put(Key(1), Made(2));
    EXPECT_FALSE(cache.Find(Key(1))->rough);
    EXPECT_EQ(cache.Count(), 1);
    EXPECT_EQ(cache.Bytes(), 2048);
}

TEST(TileCache, SizesAndPlacesTellTilesApart)
{
    TileCache cache(100'000);
    cache.Put(Key(1, 2), Made(1));
    EXPECT_EQ(cache.Find(Key(2, 1)), nullptr);
    EXPECT_EQ(cache.Find(Key(1, 2, {1000, 999})), nullptr);
    EXPECT_NE(cache.Find(Key(1, 2)), nullptr);
    cache.Clear();
    EXPECT_EQ(cache.Bytes(), 0);
    EXPECT_EQ(cache.Find(Key(1, 2)), nullptr);
}

TEST(TileCache, KeepsOneThatIsLargerThanTheBudget)
{
    TileCache cache(100);
    cache.Put(Key(1), Made(5));
    EXPECT_NE(cache.Find(Key(1)), nullptr);
    cache.Put(Key(2), Made(5));
    EXPECT_EQ(cache.Count(), 1);
}

} // namespace

} // namespace quillane
