#include "widgets/selection_rules.h"

#include <gtest/gtest.h>

namespace quillane {

namespace {

constexpr Qt::KeyboardModifiers kNone = Qt::NoModifier;
constexpr Qt::KeyboardModifiers kCtrl = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers kShift = Qt::ShiftModifier;

class SelectionRulesTest : public testing::Test {
protected:
    SelectionRulesTest() { mRules.Append(20); }
    QVector<int> Rows() const { return mRules.Selection().Rows(); }
    void Click(int index, Qt::KeyboardModifiers modifiers = kNone)
    {
        mRules.Press(index, modifiers);
        mRules.Release();
    }
    SelectionRules mRules;
};

TEST_F(SelectionRulesTest, AClickSelectsOneAndMakesItCurrent)
{
    Click(3);
    Click(7);
    EXPECT_EQ(Rows(), QVector<int>{7});
    EXPECT_EQ(mRules.Current(), 7);
}

TEST_F(SelectionRulesTest, AClickBesideTheItemsSelectsNoneAndKeepsTheCurrent)
{
    Click(3);
    Click(-1);
    EXPECT_TRUE(Rows().isEmpty());
    EXPECT_EQ(mRules.Current(), 3);
    Click(4);
    Click(-1, kCtrl);
    EXPECT_EQ(Rows(), QVector<int>{4});
}

TEST_F(SelectionRulesTest, ControlChangesOneOverAndKeepsTheOthers)
{
    Click(3);
    Click(5, kCtrl);
    EXPECT_EQ(Rows(), (QVector<int>{3, 5}));
    Click(3, kCtrl);
    EXPECT_EQ(Rows(), QVector<int>{5});
    EXPECT_EQ(mRules.Current(), 3);
}

TEST_F(SelectionRulesTest, ShiftSelectsFromTheAnchor)
{
    Click(5);
    Click(8, kShift);
    EXPECT_EQ(Rows(), (QVector<int>{5, 6, 7, 8}));
    Click(3, kShift);
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5}));
    EXPECT_EQ(mRules.Current(), 3);
    Click(12, kCtrl);
    Click(14, kShift | kCtrl);
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5, 12, 13, 14}));
}

TEST_F(SelectionRulesTest, ShiftWithoutAnAnchorStartsAtTheItem)
{
    Click(4, kShift);
    EXPECT_EQ(Rows(), QVector<int>{4});
}

TEST_F(SelectionRulesTest, APressOnASelectedItemKeepsTheOthersUntilTheRelease)
{
    Click(2);
    Click(6, kShift);
    mRules.Press(4, kNone);
    EXPECT_EQ(Rows().size(), 5) << "it may be the beginning of a drag";
    mRules.Release();
    EXPECT_EQ(Rows(), QVector<int>{4});
}

TEST_F(SelectionRulesTest, ADragWithControlKeepsTheSelection)
{
    Click(2);
    Click(6, kCtrl);
    mRules.Press(6, kCtrl);
    EXPECT_EQ(Rows(), (QVector<int>{2, 6}));
}

TEST_F(SelectionRulesTest, TheMenuSelectsWhatIsNotSelected)
{
    Click(2);
    Click(4, kShift);
    mRules.PressForMenu(3);
    EXPECT_EQ(Rows(), (QVector<int>{2, 3, 4}));
    EXPECT_EQ(mRules.Current(), 3);
    mRules.PressForMenu(9);
    EXPECT_EQ(Rows(), QVector<int>{9});
    mRules.PressForMenu(-1);
    EXPECT_EQ(Rows(), QVector<int>{9});
}

TEST_F(SelectionRulesTest, ABandSelectsWhatItTouchesAndLetsGoWhatItLeaves)
{
    Click(1);
    mRules.BeginBand(kNone);
    EXPECT_TRUE(Rows().isEmpty());
    mRules.Band({{3, 5}, {8, 9}});
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5, 8, 9}));
    EXPECT_TRUE(mRules.Band({{3, 4}}).selection);
    EXPECT_FALSE(mRules.Band({{3, 4}}).selection);
    EXPECT_EQ(Rows(), (QVector<int>{3, 4}));
}

TEST_F(SelectionRulesTest, ABandAddsWithShiftAndChangesOverWithControl)
{
    Click(4);
    mRules.BeginBand(kShift);
    mRules.Band({{3, 5}});
    mRules.EndBand();
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5}));
    mRules.BeginBand(kCtrl);
    mRules.Band({{4, 6}});
    EXPECT_EQ(Rows(), (QVector<int>{3, 6}));
    mRules.Band({});
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5}));
}

TEST_F(SelectionRulesTest, ACancelledBandPutsTheSelectionBack)
{
    Click(4);
    mRules.BeginBand(kShift);
    mRules.Band({{10, 15}});
    EXPECT_TRUE(mRules.CancelBand().selection);
    EXPECT_EQ(Rows(), QVector<int>{4});
}

TEST_F(SelectionRulesTest, ItemsThatComeDuringABandAreKept)
{
    mRules.BeginBand(kNone);
    mRules.Append(5);
    mRules.Band({{18, 24}});
    EXPECT_EQ(Rows(), (QVector<int>{18, 19, 20, 21, 22, 23, 24}));
    mRules.Append(5);
    mRules.CancelBand();
    EXPECT_EQ(mRules.Selection().Size(), 30);
    EXPECT_TRUE(Rows().isEmpty());
}

TEST_F(SelectionRulesTest, TheKeyboardSelectsARangeOrOnlyMoves)
{
    mRules.MoveTo(3, kNone);
    mRules.MoveTo(5, kShift);
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5}));
    mRules.MoveTo(9, kCtrl);
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5}));
    EXPECT_EQ(mRules.Current(), 9);
    mRules.Space(kCtrl);
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5, 9}));
    mRules.Space(kCtrl);
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5}));
    mRules.Space(kNone);
    mRules.Space(kNone);
    EXPECT_EQ(Rows(), (QVector<int>{3, 4, 5, 9}));
    EXPECT_FALSE(mRules.MoveTo(20, kNone));
}

TEST_F(SelectionRulesTest, TheCurrentItemFollowsItsFile)
{
    Click(5);
    mRules.Insert(2, 3);
    EXPECT_EQ(mRules.Current(), 8);
    mRules.Remove(0, 1);
    EXPECT_EQ(mRules.Current(), 7);
    EXPECT_EQ(Rows(), QVector<int>{7});
    mRules.Remove(7, 1);
    EXPECT_EQ(mRules.Current(), -1);
    EXPECT_TRUE(Rows().isEmpty());
}

TEST_F(SelectionRulesTest, APermutationTakesCurrentAndSelectionAlong)
{
    SelectionRules rules;
    rules.Append(3);
    rules.SelectOnly(0);
    rules.Permute({2, 1, 0});
    EXPECT_EQ(rules.Current(), 2);
    EXPECT_EQ(rules.Selection().Rows(), QVector<int>{2});
}

} // namespace

} // namespace quillane
