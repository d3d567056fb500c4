#include "widgets/selection_set.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace quillane {

namespace {

SelectionSet Selected(int size, const QVector<int>& rows)
{
    SelectionSet set;
    set.Resize(size);
    for (const int row : rows) {
        set.Set(row, true);
    }
    return set;
}

TEST(SelectionSet, NewRowsAreNotSelected)
{
    SelectionSet set;
    set.Resize(130);
    EXPECT_EQ(set.Size(), 130);
    EXPECT_EQ(set.Count(), 0);
    EXPECT_EQ(set.Next(0), -1);
    set.SetAll(true);
    set.Resize(200);
    EXPECT_EQ(set.Count(), 130);
    EXPECT_TRUE(set.Contains(129));
    EXPECT_FALSE(set.Contains(130));
}

TEST(SelectionSet, RowsBeyondTheEndChangeNothing)
{
    SelectionSet set = Selected(10, {});
    EXPECT_FALSE(set.Set(10, true));
    EXPECT_FALSE(set.Set(-1, true));
    EXPECT_FALSE(set.Contains(-1));
    EXPECT_FALSE(set.Contains(10));
    EXPECT_EQ(set.Count(), 0);
}

TEST(SelectionSet, RangesCrossWordsAndCountOnce)
{
    SelectionSet set = Selected(300, {});
    EXPECT_TRUE(set.SetRange(60, 130, true));
    EXPECT_EQ(set.Count(), 71);
    EXPECT_FALSE(set.SetRange(60, 130, true));
    EXPECT_TRUE(set.SetRange(200, 120, true)); // ends in either order
    EXPECT_EQ(set.Count(), 141);
    EXPECT_TRUE(set.SetRange(64, 127, false));
    EXPECT_EQ(set.Count(), 77);
    EXPECT_TRUE(set.Contains(63));
    EXPECT_FALSE(set.Contains(64));
    EXPECT_TRUE(set.Contains(128));
}

TEST(SelectionSet, OnlySelectsTheseAndNoOther)
{
    SelectionSet set = Selected(100, {1, 50, 99});
    EXPECT_TRUE(set.SetOnly(50, 51));
    EXPECT_EQ(set.Rows(), (QVector<int>{50, 51}));
    EXPECT_FALSE(set.SetOnly(51, 50));
}

TEST(SelectionSet, ShrinkingForgetsWhatIsCutOff)
{
    SelectionSet set = Selected(100, {5, 70, 99});
    set.SetAnchor(99);
    set.Resize(71);
    EXPECT_EQ(set.Rows(), (QVector<int>{5, 70}));
    EXPECT_EQ(set.Anchor(), -1);
    set.Resize(100);
    EXPECT_EQ(set.Count(), 2) << "what was cut off is not there again";
}

TEST(SelectionSet, InsertAndRemoveShiftRowsAndAnchor)
{
    SelectionSet set = Selected(5, {1, 3});
    set.SetAnchor(3);
    set.Insert(2, 2);
    EXPECT_EQ(set.Size(), 7);
    EXPECT_EQ(set.Rows(), (QVector<int>{1, 5}));
    EXPECT_EQ(set.Anchor(), 5);
    set.Remove(1);
    EXPECT_EQ(set.Rows(), (QVector<int>{4}));
    EXPECT_EQ(set.Anchor(), 4);
    set.Remove(4);
    EXPECT_EQ(set.Count(), 0);
    EXPECT_EQ(set.Anchor(), -1);
}

TEST(SelectionSet, PermutationFollowsTheRows)
{
    SelectionSet set = Selected(4, {0, 3});
    set.SetAnchor(3);
    set.Permute({3, 1, 0, 2});
    EXPECT_EQ(set.Rows(), (QVector<int>{0, 2}));
    EXPECT_EQ(set.Anchor(), 0);
}

TEST(SelectionSet, AgreesWithAPlainListUnderManyOperations)
{
    std::mt19937 random(7);
    SelectionSet set;
    std::vector<bool> plain;
    for (int step = 0; step < 3000; ++step) {
        const int at = plain.empty() ? 0 : int(random() % plain.size());
        const int length = int(random() % 90);
        switch (random() % 5) {
        case 0:
            set.Resize(int(plain.size()) + length);
            plain.resize(plain.size() + size_t(length), false);
            break;
        case 1:
            set.Insert(at, length);
            plain.insert(plain.begin() + at, size_t(length), false);
            break;
        case 2: {
            const int end = std::min(int(plain.size()), at + length);
            set.Remove(at, length);
            plain.erase(plain.begin() + at, plain.begin() + end);
            break;
        }
        default: {
            const bool on = random() % 2 != 0;
            set.SetRange(at, at + length, on);
            for (size_t row = size_t(at); row <= size_t(at + length) && row < plain.size(); ++row) {
                plain[row] = on;
            }
        }
        }
        ASSERT_EQ(set.Size(), int(plain.size()));
        ASSERT_EQ(set.Count(), int(std::count(plain.begin(), plain.end(), true)));
        ASSERT_EQ(set.Flags(), QVector<bool>(plain.begin(), plain.end()));
    }
}

} // namespace

} // namespace quillane
